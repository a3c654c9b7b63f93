// SPDX-License-Identifier: MIT
#include "endurance/soak/Soak.h"

#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleLines.h"

#include "vesk/mailbox/ErrorCode.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::IResponse;

static constexpr int AREA = 3500;
static constexpr int MOST_UPDATES = 200'000; // far more than anything here takes
static constexpr unsigned char UNTOUCHED = 0xA5;

static std::shared_ptr<System::Array<unsigned char>> ToArray(const std::vector<unsigned char>& bytes) {
    return System::Array<unsigned char>::Create(bytes);
}

static std::vector<unsigned char> ToBytes(System::IArray<unsigned char>& array) {
    return {array.Data(), array.Data() + array.Count()};
}

static void Expect(bool holds, const std::string& otherwise) {
    if (!holds)
        throw std::runtime_error(otherwise);
}

Soak::Soak(unsigned long long seed, SoakCounts& counts)
    : _random(seed),
      _counts(counts),
      _module(_flash, TestClock::Nanoseconds,
              {.interruptPeriod = OneIn(2) ? 0 : 1'000 * Below(1'000), .faults = {}}) {
    MakeConfiguration();
}

/// Slaves at any addresses, whose bytes lie anywhere in the process data without a gap between them.
void Soak::MakeConfiguration() {
    DatabaseFileBuilder file;
    file.Master();
    std::vector<int> inputs, outputs;
    const int slaves = 1 + Below(30);
    _length = std::min(AREA, slaves * (1 + Below(244)));
    for (std::vector<int>* places : {&inputs, &outputs}) {
        places->resize(static_cast<std::size_t>(_length));
        std::iota(places->begin(), places->end(), 0);
        if (OneIn(2))
            std::shuffle(places->begin(), places->end(), _random);
    }
    const auto take = [](std::vector<int>& from, int count) {
        std::vector<int> taken(from.end() - count, from.end());
        from.resize(from.size() - static_cast<std::size_t>(count));
        return taken;
    };
    for (int left = slaves; left > 0; --left) {
        const auto address = static_cast<unsigned char>(2 + Below(124));
        if (_slaves.contains(address)) {
            ++left;
            continue;
        }
        const auto share = [left](const std::vector<int>& places) {
            return (static_cast<int>(places.size()) + left - 1) / left;
        };
        Slave slave{take(inputs, share(inputs)), take(outputs, share(outputs))};
        file.Slave(address, DatabaseFileBuilder::SlaveRecord({slave.inputs, slave.outputs}));
        _slaves.emplace(address, std::move(slave));
    }
    _config = file.Read();
}

std::pair<const unsigned char, Soak::Slave>& Soak::AnySlave() {
    return *std::next(_slaves.begin(), Below(static_cast<int>(_slaves.size())));
}

void Soak::Run(int lives) {
    ++_counts.worlds;
    for (int life = 0; life < lives; ++life) {
        ++_counts.restarts;
        Begin();
        Live();
    }
    _master.reset();
    const auto& violations = _module.GetModule().Violations();
    Expect(violations.empty(), "the module complains: " + (violations.empty() ? "" : violations.front()));
}

/// A new object, or a reset of the one that is there; in either case while requests may be under way.
void Soak::Begin() {
    ++_life;
    if (_underWay > 0) // a write among them may have reached its slave or not
        for (auto& [record, bytes] : _records)
            bytes.reset();
    _underWay = 0;
    _online = false;
    _wanted = OperationMode::OPERATE;
    if (_master && OneIn(2))
        return _master->Reset();
    _master.reset();
    const auto say = [this](bool online) {
        return System::Func<void>::Create([this, online] { _online = online; });
    };
    const auto [irq, reset, boot] = ModuleLines(_module);
    const auto mode = System::ArgFunc<OperationMode, void>::Create([this](auto reached) { _mode = reached; });
    _master = Vesk::Modules::DPVM::Vt22::CreateConfigured(_module.DpRamPath(), 0, irq, reset, boot,
                                                          say(false), say(true), mode, _config);
}

void Soak::Live() {
    if (OneIn(10)) { // it ends before it has begun
        for (int updates = Below(500); updates > 0; --updates)
            Update();
        return;
    }
    UpdateUntil("DOWNLOAD_COMPLETE", [&] { return _master->Configured(); });
    Map();
    _master->BeginInitialization();
    UpdateUntil("INITIALIZED", [&] { return _master->Initialized(); });
    _master->SetOperationMode(_wanted);
    UpdateUntil("online", [&] { return _online && _mode == _wanted; });
    for (int cycles = 1 + Below(100); cycles > 0; --cycles)
        Cycle();
    if (OneIn(2)) // otherwise the requests that are under way go with this life
        UpdateUntil("the last answers", [&] { return _underWay == 0; });
}

/// The process data cut into pieces, which lie in random order and reach every byte.
std::vector<Soak::Piece> Soak::Cut(int length) {
    std::vector<Piece> pieces;
    const int most = 1 + Below(OneIn(3) ? length : 200);
    for (int place = 0; place < length;) {
        const int count = std::min(1 + Below(most), length - place);
        const int start = Below(5);
        const auto array = ToArray(Bytes(static_cast<std::size_t>(start + count + Below(5)), UNTOUCHED));
        pieces.push_back({place, start, count, array});
        place += count;
    }
    std::shuffle(pieces.begin(), pieces.end(), _random);
    return pieces;
}

void Soak::Map() {
    _in = Cut(_length);
    _out = Cut(_length);
    _input.assign(static_cast<std::size_t>(_length), UNTOUCHED);
    for (const Piece& piece : _in)
        _master->MapInputData(static_cast<unsigned short>(piece.place), piece.array, piece.start,
                              piece.count);
    for (const Piece& piece : _out)
        _master->MapOutputData(static_cast<unsigned short>(piece.place), piece.array, piece.start,
                               piece.count);
}

void Soak::Update() {
    _clock.Advance(1'000 + 1'000 * Below(100));
    _master->Update();
    ++_counts.updates;
}

template <class Reached>
void Soak::UpdateUntil(const char* what, const Reached& reached) {
    for (int updates = 0; !reached(); ++updates) {
        Expect(updates < MOST_UPDATES, std::string("waited in vain for ") + what);
        Update();
    }
}

/// Changes something, and waits until the bus shows it.
void Soak::Cycle() {
    ChangeInput();
    if (OneIn(10))
        ChangeBus();
    if (OneIn(20))
        ChangeMode();
    while (_underWay < 4 && OneIn(3))
        AskSomething();
    const Bytes expected = ExpectedOutput();
    UpdateUntil("the output data", [&] { return OutputIs(expected); });
    CheckLists();
    ++_counts.cycles;
    _counts.bytes += 2ULL * static_cast<unsigned long long>(_length);
}

void Soak::ChangeInput() {
    for (const Piece& piece : _in) {
        if (OneIn(3))
            continue;
        for (int i = 0; i < piece.count; ++i) {
            const unsigned char value = Byte();
            piece.array->Set(piece.start + i, value);
            _input[static_cast<std::size_t>(piece.place + i)] = value;
        }
    }
}

/// A slave that is taken off the bus, or put back. What is under way to it is answered first.
void Soak::ChangeBus() {
    UpdateUntil("answers", [&] { return _underWay == 0; });
    auto& [address, slave] = AnySlave();
    slave.present = !slave.present;
    _module.GetModule().SetSlavePresent(address, slave.present);
}

void Soak::ChangeMode() {
    _wanted = _wanted == OperationMode::OPERATE ? OperationMode::CLEAR : OperationMode::OPERATE;
    _master->SetOperationMode(_wanted);
    UpdateUntil("the mode", [&] { return _mode == _wanted; });
}

/// What the slaves send back: their input bytes, as far as both reach; zeros in CLEAR, and where nobody is.
Soak::Bytes Soak::ExpectedOutput() const {
    Bytes output(static_cast<std::size_t>(_length));
    for (const auto& [address, slave] : _slaves)
        for (std::size_t i = 0; i < std::min(slave.inputs.size(), slave.outputs.size()); ++i)
            if (slave.present && _mode == OperationMode::OPERATE)
                output[static_cast<std::size_t>(slave.outputs[i])] =
                    _input[static_cast<std::size_t>(slave.inputs[i])];
    return output;
}

bool Soak::OutputIs(const Bytes& expected) const {
    for (const Piece& piece : _out) {
        const unsigned char* const bytes = piece.array->Data();
        if (!std::equal(bytes + piece.start, bytes + piece.start + piece.count,
                        expected.begin() + piece.place))
            return false;
        const auto untouched = [](unsigned char byte) { return byte == UNTOUCHED; };
        Expect(std::all_of(bytes, bytes + piece.start, untouched) &&
                   std::all_of(bytes + piece.start + piece.count, bytes + piece.array->Count(), untouched),
               "a byte beside a mapped one has changed");
    }
    return true;
}

/// The lists are reported with the data, or in the turn after it.
void Soak::CheckLists() {
    Bytes configured(16), exchanging(16);
    for (const auto& [address, slave] : _slaves) {
        const auto bit = static_cast<unsigned char>(1 << address % 8);
        configured[address / 8] |= bit;
        exchanging[address / 8] |= slave.present ? bit : static_cast<unsigned char>(0);
    }
    UpdateUntil("the station lists", [&] {
        return ToBytes(*_master->GetSlaveConfiguredList()) == configured &&
               ToBytes(*_master->GetDataTransferList()) == exchanging;
    });
}

void Soak::AskSomething() {
    const Record record{AnySlave().first, static_cast<unsigned char>(1 + Below(3)),
                        static_cast<unsigned char>(Below(8))};
    switch (Below(4)) {
    case 0:
        return AskAboutSlave(record.address);
    case 1:
        return AskClass2(record);
    default:
        return AskRecord(record);
    }
}

/// Whether the request was answered well, or refused.
Soak::Check Soak::Answered(bool well, const char* what) {
    return [well, what](IResponse& answer) { Expect((answer.Error() == ErrorCode::NO_ERROR) == well, what); };
}

/// Writes a record or reads it back.
void Soak::AskRecord(Record record) {
    const bool present = At(record.address).present;
    if (OneIn(2)) {
        Bytes data(static_cast<std::size_t>(1 + Below(240)));
        std::generate(data.begin(), data.end(), [this] { return Byte(); });
        if (present)
            _records[record] = data;
        return _master->Class1Write(record.address, record.slot, record.index, ToArray(data),
                                    Await(Answered(present, "a write's answer")));
    }
    _master->Class1Read(record.address, record.slot, record.index, 240, Await(ReadCheck(record)));
}

Soak::Check Soak::ReadCheck(Record record) const {
    const bool present = At(record.address).present;
    const auto known = _records.find(record);
    if (present && known != _records.end() && !known->second)
        return [](IResponse&) {};
    const bool there = present && known != _records.end();
    return [there, expected = there ? *known->second : Bytes{}](IResponse& answer) {
        Expect((answer.Error() == ErrorCode::NO_ERROR) == there, "a read's answer");
        Expect(!there || ToBytes(*answer.Data()) == expected, "a record has changed");
    };
}

/// A Class 2 connection, from its beginning to its end.
void Soak::AskClass2(Record record) {
    const bool present = At(record.address).present;
    _master->Class2Initiate(record.address, Await(Answered(present, "an initiate's answer")));
    _master->Class2Read(record.address, record.slot, record.index, 240, Await(ReadCheck(record)));
    _master->Class2Abort(record.address, 0, 0, Await(Answered(present, "an abort's answer")));
}

void Soak::AskAboutSlave(unsigned char address) {
    const auto isDiagnosis = [](IResponse& answer) {
        Expect(answer.Error() != ErrorCode::INVALID_OTHER, "the diagnostics' answer");
    };
    const auto isLiveList = [](IResponse& answer) {
        Expect(answer.Error() == ErrorCode::NO_ERROR && answer.Data()->Count() > 0, "the live list");
    };
    switch (Below(3)) {
    case 0:
        return _master->GetSlaveDiag(address, Await(isDiagnosis));
    case 1:
        return _master->GetLiveList(Await(isLiveList));
    default:
        return _master->GetSlaveConfig(address,
                                       Await(Answered(At(address).present, "the configuration's answer")));
    }
}

std::shared_ptr<System::IArgFunc<Soak::Response, void>> Soak::Await(Check check) {
    ++_underWay;
    return System::ArgFunc<Response, void>::Create(
        [this, check = std::move(check), life = _life](const Response& response) {
            Expect(life == _life, "an answer from an earlier life");
            --_underWay;
            ++_counts.messages;
            check(*response);
        });
}
