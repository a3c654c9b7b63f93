// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22VelmoEvent.h"

#include "vesk/system/MakeShared.h"

namespace Vesk::Modules::DPVM {

std::shared_ptr<Vt22VelmoEvent> Vt22VelmoEvent::Create(bool fatal, bool inAreaAcquired,
                                                       bool mailboxInAcknowledged, bool mailboxOutUpdated,
                                                       bool outAcquired, bool powerOn, bool log) {
    return System::MakeShared<Vt22VelmoEvent>(fatal, inAreaAcquired, mailboxInAcknowledged, mailboxOutUpdated,
                                              outAcquired, powerOn, log);
}

Vt22VelmoEvent::Vt22VelmoEvent(bool fatal, bool inAreaAcquired, bool mailboxInAcknowledged,
                               bool mailboxOutUpdated, bool outAcquired, bool powerOn, bool log)
    : Fatal(fatal),
      InAreaAcquired(inAreaAcquired),
      MailboxInAcknowledged(mailboxInAcknowledged),
      MailboxOutUpdated(mailboxOutUpdated),
      OutAcquired(outAcquired),
      PowerOn(powerOn),
      Log(log) {}

System::String Vt22VelmoEvent::ToString() const {
    std::string text;
    const auto name = [&text](bool set, const char* field) { text += set ? field : ""; };
    name(Fatal, "Fatal ");
    name(InAreaAcquired, "InAreaAcquired ");
    name(MailboxInAcknowledged, "MailboxInAcknowledged ");
    name(MailboxOutUpdated, "MailboxOutUpdated ");
    name(OutAcquired, "OutAcquired ");
    name(PowerOn, "PowerOn ");
    name(Log, "Log ");
    return text;
}

} // namespace Vesk::Modules::DPVM
