// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace VeskTool {

/// A file that this process and another one map: the DPRAM, or the lines, of a virtual module. It is locked,
/// so that it serves one module at a time; the lock goes with the process, however that ends.
class SharedFile {
public:
    /// Makes the file, `size` zero bytes, where it is missing or empty. Failure for anything but a file of
    /// exactly that size, so that a mistyped path costs no data, and for one that another module has.
    SharedFile(const std::string& path, std::size_t size);
    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    /// The `size` bytes, as long as this object lives.
    void* Memory() const { return _memory; }

private:
    /// An open file; it closes itself, also when the rest of the construction fails.
    struct Descriptor {
        explicit Descriptor(const std::string& path);
        ~Descriptor();
        Descriptor(const Descriptor&) = delete;
        Descriptor& operator=(const Descriptor&) = delete;

        int number;
    };

    void Lock(const std::string& path) const;
    void Fit(const std::string& path) const;

    std::size_t _size;
    Descriptor _file; // holds the lock
    void* _memory;
};

} // namespace VeskTool
