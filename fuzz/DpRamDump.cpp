// SPDX-License-Identifier: MIT
// The decoder of `vesk dump`, as text and as JSON: the first byte of the input chooses the layout, the rest
// is the dump. What it is too short for is zero.
#include "fuzz/Properties.h"

#include "tools/vesk/files/DpRamMap.h"
#include "tools/vesk/text/ByteText.h"

#include <algorithm>
#include <array>

using Fuzz::Require;
using VeskTool::DpRamMap;

namespace {

using Dump = std::array<unsigned char, DpRamMap::SIZE>;

/// Every block's raw data stands at its place.
void CheckData(const nlohmann::json& map, const Dump& dump) {
    for (const auto& [name, block] : map.items()) {
        if (!block.is_object() || !block.contains("data"))
            continue;
        const std::string digits = block["data"];
        const bool message = block.contains("dataSize");
        const auto offset = block["offset"].get<std::size_t>() + (message ? 32 : 0);
        Require(offset + digits.size() / 2 <= dump.size(), "data lies inside the DPRAM", name);
        const std::span<const unsigned char> bytes(dump.data() + offset, digits.size() / 2);
        Require(digits == VeskTool::HexDigits(bytes), "data is what stands in the DPRAM", name);
    }
}

void Check(const DpRamMap& map, const Dump& dump) {
    const std::string text = map.ToText();
    Require(std::all_of(text.begin(), text.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }),
            "a terminal gets nothing but printable ASCII", text);
    const auto json = nlohmann::json::parse(VeskTool::JsonText(map.ToJson()), nullptr, false);
    Require(!json.is_discarded(), "the JSON is well-formed");
    CheckData(json, dump);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    Dump dump{};
    std::copy_n(data + 1, std::min(size - 1, dump.size()), dump.begin());
    const Fuzz::AllocationBudget budget(2'000'000);
    Check(data[0] % 2 ? DpRamMap::Bootloader(dump) : DpRamMap::Master(dump), dump);
    return 0;
}
