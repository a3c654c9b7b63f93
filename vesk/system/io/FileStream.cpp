// SPDX-License-Identifier: MIT
#include "vesk/system/io/FileStream.h"

#include "vesk/system/io/IOException.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace System::IO {

std::shared_ptr<FileStream> FileStream::Create(const String& path, FileMode, FileAccess) {
    if (path.IsNull())
        _throw_argument_null_exception("path");
    const int descriptor = ::open(path.Value().c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        ThrowIOException(path, errno);

    struct stat status {};

    const bool regular = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    std::unique_ptr<std::FILE, Close> file(regular ? ::fdopen(descriptor, "rb") : nullptr);
    if (!file) {
        ::close(descriptor);
        _env_throw(IOException::Create(
            path.Value() + (S_ISDIR(status.st_mode) ? ": is a directory" : ": not a regular file")));
    }
    auto stream = MakeShared<FileStream>(path, file.get(), static_cast<std::int64_t>(status.st_size));
    static_cast<void>(file.release()); // it is the stream's now
    return stream;
}

FileStream::FileStream(String path, std::FILE* file, std::int64_t length)
    : _path(std::move(path)), _file(file), _length(length) {}

std::int64_t FileStream::Length() {
    return _length;
}

std::int64_t FileStream::Position() {
    return ::ftello(_file.get());
}

void FileStream::Seek(std::int64_t offset, SeekOrigin origin) {
    if (::fseeko(_file.get(), static_cast<off_t>(offset),
                 origin == SeekOrigin::BEGIN ? SEEK_SET : SEEK_CUR) != 0)
        ThrowIOException(_path, errno);
}

int FileStream::Read(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) {
    CheckRange(array.get(), offset, count);
    const auto got = std::fread(array->Data() + offset, 1, static_cast<std::size_t>(count), _file.get());
    ThrowOnError();
    return static_cast<int>(got);
}

int FileStream::ReadByte() {
    const int byte = ::getc_unlocked(_file.get());
    if (byte == EOF)
        ThrowOnError();
    return byte;
}

void FileStream::Write(const std::shared_ptr<IArray<unsigned char>>&, int, int) {
    _env_throw(InvalidOperationException::Create(_path.Value() + ": opened for reading"));
}

void FileStream::WriteByte(unsigned char) {
    Write(nullptr, 0, 0);
}

void FileStream::ThrowOnError() const {
    if (std::ferror(_file.get()))
        ThrowIOException(_path, errno);
}

} // namespace System::IO
