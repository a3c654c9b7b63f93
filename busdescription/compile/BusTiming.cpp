// SPDX-License-Identifier: MIT
#include "busdescription/compile/BusTiming.h"

namespace BusDescription {

// In characters of 11 bits.
static constexpr unsigned int CHARACTER = 11;
static constexpr unsigned int WITH_DATA = 9; // and the data
static constexpr unsigned int WITHOUT_DATA = 6;
static constexpr unsigned int ACKNOWLEDGEMENT = 1;
static constexpr unsigned int TOKEN = 3;

static constexpr unsigned int LONGEST_DATA = 244; // bytes of data

RateParameters ParametersAt(unsigned int bitsPerSecond) {
    if (bitsPerSecond <= 187'500)
        return {100, 60, 11, 0, 1};
    if (bitsPerSecond <= 500'000)
        return {200, 100, 11, 0, 1};
    if (bitsPerSecond <= 1'500'000)
        return {300, 150, 11, 0, 1};
    if (bitsPerSecond <= 3'000'000)
        return {400, 250, 11, 3, 4};
    if (bitsPerSecond <= 6'000'000)
        return {600, 450, 11, 6, 8};
    return {1000, 800, 11, 9, 16};
}

static unsigned int IdleTime(const CycleParameters& bus) {
    return 35 + 2 * bus.setupTime + bus.quietTime;
}

static unsigned int Telegram(unsigned int data, unsigned int withoutData) {
    return CHARACTER * (data > 0 ? WITH_DATA + data : withoutData);
}

/// A request, its answer and the pauses before them.
static std::uint64_t MessageCycle(const CycleParameters& bus, unsigned int request, unsigned int response) {
    return std::uint64_t{IdleTime(bus)} + Telegram(request, WITHOUT_DATA) + bus.maxStationDelay +
           Telegram(response, ACKNOWLEDGEMENT);
}

std::uint64_t ExchangeTime(const CycleParameters& bus, const std::vector<ExchangedData>& slaves) {
    std::uint64_t time = 0;
    for (const ExchangedData& slave : slaves)
        time += MessageCycle(bus, slave.toBus, slave.fromBus);
    return time;
}

std::uint64_t RotationTime(const CycleParameters& bus, const std::vector<ExchangedData>& slaves) {
    constexpr std::uint64_t step = 100;
    const std::uint64_t acyclic = MessageCycle(bus, LONGEST_DATA, LONGEST_DATA);
    const std::uint64_t diagnosis = MessageCycle(bus, 0, LONGEST_DATA);
    const std::uint64_t gap = IdleTime(bus) + Telegram(0, WITHOUT_DATA) + bus.slotTime;
    const std::uint64_t token = IdleTime(bus) + CHARACTER * TOKEN;
    return ((ExchangeTime(bus, slaves) + acyclic + diagnosis + gap + token) / step + 1) * step;
}

std::chrono::microseconds BitTimes(std::uint64_t bits, unsigned int bitsPerSecond) {
    return std::chrono::microseconds((bits * 1'000'000 + bitsPerSecond - 1) / bitsPerSecond);
}

std::pair<unsigned int, unsigned int> WatchdogFactors(std::uint64_t wanted) {
    constexpr std::uint64_t most = 255;
    std::pair<unsigned int, unsigned int> best{0, 0};
    std::uint64_t least = most * most + 1;
    for (unsigned int first = 1; first <= most; ++first) {
        const std::uint64_t second = wanted == 0 ? 1 : (wanted + first - 1) / first;
        if (second <= most && first * second < least) {
            least = first * second;
            best = {first, static_cast<unsigned int>(second)};
        }
    }
    return best;
}

} // namespace BusDescription
