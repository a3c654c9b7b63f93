// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/SharedFile.h"

#include "tools/vesk/text/Failure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskTool {

[[noreturn]] static void FailWithReason(const std::string& path) {
    throw Failure("cannot be used: " + path + ": " + std::strerror(errno));
}

SharedFile::SharedFile(const std::string& path, std::size_t size)
    : _size(size), _file(path, LockedFile::Side::MODULE, O_CREAT) {
    Fit(path);
    _memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, _file.Descriptor(), 0);
    if (_memory == MAP_FAILED)
        FailWithReason(path);
}

SharedFile::~SharedFile() {
    ::munmap(_memory, _size);
}

void SharedFile::Fit(const std::string& path) const {
    struct stat status {};

    if (::fstat(_file.Descriptor(), &status) != 0)
        FailWithReason(path);
    if (!S_ISREG(status.st_mode))
        throw Failure(path + " is not a regular file");
    if (status.st_size == 0 && ::ftruncate(_file.Descriptor(), static_cast<off_t>(_size)) != 0)
        FailWithReason(path);
    if (status.st_size != 0 && status.st_size != static_cast<off_t>(_size) &&
        !IsFilledToAPage(status.st_size))
        throw Failure(path + " has " + std::to_string(status.st_size) + " bytes instead of " +
                      std::to_string(_size) + ", so it is something else");
}

bool SharedFile::IsFilledToAPage(std::int64_t length) const {
    std::array<char, 4096> page{};
    if (length != static_cast<std::int64_t>(page.size()) || _size > page.size() ||
        ::pread(_file.Descriptor(), page.data(), page.size(), 0) != static_cast<ssize_t>(page.size()))
        return false;
    return std::all_of(page.begin() + static_cast<std::ptrdiff_t>(_size), page.end(),
                       [](char byte) { return byte == 0; });
}

} // namespace VeskTool
