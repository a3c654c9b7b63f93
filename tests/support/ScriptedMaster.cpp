// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedMaster.h"

using Vesk::Modules::DPVM::OperationMode_e;
using Vesk::Modules::DPVM::Vt22Module;

void ScriptedMaster::Create(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config) {
    const auto note = [this](const char* name) {
        return System::Func<void>::Create([this, name] { _calls.push_back(name); });
    };
    const auto mode = System::ArgFunc<OperationMode_e, void>::Create([this](OperationMode_e reached) {
        _calls.push_back("mode " + std::to_string(static_cast<int>(reached)));
    });
    _module = Vt22Module::Create(_dpRam, note("offline"), note("online"), mode, std::move(config));
    _dpRam->Put(0, {2, 1, 0, 0, 0, 0, 0, 0, 0, 9, 0x02, 0x01, 0, 1, 0, 5, 3, 4, 5});
}

void ScriptedMaster::PowerOn() {
    _clock.Advance(500'000);
    _module->Update();
    ASSERT_EQ(_module->State(), State::POWER_ON);
}

void ScriptedMaster::Boot() {
    PowerOn();
    Raise(0x10);
    ASSERT_EQ(_module->State(), State::BOOTED);
    _clock.Advance(2'000'000);
    _module->Update();
}

void ScriptedMaster::Initialize() {
    _module->BeginInitialization();
    _module->Update();
    for (const int command : {0x17, 0x01, 0x02, 0x03}) {
        ASSERT_EQ(Command(), command);
        Answer();
    }
    _module->Update();
    ASSERT_TRUE(_module->Initialized());
    _dpRam->TakeLog();
}

void ScriptedMaster::Raise(int indication) {
    _dpRam->Put(0x1FFB, {indication});
    _dpRam->irq = true;
    try {
        _module->Update();
    } catch (...) {
        _dpRam->irq = false;
        throw;
    }
    _dpRam->irq = false;
}

void ScriptedMaster::RaiseAndSettle(int indication) {
    Raise(indication);
    _clock.Advance(2'000'000);
    _module->Update();
}

void ScriptedMaster::Answer(int error, std::initializer_list<int> extended, const std::string& data) {
    const auto request = _dpRam->Bytes(0x56, 6);
    const int size = static_cast<int>(data.size());
    _dpRam->Put(0x176, {request[0], request[1], (error & 0x80) | (error & 0x0F), request[3], request[4],
                        request[5], size >> 8, size & 0xFF, 0, 1, 0, 1, 0, 0, 0, 0});
    int offset = 0x186;
    for (int i = 0; i < 16; ++i)
        _dpRam->Put(offset + i, {0});
    for (const int word : extended) {
        _dpRam->Put(offset, {word >> 8, word & 0xFF});
        offset += 2;
    }
    for (int i = 0; i < size; ++i)
        _dpRam->Put(0x196 + i, {static_cast<unsigned char>(data[static_cast<std::size_t>(i)])});
    Raise(0x0C);
}

std::vector<int> ScriptedMaster::Extended() const {
    std::vector<int> words;
    for (int i = 0; i < 8; ++i)
        words.push_back(Word(0x66 + 2 * i));
    return words;
}

std::string ScriptedMaster::Data() const {
    const auto bytes = _dpRam->Bytes(0x76, Word(0x5C));
    return {bytes.begin(), bytes.end()};
}

int ScriptedMaster::Word(int offset) const {
    const auto bytes = _dpRam->Bytes(offset, 2);
    return bytes[0] << 8 | bytes[1];
}
