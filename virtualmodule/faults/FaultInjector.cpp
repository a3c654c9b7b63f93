// SPDX-License-Identifier: MIT
#include "virtualmodule/faults/FaultInjector.h"

#include <algorithm>

namespace VirtualModule {

namespace {

// The commands that carry a database into the module; GetDatabaseInfo, the next one, is none of them.
constexpr std::uint16_t FIRST_DATABASE_COMMAND = 0x10;
constexpr std::uint16_t LAST_DATABASE_COMMAND = 0x16;

} // namespace

FaultInjector::FaultInjector(const std::vector<Fault>& faults, const Watch& watch) : _watch(watch) {
    for (const Fault& fault : faults)
        Add(fault);
}

void FaultInjector::Add(const Fault& fault) {
    const Counts counts = KindOf(fault.id, fault.value).counts;
    std::erase_if(_faults, [this](const Armed& armed) { return IsSpent(armed); });
    _faults.push_back({fault, counts});
}

bool FaultInjector::IsSpent(const Armed& armed) const {
    const unsigned now = Counted(armed.counts);
    return armed.fault.count != 0 && now >= armed.fault.step && now - armed.fault.step >= armed.fault.count;
}

void FaultInjector::CountRequest(const Message& request, bool bootloader) {
    const bool database = !bootloader && request.type == static_cast<std::uint8_t>(MessageType::FIELDBUS) &&
                          request.command >= FIRST_DATABASE_COMMAND &&
                          request.command <= LAST_DATABASE_COMMAND;
    _request = bootloader ? Counts::FIRMWARE_REQUESTS
               : database ? Counts::DATABASE_COMMANDS
                          : Counts::REQUESTS;
    Count(Counts::REQUESTS);
    if (_request != Counts::REQUESTS)
        Count(_request);
}

/// Not between two of what it counts.
bool FaultInjector::AtIts(Counts counts) const {
    const bool request = counts == Counts::DATABASE_COMMANDS || counts == Counts::FIRMWARE_REQUESTS;
    return !request || counts == _request;
}

bool FaultInjector::HasAnyOf(std::initializer_list<FaultId> ids) const {
    return std::any_of(_faults.begin(), _faults.end(), [ids](const Armed& armed) {
        return std::find(ids.begin(), ids.end(), armed.fault.id) != ids.end();
    });
}

const Fault* FaultInjector::Strike(FaultId id) {
    for (Armed& armed : _faults) {
        const Fault& fault = armed.fault;
        const unsigned now = Counted(armed.counts);
        if (fault.id == id && now >= fault.step && !IsSpent(armed) && AtIts(armed.counts)) {
            _struck = true;
            if (std::exchange(armed.logged, now) != now)
                _watch.Log([&] { return "fault " + fault.Text() + " strikes at " + std::to_string(now); });
            return &fault;
        }
    }
    return nullptr;
}

const Fault* FaultInjector::Strike(std::initializer_list<FaultId> ids) {
    for (const FaultId id : ids)
        if (const Fault* fault = Strike(id))
            return fault;
    return nullptr;
}

} // namespace VirtualModule
