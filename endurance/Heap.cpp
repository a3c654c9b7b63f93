// SPDX-License-Identifier: MIT
#include "endurance/Heap.h"

#include <cstdlib>
#include <malloc.h>
#include <new>
#include <utility>

static thread_local long allocations = 0;
static thread_local long bytes = 0;
static thread_local long untilFailure = 0; // 0: none
static thread_local int spared = 0;

long Heap::Allocations() {
    return allocations;
}

long Heap::Bytes() {
    return bytes;
}

long Heap::FailAt(long n) {
    return std::exchange(untilFailure, n);
}

Heap::Spared::Spared() {
    ++spared;
}

Heap::Spared::~Spared() {
    --spared;
}

static bool Fails() {
    return untilFailure != 0 && spared == 0 && --untilFailure == 0;
}

static void* Counted(void* memory) {
    if (!memory)
        throw std::bad_alloc();
    ++allocations;
    bytes += static_cast<long>(malloc_usable_size(memory));
    return memory;
}

static void Release(void* memory) noexcept {
    bytes -= static_cast<long>(malloc_usable_size(memory));
    std::free(memory);
}

void* operator new(std::size_t size) {
    return Counted(Fails() ? nullptr : std::malloc(size ? size : 1));
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto boundary = static_cast<std::size_t>(alignment);
    const std::size_t rounded = (size + boundary - 1) / boundary * boundary;
    return Counted(Fails() ? nullptr : std::aligned_alloc(boundary, rounded));
}

void operator delete(void* memory) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    Release(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    Release(memory);
}
