// SPDX-License-Identifier: MIT
#include "virtualmodule/flash/Database.h"

#include "vesk/hostinterface/MailboxDpRam.h"

#include <algorithm>

namespace VirtualModule {

namespace {

std::uint16_t HigherEnd(std::uint16_t end, const std::vector<std::uint16_t>& places) {
    for (const std::uint16_t place : places)
        end = std::max(end, static_cast<std::uint16_t>(place + 1));
    return end;
}

} // namespace

Database::Lengths Database::GetLengths() const {
    Lengths lengths;
    for (const auto& [address, bytes] : slaves) {
        const SlaveRecord slave = SlaveRecord::Decode(bytes).value();
        lengths.totalOutput = static_cast<std::uint16_t>(lengths.totalOutput + slave.outputLength);
        lengths.totalInput = static_cast<std::uint16_t>(lengths.totalInput + slave.inputLength);
        lengths.initOutput = HigherEnd(lengths.initOutput, slave.outputPlaces);
        lengths.initInput = HigherEnd(lengths.initInput, slave.inputPlaces);
    }
    return lengths;
}

bool Database::Valid() const {
    const bool masterFits =
        master.empty() ? state != State::COMPLETE && slaves.empty() : IsMasterRecord(master);
    return state <= State::COMPLETE && masterFits &&
           description.size() <= Vesk::HostInterface::MailboxDpRam::MAX_DATA_SIZE &&
           std::all_of(slaves.begin(), slaves.end(), [](const auto& slave) {
               return slave.first <= HIGHEST_SLAVE && SlaveRecord::Decode(slave.second).has_value();
           });
}

} // namespace VirtualModule
