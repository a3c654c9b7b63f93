// SPDX-License-Identifier: MIT
#pragma once

#include "dbus/remote/PlantProperties.h"

#include <deque>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace VeskTool {

/// How a piece of a page stands out, on a terminal that can.
enum class Look { PLAIN, BAR, GOOD, BAD, CHANGED };

struct Piece {
    std::string text;
    Look look = Look::PLAIN;
};

/// A line of a page, without a line feed.
using Row = std::vector<Piece>;

std::string TextOf(const Row& row);

/// The bytes that a slave exchanges in one direction, and which of them have changed lately.
struct WatchedBytes {
    std::vector<unsigned char> bytes;
    std::vector<bool> changed;
};

/// What the monitor shows of a plant.
struct View {
    std::string name;
    std::string state;   // of its module; empty where the plant is away
    std::string mode;    // "OPERATE", or empty
    std::string failure; // of the application, in a line; empty for none
    std::string time;    // of day
    std::vector<Vesk::DBus::PlantSlave> slaves;
    Vesk::DBus::PlantStatistics statistics;
    unsigned int slave = 0; // the one whose data are shown
    WatchedBytes input;
    WatchedBytes output;
    std::deque<std::string> messages; // the latest last

    // Where a person has scrolled to: rows of data above the first that shows, messages below the last one.
    std::size_t dataAbove = 0;
    std::size_t messagesBelow = 0;
};

/// The page in so many rows and columns, 80 x 24 at least for all of it to be seen. `keys`: the last row,
/// what keys do.
std::vector<Row> Page(const View& view, std::size_t rows, std::size_t columns, const std::string& keys);

/// How many rows the data of the chosen slave take.
std::size_t DataRows(const View& view);

} // namespace VeskTool
