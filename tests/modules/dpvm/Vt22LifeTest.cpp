// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Life.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/io/MemoryStream.h"

#include <numeric>

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::ModuleStateException;
using Names = std::vector<std::string>;
using ResponseAction = IDPVMModule::ResponseAction;
using State = Life::State;

namespace {

std::vector<int> Places(int first, int count) {
    std::vector<int> places(static_cast<std::size_t>(count));
    std::iota(places.begin(), places.end(), first);
    return places;
}

/// A master and two slaves: 3 with 4 bytes in each direction and a record of three fragments, 9 with 2 bytes
/// in and 3 bytes out and an odd parameter block.
std::shared_ptr<Config::IBusConfig> Plant(int masterAddress = 1) {
    const DatabaseFileBuilder::Bytes long3(237, 0x33);
    const DatabaseFileBuilder::Bytes extended(244, 0x44);
    DatabaseFileBuilder file;
    file.Master(DatabaseFileBuilder::MasterRecord(masterAddress));
    file.Slave(3, DatabaseFileBuilder::SlaveRecord({Places(0, 4), Places(0, 4), long3, {0xF3}, extended}));
    file.Slave(9, DatabaseFileBuilder::SlaveRecord({Places(10, 2), Places(4, 3), {1, 2}, {0xE1, 0xD2}, {}}));
    return Config::DdbParser::FromStream(
        System::IO::MemoryStream::Create(Array<unsigned char>::Create(file.Build())));
}

const std::vector<State> DOWNLOADED{State::POWER_OFF,   State::POWER_ON,    State::BOOTED,
                                    State::DOWNLOADING, State::POWER_OFF,   State::POWER_ON,
                                    State::BOOTED,      State::DOWNLOADING, State::DOWNLOAD_COMPLETE};
const std::vector<State> FOUND{State::POWER_OFF, State::POWER_ON, State::BOOTED, State::DOWNLOADING,
                               State::DOWNLOAD_COMPLETE};

} // namespace

class Vt22LifeTest : public testing::Test {
protected:
    /// The requests that the virtual module has seen since the last call, by name.
    Names TakeRequests() {
        Names names;
        for (const std::string& line : std::exchange(_life.log, {}))
            if (line.rfind("command ", 0) == 0)
                names.push_back(line.substr(8));
        return names;
    }

    /// Maps the 4 bytes of slave 3 in both directions and goes online.
    void StartExchange() {
        _life.master->MapInputData(0, _in, 0, 4);
        _life.master->MapOutputData(0, _out, 0, 4);
        _life.GoOnline();
    }

    Life _life;
    std::shared_ptr<Array<unsigned char>> _in = Array<unsigned char>::Create(4);
    std::shared_ptr<Array<unsigned char>> _out = Array<unsigned char>::Create(4);
};

TEST_F(Vt22LifeTest, DownloadsOnceAndFindsItsDatabaseFromThenOn) {
    _life.BringUp(Plant());
    EXPECT_EQ(_life.states, DOWNLOADED);
    EXPECT_EQ(TakeRequests(),
              (Names{"GetDatabaseInfo", "StartDatabaseDownload", "DeleteDatabase", "MasterRecordDownload",
                     "SlaveRecordDownload", "SlaveRecordDownload", "SlaveRecordDownload",
                     "SlaveRecordDownload", "EndDatabaseDownload", "GetDatabaseInfo"}));
    EXPECT_TRUE(_life.master->GetDatabaseInfo()->ToString().Value().starts_with(
        "DatabaseInfo\nTotalOutputLength: 7\nTotalInputLength: 6\nInitOutputLength: 7\n"
        "InitInputLength: 12\nNoOfSlaves: 2\n"));

    _life.BringUp(Plant());
    EXPECT_EQ(_life.states, FOUND);
    EXPECT_EQ(TakeRequests(), Names{"GetDatabaseInfo"});

    _life.BringUp(Plant(2));
    EXPECT_EQ(_life.states, DOWNLOADED) << "another configuration is another checksum";
}

TEST_F(Vt22LifeTest, ComparesTheDescriptionAsANumber) {
    _life.BringUp(Plant());
    auto& description = _life.flash.database.description;
    const std::string checksum(description.begin(), description.end());
    std::transform(checksum.begin(), checksum.end(), description.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    _life.BringUp(Plant());
    EXPECT_EQ(_life.states, FOUND);
    for (const std::string& other :
         {checksum.substr(1), "0" + checksum, std::string("not hex!"), std::string()}) {
        description.assign(other.begin(), other.end());
        _life.BringUp(Plant());
        EXPECT_EQ(_life.states, DOWNLOADED) << other;
        EXPECT_EQ(std::string(description.begin(), description.end()), checksum);
    }
}

TEST_F(Vt22LifeTest, FailsWhenTheReadBackDiffers) {
    for (const std::string_view other : {"0000000", "00000000", "zzzzzzzz", ""}) {
        _life.flash.database = {};
        _life.Begin(Plant());
        ExpectFailure<ModuleStateException>("Config checksum readback failed", [&] {
            _life.UpdateUntil([&] {
                if (std::count(_life.states.begin(), _life.states.end(), State::POWER_OFF) == 2)
                    _life.flash.database.description.assign(other.begin(), other.end());
                return _life.master->Configured();
            });
        });
        EXPECT_EQ(_life.master->State(), State::DOWNLOADING);
    }
}

TEST_F(Vt22LifeTest, GivesUpADownloadAfterTenSeconds) {
    _life.Begin(Plant());
    _life.UpdateUntil([&] { return _life.master->State() == State::DOWNLOADING; });
    _life.clock.Advance(10'000'000'000);
    ExpectFailure<ModuleStateException>("Timeout waiting for DOWNLOAD_COMPLETE", [&] { _life.Update(); });
}

TEST_F(Vt22LifeTest, ExchangesProcessDataAndReportsTheBus) {
    _life.BringUp(Plant());
    StartExchange();
    EXPECT_EQ(_life.calls, (Names{"online", "mode 192"}));
    for (unsigned char value = 1; value < 20; ++value) {
        _in->Set(value % 4, value);
        _life.UpdateUntil([&] { return Values(_out) == Values(_in); });
    }
    EXPECT_EQ(_life.master->GetDataTransferList()->Get(0), 1 << 3);
    EXPECT_EQ(_life.master->GetSlaveConfiguredList()->Get(1), 1 << 1);

    _life.module.GetModule().SetSlavePresent(9, false);
    _life.UpdateUntil([&] { return _life.master->GetSlaveDiagnosticList()->Get(1) == 1 << 1; });
    EXPECT_EQ(_life.master->GetDataTransferList()->Get(1), 0);
    _life.module.GetModule().SetSlavePresent(9, true);
    _life.UpdateUntil([&] { return _life.master->GetDataTransferList()->Get(1) == 1 << 1; });

    _life.calls.clear();
    _life.master->SetOperationMode(OperationMode_e::OFFLINE);
    _life.UpdateUntil([&] { return _life.calls.size() == 2; });
    _life.master->SetOperationMode(OperationMode_e::OPERATE);
    _life.UpdateUntil([&] { return _life.calls.size() == 4; });
    EXPECT_EQ(_life.calls, (Names{"offline", "mode 64", "online", "mode 192"}));
}

TEST_F(Vt22LifeTest, CarriesEachKindOfService) {
    _life.BringUp(Plant());
    _life.GoOnline();
    Vt22Module& m = *_life.master;
    const auto data = Array<unsigned char>::Create({0xDE, 0xAD, 0x00});
    const auto ask = [&](const Life::Service& service) {
        const auto response = _life.Ask(service);
        return std::pair{response->Error()->ToString().Value(), Values(response->Data())};
    };
    const std::string good = "No error";
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class1Write(3, 1, 2, data, a); }).first, good);
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class1Read(3, 1, 2, 3, a); }), std::pair(good, Values(data)));
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class1Read(4, 1, 2, 3, a); }).first, "Invalid Address");
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class2Initiate(3, a); }).first, good);
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class2Read(3, 1, 2, 3, a); }), std::pair(good, Values(data)));
    EXPECT_EQ(ask([&](ResponseAction a) { m.Class2Abort(3, 0, 0, a); }).first, good);
    EXPECT_NE(ask([&](ResponseAction a) { m.Class2Read(3, 1, 2, 3, a); }).first, good) << "aborted";
    EXPECT_EQ(ask([&](ResponseAction a) { m.GetSlaveConfig(9, a); }).second, (std::vector<int>{0xE1, 0xD2}));
    EXPECT_EQ(ask([&](ResponseAction a) { m.ReadSlaveOutput(9, a); }).second, (std::vector<int>{0, 0, 0}));
}

TEST_F(Vt22LifeTest, InitialisesAsSoonAsItIsBooted) {
    _life.BringUp(Plant());
    for (const bool configured : {false, true}) {
        _life.Begin(configured ? Plant() : nullptr);
        _life.UpdateUntil([&] { return _life.master->Booted(); });
        if (configured)
            _life.Update();
        _life.master->BeginInitialization();
        _life.UpdateUntil([&] { return _life.master->Initialized(); });
        EXPECT_EQ(_life.master->Configured(), configured);
    }
}

TEST_F(Vt22LifeTest, FindsNothingToInitialiseInAnEmptyModule) {
    _life.Begin(nullptr);
    _life.UpdateUntil([&] { return _life.master->Booted(); });
    _life.master->BeginInitialization();
    EXPECT_THROW(_life.Update(1000), std::shared_ptr<System::Exception>);
    EXPECT_FALSE(_life.master->Initialized());
}
