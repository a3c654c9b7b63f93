// SPDX-License-Identifier: MIT
// The mailbox header, in both byte orders, at any place of an array of any size: the first byte of the input
// is the place.
#include "fuzz/Properties.h"

#include "vesk/mailbox/Header.h"
#include "vesk/system/io/IOException.h"

#include <algorithm>

using Fuzz::Bytes;
using Fuzz::Require;
using Vesk::Mailbox::Header;

namespace {

constexpr int HEADER_SIZE = 32;

/// The header's bytes with each number's bytes in reverse order.
Bytes Swapped(Bytes header) {
    const auto swap = [&header](int offset, int width) {
        std::reverse(header.begin() + offset, header.begin() + offset + width);
    };
    for (int offset = 0; offset < HEADER_SIZE; offset += offset == 12 ? 4 : 2)
        swap(offset, offset == 12 ? 4 : 2);
    return header;
}

void Check(const Bytes& input, int offset, bool bigEndian) {
    std::shared_ptr<Header> header;
    const auto array = Fuzz::ToArray(input);
    {
        const Fuzz::AllocationBudget budget(4096);
        Fuzz::FailureOf<System::ArgumentException, System::IO::EndOfStreamException>(
            [&] { header = Header::FromArray(array, offset, bigEndian); });
    }
    Require(Fuzz::ToBytes(*array) == input, "reading changes nothing");
    if (!header)
        return;
    Bytes expected(input.begin() + offset, input.begin() + offset + HEADER_SIZE);
    if (!bigEndian)
        expected = Swapped(expected);
    expected[2] &= 0xCF; // two bits that carry nothing
    const auto written = System::Array<unsigned char>::Create(offset + HEADER_SIZE);
    header->ToArray(written, offset);
    const Bytes all = Fuzz::ToBytes(*written);
    Require(Bytes(all.begin() + offset, all.end()) == expected, "what was read writes back to the same bytes",
            header->ToString().Value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const Bytes input(data + 1, data + size);
    const int offset = static_cast<signed char>(data[0]);
    Check(input, offset, true);
    Check(input, offset, false);
    return 0;
}
