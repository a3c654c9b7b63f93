// SPDX-License-Identifier: MIT
#include "tools/vesk/session/LinkOptions.h"

#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Numbers.h"
#include "vesk/lines/LinesFile.h"

#ifdef VESK_WITH_GPIOD
#include "vesk/lines/GpioLines.h"
#endif

#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>

namespace VeskTool {

namespace {

void CheckThere(const std::string& path, const char* hint) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        throw Failure(path + " does not exist", hint);
}

constexpr unsigned int HIGHEST_GPIO_LINE = 65535; // more than any chip has
constexpr auto* START_MODULE = "Start `vesk module` with the same two files; it makes them";

/// LinesFile or GpioLines: both offer the same three callbacks.
template <class Lines>
Link LinkOver(Lines& lines) {
    Link link;
    link.velmoIrq_n = lines.VelmoIrq_n();
    link.reset_n = lines.Reset_n();
    link.bootloader_enable_n = lines.BootloaderEnable_n();
    return link;
}

Link FileLink(const std::string& path) {
    CheckThere(path, START_MODULE);
    return LinkOver(*LinesFile::Open(path));
}

} // namespace

void LinkOptions::AddTo(CLI::App& command) {
    const auto add = [&command](const char* name, auto& target, const char* variable, const char* text) {
        return command.add_option(name, target, text)->envname(variable)->group("Where the module is");
    };
    CLI::Option* const dpRam = add("--dpram", _dpRamPath, "VESK_DPRAM",
                                   "DPRAM of the module: a file, or a device that can be mapped");
    CLI::Option* const offset =
        add("--offset", _offset, "VESK_OFFSET", "Where in the file the DPRAM begins (0)");
    CLI::Option* const lines = add("--lines", _linesPath, "VESK_LINES", "Lines file of a `vesk module`");
    CLI::Option* const gpio = command.add_option_function<std::string>(
        "--gpio", [this](const std::string& text) { _gpio = ParseGpio(text); },
        "The module's lines on a GPIO chip, in place of --lines. Without any of these a virtual module in "
        "this "
        "process serves.");
    dpRam->type_name("FILE");
    offset->type_name("BYTES")
        ->check(CLI::Range(0, std::numeric_limits<int>::max()).description(""))
        ->needs(dpRam);
    lines->type_name("FILE")->needs(dpRam);
    gpio->type_name("CHIP:irq=N,reset=N,boot=N")
        ->envname("VESK_GPIO")
        ->group("Where the module is")
        ->needs(dpRam)
        ->excludes(lines);
}

Link LinkOptions::Open(VirtualModule::Flash flash) const {
    WatchSignals();
    if (!_dpRamPath) {
        std::cerr << "vesk: no --dpram, so a virtual module in this process serves"
                  << (flash.database.Complete() ? ", with the plant of the examples" : "") << std::endl;
        return InProcessLink(std::move(flash));
    }
    if (!_linesPath && !_gpio)
        throw CLI::RequiresError("--dpram", "--lines or --gpio");
    CheckThere(*_dpRamPath, _linesPath ? START_MODULE : "Check the name of the device and its driver");
    Link link = TakeLines();
    link.description = "module at " + *_dpRamPath;
    link.dpRamPath = *_dpRamPath;
    link.offset = _offset;
    return link;
}

Link LinkOptions::TakeLines() const {
    try {
        return _linesPath ? FileLink(*_linesPath) : GpioLink(*_gpio);
    } catch (const InUse& inUse) {
        throw Failure(inUse.what(),
                      "A module has one host at a time: end that one first. `vesk dump --dpram` "
                      "shows the DPRAM without disturbing it.");
    }
}

LinkOptions::Gpio LinkOptions::ParseGpio(const std::string& text) {
    const auto colon = text.rfind(':');
    const auto malformed = [&] {
        return CLI::ValidationError("--gpio", text + " is not CHIP:irq=N,reset=N,boot=N");
    };
    if (colon == std::string::npos || colon == 0)
        throw malformed();
    std::map<std::string, unsigned int> numbers;
    std::istringstream rest(text.substr(colon + 1));
    for (std::string part; std::getline(rest, part, ',');) {
        const auto equals = part.find('=');
        const std::string role = part.substr(0, equals);
        if (equals == std::string::npos || (role != "irq" && role != "reset" && role != "boot") ||
            numbers.count(role) != 0)
            throw malformed();
        numbers[role] = ParseNumber("--gpio " + role, part.substr(equals + 1), 0, HIGHEST_GPIO_LINE);
    }
    if (numbers.size() != 3)
        throw malformed();
    return {text.substr(0, colon), numbers["irq"], numbers["reset"], numbers["boot"]};
}

#ifdef VESK_WITH_GPIOD
Link LinkOptions::GpioLink(const Gpio& gpio) {
    return LinkOver(*GpioLines::Open(gpio.chip, {gpio.irq, gpio.reset, gpio.boot}));
}
#else
Link LinkOptions::GpioLink(const Gpio&) {
    throw Failure("this vesk was built without libgpiod, which --gpio needs", "Build it with libgpiod 1.x");
}
#endif

} // namespace VeskTool
