// SPDX-License-Identifier: MIT
#pragma once

#include "busdescription/gsd/Device.h"

#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

/// The telegrams of PROFIBUS DP that a slave answers with, in words.
namespace VeskTool {

/// A slave's diagnosis: six standard bytes and, behind them, blocks of extended diagnosis. Only what is there
/// is decoded; bytes that are no block end as one of kind "rest".
class Diagnosis {
public:
    /// Any bytes.
    explicit Diagnosis(std::span<const unsigned char> bytes);

    /// Names of the bits that are set in the three status bytes, as the standard has them without their
    /// prefix, for example "stationNonExistent".
    const std::vector<std::string>& Set() const { return _set; }

    bool IsSet(const std::string& name) const;

    /// Why the slave does not exchange data, in words; empty if the diagnosis does not say.
    std::string Cause() const;

    /// 0 where it is not there.
    unsigned int IdentNumber() const { return _identNumber; }

    nlohmann::ordered_json ToJson() const;

    /// Adds to what ToJson gives the texts that a device description file has for the device-related blocks,
    /// as "messages" of the block. Does nothing where the file is that of another device.
    static void AddTexts(nlohmann::ordered_json& json, const BusDescription::Gsd::Device& device);

    /// Bit by bit, then block by block.
    static std::string Text(const nlohmann::ordered_json& json);

    /// The same in a line: the names of the bits that are set, then the blocks; "nothing" for none.
    static std::string Summary(const nlohmann::ordered_json& json);

private:
    void DecodeBlocks(std::span<const unsigned char> bytes);

    std::vector<unsigned char> _bytes;
    std::vector<std::string> _set;
    unsigned int _identNumber = 0;
    nlohmann::ordered_json _blocks = nlohmann::ordered_json::array();
};

/// One bit of the three status bytes.
struct DiagnosisFlag {
    std::size_t byte;
    unsigned int mask;
    const char* name;
    const char* meaning; // of a slave: "does not answer on the bus"
    const char* cause;   // of a slave that does not exchange data; null if it is none
};

/// All of them, in the order in which a cause counts more than the next one.
std::span<const DiagnosisFlag> DiagnosisFlags();

/// The modules that a slave's configuration identifiers stand for. Lengths are bytes; "input" goes to the
/// slave and "output" comes from it, as everywhere in this system and the other way round than in the
/// standard.
nlohmann::ordered_json DecodeIdentifiers(std::span<const unsigned char> bytes);

} // namespace VeskTool
