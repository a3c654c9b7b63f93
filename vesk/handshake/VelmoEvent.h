// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Object.h"

#include <memory>

namespace Vesk::Handshake {

/// One decoded change of the module's indication register.
class VelmoEvent : public System::Object {
public:
    static std::shared_ptr<VelmoEvent> Create(bool event, bool fbCtrlAreaAcquired, bool fbCtrlAreaReleased,
                                              bool inAreaAcquired, bool inAreaReleased, bool initialized,
                                              bool mailboxInAcknowledged, bool mailboxOutUpdated,
                                              bool outAcquired, bool outReleased);

    /// One of the areas was granted to the host or taken from it.
    bool NegotiationEvent() const;

    /// The names of the flags that are set; empty when none is.
    System::String ToString() const override;

    const bool Event;                 // the module reports an event
    const bool FbCtrlAreaAcquired;    // the fieldbus-control area is the host's now
    const bool FbCtrlAreaReleased;    // ... and no longer is
    const bool InAreaAcquired;        // the input area is the host's now
    const bool InAreaReleased;        // ... and no longer is
    const bool Initialized;           // the module is initialised now
    const bool MailboxInAcknowledged; // the module has taken the message from mailbox-in
    const bool MailboxOutUpdated;     // mailbox-out holds a new message
    const bool OutAcquired;           // the output area is the host's now
    const bool OutReleased;           // ... and no longer is

protected:
    VelmoEvent(bool event, bool fbCtrlAreaAcquired, bool fbCtrlAreaReleased, bool inAreaAcquired,
               bool inAreaReleased, bool initialized, bool mailboxInAcknowledged, bool mailboxOutUpdated,
               bool outAcquired, bool outReleased);
};

} // namespace Vesk::Handshake
