// SPDX-License-Identifier: MIT
#pragma once

/// What a thread does with the heap in a program that links Heap.cpp: its operators new and delete count.
class Heap {
public:
    /// Allocations since the thread began.
    static long Allocations();
    /// Bytes that it has allocated and not released, rounded up as the heap does.
    static long Bytes();
};
