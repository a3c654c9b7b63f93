// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/core/Timer.h"
#include "vesk/hostinterface/IHostInterface.h"
#include "vesk/hostinterface/MasterDpRam.h"

namespace Vesk::Modules::DPVM {

/// Writes the host's indication register towards the master module. The host may write once for each
/// interrupt of the module: an interrupt unlocks the register, a write locks it. The write carries what was
/// marked up to then; when nothing has been marked 2 ms after the interrupt, an empty write lets the module
/// go on.
class Vt22ApplicationIndication : public System::Object {
public:
    /// The register at `offset`, and the byte at `companionOffset` that gets the same value after it; locked
    /// at first. ArgumentNullException without a host interface. Touches no DPRAM.
    static std::shared_ptr<Vt22ApplicationIndication>
    Create(unsigned short offset, unsigned short companionOffset,
           std::shared_ptr<HostInterface::IHostInterface> hostInterface);

    /// The module has raised its interrupt: the next Update may write. InvalidOperationException "Application
    /// handshake not locked" when the last interrupt has not been answered yet.
    void Unlock();

    /// The last interrupt has been answered.
    bool Locked() const { return _locked; }

    /// Marks for the next write; none of them touches the DPRAM, and a mark made while locked waits.
    void ReleaseOut() { Mark(Vt22ApplicationIndication_t::OUT); }

    void ReleaseIn() { Mark(Vt22ApplicationIndication_t::IN); }

    void AckMailboxOut() { Mark(Vt22ApplicationIndication_t::M_OUT); }

    void NotifyMailboxIn() { Mark(Vt22ApplicationIndication_t::M_IN); }

    void ReleaseLog() { Mark(Vt22ApplicationIndication_t::LOG); }

    /// Writes the register if it is unlocked and there are marks, or none for 2 ms.
    void Update();

    /// Writes the register and its companion, and locks.
    void UpdateDpRam();

    /// Traces "ApplicationInd:" and the names of the marks.
    void PrintHandshake() const;

protected:
    Vt22ApplicationIndication(unsigned short offset, unsigned short companionOffset,
                              std::shared_ptr<HostInterface::IHostInterface> hostInterface);

private:
    void Mark(unsigned char bit) { _indication.value = static_cast<unsigned char>(_indication.value | bit); }

    unsigned short _offset;
    unsigned short _companionOffset;
    std::shared_ptr<HostInterface::IHostInterface> _hostInterface;
    std::shared_ptr<Timer> _timer;           // runs from the interrupt on
    Vt22ApplicationIndication_t _indication; // the marks for the next write
    bool _locked = true;
};

} // namespace Vesk::Modules::DPVM
