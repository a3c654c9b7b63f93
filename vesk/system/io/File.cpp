// SPDX-License-Identifier: MIT
#include "vesk/system/io/File.h"

#include "vesk/system/io/IOException.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace System::IO {

/// Zero, or the errno value of the call that failed.
static int WriteAndClose(int descriptor, const unsigned char* data, std::size_t count) {
    int error = 0;
    while (count > 0 && error == 0) {
        const ssize_t written = ::write(descriptor, data, count);
        if (written < 0) {
            error = errno == EINTR ? 0 : errno;
            continue;
        }
        data += written;
        count -= static_cast<std::size_t>(written);
    }
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    return error;
}

void File::WriteAllBytes(const String& path, const std::shared_ptr<IArray<unsigned char>>& bytes) {
    if (path.IsNull())
        _throw_argument_null_exception("path");
    if (!bytes)
        _throw_argument_null_exception("bytes");

    struct stat status {};

    const bool there = ::lstat(path.Value().c_str(), &status) == 0;
    if (there && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode) && !S_ISDIR(status.st_mode))
        _env_throw(IOException::Create(path.Value() + ": not a regular file"));
    std::string temporary = path.Value() + ".XXXXXX";
    const int descriptor = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0)
        ThrowIOException(path, errno);
    int error = WriteAndClose(descriptor, bytes->Data(), static_cast<std::size_t>(bytes->Count()));
    if (error == 0 && std::rename(temporary.c_str(), path.Value().c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temporary.c_str());
        ThrowIOException(path, error);
    }
}

} // namespace System::IO
