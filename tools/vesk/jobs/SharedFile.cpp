// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/SharedFile.h"

#include "tools/vesk/text/Failure.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskTool {

[[noreturn]] static void FailWithReason(const std::string& path) {
    throw Failure(path + ": " + std::strerror(errno));
}

// Not blocking: a pipe that nobody reads must not hold the command up.
SharedFile::Descriptor::Descriptor(const std::string& path)
    : number(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666)) {
    if (number < 0)
        FailWithReason(path);
}

SharedFile::Descriptor::~Descriptor() {
    ::close(number);
}

SharedFile::SharedFile(const std::string& path, std::size_t size) : _size(size), _file(path) {
    Fit(path);
    Lock(path);
    _memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, _file.number, 0);
    if (_memory == MAP_FAILED)
        FailWithReason(path);
}

SharedFile::~SharedFile() {
    ::munmap(_memory, _size);
}

void SharedFile::Lock(const std::string& path) const {
    if (::flock(_file.number, LOCK_EX | LOCK_NB) == 0)
        return;
    if (errno == EWOULDBLOCK)
        throw Failure(path + " is in use by another virtual module");
    FailWithReason(path);
}

void SharedFile::Fit(const std::string& path) const {
    struct stat status {};

    if (::fstat(_file.number, &status) != 0)
        FailWithReason(path);
    if (!S_ISREG(status.st_mode))
        throw Failure(path + " is not a regular file");
    if (status.st_size == 0 && ::ftruncate(_file.number, static_cast<off_t>(_size)) != 0)
        FailWithReason(path);
    if (status.st_size != 0 && status.st_size != static_cast<off_t>(_size))
        throw Failure(path + " has " + std::to_string(status.st_size) + " bytes instead of " +
                      std::to_string(_size) + ", so it is something else");
}

} // namespace VeskTool
