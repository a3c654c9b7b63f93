// SPDX-License-Identifier: MIT
#include "benchmarks/Measure.h"

#include <iterator>

void Samples::Add(double limit, double ours) {
    _pairs.push_back({limit, ours});
}

void Samples::Report(benchmark::State& state, const Target& target) const {
    if (_pairs.empty())
        return;
    const auto median = [this](auto of) {
        std::vector<double> values;
        std::transform(_pairs.begin(), _pairs.end(), std::back_inserter(values), of);
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    };
    state.SetLabel(target.text);
    state.counters["limit"] = median([](const Pair& pair) { return pair.limit; });
    state.counters["ours"] = median([](const Pair& pair) { return pair.ours; });
    state.counters["ratio"] =
        median([](const Pair& pair) { return pair.limit > 0 ? pair.ours / pair.limit : 0; });
    state.counters["over"] =
        median([&target](const Pair& pair) { return pair.ours - target.factor * pair.limit - target.extra; });
}
