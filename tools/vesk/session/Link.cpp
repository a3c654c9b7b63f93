// SPDX-License-Identifier: MIT
#include "tools/vesk/session/Link.h"

#include "virtualmodule/InProcess.h"

#include <chrono>

namespace VeskTool {

namespace {

std::int64_t Nanoseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

struct Desk {
    explicit Desk(VirtualModule::Flash content) : flash(std::move(content)) {}

    VirtualModule::Flash flash;
    VirtualModule::InProcess module{flash, Nanoseconds};
};

} // namespace

Link InProcessLink(VirtualModule::Flash flash) {
    const auto desk = std::make_shared<Desk>(std::move(flash));
    Link link;
    link.description = "virtual module in this process";
    link.dpRamPath = desk->module.DpRamPath();
    link.velmoIrq_n = System::Func<bool>::Create([desk] { return desk->module.VelmoIrq_n(); });
    link.reset_n = System::ArgFunc<bool, void>::Create([desk](bool level) { desk->module.Reset_n(level); });
    link.bootloader_enable_n =
        System::ArgFunc<bool, void>::Create([desk](bool level) { desk->module.BootloaderEnable_n(level); });
    link.violations = [desk] { return desk->module.GetModule().Violations(); };
    return link;
}

} // namespace VeskTool
