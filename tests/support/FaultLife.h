// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TestClock.h"

#include "vesk/modules/IModule.h"
#include "vesk/modules/dpvm/IDPVMModule.h"
#include "virtualmodule/Faults.h"
#include "virtualmodule/InProcess.h"

#include <functional>
#include <string>
#include <vector>

/// Whole lives of a host against a virtual module with faults, in the same process and in virtual time. Each
/// comes to an end: it has done all it wanted, or the library throws, or it waits in vain for too long.
class FaultLife {
public:
    using Kind = VirtualModule::FaultKind::Life;

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

    /// Brings the master up, exchanges data and uses services; or brings a firmware into the module.
    Ending Run(Kind kind);

    VirtualModule::Flash flash;
    VirtualModule::InProcess module;

private:
    using Service = std::function<void(Vesk::Modules::DPVM::IDPVMModule::ResponseAction)>;

    struct WaitsInVain {};

    void Master();
    void Exchange(Vesk::Modules::DPVM::IDPVMModule& master);
    void Ask(Vesk::Modules::DPVM::IDPVMModule& master, const Service& service);
    void Firmware();
    void Update(Vesk::Modules::IModule& host, int times);
    void UpdateUntil(Vesk::Modules::IModule& host, const std::function<bool()>& reached);

    void Tell(std::string text) { _ending.data.push_back(std::move(text)); }

    TestClock _clock;
    Ending _ending;
};
