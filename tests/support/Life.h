// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TestClock.h"

#include "vesk/modules/dpvm/Vt22.h"
#include "virtualmodule/InProcess.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Lives of a master module object against a virtual module in the same process, in virtual time. The flash
/// and the virtual module last from one life to the next.
class Life {
public:
    using State = Vesk::Modules::DPVM::Vt22Module::ModuleState_e;
    using OperationMode = Vesk::Modules::DPVM::OperationMode_e;
    using Service = std::function<void(Vesk::Modules::DPVM::IDPVMModule::ResponseAction)>;

    explicit Life(VirtualModule::Options options = {});
    ~Life();

    /// A new module object; null for an unconfigured one.
    void Begin(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config);
    /// Updates every 0.1 ms until `reached`; a test failure after `most` updates.
    void UpdateUntil(const std::function<bool()>& reached, int most = 200'000);
    void Update(int times = 1);
    /// Begins and goes on until the database matches.
    void BringUp(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config);
    /// Initialises and waits until the master is online in OPERATE.
    void GoOnline();
    /// Asks for a service and updates until it is answered.
    std::shared_ptr<Vesk::Mailbox::IResponse> Ask(const Service& service);

    TestClock clock;
    VirtualModule::Flash flash;
    VirtualModule::InProcess module;
    std::vector<std::string> log;   // of the virtual module
    std::vector<std::string> calls; // of the callbacks
    std::vector<State> states;      // of the module object, each once when it is reached
    std::shared_ptr<Vesk::Modules::DPVM::Vt22Module> master;
};
