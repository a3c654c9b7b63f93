// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/io/MemoryStream.h"

#include <vector>

using Bytes = std::vector<unsigned char>;

inline std::shared_ptr<System::IO::MemoryStream> StreamOf(const Bytes& bytes) {
    return System::IO::MemoryStream::Create(System::Array<unsigned char>::Create(bytes));
}

template <class Record>
auto Read(const Bytes& bytes) {
    return Record::FromStream(StreamOf(bytes));
}

/// What ToStream writes.
template <class Record>
Bytes Written(const std::shared_ptr<Record>& record) {
    const auto stream = System::IO::MemoryStream::Create();
    record->ToStream(stream);
    const auto bytes = stream->ToArray();
    return {bytes->Data(), bytes->Data() + bytes->Count()};
}

/// `bytes` with another value at `offset`.
inline Bytes With(Bytes bytes, int offset, int value) {
    bytes.at(static_cast<std::size_t>(offset)) = static_cast<unsigned char>(value);
    return bytes;
}
