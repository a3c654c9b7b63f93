// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/LockedFile.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace VeskTool {

/// A file that this process and another one map: the DPRAM, or the lines, of a virtual module. Its side of
/// the module is locked, so that it serves one module at a time.
class SharedFile {
public:
    /// Makes the file, `size` zero bytes, where it is missing or empty. Failure for anything but a file of
    /// exactly that size, so that a mistyped path costs no data; it may be filled up to a page with zeros, as
    /// the memory of an emulated machine's device is. InUse for one that another module has.
    SharedFile(const std::string& path, std::size_t size);
    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    /// The `size` bytes, as long as this object lives.
    void* Memory() const { return _memory; }

private:
    void Fit(const std::string& path) const;
    bool IsFilledToAPage(std::int64_t length) const;

    std::size_t _size;
    LockedFile _file;
    void* _memory;
};

} // namespace VeskTool
