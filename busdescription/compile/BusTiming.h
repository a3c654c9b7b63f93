// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

/// How long things take on the bus. Times are bit times unless they say otherwise.
namespace BusDescription {

/// What the bus parameters begin from at a data rate.
struct RateParameters {
    unsigned int slotTime;
    unsigned int maxStationDelay;
    unsigned int minStationDelay;
    unsigned int quietTime;
    unsigned int setupTime;
};

RateParameters ParametersAt(unsigned int bitsPerSecond);

/// The process data of a slave, in bytes.
struct ExchangedData {
    unsigned int toBus;
    unsigned int fromBus;
};

/// The parameters that the length of a message cycle depends on.
struct CycleParameters {
    unsigned int slotTime;
    unsigned int maxStationDelay;
    unsigned int quietTime;
    unsigned int setupTime;
};

/// One exchange with every slave.
std::uint64_t ExchangeTime(const CycleParameters& bus, const std::vector<ExchangedData>& slaves);

/// The shortest target rotation time: one exchange with every slave, and room for an acyclic message, a
/// diagnosis, a request into the gap and the token; in steps of 100.
std::uint64_t RotationTime(const CycleParameters& bus, const std::vector<ExchangedData>& slaves);

/// Rounded up.
std::chrono::microseconds BitTimes(std::uint64_t bits, unsigned int bitsPerSecond);

/// The two factors, 1 to 255, whose product is the least that reaches `wanted` units; of those the one with
/// the smaller first factor. {0, 0} where none reaches it.
std::pair<unsigned int, unsigned int> WatchdogFactors(std::uint64_t wanted);

} // namespace BusDescription
