// SPDX-License-Identifier: MIT
#include "tests/support/Life.h"

#include "tests/support/ModuleLines.h"

#include "vesk/hostinterface/RuntimeConfig.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Vesk::Modules::DPVM;

Life::Life(VirtualModule::Options options) : module(flash, TestClock::Nanoseconds, options) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    module.GetModule().SetLog([this](const std::string& line) { log.push_back(line); });
}

Life::~Life() {
    master.reset();
    EXPECT_EQ(module.GetModule().Violations(), std::vector<std::string>{});
}

void Life::Begin(std::shared_ptr<Config::IBusConfig> config) {
    master.reset();
    states.clear();
    const auto note = [this](const char* name) {
        return System::Func<void>::Create([this, name] { calls.push_back(name); });
    };
    const auto mode = System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e reached) {
        calls.push_back("mode " + std::to_string(static_cast<int>(reached)));
    });
    const auto [irq, reset, boot] = ModuleLines(module);
    master = config ? Vt22::CreateConfigured(module.DpRamPath(), 0, irq, reset, boot, note("offline"),
                                             note("online"), mode, config)
                    : Vt22::CreateUnconfigured(module.DpRamPath(), 0, irq, reset, boot);
    states.push_back(master->State());
}

void Life::Update(int times) {
    for (int i = 0; i < times; ++i) {
        clock.Advance(100'000);
        master->Update();
        if (master->State() != states.back())
            states.push_back(master->State());
    }
}

void Life::UpdateUntil(const std::function<bool()>& reached, int most) {
    for (int i = 0; i < most; ++i) {
        if (reached())
            return;
        Update();
    }
    FAIL() << "not reached after " << most << " updates, in state "
           << Vt22Module::StateToString(master->State()).Value();
}

void Life::BringUp(std::shared_ptr<Config::IBusConfig> config) {
    Begin(std::move(config));
    UpdateUntil([this] { return master->Configured(); });
}

void Life::GoOnline() {
    master->BeginInitialization();
    UpdateUntil([this] { return master->Initialized(); });
    UpdateUntil([this] { return std::find(calls.begin(), calls.end(), "mode 192") != calls.end(); });
}

std::shared_ptr<Vesk::Mailbox::IResponse> Life::Ask(const Service& service) {
    using Answer = std::shared_ptr<Vesk::Mailbox::IResponse>;
    const auto answer = std::make_shared<Answer>();
    service(
        System::ArgFunc<Answer, void>::Create([answer](Answer response) { *answer = std::move(response); }));
    UpdateUntil([&] { return *answer != nullptr; });
    return *answer;
}
