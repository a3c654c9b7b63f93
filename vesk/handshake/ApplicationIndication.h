// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/hostinterface/BootloaderDpRam.h"
#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/system/DateTime.h"

namespace Vesk::Handshake {

/// The host's indication register in the generic handshake. Whatever is to be told to the module is marked
/// first, without touching the DPRAM; Update then carries out the marks, as many as fit, in one write.
class ApplicationIndication : public System::Object {
public:
    /// The register at DPRAM `offset`, taken to be 0 so far; touches no DPRAM. ArgumentNullException without
    /// a host interface.
    static std::shared_ptr<ApplicationIndication>
    Create(unsigned short offset, std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// Asks for an area.
    void RequestFbCtrl() { Mark(_requests, ApplicationIndication_t::FBCTRL); }

    void RequestOut() { Mark(_requests, ApplicationIndication_t::OUT); }

    void RequestIn() { Mark(_requests, ApplicationIndication_t::IN); }

    /// Gives an area back.
    void ReleaseFbCtrl() { Mark(_releases, ApplicationIndication_t::FBCTRL); }

    void ReleaseOut() { Mark(_releases, ApplicationIndication_t::OUT); }

    void ReleaseIn() { Mark(_releases, ApplicationIndication_t::IN); }

    /// The module's event was seen.
    void AckEvent() { Mark(_actions, ApplicationIndication_t::EVENT); }

    /// The message in mailbox-out was taken.
    void AckMailboxOut() { Mark(_actions, ApplicationIndication_t::M_OUT); }

    /// Mailbox-in holds a new message.
    void NotifyMailboxIn() { Mark(_actions, ApplicationIndication_t::M_IN); }

    /// The module has answered the last area command; the next one may go out.
    void VelmoIndicationReceived() { _indicationReceived = true; }

    /// Writes the register if something is marked that may go out and the last write (or the creation) is at
    /// least 0.5 ms ago; otherwise the marks stay. One write carries every acknowledgement and either all
    /// releases or, when there are none, all requests.
    void Update();

    /// Writes the composed value until it reads back.
    void UpdateDpRam();

    /// Traces "ApplicationInd:" and the labels of the bits that are set in the composed value.
    void PrintHandshake() const;

protected:
    ApplicationIndication(unsigned short offset,
                          std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    static void Mark(unsigned char& marks, unsigned char bit) {
        marks = static_cast<unsigned char>(marks | bit);
    }

    bool AreaCommandDue() const { return _indicationReceived && (_releases || _requests); }

    unsigned char TakeAreaCommand();

    unsigned short _offset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    System::DateTime _lastWriteTime = System::DateTime::Now();
    ApplicationIndication_t _lastWritten;
    ApplicationIndication_t _next;
    // The marks, each at its bit of the register.
    unsigned char _releases = 0;
    unsigned char _requests = 0;
    unsigned char _actions = 0;
    bool _indicationReceived = true;
};

} // namespace Vesk::Handshake
