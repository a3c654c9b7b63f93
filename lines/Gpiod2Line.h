// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/InUse.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <gpiod.h>
#include <memory>
#include <string>
#include <system_error>

/// A line of a GPIO chip through libgpiod 2. It belongs to this process from when it is taken until the
/// object goes. What cannot be done is a std::system_error with the name of the line.
class GpioLine {
public:
    using Chip = std::shared_ptr<gpiod_chip>;

    /// What it is taken for; EDGES: to be read, with a descriptor that its falling edges make readable.
    enum class Use { INPUT, EDGES, LOW, HIGH };

    /// The chip of that name, number, label or device path.
    static Chip OpenChip(const std::string& name) {
        gpiod_chip* const chip = gpiod_chip_open(PathOfChip(name).c_str());
        Check(chip != nullptr, name);
        return {chip, gpiod_chip_close};
    }

    /// The line with that number, which is not taken yet; `name` is for errors.
    GpioLine(Chip chip, unsigned int number, std::string name)
        : _chip(std::move(chip)), _name(std::move(name)), _number(number) {
        Check(Info() != nullptr, _name);
    }

    /// InUse where somebody has it, with the name that he gave to the kernel; `consumer` is the one of this
    /// process.
    void Take(const char* consumer, Use use) {
        const Owned<gpiod_line_settings> settings{gpiod_line_settings_new(), gpiod_line_settings_free};
        const Owned<gpiod_line_config> lines{gpiod_line_config_new(), gpiod_line_config_free};
        const Owned<gpiod_request_config> request{gpiod_request_config_new(), gpiod_request_config_free};
        Check(settings && lines && request && Set(*settings, use) &&
                  gpiod_line_config_add_line_settings(lines.get(), &_number, 1, settings.get()) == 0,
              _name);
        gpiod_request_config_set_consumer(request.get(), consumer);
        _request.reset(gpiod_chip_request_lines(_chip.get(), request.get(), lines.get()));
        if (_request)
            return;
        const int error = errno;
        if (error != EBUSY)
            throw std::system_error(error, std::generic_category(), _name);
        const auto info = Info();
        const char* const user = info ? gpiod_line_info_get_consumer(info.get()) : nullptr;
        throw InUse(_name, user ? user : "somebody whom the kernel does not name");
    }

    bool Level() const {
        const gpiod_line_value level = gpiod_line_request_get_value(_request.get(), _number);
        Check(level != GPIOD_LINE_VALUE_ERROR, _name);
        return level == GPIOD_LINE_VALUE_ACTIVE;
    }

    void Drive(bool level) const {
        const gpiod_line_value value = level ? GPIOD_LINE_VALUE_ACTIVE : GPIOD_LINE_VALUE_INACTIVE;
        Check(gpiod_line_request_set_value(_request.get(), _number, value) == 0, _name);
    }

    /// Readable while there are edges that nobody has taken.
    int EdgeDescriptor() const { return gpiod_line_request_get_fd(_request.get()); }

    /// Takes some of the edges, of which there has to be one.
    void TakeEdges() const {
        Check(gpiod_line_request_read_edge_events(_request.get(), _edges.get(), EDGES) >= 0, _name);
    }

private:
    template <class T>
    using Owned = std::unique_ptr<T, void (*)(T*)>;

    static constexpr std::size_t EDGES = 16;

    Owned<gpiod_line_info> Info() const {
        return {gpiod_chip_get_line_info(_chip.get(), _number), gpiod_line_info_free};
    }

    static bool Set(gpiod_line_settings& settings, Use use) {
        if (use == Use::INPUT || use == Use::EDGES)
            return gpiod_line_settings_set_direction(&settings, GPIOD_LINE_DIRECTION_INPUT) == 0 &&
                   gpiod_line_settings_set_edge_detection(
                       &settings, use == Use::EDGES ? GPIOD_LINE_EDGE_FALLING : GPIOD_LINE_EDGE_NONE) == 0;
        return gpiod_line_settings_set_direction(&settings, GPIOD_LINE_DIRECTION_OUTPUT) == 0 &&
               gpiod_line_settings_set_output_value(
                   &settings, use == Use::HIGH ? GPIOD_LINE_VALUE_ACTIVE : GPIOD_LINE_VALUE_INACTIVE) == 0;
    }

    /// Version 2 opens paths only. A name that is none of a device is looked for among the labels.
    static std::string PathOfChip(const std::string& name) {
        if (name.find('/') != std::string::npos)
            return name;
        const bool number =
            std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
        const std::string path = "/dev/" + (number ? "gpiochip" + name : name);
        if (gpiod_is_gpiochip_device(path.c_str()))
            return path;
        for (const auto& file : std::filesystem::directory_iterator("/dev"))
            if (gpiod_is_gpiochip_device(file.path().c_str()) && LabelOf(file.path()) == name)
                return file.path();
        return path;
    }

    static std::string LabelOf(const std::string& path) {
        const Owned<gpiod_chip> chip{gpiod_chip_open(path.c_str()), gpiod_chip_close};
        const Owned<gpiod_chip_info> info{chip ? gpiod_chip_get_info(chip.get()) : nullptr,
                                          gpiod_chip_info_free};
        return info ? gpiod_chip_info_get_label(info.get()) : "";
    }

    static void Check(bool done, const std::string& what) {
        if (!done)
            throw std::system_error(errno, std::generic_category(), what);
    }

    Chip _chip;
    std::string _name;
    unsigned int _number;
    Owned<gpiod_line_request> _request{nullptr, gpiod_line_request_release};
    Owned<gpiod_edge_event_buffer> _edges{gpiod_edge_event_buffer_new(EDGES), gpiod_edge_event_buffer_free};
};
