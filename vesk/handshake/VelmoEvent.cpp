// SPDX-License-Identifier: MIT
#include "vesk/handshake/VelmoEvent.h"

#include "vesk/system/MakeShared.h"

namespace Vesk::Handshake {

std::shared_ptr<VelmoEvent> VelmoEvent::Create(bool event, bool fbCtrlAreaAcquired, bool fbCtrlAreaReleased,
                                               bool inAreaAcquired, bool inAreaReleased, bool initialized,
                                               bool mailboxInAcknowledged, bool mailboxOutUpdated,
                                               bool outAcquired, bool outReleased) {
    return System::MakeShared<VelmoEvent>(event, fbCtrlAreaAcquired, fbCtrlAreaReleased, inAreaAcquired,
                                          inAreaReleased, initialized, mailboxInAcknowledged,
                                          mailboxOutUpdated, outAcquired, outReleased);
}

VelmoEvent::VelmoEvent(bool event, bool fbCtrlAreaAcquired, bool fbCtrlAreaReleased, bool inAreaAcquired,
                       bool inAreaReleased, bool initialized, bool mailboxInAcknowledged,
                       bool mailboxOutUpdated, bool outAcquired, bool outReleased)
    : Event(event),
      FbCtrlAreaAcquired(fbCtrlAreaAcquired),
      FbCtrlAreaReleased(fbCtrlAreaReleased),
      InAreaAcquired(inAreaAcquired),
      InAreaReleased(inAreaReleased),
      Initialized(initialized),
      MailboxInAcknowledged(mailboxInAcknowledged),
      MailboxOutUpdated(mailboxOutUpdated),
      OutAcquired(outAcquired),
      OutReleased(outReleased) {}

bool VelmoEvent::NegotiationEvent() const {
    return FbCtrlAreaAcquired || FbCtrlAreaReleased || InAreaAcquired || InAreaReleased || OutAcquired ||
           OutReleased;
}

System::String VelmoEvent::ToString() const {
    std::string text;
    const auto append = [&text](bool flag, const char* name) {
        if (flag)
            text += name;
    };
    append(Event, "Event ");
    append(FbCtrlAreaAcquired, "FbCtrlAreaAcquired ");
    append(FbCtrlAreaReleased, "FbCtrlAreaReleased ");
    append(InAreaAcquired, "InAreaAcquired ");
    append(InAreaReleased, "InAreaReleased ");
    append(Initialized, "Initialized ");
    append(MailboxInAcknowledged, "MailboxInAcknowledged ");
    append(MailboxOutUpdated, "MailboxOutUpdated ");
    append(NegotiationEvent(), "NegotiationEvent ");
    append(OutAcquired, "OutAcquired ");
    append(OutReleased, "OutReleased");
    return text;
}

} // namespace Vesk::Handshake
