// SPDX-License-Identifier: MIT
#include "fuzz/Properties.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sanitizer/allocator_interface.h>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace Fuzz {

void Fail(const char* property, const std::string& detail) {
    std::fprintf(stderr, "==== property violated: %s\n%s\n", property, detail.c_str());
    std::abort();
}

// Bytes that may still be allocated; it goes below zero in no budget's life.
static thread_local std::int64_t allowance = 0;
static thread_local bool limited = false;

static void Allocated(const volatile void*, std::size_t size) {
    if (!limited)
        return;
    allowance -= static_cast<std::int64_t>(size);
    if (allowance < 0) {
        limited = false; // the report allocates too
        Require(false, "nothing is allocated that the input did not pay for",
                std::to_string(size) + " bytes");
    }
}

static void Freed(const volatile void* memory) {
    if (limited && memory)
        allowance += static_cast<std::int64_t>(__sanitizer_get_allocated_size(const_cast<void*>(memory)));
}

AllocationBudget::AllocationBudget(std::size_t bytes) {
    static const int hooks = __sanitizer_install_malloc_and_free_hooks(Allocated, Freed);
    Require(hooks > 0, "allocations can be watched");
    allowance = static_cast<std::int64_t>(bytes);
    limited = true;
}

AllocationBudget::~AllocationBudget() {
    limited = false;
}

TemporaryFile::TemporaryFile(std::span<const unsigned char> content)
    : _file(::memfd_create("fuzz", MFD_CLOEXEC)) {
    const auto size = static_cast<ssize_t>(content.size());
    if (_file < 0 || ::write(_file, content.data(), content.size()) != size)
        throw std::system_error(errno, std::generic_category(), "a file in memory");
}

TemporaryFile::~TemporaryFile() {
    ::close(_file);
}

} // namespace Fuzz
