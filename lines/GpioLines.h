// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Delegates.h"

#include <gpiod.h>
#ifdef GPIOD_LINE_BULK_MAX_LINES // which version 2 has no more
#include "vesk/lines/Gpiod1Line.h"
#else
#include "vesk/lines/Gpiod2Line.h"
#endif

#include <cerrno>
#include <filesystem>
#include <memory>
#include <poll.h>
#include <string>
#include <system_error>
#include <unistd.h>

/// The three control lines of a module as lines of a GPIO chip, through libgpiod 1.6 or 2. All of them carry
/// the levels of the module's pins: low asserts. They belong to this process for as long as the object, or
/// one of its callbacks, lives.
class GpioLines : public std::enable_shared_from_this<GpioLines> {
public:
    /// The numbers of the lines on their chip.
    struct Numbers {
        unsigned int irq = 0, reset = 0, boot = 0;
    };

    /// How the interrupt line is looked at: whenever somebody asks for its level, or also by waiting for it,
    /// which the chip's driver has to be able to do.
    enum class Interrupt { POLLED, AWAITED };

    /// Takes the lines of `chip`: a name, number, label or device path. The module is held in reset from then
    /// on, and is told to boot as the master. InUse where somebody has a line, with the name that he gave to
    /// the kernel; std::system_error naming chip and line where one cannot be had otherwise.
    static std::shared_ptr<GpioLines> Open(const std::string& chip, const Numbers& numbers,
                                           Interrupt interrupt = Interrupt::POLLED) {
        return std::shared_ptr<GpioLines>(new GpioLines(chip, numbers, interrupt));
    }

    GpioLines(const GpioLines&) = delete;
    GpioLines& operator=(const GpioLines&) = delete;

    /// The callbacks for the factories of Vt22.h; each keeps the lines. What they cannot read or drive is a
    /// std::system_error.
    std::shared_ptr<System::IFunc<bool>> VelmoIrq_n() {
        return System::Func<bool>::Create([lines = shared_from_this()] { return lines->_irq.Level(); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> Reset_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->_reset.Drive(level); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> BootloaderEnable_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->_boot.Drive(level); });
    }

    /// With Interrupt::AWAITED: for poll(), readable as soon as the module has raised an interrupt. The level
    /// is another matter: an interrupt that was there before the lines were taken makes nothing readable.
    int InterruptDescriptor() const { return _irq.EdgeDescriptor(); }

    /// With Interrupt::AWAITED: takes what has made the descriptor readable. Before Update, and never after
    /// it: the interrupt that follows upon an answer would be taken too.
    void TakeInterrupts() const {
        pollfd waiting{InterruptDescriptor(), POLLIN, 0};
        while (poll(&waiting, 1, 0) == 1)
            _irq.TakeEdges();
    }

private:
    static constexpr const char* CONSUMER = "vesk"; // what `gpioinfo` shows

    GpioLines(const std::string& chip, const Numbers& numbers, Interrupt interrupt)
        : GpioLines(OpenChip(chip), chip, numbers) {
        _reset.Take(CONSUMER, GpioLine::Use::LOW);
        _boot.Take(CONSUMER, GpioLine::Use::HIGH);
        _irq.Take(CONSUMER, interrupt == Interrupt::AWAITED ? GpioLine::Use::EDGES : GpioLine::Use::INPUT);
    }

    GpioLines(const GpioLine::Chip& chip, const std::string& name, const Numbers& numbers)
        : _irq(Find(chip, name, "irq", numbers.irq)),
          _reset(Find(chip, name, "reset", numbers.reset)),
          _boot(Find(chip, name, "boot", numbers.boot)) {}

    /// A label is looked for among the chips that this user may open, so one of the others may be meant.
    static GpioLine::Chip OpenChip(const std::string& name) {
        try {
            return GpioLine::OpenChip(name);
        } catch (const std::system_error& error) {
            if (error.code().value() != ENOENT)
                throw;
            for (const auto& file : std::filesystem::directory_iterator("/dev"))
                if (file.path().filename().string().starts_with("gpiochip") &&
                    access(file.path().c_str(), R_OK | W_OK) != 0)
                    throw std::system_error(EACCES, std::generic_category(),
                                            name + " is none of the chips that may be opened");
            throw;
        }
    }

    static GpioLine Find(const GpioLine::Chip& chip, const std::string& name, const std::string& role,
                         unsigned int number) {
        return {chip, number, name + " line " + std::to_string(number) + " (" + role + ")"};
    }

    GpioLine _irq, _reset, _boot;
};
