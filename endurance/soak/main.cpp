// SPDX-License-Identifier: MIT
// Random use of a virtual module without end: worlds, each with a module and a configuration of its own, one
// after the other. `vesk_soak [--seconds N | --worlds N] [--seed N]`.
#include "endurance/Heap.h"
#include "endurance/soak/Soak.h"

#include "vesk/hostinterface/RuntimeConfig.h"

#include <chrono>
#include <cstring>
#include <iostream>

static constexpr int LIVES = 20;
static constexpr unsigned long long WARM_UP = 3; // worlds until what is kept for good is there

int main(int argc, char** argv) {
    unsigned long long worlds = 0, seed = 1;
    std::chrono::seconds duration(0);
    for (int i = 1; i + 1 < argc; i += 2) {
        const unsigned long long value = std::stoull(argv[i + 1]);
        if (std::strcmp(argv[i], "--worlds") == 0)
            worlds = value;
        else if (std::strcmp(argv[i], "--seconds") == 0)
            duration = std::chrono::seconds(value);
        else if (std::strcmp(argv[i], "--seed") == 0)
            seed = value;
    }
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    const auto end = std::chrono::steady_clock::now() + duration;
    const auto goesOn = [&](const SoakCounts& counts) {
        return worlds > 0 ? counts.worlds < worlds : std::chrono::steady_clock::now() < end;
    };
    SoakCounts counts;
    long heap = 0;
    while (goesOn(counts)) {
        try {
            Soak(seed, counts).Run(LIVES);
        } catch (const std::exception& failure) {
            std::cerr << "world " << counts.worlds << ", seed " << seed << ": " << failure.what() << "\n";
            return 1;
        }
        ++seed;
        if (counts.worlds == WARM_UP)
            heap = Heap::Bytes();
    }
    const long growth = counts.worlds > WARM_UP ? Heap::Bytes() - heap : 0;
    std::cout << counts.worlds << " modules, " << counts.restarts << " lives, " << counts.updates
              << " updates, " << counts.cycles << " cycles with " << counts.bytes << " bytes, "
              << counts.messages << " messages, 0 mismatches, " << growth << " bytes of growth" << std::endl;
    return growth == 0 ? 0 : 1;
}
