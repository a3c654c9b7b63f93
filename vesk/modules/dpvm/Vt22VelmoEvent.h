// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

#include <memory>

namespace Vesk::Modules::DPVM {

/// What one indication of the master module says.
class Vt22VelmoEvent : public System::Object {
public:
    static std::shared_ptr<Vt22VelmoEvent> Create(bool fatal, bool inAreaAcquired, bool mailboxInAcknowledged,
                                                  bool mailboxOutUpdated, bool outAcquired, bool powerOn,
                                                  bool log);

    /// The names of the fields that are set, each followed by a blank; empty when none is.
    System::String ToString() const override;

    const bool Fatal;                 ///< the fatal-event block says why the module stopped
    const bool InAreaAcquired;        ///< the input area is handed to the host
    const bool MailboxInAcknowledged; ///< the message in mailbox-in was taken
    const bool MailboxOutUpdated;     ///< mailbox-out holds a new message
    const bool OutAcquired;           ///< the output area is handed to the host
    const bool PowerOn;               ///< the module has booted
    const bool Log;                   ///< the module has log data

protected:
    Vt22VelmoEvent(bool fatal, bool inAreaAcquired, bool mailboxInAcknowledged, bool mailboxOutUpdated,
                   bool outAcquired, bool powerOn, bool log);
};

} // namespace Vesk::Modules::DPVM
