// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/String.h"
#include "vesk/system/io/FileStream.h"
#include "vesk/system/io/MemoryMappedViewAccessor.h"

#include <memory>

namespace System::IO {

enum class MemoryMappedFileAccess : int { READ_WRITE = 0 };

/// A run of bytes of a file, mapped into memory and shared with whoever else maps it.
class MemoryMappedFile : public Object {
public:
    /// Maps `capacity` bytes from byte `offset` (any, not only a multiple of a page) of a file that exists,
    /// for reading and writing. ArgumentOutOfRangeException for a negative offset or capacity;
    /// FileNotFoundException or IOException when the file cannot be opened or mapped, and when it is a
    /// regular file shorter than the mapping. The size of a device file says nothing, so it is let through.
    static std::shared_ptr<MemoryMappedFile> CreateFromPath(const String& path, FileMode mode, int offset,
                                                            int capacity, MemoryMappedFileAccess access);
    ~MemoryMappedFile() override;

    /// A view of `count` bytes from `offset` of the mapping on. It is dead once the mapping is closed.
    std::shared_ptr<MemoryMappedViewAccessor> CreateViewAccessor(int offset, int count);

    int Capacity() const { return _capacity; }

    /// Unmaps the bytes and disposes the views. Closing twice is allowed.
    void Close();

protected:
    MemoryMappedFile(std::size_t pagesLength, std::size_t skipped, int capacity);

private:
    void* _pages = nullptr; // from the start of a page on; null when closed
    std::size_t _pagesLength;
    std::size_t _skipped; // bytes of the first page before the mapping
    int _capacity;
    std::vector<std::weak_ptr<MemoryMappedViewAccessor>> _views;
};

} // namespace System::IO
