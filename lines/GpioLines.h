// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/InUse.h"
#include "vesk/system/Delegates.h"

#include <cerrno>
#include <gpiod.h>
#include <memory>
#include <string>
#include <system_error>

/// The three control lines of a module as lines of a GPIO chip, through libgpiod 1.x. All of them carry the
/// levels of the module's pins: low asserts. They belong to this process for as long as the object, or one of
/// its callbacks, lives.
class GpioLines : public std::enable_shared_from_this<GpioLines> {
public:
    /// The numbers of the lines on their chip.
    struct Numbers {
        unsigned int irq = 0, reset = 0, boot = 0;
    };

    /// Takes the lines of `chip`: a name, number, label or device path. The module is held in reset from then
    /// on, and is told to boot as the master. InUse where somebody has a line, with the name that he gave to
    /// the kernel; std::system_error naming chip and line where one cannot be had otherwise.
    static std::shared_ptr<GpioLines> Open(const std::string& chip, const Numbers& numbers) {
        return std::shared_ptr<GpioLines>(new GpioLines(chip, numbers));
    }

    GpioLines(const GpioLines&) = delete;
    GpioLines& operator=(const GpioLines&) = delete;

    /// The callbacks for the factories of Vt22.h; each keeps the lines. What they cannot read or drive is a
    /// std::system_error.
    std::shared_ptr<System::IFunc<bool>> VelmoIrq_n() {
        return System::Func<bool>::Create([lines = shared_from_this()] { return lines->Level(lines->_irq); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> Reset_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->Drive(lines->_reset, level); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> BootloaderEnable_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->Drive(lines->_boot, level); });
    }

private:
    static constexpr const char* CONSUMER = "vesk"; // what `gpioinfo` shows

    struct Line {
        gpiod_line* handle;
        std::string name;
    };

    GpioLines(const std::string& chip, const Numbers& numbers)
        : _chip(gpiod_chip_open_lookup(chip.c_str()), gpiod_chip_close) {
        Check(_chip != nullptr, chip);
        _irq = Find(chip, "irq", numbers.irq);
        _reset = Find(chip, "reset", numbers.reset);
        _boot = Find(chip, "boot", numbers.boot);
        CheckTaken(gpiod_line_request_output(_reset.handle, CONSUMER, 0) == 0, _reset);
        CheckTaken(gpiod_line_request_output(_boot.handle, CONSUMER, 1) == 0, _boot);
        CheckTaken(gpiod_line_request_input(_irq.handle, CONSUMER) == 0, _irq);
    }

    Line Find(const std::string& chip, const std::string& role, unsigned int number) const {
        Line line{gpiod_chip_get_line(_chip.get(), number),
                  chip + " line " + std::to_string(number) + " (" + role + ")"};
        Check(line.handle != nullptr, line.name);
        return line;
    }

    static void Check(bool done, const std::string& what) {
        if (!done)
            throw std::system_error(errno, std::generic_category(), what);
    }

    static void CheckTaken(bool taken, const Line& line) {
        if (!taken && errno == EBUSY) {
            const bool known = gpiod_line_update(line.handle) == 0; // what was read before the request is old
            const char* const consumer = known ? gpiod_line_consumer(line.handle) : nullptr;
            throw InUse(line.name, consumer ? consumer : "somebody whom the kernel does not name");
        }
        Check(taken, line.name);
    }

    static bool Level(const Line& line) {
        const int level = gpiod_line_get_value(line.handle);
        Check(level >= 0, line.name);
        return level != 0;
    }

    static void Drive(const Line& line, bool level) {
        Check(gpiod_line_set_value(line.handle, level ? 1 : 0) == 0, line.name);
    }

    std::unique_ptr<gpiod_chip, void (*)(gpiod_chip*)> _chip; // closing it gives the lines back
    Line _irq{}, _reset{}, _boot{};
};
