// SPDX-License-Identifier: MIT
#include "virtualmodule/InProcess.h"

#include <cerrno>
#include <cstdlib>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace VirtualModule {

InProcess::File::File() {
    const char* folder = std::getenv("TMPDIR");
    path = std::string(folder != nullptr && *folder != 0 ? folder : "/tmp") + "/velmo-dpram-XXXXXX";
    const int descriptor = ::mkstemp(path.data());
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), path);
    memory = MAP_FAILED;
    if (::ftruncate(descriptor, DpRam::SIZE) == 0)
        memory = ::mmap(nullptr, DpRam::SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    const int reason = errno;
    ::close(descriptor);
    if (memory == MAP_FAILED) {
        ::unlink(path.c_str());
        throw std::system_error(reason, std::generic_category(), path);
    }
}

InProcess::File::~File() {
    ::munmap(memory, DpRam::SIZE);
    ::unlink(path.c_str());
}

InProcess::InProcess(Flash& flash, Module::Clock clock, Options options)
    : _module({static_cast<volatile std::uint8_t*>(_file.memory), DpRam::SIZE}, _lines, flash,
              std::move(clock), std::move(options)) {}

bool InProcess::VelmoIrq_n() {
    _module.Step();
    return _lines.ReadIrq_n();
}

void InProcess::Reset_n(bool level) {
    _lines.DriveReset_n(level);
    _module.Step();
}

} // namespace VirtualModule
