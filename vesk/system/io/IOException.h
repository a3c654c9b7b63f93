// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Exception.h"

namespace System::IO {

/// A file that cannot be opened, mapped, read or written: the path and the system's own words.
class IOException : public Exception {
public:
    static std::shared_ptr<IOException> Create(String message);
    String TypeName() const override;

protected:
    using Exception::Exception;
};

/// A file that does not exist.
class FileNotFoundException : public IOException {
public:
    static std::shared_ptr<FileNotFoundException> Create(String message);
    String TypeName() const override;

protected:
    using IOException::IOException;
};

/// A stream that ends before what was to be read from it.
class EndOfStreamException : public IOException {
public:
    static std::shared_ptr<EndOfStreamException> Create(String message);
    String TypeName() const override;

protected:
    using IOException::IOException;
};

/// Throws the exception for the system call that failed with `error` (an errno value) on `path`:
/// FileNotFoundException when the file is missing, IOException otherwise.
[[noreturn]] void ThrowIOException(const String& path, int error);

} // namespace System::IO
