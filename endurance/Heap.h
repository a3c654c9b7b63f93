// SPDX-License-Identifier: MIT
#pragma once

/// What a thread does with the heap in a program that links Heap.cpp: its operators new and delete count, and
/// fail on request.
class Heap {
public:
    /// Allocations since the thread began.
    static long Allocations();
    /// Bytes that it has allocated and not released, rounded up as the heap does.
    static long Bytes();

    /// The n-th allocation from now on, from 1, fails with std::bad_alloc, and only that one; 0: none does.
    /// Returns how many were still to come before the one that was to fail until now.
    static long FailAt(long n);

    /// While one lives, no allocation fails and none counts for FailAt.
    class Spared {
    public:
        Spared();
        ~Spared();
        Spared(const Spared&) = delete;
        Spared& operator=(const Spared&) = delete;
    };
};
