// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TestClock.h"

#include "vesk/mailbox/IResponse.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "virtualmodule/InProcess.h"

#include <exception>
#include <functional>
#include <memory>

/// Lives of a host against a virtual module in the same process, in virtual time. The flash and the virtual
/// module last from one life to the next.
class Life {
public:
    using Config = std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig>;
    using HostInterface = std::shared_ptr<Vesk::HostInterface::IHostInterface>;
    using OperationMode = Vesk::Modules::DPVM::OperationMode_e;
    using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;
    using Service = std::function<void(Vesk::Modules::DPVM::IDPVMModule::ResponseAction)>;

    /// Nothing has happened for longer than anything takes.
    struct WaitsInVain : std::exception {
        const char* what() const noexcept override { return "waits in vain"; }
    };

    /// A module with this flash; the clock is the whole process's.
    explicit Life(VirtualModule::Flash start = {}, VirtualModule::Options options = {});

    /// A new master module object, whose callbacks set `online` and `mode`; null for an unconfigured one.
    void BeginMaster(Config config);
    void BeginBootloader();
    /// Nobody is there any more; the module stays in reset.
    void DropObject();

    /// Updates the module object every 0.25 ms.
    void Update(int times = 1);
    /// Updates until `reached`; time passes faster while nothing is going on. Throws WaitsInVain.
    void UpdateUntil(const std::function<bool()>& reached);
    /// Begins a master and goes on until its database matches.
    void BringUp(Config config);
    /// Asks the master for a service and updates until it is answered.
    Response Ask(const Service& service);

    bool IsIn(OperationMode wanted) const { return online && mode == wanted; }

    TestClock clock;
    VirtualModule::Flash flash;
    VirtualModule::InProcess module;
    /// Puts something between a new module object and the DPRAM, if it is set.
    std::function<HostInterface(HostInterface)> between;
    // Of the last module object.
    std::shared_ptr<Vesk::Modules::DPVM::Vt22Module> master;
    std::shared_ptr<Vesk::Modules::DPVM::Vt22Bootloader> bootloader;
    bool online = false;
    OperationMode mode = OperationMode::OFFLINE;
    int updates = 0;

private:
    HostInterface OpenDpRam();

    Vesk::Modules::IModule* _object = nullptr; // the one of the two that lives
};
