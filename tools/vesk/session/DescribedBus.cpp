// SPDX-License-Identifier: MIT
#include "tools/vesk/session/DescribedBus.h"

#include "busdescription/findings/Nearest.h"
#include "tools/vesk/text/Failure.h"

#include <algorithm>

namespace VeskTool {

using BusDescription::SlaveDescription;

template <class Predicate>
static const SlaveDescription* Find(const std::vector<SlaveDescription>& slaves, Predicate fits) {
    const auto found = std::find_if(slaves.begin(), slaves.end(), fits);
    return found == slaves.end() ? nullptr : &*found;
}

const SlaveDescription& DescribedBus::SlaveNamed(const std::string& name) const {
    const auto& slaves = description.slaves;
    if (const auto* slave = Find(slaves, [&](const auto& each) { return each.name == name; }))
        return *slave;
    if (slaves.empty())
        throw Failure(file + ": has no names, so no slave is called " + name);
    std::vector<std::string> names(slaves.size());
    std::transform(slaves.begin(), slaves.end(), names.begin(), [](const auto& slave) { return slave.name; });
    throw Failure(file + ": no slave is called " + name + BusDescription::DidYouMean(name, names));
}

const SlaveDescription* DescribedBus::SlaveAt(unsigned int address) const {
    return Find(description.slaves, [&](const auto& slave) { return slave.address.value == address; });
}

} // namespace VeskTool
