// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"

#include "vesk/modules/dpvm/Vt22Bootloader.h"

#include <algorithm>

/// A bootloader module object in front of a DPRAM whose other side, the module, is played by the test.
class Vt22BootloaderFixture : public testing::Test {
protected:
    using Vt22Bootloader = Vesk::Modules::DPVM::Vt22Bootloader;
    using State = Vt22Bootloader::ModuleState_e;
    using Log = std::vector<std::string>;

    struct Frame {
        int type, command, totalFrameCount, frameNumber, offset;
        std::vector<int> data;
        bool operator==(const Frame&) const = default;
    };

    /// What Update does on the bus and to the lines.
    Log Update() {
        _module->Update();
        return _host->TakeLog();
    }

    void PowerOn() {
        _clock.Advance(500'000);
        Update();
    }

    void Boot() {
        PowerOn();
        _host->Put(0x1FBE, {2, 7, 0, 0, 0, 0, 0x01, 0x02, 0x03, 0x04});
        _host->Put(0x1FDE, {0x01, 0x01});
        _host->irq = true;
        Update();
        ASSERT_EQ(_module->State(), State::BOOTED);
    }

    int Word(int offset) const {
        const auto bytes = _host->Bytes(offset, 2);
        return bytes[0] << 8 | bytes[1];
    }

    /// The module's side: takes the request that the host has announced, if any.
    bool TakeRequest() {
        const unsigned char indication = _host->bytes.at(0x1FFD);
        if (((indication ^ _seenIndication) & 0x80) == 0)
            return false;
        _seenIndication = indication;
        _frames.push_back({_host->bytes.at(0x1C01), Word(0x1C02), Word(0x1C06), Word(0x1C08),
                           Word(0x1C0A) << 16 | Word(0x1C0C), _host->Bytes(0x1C1E, Word(0x1C04))});
        return true;
    }

    /// Acknowledges the request and answers it, with an error code in the low byte of `error` if not 0.
    void Answer(int error = 0) {
        std::copy_n(&_host->bytes.at(0x1BFE), 6, &_host->bytes.at(0x1D1E));
        _host->Put(0x1D20, {(error & 0x80) | (error & 0x0F), _host->bytes.at(0x1C01)});
        _host->Put(0x1D24, {0, 0, 0, 1, 0, 1});
        _host->Put(0x1FFF, {_host->bytes.at(0x1FFF) ^ 0xC0});
    }

    /// Gives the host the time that it leaves between two writes of its register; it then announces the next
    /// request.
    void NextRequest() {
        _clock.Advance(500'000);
        _module->Update();
        EXPECT_TRUE(TakeRequest());
    }

    /// Answers `count` requests and stops with the next one taken.
    void AnswerRequests(int count) {
        NextRequest();
        while (count-- > 0) {
            Answer();
            NextRequest();
        }
    }

    void Begin(const FirmwareFileBuilder& firmware) {
        const auto file = firmware.Read();
        file->FirmwareType == Vesk::Modules::Bootloader::FirmwareType_e::BOOTLOADER_FIRMWARE
            ? _module->BeginBootloaderDownload(file, &_remaining)
            : _module->BeginFirmwareDownload(file, &_remaining);
    }

    void Begin(int type, int programSize) { Begin(FirmwareFileBuilder().Type(type).Program(programSize)); }

    /// Another module object in front of the same module, freshly booted.
    void StartOver() {
        _host = std::make_shared<RecordingHostInterface>();
        _module = Vt22Bootloader::Create(_host);
        _seenIndication = 0;
        _frames.clear();
        Boot();
    }

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _host = std::make_shared<RecordingHostInterface>();
    std::shared_ptr<Vt22Bootloader> _module = Vt22Bootloader::Create(_host);
    int _remaining = -1;
    unsigned char _seenIndication = 0;
    std::vector<Frame> _frames;
};
