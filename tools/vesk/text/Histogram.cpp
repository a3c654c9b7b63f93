// SPDX-License-Identifier: MIT
#include "tools/vesk/text/Histogram.h"

#include <algorithm>
#include <cmath>

namespace VeskTool {

static std::uint64_t Microseconds(std::chrono::nanoseconds duration) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(duration.count(), 0)) / 1000;
}

void Histogram::Add(std::chrono::nanoseconds duration) {
    ++_buckets[static_cast<std::size_t>(std::min<std::uint64_t>(Microseconds(duration), LAST))];
    ++_count;
    _most = std::max(_most, duration);
}

std::size_t Histogram::Quantile(double share) const {
    const auto wanted = std::max(std::ceil(share * static_cast<double>(_count)), 1.0);
    std::uint64_t passed = 0;
    for (std::size_t bucket = 0; bucket <= LAST; ++bucket) {
        passed += _buckets[bucket];
        if (static_cast<double>(passed) >= wanted)
            return bucket;
    }
    return 0;
}

std::vector<std::string> Histogram::Lines() const {
    constexpr std::size_t width = 96;
    std::vector<std::string> lines{std::to_string(_count) + " times, " + std::to_string(Quantile(0)) +
                                   " to " + std::to_string(Microseconds(_most)) + " us, half within " +
                                   std::to_string(Quantile(0.5)) + " us, 99.9 % within " +
                                   std::to_string(Quantile(0.999)) + " us"};
    lines.emplace_back();
    const auto many = [this](std::uint64_t durations) { return durations * 100 >= _count; };
    for (std::size_t bucket = Quantile(0); bucket <= LAST; ++bucket) {
        if (_buckets[bucket] == 0)
            continue;
        std::size_t last = bucket; // of those that share an entry
        std::uint64_t sum = _buckets[bucket];
        for (std::size_t next = bucket + 1; next <= LAST && !many(sum) && !many(_buckets[next]); ++next)
            if (_buckets[next] != 0) {
                sum += _buckets[next];
                last = next;
            }
        const std::string entry = std::to_string(bucket) +
                                  (last > bucket ? "-" + std::to_string(last) : std::string()) +
                                  (last == LAST ? "+:" : ":") + std::to_string(sum);
        if (lines.back().size() + entry.size() >= width)
            lines.emplace_back();
        lines.back() += (lines.back().empty() ? "" : " ") + entry;
        bucket = last;
    }
    return lines;
}

nlohmann::json Histogram::ToJson() const {
    nlohmann::json buckets = nlohmann::json::array();
    for (std::size_t bucket = 0; bucket <= LAST; ++bucket)
        if (_buckets[bucket] != 0)
            buckets.push_back({bucket, _buckets[bucket]});
    return {{"count", _count},
            {"least", Quantile(0)},
            {"median", Quantile(0.5)},
            {"most", Microseconds(_most)},
            {"buckets", std::move(buckets)}};
}

} // namespace VeskTool
