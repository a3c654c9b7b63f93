// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TestClock.h"

#include "vesk/modules/dpvm/Vt22.h"
#include "virtualmodule/InProcess.h"
#include "virtualmodule/faults/Faults.h"

#include <functional>
#include <string>
#include <vector>

/// Whole lives of a host against a virtual module with faults, in the same process and in virtual time. Each
/// comes to an end: it has done all it wanted, or the library throws, or it waits in vain for too long.
class FaultLife {
public:
    using Kind = VirtualModule::FaultKind::Life;
    using HostInterface = std::shared_ptr<Vesk::HostInterface::IHostInterface>;

    struct Ending {
        bool complete = false;
        std::string type, message;     // of the exception, if there was one
        std::vector<std::string> data; // what the host was told, in order
        int updates = 0;

        /// Whether it is what `outcome` says, measured by a life without faults.
        bool Is(const VirtualModule::Outcome& outcome, const Ending& good) const;
        std::string Text() const;
    };

    /// A module with this flash and these faults; the lives are on the same module, one after the other.
    explicit FaultLife(VirtualModule::Flash start = {}, std::vector<VirtualModule::Fault> faults = {});

    /// A new module object brings the master up, exchanges data, uses services and changes the mode; or it
    /// brings a firmware into the module.
    Ending Run(Kind kind);
    /// The object of the last life is updated a few times more.
    Ending GoOn();
    /// The object of the last life does it all once more, after its Reset.
    Ending RunAgain();

    /// Whether the last life has come as far as having an object; it lasts until the next life.
    bool HasObject() const { return _master || _bootloader; }

    void DropObject();

    TestClock clock;
    VirtualModule::Flash flash;
    VirtualModule::InProcess module;
    /// Puts something between a new module object and the DPRAM, if it is set.
    std::function<HostInterface(HostInterface)> between;

private:
    using Service = std::function<void(Vesk::Modules::DPVM::IDPVMModule::ResponseAction)>;

    struct WaitsInVain {};

    Ending Live(const std::function<void()>& life);
    HostInterface OpenDpRam();
    void CreateMaster();
    void Master();
    void Exchange();
    void Ask(const Service& service);
    void ChangeMode(Vesk::Modules::DPVM::OperationMode_e mode);
    void Firmware();
    void Update();
    void Settle();
    void UpdateUntil(const std::function<bool()>& reached);

    void Tell(std::string text) { _ending.data.push_back(std::move(text)); }

    std::shared_ptr<Vesk::Modules::DPVM::Vt22Module> _master;
    std::shared_ptr<Vesk::Modules::DPVM::Vt22Bootloader> _bootloader;
    Vesk::Modules::IModule* _object = nullptr; // the one of the two that lives
    bool _online = false;
    int _mode = 0;
    Ending _ending;
};
