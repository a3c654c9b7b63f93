// SPDX-License-Identifier: MIT
#include "tests/support/RecordingHostInterface.h"

#include <algorithm>
#include <cstdio>

template <class... Numbers>
static std::string Text(const char* form, Numbers... numbers) {
    char text[32];
    std::snprintf(text, sizeof text, form, numbers...);
    return text;
}

void RecordingHostInterface::Put(int offset, std::initializer_list<int> values) {
    std::transform(values.begin(), values.end(), bytes.begin() + offset,
                   [](int value) { return static_cast<unsigned char>(value); });
}

std::vector<int> RecordingHostInterface::Bytes(int offset, int count) const {
    return {bytes.begin() + offset, bytes.begin() + offset + count};
}

void RecordingHostInterface::Note(const std::string& access) {
    if (beforeAccess)
        beforeAccess(access);
    log.push_back(access);
}

unsigned int RecordingHostInterface::Load(int offset, int width) {
    Note(Text("R%d %04x", 8 * width, offset));
    unsigned int value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | bytes.at(static_cast<std::size_t>(offset + i));
    return value;
}

void RecordingHostInterface::Store(int offset, int width, unsigned int value) {
    Note(Text("W%d %04x=%0*x", 8 * width, offset, 2 * width, value));
    for (int i = 0; i < width; ++i)
        bytes.at(static_cast<std::size_t>(offset + i)) =
            static_cast<unsigned char>(value >> 8 * (width - 1 - i) & 0xFF);
}

void RecordingHostInterface::Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                                  int arrayOffset, int count) {
    System::CheckRange(array.get(), arrayOffset, count); // as that of a real DPRAM does
    Note(Text("R %04x+%d", offset, count));
    std::copy_n(&bytes.at(static_cast<std::size_t>(offset)), count, array->Data() + arrayOffset);
}

void RecordingHostInterface::Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                                   int arrayOffset, int count) {
    System::CheckRange(array.get(), arrayOffset, count);
    Note(Text("W %04x+%d", offset, count));
    std::copy_n(array->Data() + arrayOffset, count, &bytes.at(static_cast<std::size_t>(offset)));
}
