// SPDX-License-Identifier: MIT
#include "tools/vesk/monitor/Page.h"

#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <array>

namespace VeskTool {

using Vesk::DBus::PlantSlave;
using Vesk::DBus::PlantTime;

namespace {

constexpr unsigned int STATIONS = 128;
constexpr unsigned int STATIONS_IN_ROW = 10;
constexpr std::size_t GRID_ROWS = 14; // with its heading
constexpr std::size_t GRID_COLUMNS = 29;
constexpr std::size_t BYTES_IN_ROW = 16;
constexpr const char* LEGEND = " X exchanges data, D has diagnostics too, ! only these, - neither, . nobody";
constexpr std::size_t FEWEST_MESSAGES = 4;

/// "12.3 us", in the unit that suits.
std::string Duration(std::uint64_t nanoseconds) {
    static constexpr std::array UNITS{"us", "ms", "s"};
    std::uint64_t tenths = nanoseconds / 100;
    std::size_t unit = 0;
    for (; tenths >= 10'000 && unit + 1 < UNITS.size(); ++unit)
        tenths /= 1000;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " " + UNITS[unit];
}

Row TimeRow(const std::string& name, const PlantTime& time, const std::string& counts) {
    return {{Padded(" " + name + "  least " + Duration(time.least) + ", mean " + Duration(time.mean) +
                        ", most " + Duration(time.greatest),
                    54) +
             counts}};
}

Row Bar(const View& view, std::size_t columns) {
    std::string text = " " + Harmless(view.name) + "   " +
                       (view.state.empty() ? "not on the bus" : Harmless(view.state)) + "   " + view.mode;
    text =
        Padded(text, columns > view.time.size() + 1 ? columns - view.time.size() - 1 : 0) + view.time + " ";
    return {{text, Look::BAR}};
}

Row Updates(const View& view) {
    const auto& statistics = view.statistics;
    return TimeRow("update", statistics.updateTime,
                   std::to_string(statistics.updates) + "; " + std::to_string(statistics.interrupts) +
                       " interrupts");
}

Row Periods(const View& view) {
    const auto& statistics = view.statistics;
    return TimeRow("period", statistics.period,
                   std::to_string(statistics.messages) + " messages, " + std::to_string(statistics.timeOuts) +
                       " time-outs");
}

// ---- the grid

Piece Sign(const View& view, unsigned int address) {
    const auto slave = std::find_if(view.slaves.begin(), view.slaves.end(),
                                    [&](const PlantSlave& one) { return one.address == address; });
    if (slave == view.slaves.end())
        return {"."};
    if (slave->diagnostic)
        return {slave->dataTransfer ? "D" : "!", Look::BAD};
    return slave->dataTransfer ? Piece{"X", Look::GOOD} : Piece{"-", Look::BAD};
}

/// The chosen slave stands in brackets.
Row GridRow(const View& view, std::size_t number) {
    if (number == 0)
        return {{"      0 1 2 3 4 5 6 7 8 9"}};
    const auto first = static_cast<unsigned int>(number - 1) * STATIONS_IN_ROW;
    const std::string label = std::to_string(first);
    Row row{{std::string(5 - label.size(), ' ') + label}};
    bool before = false;
    for (unsigned int address = first; address < std::min(first + STATIONS_IN_ROW, STATIONS); ++address) {
        const bool chosen = address == view.slave;
        row.push_back({chosen ? "[" : before ? "]" : " "});
        row.push_back(Sign(view, address));
        before = chosen;
    }
    row.push_back({before ? "]" : ""});
    return row;
}

// ---- the data

void AddBytes(std::vector<Row>& rows, const std::string& heading, const WatchedBytes& data) {
    rows.push_back({{heading + ", " + std::to_string(data.bytes.size()) + " bytes"}});
    for (std::size_t first = 0; first < data.bytes.size(); first += BYTES_IN_ROW) {
        Row row;
        bool before = false;
        for (std::size_t i = first; i < std::min(first + BYTES_IN_ROW, data.bytes.size()); ++i) {
            const bool changed = data.changed[i];
            row.push_back({changed == before ? " " : changed ? "[" : "]"});
            row.push_back({HexDigits({&data.bytes[i], 1}), changed ? Look::CHANGED : Look::PLAIN});
            before = changed;
        }
        row.push_back({before ? "]" : ""});
        rows.push_back(std::move(row));
    }
}

std::vector<Row> Data(const View& view) {
    std::vector<Row> rows;
    const auto slave = std::find_if(view.slaves.begin(), view.slaves.end(),
                                    [&](const PlantSlave& one) { return one.address == view.slave; });
    if (slave == view.slaves.end())
        return rows;
    rows.push_back({{"Slave " + std::to_string(view.slave) + " " + Harmless(slave->name)}});
    AddBytes(rows, "to it", view.input);
    AddBytes(rows, "from it", view.output);
    return rows;
}

/// Grid and data side by side.
void AddMiddle(std::vector<Row>& page, const View& view) {
    const std::vector<Row> data = Data(view);
    for (std::size_t i = 0; i < GRID_ROWS; ++i) {
        Row row = GridRow(view, i);
        const std::size_t at = i + view.dataAbove;
        if (at < data.size()) {
            row.push_back({std::string(GRID_COLUMNS - TextOf(row).size(), ' ')});
            row.insert(row.end(), data[at].begin(), data[at].end());
        }
        page.push_back(std::move(row));
    }
}

void AddMessages(std::vector<Row>& page, const View& view, std::size_t rows) {
    const std::size_t end = view.messages.size() - std::min(view.messagesBelow, view.messages.size());
    const std::size_t first = end - std::min(end, rows);
    for (std::size_t i = first; i < end; ++i)
        page.push_back({{" " + view.messages[i]}});
}

/// Cuts the row to the width.
Row Cut(Row row, std::size_t columns) {
    for (Piece& piece : row) {
        const std::size_t kept = std::min(columns, piece.text.size());
        piece.text.resize(kept);
        columns -= kept;
    }
    return row;
}

} // namespace

std::string TextOf(const Row& row) {
    std::string text;
    for (const Piece& piece : row)
        text += piece.text;
    return text;
}

std::size_t DataRows(const View& view) {
    return Data(view).size();
}

std::vector<Row> Page(const View& view, std::size_t rows, std::size_t columns, const std::string& keys) {
    std::vector<Row> page{Bar(view, columns), Updates(view), Periods(view)};
    AddMiddle(page, view);
    page.push_back(view.failure.empty() ? Row{{LEGEND}} : Row{{" " + view.failure, Look::BAD}});
    const std::size_t used = page.size() + 1;
    const std::size_t messages = rows > used + FEWEST_MESSAGES ? rows - used : FEWEST_MESSAGES;
    AddMessages(page, view, messages);
    page.resize(used - 1 + messages);
    page.push_back({{keys, Look::BAR}});
    for (Row& row : page)
        row = Cut(std::move(row), columns);
    return page;
}

} // namespace VeskTool
