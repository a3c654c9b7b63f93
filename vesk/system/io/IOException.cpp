// SPDX-License-Identifier: MIT
#include "vesk/system/io/IOException.h"

#include "vesk/system/MakeShared.h"

#include <cerrno>
#include <system_error>

namespace System::IO {

std::shared_ptr<IOException> IOException::Create(String message) {
    return MakeShared<IOException>(std::move(message));
}

String IOException::TypeName() const {
    return "System.IO.IOException";
}

std::shared_ptr<FileNotFoundException> FileNotFoundException::Create(String message) {
    return MakeShared<FileNotFoundException>(std::move(message));
}

String FileNotFoundException::TypeName() const {
    return "System.IO.FileNotFoundException";
}

std::shared_ptr<EndOfStreamException> EndOfStreamException::Create(String message) {
    return MakeShared<EndOfStreamException>(std::move(message));
}

String EndOfStreamException::TypeName() const {
    return "System.IO.EndOfStreamException";
}

void ThrowIOException(const String& path, int error) {
    const std::string message = path.Value() + ": " + std::system_category().message(error);
    if (error == ENOENT)
        _env_throw(FileNotFoundException::Create(message));
    _env_throw(IOException::Create(message));
}

} // namespace System::IO
