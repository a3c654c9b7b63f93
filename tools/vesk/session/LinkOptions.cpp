// SPDX-License-Identifier: MIT
#include "tools/vesk/session/LinkOptions.h"

#include "tools/vesk/session/PublishedPlants.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Numbers.h"
#include "vesk/lines/LinesFile.h"

#ifdef VESK_WITH_GPIOD
#include "vesk/lines/GpioLines.h"
#endif

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <sstream>

namespace VeskTool {

namespace {

void CheckThere(const std::string& path, const char* what) {
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored))
        throw Failure(path + " does not exist, so there is no " + what);
}

constexpr unsigned int HIGHEST_GPIO_LINE = 65535; // more than any chip has

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
    CheckThere(path, "`vesk module` with these lines");
    return LinkOver(*LinesFile::Open(path));
}

} // namespace

/// The module that was opened.
static std::string opened;

const std::string& LinkOptions::Opened() {
    return opened;
}

void LinkOptions::NoteOpened(const std::string& description) {
    opened = description;
}

/// The same value on both is as good as from the variable.
bool LinkOptions::Place::Given() const {
    const char* const set = std::getenv(variable);
    return text && (set == nullptr || *text != set);
}

std::string LinkOptions::Place::Name() const {
    return Given() ? option : variable;
}

void LinkOptions::AddTo(CLI::App& command, Unnamed unnamed) {
    _unnamed = unnamed;
    const auto add = [&command](Place& place, const char* type, const char* text) {
        command.add_option(place.option, place.text, text)
            ->envname(place.variable)
            ->type_name(type)
            ->group("Where the module is");
    };
    add(_dpRam, "FILE", "DPRAM of the module: a file, or a device that can be mapped");
    add(_offset, "BYTES", "Where in the file the DPRAM begins (0)");
    add(_lines, "FILE", "Lines file of a `vesk module`");
    add(_gpio, "CHIP:irq=N,reset=N,boot=N",
        "The module's lines on a GPIO chip, in place of --lines: the chip's name, number or path, and the "
        "number of each line on it");
    command
        .add_flag("--virtual", _virtual,
                  unnamed == Unnamed::VIRTUAL
                      ? "A virtual module in this process, which serves without any of these too"
                      : "A virtual module in this process; what is written is gone with it")
        ->group("Where the module is");
}

/// The command line decides alone where it has something to say.
bool LinkOptions::UseVirtual() const {
    if (!Plant().empty())
        return false;
    for (const Place* const place : {&_dpRam, &_offset, &_lines, &_gpio})
        if (_virtual && place->Given())
            throw CLI::ExcludesError("--virtual", place->option);
    if (_virtual || _dpRam.text)
        return _virtual;
    for (const Place* const place : {&_lines, &_gpio, &_offset})
        if (place->text)
            throw CLI::RequiresError(place->Name(), "--dpram (or VESK_DPRAM)");
    if (_unnamed == Unnamed::REFUSED)
        CheckNamed();
    return true;
}

std::string LinkOptions::Plant() const {
    const std::string& plant = PublishedPlants::Named();
    for (const Place* const place : {&_dpRam, &_offset, &_lines, &_gpio})
        if (!plant.empty() && (_virtual || place->Given()))
            throw CLI::ExcludesError("--plant", _virtual ? "--virtual" : place->option);
    return plant;
}

void LinkOptions::CheckNamed() const {
    if (Plant().empty() && !_virtual && !_dpRam.text)
        throw CLI::ValidationError(
            "no module is named, and this would change it: name one with --dpram and --lines or --gpio, or "
            "in VESK_DPRAM and VESK_LINES or VESK_GPIO; --virtual takes a virtual one",
            CLI::ExitCodes::RequiredError);
}

const LinkOptions::Place& LinkOptions::Lines() const {
    if (!_lines.text && !_gpio.text)
        throw CLI::RequiresError(_dpRam.Name(), "--lines or --gpio (or VESK_LINES or VESK_GPIO)");
    if (_lines.text && _gpio.text && _lines.Given() == _gpio.Given())
        throw CLI::ExcludesError(_lines.Name(), _gpio.Name());
    return !_gpio.text || _lines.Given() ? _lines : _gpio;
}

Link LinkOptions::Open(VirtualModule::Flash flash) const {
    if (const std::string plant = Plant(); !plant.empty())
        throw CLI::ValidationError("--plant", "the application of " + plant +
                                                  " has the module, and this "
                                                  "needs the module itself");
    WatchSignals();
    if (UseVirtual()) {
        if (!_virtual)
            std::cerr << "vesk: no --dpram, so a virtual module in this process serves"
                      << (flash.database.Complete() ? ", with the plant of the examples" : "") << std::endl;
        Link link = InProcessLink(std::move(flash));
        opened = link.description;
        return link;
    }
    const Place& lines = Lines();
    const bool file = &lines == &_lines;
    const auto offset = _offset.text ? ParseNumber(_offset.Name(), *_offset.text, 0,
                                                   static_cast<unsigned int>(std::numeric_limits<int>::max()))
                                     : 0;
    const Gpio gpio = file ? Gpio() : ParseGpio(_gpio.Name(), *_gpio.text);
    CheckThere(*_dpRam.text, file ? "`vesk module` with this DPRAM" : "device of that name");
    Link link = file ? FileLink(*_lines.text) : GpioLink(gpio);
    link.description = opened = "module at " + *_dpRam.text;
    link.machine = !file;
    link.dpRamPath = *_dpRam.text;
    link.offset = static_cast<int>(offset);
    return link;
}

LinkOptions::Gpio LinkOptions::ParseGpio(const std::string& name, const std::string& text) {
    const auto colon = text.rfind(':');
    const auto malformed = [&] {
        return CLI::ValidationError(name, text + " is not CHIP:irq=N,reset=N,boot=N");
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
        numbers[role] = ParseNumber(name + " " + role, part.substr(equals + 1), 0, HIGHEST_GPIO_LINE);
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
    throw Failure("this vesk was built without libgpiod, which --gpio needs");
}
#endif

} // namespace VeskTool
