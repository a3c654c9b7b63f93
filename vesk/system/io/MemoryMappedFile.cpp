// SPDX-License-Identifier: MIT
#include "vesk/system/io/MemoryMappedFile.h"

#include "vesk/system/io/IOException.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace System::IO {

/// Opens `path`, or throws; a regular file has to reach up to `end`.
static int OpenForMapping(const String& path, std::int64_t end) {
    const int descriptor = ::open(path.Value().c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        ThrowIOException(path, errno);

    struct stat status {};

    if (::fstat(descriptor, &status) != 0) {
        const int error = errno;
        ::close(descriptor);
        ThrowIOException(path, error);
    }
    if (S_ISREG(status.st_mode) && status.st_size < end) {
        ::close(descriptor);
        _env_throw(IOException::Create(path.Value() + ": " + std::to_string(status.st_size) +
                                       " bytes long, the mapping needs " + std::to_string(end)));
    }
    return descriptor;
}

std::shared_ptr<MemoryMappedFile> MemoryMappedFile::CreateFromPath(const String& path, FileMode, int offset,
                                                                   int capacity, MemoryMappedFileAccess) {
    if (path.IsNull())
        _throw_argument_null_exception("path");
    if (offset < 0)
        _throw_not_less_exception(offset, 0, "offset", "zero");
    if (capacity < 0)
        _throw_not_less_exception(capacity, 0, "capacity", "zero");

    const auto skipped = static_cast<std::size_t>(offset) % static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t length = skipped + static_cast<std::size_t>(capacity);
    // Made first: what is opened and mapped after it is left behind by nothing that fails.
    auto file = MakeShared<MemoryMappedFile>(length, skipped, capacity);
    const int descriptor = OpenForMapping(path, static_cast<std::int64_t>(offset) + capacity);
    void* const pages = ::mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor,
                               static_cast<off_t>(static_cast<std::size_t>(offset) - skipped));
    const int error = errno;
    ::close(descriptor);
    if (pages == MAP_FAILED)
        ThrowIOException(path, error);
    file->_pages = pages;
    return file;
}

MemoryMappedFile::MemoryMappedFile(std::size_t pagesLength, std::size_t skipped, int capacity)
    : _pagesLength(pagesLength), _skipped(skipped), _capacity(capacity) {}

MemoryMappedFile::~MemoryMappedFile() {
    Close();
}

std::shared_ptr<MemoryMappedViewAccessor> MemoryMappedFile::CreateViewAccessor(int offset, int count) {
    if (!_pages)
        _throw_null_reference_exception("mapping");
    if (offset < 0)
        _throw_not_less_exception(offset, 0, "offset", "zero");
    if (count < 0)
        _throw_not_less_exception(count, 0, "count", "zero");
    if (static_cast<std::int64_t>(offset) + count > _capacity)
        _throw_range_exception(offset, count, _capacity, "offset", "count", "mapping");
    auto* const bytes = static_cast<unsigned char*>(_pages) + _skipped + offset;
    const auto view = MakeShared<MemoryMappedViewAccessor>(bytes, count);
    _views.push_back(view);
    return view;
}

void MemoryMappedFile::Close() {
    for (const auto& weak : _views)
        if (const auto view = weak.lock())
            view->Dispose();
    _views.clear();
    if (_pages)
        ::munmap(_pages, _pagesLength);
    _pages = nullptr;
}

} // namespace System::IO
