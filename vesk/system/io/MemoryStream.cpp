// SPDX-License-Identifier: MIT
#include "vesk/system/io/MemoryStream.h"

#include "vesk/system/io/IOException.h"

#include <algorithm>

namespace System::IO {

std::shared_ptr<MemoryStream> MemoryStream::Create() {
    return MakeShared<MemoryStream>(nullptr);
}

std::shared_ptr<MemoryStream> MemoryStream::Create(std::shared_ptr<IArray<unsigned char>> array) {
    if (!array)
        _throw_argument_null_exception("array");
    return MakeShared<MemoryStream>(std::move(array));
}

MemoryStream::MemoryStream(std::shared_ptr<IArray<unsigned char>> array) : _array(std::move(array)) {
    if (!_array)
        return;
    _bytes = _array->Data();
    _length = _array->Count();
}

std::int64_t MemoryStream::Length() {
    return _length;
}

std::int64_t MemoryStream::Position() {
    return _position;
}

void MemoryStream::Seek(std::int64_t offset, SeekOrigin origin) {
    const std::int64_t target = origin == SeekOrigin::BEGIN ? offset : _position + offset;
    if (target < 0)
        _env_throw(
            IOException::Create("Seek to " + std::to_string(target) + ", before the start of the stream"));
    _position = target;
}

int MemoryStream::Read(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) {
    CheckRange(array.get(), offset, count);
    const auto available = std::max<std::int64_t>(_length - _position, 0);
    const int got = static_cast<int>(std::min<std::int64_t>(available, count));
    std::copy_n(_bytes + (got ? _position : 0), got, array->Data() + offset);
    _position += got;
    return got;
}

int MemoryStream::ReadByte() {
    return _position < _length ? _bytes[_position++] : -1;
}

void MemoryStream::Write(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) {
    CheckRange(array.get(), offset, count);
    Reserve(_position + count);
    std::copy_n(array->Data() + offset, count, _bytes + (count ? _position : 0));
    _position += count;
}

void MemoryStream::WriteByte(unsigned char value) {
    Reserve(_position + 1);
    _bytes[_position++] = value;
}

std::shared_ptr<IArray<unsigned char>> MemoryStream::ToArray() {
    return Array<unsigned char>::Create(std::vector<unsigned char>(_bytes, _bytes + _length));
}

void MemoryStream::Grow(std::int64_t end) {
    if (_array)
        _env_throw(IOException::Create("Write up to " + std::to_string(end) + " in a stream of " +
                                       std::to_string(_length) + " bytes"));
    _grown.resize(static_cast<std::size_t>(end));
    _bytes = _grown.data();
    _length = end;
}

} // namespace System::IO
