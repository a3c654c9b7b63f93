// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/InUse.h"

#include <cerrno>
#include <gpiod.h>
#include <memory>
#include <string>
#include <system_error>

/// A line of a GPIO chip through libgpiod 1.x. It belongs to this process from when it is taken until its
/// chip is let go. What cannot be done is a std::system_error with the name of the line.
class GpioLine {
public:
    using Chip = std::shared_ptr<gpiod_chip>;

    /// What it is taken for; EDGES: to be read, with a descriptor that its falling edges make readable.
    enum class Use { INPUT, EDGES, LOW, HIGH };

    /// The chip of that name, number, label or device path.
    static Chip OpenChip(const std::string& name) {
        gpiod_chip* const chip = gpiod_chip_open_lookup(name.c_str());
        Check(chip != nullptr, name);
        return {chip, gpiod_chip_close};
    }

    /// The line with that number, which is not taken yet; `name` is for errors.
    GpioLine(Chip chip, unsigned int number, std::string name)
        : _chip(std::move(chip)), _name(std::move(name)), _line(gpiod_chip_get_line(_chip.get(), number)) {
        Check(_line != nullptr, _name);
    }

    /// InUse where somebody has it, with the name that he gave to the kernel; `consumer` is the one of this
    /// process.
    void Take(const char* consumer, Use use) {
        if (Request(consumer, use) == 0)
            return;
        const int error = errno;
        const bool known = gpiod_line_update(_line) == 0; // what was read before the request is old
        const char* const user = known ? gpiod_line_consumer(_line) : nullptr;
        if (error == EBUSY)
            throw InUse(_name, user ? user : "somebody whom the kernel does not name");
        throw std::system_error(error, std::generic_category(), _name);
    }

    bool Level() const {
        const int level = gpiod_line_get_value(_line);
        Check(level >= 0, _name);
        return level != 0;
    }

    void Drive(bool level) const { Check(gpiod_line_set_value(_line, level ? 1 : 0) == 0, _name); }

    /// Readable while there are edges that nobody has taken.
    int EdgeDescriptor() const {
        const int descriptor = gpiod_line_event_get_fd(_line);
        Check(descriptor >= 0, _name);
        return descriptor;
    }

    /// Takes some of the edges, of which there has to be one.
    void TakeEdges() const {
        gpiod_line_event edges[16];
        Check(gpiod_line_event_read_multiple(_line, edges, 16) >= 0, _name);
    }

private:
    int Request(const char* consumer, Use use) {
        switch (use) {
        case Use::INPUT:
            return gpiod_line_request_input(_line, consumer);
        case Use::EDGES:
            return gpiod_line_request_falling_edge_events(_line, consumer);
        case Use::LOW:
        case Use::HIGH:
            return gpiod_line_request_output(_line, consumer, use == Use::HIGH);
        }
        return -1;
    }

    static void Check(bool done, const std::string& what) {
        if (!done)
            throw std::system_error(errno, std::generic_category(), what);
    }

    Chip _chip; // closing it gives the line back
    std::string _name;
    gpiod_line* _line;
};
