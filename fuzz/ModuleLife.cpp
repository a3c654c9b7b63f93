// SPDX-License-Identifier: MIT
#include "fuzz/ModuleLife.h"

#include "fuzz/Steps.h"

#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/system/diagnostics/Trace.h"

#include <iterator>

namespace Fuzz {

namespace MailboxDpRam = Vesk::HostInterface::MailboxDpRam;
using System::Array;
using Vesk::Mailbox::ErrorCode;

/// Nothing that a module object keeps for one call comes near it.
static constexpr std::size_t CALL_COST = 512 * 1024;

static void Trace(bool on) {
    using Vesk::RuntimeConfig;
    RuntimeConfig::_printMailbox = on;
    RuntimeConfig::_printVelmoHandshake = on;
    RuntimeConfig::_printApplicationHandshake = on;
    System::Diagnostics::Trace::SetListener([](const std::string&) {});
}

ModuleLife::ModuleLife(std::span<const std::uint8_t> input, std::vector<HostileDpRam::Range> hosts)
    : _script(input),
      _options(_script.Byte()),
      _dpRam(std::make_shared<HostileDpRam>(_script, _clock, std::move(hosts))) {
    Trace(Has(TRACED));
    if (Has(SMALL_INTERFACE)) {
        _dpRam->size = 1;
        _mannerly = false;
    }
    if (Has(WITH_PEER)) {
        VirtualModule::Options options;
        options.interruptPeriod = 0; // short lives
        options.eraseTime = options.burnTime = options.bootDelay;
        _dpRam->Connect(_flash, options);
    }
}

ModuleLife::~ModuleLife() {
    Trace(false);
}

std::string ModuleLife::Call(const std::function<void()>& call) {
    _dpRam->BeginCall();
    const AllocationBudget budget(CALL_COST);
    try {
        return FailureOf<System::ArgumentException, System::InvalidOperationException,
                         System::NullReferenceException, Vesk::VeskException>(call);
    } catch (const Foreign&) {
        return "Foreign";
    }
}

void ModuleLife::Update(Vesk::Modules::IModule& module) {
    static constexpr std::int64_t TIMES[] = {
        100'000, 0, 500'000, 2'000'000, 1'000'000'000, 3'000'000'000, 10'000'000'000, 999'999};
    const int times = _script.Byte() + 1;
    const std::int64_t between = TIMES[_script.Byte() % std::size(TIMES)];
    for (int i = 0; i < times && _updatesLeft > 0; ++i, --_updatesLeft) {
        _clock.Advance(between);
        const std::string failure = Call([&] { module.Update(); });
        if (failure.empty())
            continue;
        if (_dpRam->Peer() && InOrder())
            Require(failure.starts_with("Vesk.") || failure == "Foreign",
                    "with a good module only time-outs, refusals and callbacks fail", failure);
        _mannerly = false;
        return;
    }
}

void ModuleLife::PutAnswer(int mailboxIn) {
    const int out = mailboxIn + MailboxDpRam::AREA_SIZE;
    for (int i = 0; i < 6; ++i)
        _dpRam->Poke(out + i, {_dpRam->Peek(mailboxIn + i)});
    const unsigned char error = _script.Byte();
    const unsigned char size = _script.Byte();
    _dpRam->Poke(out + 2, {error & 0x8F});
    _dpRam->Poke(out + 6, {error >> 4 & 1, size, 0, 1, 0, 1, 0, 0, 0, 0});
    _dpRam->Poke(out + 16, _script.Take(10));
    _dpRam->Poke(out + 30, {error >> 5 & 1, error >> 6 & 1}); // "no database", at times
    _dpRam->Poke(out + MailboxDpRam::HEADER_SIZE, _script.Take(size));
    if (size % 16 == 15) { // the answer to something else
        const int place = out + _script.Byte() % 6;
        _dpRam->Poke(place, {_dpRam->Peek(place) ^ 1});
    }
}

void ModuleLife::CheckAnswer(int mailboxIn) const {
    if (!InOrder())
        return;
    const int out = mailboxIn + MailboxDpRam::AREA_SIZE;
    for (const int place : {0, 1, 3, 4, 5}) // id, type, command
        Require(_dpRam->Peek(mailboxIn + place) == _dpRam->Peek(out + place),
                "only an answer to the request is taken for one", place);
}

void ModuleLife::Poke() {
    const int offset = _script.Word() % HostileDpRam::SIZE;
    _dpRam->Poke(offset, _script.Take(_script.Byte()));
}

std::shared_ptr<System::IArray<unsigned char>> ModuleLife::TakeArray() {
    static constexpr int COUNTS[] = {0, 1, 16, 126, 256, 257, 3500};
    const std::size_t choice = _script.Byte() % (std::size(COUNTS) + 1);
    if (choice == std::size(COUNTS))
        return nullptr;
    return Array<unsigned char>::Create(COUNTS[choice]);
}

std::shared_ptr<Vesk::Mailbox::IResponse> ModuleLife::TakeResponse() {
    const unsigned char choice = _script.Byte();
    if (choice % 4 == 3)
        return nullptr;
    const auto error = choice % 4 == 0   ? ErrorCode::NO_ERROR
                       : choice % 4 == 1 ? ErrorCode::INVALID_OTHER
                                         : ErrorCode::COMMAND;
    const auto extended = Array<unsigned short>::Create(choice / 4 % 10);
    for (int i = 0; i < extended->Count(); ++i)
        extended->Set(i, _script.Byte());
    return Vesk::Mailbox::Response::Create(error, extended, ToArray(_script.Take(_script.Byte())));
}

void ModuleLife::CheckManners() {
    if (!InOrder() || !_dpRam->Peer())
        return;
    const auto& violations = _dpRam->Peer()->Violations();
    Require(violations.empty(), "the host keeps to the handshake",
            violations.empty() ? "" : violations.front());
}

} // namespace Fuzz
