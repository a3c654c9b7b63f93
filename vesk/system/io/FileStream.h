// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/String.h"
#include "vesk/system/io/Stream.h"

#include <cstdio>
#include <memory>

namespace System::IO {

enum class FileMode : int { OPEN = 3 };
enum class FileAccess : int { READ = 1 };

/// A file that exists, read from its start on. It is closed with the stream.
class FileStream : public Stream {
public:
    /// Opens a regular file without waiting. FileNotFoundException for one that is missing, IOException for
    /// one that cannot be opened or is something else (a directory, a pipe, a device).
    static std::shared_ptr<FileStream> Create(const String& path, FileMode mode, FileAccess access);

    std::int64_t Length() override;
    std::int64_t Position() override;
    void Seek(std::int64_t offset, SeekOrigin origin) override;
    int Read(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) override;
    int ReadByte() override;
    /// A file is only read: InvalidOperationException.
    void Write(const std::shared_ptr<IArray<unsigned char>>& array, int offset, int count) override;
    void WriteByte(unsigned char value) override;

protected:
    FileStream(String path, std::FILE* file, std::int64_t length);

private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    void ThrowOnError() const;

    String _path;
    std::unique_ptr<std::FILE, Close> _file;
    std::int64_t _length;
};

} // namespace System::IO
