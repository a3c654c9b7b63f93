// SPDX-License-Identifier: MIT
#include "tests/support/RecordingHostInterface.h"

#include <algorithm>
#include <cstdio>

static std::string Hex(unsigned int value, int digits) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*x", digits, value);
    return text;
}

static std::string At(const char* kind, int offset) {
    return std::string(kind) + " " + Hex(static_cast<unsigned int>(offset), 4);
}

void RecordingHostInterface::Put(int offset, std::initializer_list<int> values) {
    std::transform(values.begin(), values.end(), bytes.begin() + offset,
                   [](int value) { return static_cast<unsigned char>(value); });
}

std::vector<int> RecordingHostInterface::Bytes(int offset, int count) const {
    return {bytes.begin() + offset, bytes.begin() + offset + count};
}

std::vector<std::string> RecordingHostInterface::TakeLog() {
    return std::exchange(log, {});
}

void RecordingHostInterface::Note(const std::string& access) {
    if (beforeAccess)
        beforeAccess(access);
    log.push_back(access);
}

unsigned int RecordingHostInterface::Load(int offset, int width) {
    Note(At(width == 1 ? "R8" : width == 2 ? "R16" : "R32", offset));
    unsigned int value = 0;
    for (int i = 0; i < width; ++i)
        value = value << 8 | bytes.at(static_cast<std::size_t>(offset + i));
    return value;
}

void RecordingHostInterface::Store(int offset, int width, unsigned int value) {
    Note(At(width == 1 ? "W8" : width == 2 ? "W16" : "W32", offset) + "=" + Hex(value, 2 * width));
    for (int i = 0; i < width; ++i)
        bytes.at(static_cast<std::size_t>(offset + i)) =
            static_cast<unsigned char>(value >> 8 * (width - 1 - i) & 0xFF);
}

void RecordingHostInterface::Read(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                                  int arrayOffset, int count) {
    Note(At("R", offset) + "+" + std::to_string(count));
    if (arrayOffset + count > array->Count())
        System::_throw_range_exception(arrayOffset, count, array->Count(), "arrayoffset", "arraycount",
                                       "array");
    std::copy_n(&bytes.at(static_cast<std::size_t>(offset)), count, array->Data() + arrayOffset);
}

void RecordingHostInterface::Write(int offset, const std::shared_ptr<System::IArray<unsigned char>>& array,
                                   int arrayOffset, int count) {
    Note(At("W", offset) + "+" + std::to_string(count));
    std::copy_n(array->Data() + arrayOffset, count, &bytes.at(static_cast<std::size_t>(offset)));
}

unsigned char RecordingHostInterface::ReadUInt8(int offset) {
    return static_cast<unsigned char>(Load(offset, 1));
}

unsigned short RecordingHostInterface::ReadUInt16(int offset) {
    return static_cast<unsigned short>(Load(offset, 2));
}

unsigned int RecordingHostInterface::ReadUInt32(int offset) {
    return Load(offset, 4);
}

void RecordingHostInterface::WriteUInt8(int offset, unsigned char value) {
    Store(offset, 1, value);
}

void RecordingHostInterface::WriteUInt16(int offset, unsigned short value) {
    Store(offset, 2, value);
}

void RecordingHostInterface::WriteUInt32(int offset, unsigned int value) {
    Store(offset, 4, value);
}

bool RecordingHostInterface::VelmoIRQ() {
    log.push_back("irq");
    return irq;
}
