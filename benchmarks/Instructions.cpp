// SPDX-License-Identifier: MIT
#include "benchmarks/Instructions.h"

__attribute__((noinline)) void Instructions::Begin() {
    asm volatile("" ::: "memory");
}

__attribute__((noinline)) void Instructions::End() {
    asm volatile("" ::: "memory");
}
