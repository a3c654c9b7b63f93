// SPDX-License-Identifier: MIT
#include "tools/vesk/session/DescribedBus.h"

#include "busdescription/findings/Nearest.h"
#include "tools/vesk/text/Failure.h"

#include <algorithm>
#include <filesystem>

namespace VeskTool {

using BusDescription::SlaveDescription;

template <class Thing, class Predicate>
static const Thing* Find(const std::vector<Thing>& things, Predicate fits) {
    const auto found = std::find_if(things.begin(), things.end(), fits);
    return found == things.end() ? nullptr : &*found;
}

template <class Thing>
static std::vector<std::string> Names(const std::vector<Thing>& things) {
    std::vector<std::string> names(things.size());
    std::transform(things.begin(), things.end(), names.begin(),
                   [](const Thing& thing) { return thing.name; });
    return names;
}

const SlaveDescription& DescribedBus::SlaveNamed(const std::string& name) const {
    const auto& slaves = description.slaves;
    if (const auto* slave = Find(slaves, [&](const auto& each) { return each.name == name; }))
        return *slave;
    if (slaves.empty())
        throw Failure(file + ": has no names, so no slave is called " + name);
    throw Failure(file + ": no slave is called " + name + BusDescription::DidYouMean(name, Names(slaves)));
}

const BusDescription::Signal& DescribedBus::SignalNamed(const std::string& name) const {
    const auto point = name.find('.');
    const SlaveDescription& slave = SlaveNamed(name.substr(0, point));
    const std::string called = name.substr(point + 1);
    if (const auto* signal = Find(slave.signals, [&](const auto& each) { return each.name == called; }))
        return *signal;
    throw Failure(file + ": slave " + slave.name + " has no signal " + called +
                  BusDescription::DidYouMean(called, Names(slave.signals)));
}

std::string DescribedBus::PathOf(const std::string& gsd) const {
    return (std::filesystem::path(folder) / gsd).string();
}

const SlaveDescription* DescribedBus::SlaveAt(unsigned int address) const {
    return Find(description.slaves, [&](const auto& slave) { return slave.address.value == address; });
}

} // namespace VeskTool
