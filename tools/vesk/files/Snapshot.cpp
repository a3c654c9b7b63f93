// SPDX-License-Identifier: MIT
#include "tools/vesk/files/Snapshot.h"

#include "tools/vesk/text/Failure.h"
#include "vesk/hostinterface/MasterDpRam.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VeskTool {

namespace {

// The bootloader's registers lie behind the first of the master's too.
constexpr int REGISTERS = Vesk::HostInterface::MasterDpRam::APPLICATION_INDICATION;
constexpr int SIZE = Vesk::HostInterface::MasterDpRam::SIZE;

/// A file that is open for reading and closes itself.
class Reading {
public:
    explicit Reading(const std::string& path)
        : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)), _path(path) {
        Check(descriptor >= 0);
    }

    ~Reading() { ::close(descriptor); }

    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    void Check(bool done) const {
        if (!done)
            throw Failure("cannot be used: " + _path + ": " + std::strerror(errno));
    }

    /// The size of a device says nothing.
    void CheckSize(std::int64_t end) const {
        struct stat status {};

        Check(::fstat(descriptor, &status) == 0);
        if (S_ISREG(status.st_mode) && status.st_size < end)
            throw Failure(_path + ": " + std::to_string(status.st_size) +
                          " bytes, so no DPRAM can be in it up to byte " + std::to_string(end));
    }

    const int descriptor;

private:
    std::string _path;
};

} // namespace

std::vector<unsigned char> ReadSnapshot(const std::string& path, int offset) {
    const Reading file(path);
    file.CheckSize(std::int64_t{offset} + SIZE);
    const int skipped = offset % static_cast<int>(::sysconf(_SC_PAGESIZE));
    const auto length = static_cast<std::size_t>(skipped) + SIZE;
    void* const pages = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, file.descriptor, offset - skipped);
    file.Check(pages != MAP_FAILED);
    const auto* const dpRam = static_cast<const volatile unsigned char*>(pages) + skipped;
    std::vector<unsigned char> bytes(SIZE);
    for (std::size_t i = 0; i < REGISTERS; ++i)
        bytes[i] = dpRam[i];
    ::munmap(pages, length);
    return bytes;
}

} // namespace VeskTool
