// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/Header.h"

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

namespace VeskTool {

/// A dual-port RAM as a readable map: its blocks in the order of their offsets, each with its fields. Any
/// bytes can be mapped; what means nothing is shown as what it is.
class DpRamMap {
public:
    static constexpr int SIZE = 0x2000;
    using Bytes = std::span<const unsigned char, SIZE>;

    enum class Source {
        DUMP,     // all of it, at one time
        SNAPSHOT, // of a DPRAM in use, without its handshake registers
    };

    /// The layout of the module while it runs as the DP-V1 master, or its bootloader.
    static DpRamMap Master(Bytes dpRam, Source source = Source::DUMP);
    static DpRamMap Bootloader(Bytes dpRam, Source source = Source::DUMP);

    std::string ToText() const;
    /// One object with a member for each block, which has its offset and a member for each field.
    nlohmann::ordered_json ToJson() const;

private:
    struct Field {
        std::string name;
        std::string text; // several lines are shown below the name
        nlohmann::ordered_json value;
    };

    struct Block {
        std::string name;
        int offset;
        std::vector<Field> fields;
    };

    DpRamMap(std::string layout, Bytes dpRam, Source source)
        : _layout(std::move(layout)), _dpRam(dpRam), _snapshot(source == Source::SNAPSHOT) {}

    unsigned int Number(int offset, int bytes) const;

    std::span<const unsigned char> At(int offset, int count) const {
        return _dpRam.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(count));
    }

    void AddBlock(const std::string& name, int offset) { _blocks.push_back({name, offset, {}}); }

    void AddField(const std::string& name, const std::string& text, nlohmann::ordered_json value) {
        _blocks.back().fields.push_back({name, text, std::move(value)});
    }

    /// The next four add a field of the last block, at `offset` from its start.
    void AddNumber(const std::string& name, int offset, int bytes);
    void AddVersion(const std::string& name, int offset, int parts);
    void AddStations(const std::string& name, int offset);
    void AddBytes(const std::string& name, int offset, int count);
    template <class Register>
    void AddRegister(const std::string& name, int offset);
    void AddHexBlock(const std::string& name, int offset, int end);

    void AddIdentity();
    void AddFatalEvent();
    void AddMailbox(const std::string& name, int offset);
    void AddMessage(const Vesk::Mailbox::Header& header);
    void AddFieldbusStatus();
    void AddMasterHandshake();
    void AddBootloaderHandshake();
    void AddBootloaderCtrl();

    std::string _layout;
    Bytes _dpRam;
    bool _snapshot;
    std::vector<Block> _blocks;
};

} // namespace VeskTool
