// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/Life.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/RuntimeConfig.h"

using namespace Vesk::Modules::DPVM;
using System::Array;
using Vesk::Modules::Bootloader::FirmwareType_e;
using Vesk::Modules::Bootloader::TarnFile;
using Names = std::vector<std::string>;

/// A master and two slaves: 3 with 4 bytes in each direction and a record of three fragments, 9 with 2 bytes
/// in and 3 bytes out and an odd parameter block. Its checksum begins with a zero.
static std::shared_ptr<Config::IBusConfig> Plant(int masterAddress = 1) {
    using File = DatabaseFileBuilder;
    const File::Bytes parameters(237, 0x33);
    const File::Bytes extended(244, 0x44);
    return File()
        .Master(File::MasterRecord(masterAddress))
        .Slave(3, File::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, parameters, {0xF3}, extended}))
        .Slave(9, File::SlaveRecord({{10, 11}, {4, 5, 6}, {1, 2}, {0xE1, 0xD2}, {}}))
        .Read();
}

class Vt22LifeTest : public testing::Test, protected Life {
protected:
    Vt22LifeTest() {
        module.GetModule().SetLog([this](const std::string& line) {
            if (line.starts_with("command "))
                _requests.push_back(line.substr(8));
        });
    }

    void TearDown() override {
        DropObject();
        EXPECT_EQ(module.GetModule().Violations(), Names{});
    }

    /// The requests that the module has seen since the last call.
    Names TakeRequests() { return std::exchange(_requests, {}); }

    /// Whether another life of the same plant has to write the database.
    bool Downloads(int masterAddress = 1) {
        BringUp(Plant(masterAddress));
        return TakeRequests() != Names{"GetDatabaseInfo"};
    }

    /// Brings the firmware into the module, one request after the other.
    void Flash(const std::shared_ptr<TarnFile>& firmware) {
        BeginBootloader();
        UpdateUntil([this] { return bootloader->Booted(); });
        int remaining = 0;
        firmware->FirmwareType == FirmwareType_e::BOOTLOADER_FIRMWARE
            ? bootloader->BeginBootloaderDownload(firmware, &remaining)
            : bootloader->BeginFirmwareDownload(firmware, &remaining);
        for (int left = remaining; left > 0; --left) {
            UpdateUntil([&] { return bootloader->EndDownload(&remaining) || remaining != left; });
            EXPECT_EQ(remaining, left - 1);
        }
        EXPECT_TRUE(bootloader->EndDownload(&remaining));
    }

    /// The versions that the module has as the master.
    std::vector<int> RunMaster() {
        BeginMaster(nullptr);
        UpdateUntil([this] { return master->Booted(); });
        return {master->SoftwareMajor(), master->SoftwareMinor(), master->SoftwareBuild()};
    }

    Names _requests;
};

TEST_F(Vt22LifeTest, DownloadsOnceAndFindsItsDatabaseFromThenOn) {
    BringUp(Plant());
    EXPECT_EQ(TakeRequests(),
              (Names{"GetDatabaseInfo", "StartDatabaseDownload", "DeleteDatabase", "MasterRecordDownload",
                     "SlaveRecordDownload", "SlaveRecordDownload", "SlaveRecordDownload",
                     "SlaveRecordDownload", "EndDatabaseDownload", "GetDatabaseInfo"}));
    EXPECT_EQ(module.GetModule().Counted(VirtualModule::Counts::BOOTS), 2u);
    EXPECT_EQ(master->State(), Vt22Module::ModuleState_e::DOWNLOAD_COMPLETE);
    EXPECT_TRUE(master->GetDatabaseInfo()->ToString().Value().starts_with(
        "DatabaseInfo\nTotalOutputLength: 7\nTotalInputLength: 6\nInitOutputLength: 7\n"
        "InitInputLength: 12\nNoOfSlaves: 2\n"));
    clock.Advance(100'000'000'000);
    Update(); // the initialisation may begin at any time
    EXPECT_FALSE(Downloads());
    EXPECT_TRUE(Downloads(2)) << "another configuration is another checksum";
}

TEST_F(Vt22LifeTest, ComparesTheDescriptionAsEightDigitsOfANumber) {
    EXPECT_TRUE(Downloads());
    auto& description = flash.database.description;
    const std::string checksum(description.begin(), description.end());
    std::transform(checksum.begin(), checksum.end(), description.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    EXPECT_FALSE(Downloads());
    for (const std::string& other : {checksum.substr(1), "0" + checksum, std::string("not hex!")}) {
        description.assign(other.begin(), other.end());
        EXPECT_TRUE(Downloads()) << other;
        EXPECT_EQ(std::string(description.begin(), description.end()), checksum);
    }
}

TEST_F(Vt22LifeTest, FailsWhenTheReadBackDiffers) {
    BeginMaster(Plant());
    ExpectFailure<Vesk::ModuleStateException>("Config checksum readback failed", [this] {
        UpdateUntil([this] {
            if (module.GetModule().Counted(VirtualModule::Counts::BOOTS) == 2)
                flash.database.description.assign(8, '0');
            return master->Configured();
        });
    });
    EXPECT_EQ(master->State(), Vt22Module::ModuleState_e::DOWNLOADING);
}

TEST_F(Vt22LifeTest, ExchangesProcessDataAndReportsTheBus) {
    BringUp(Plant());
    const auto in = Array<unsigned char>::Create(4);
    const auto out = Array<unsigned char>::Create(4);
    master->MapInputData(0, in, 0, 4);
    master->MapOutputData(0, out, 0, 4);
    master->BeginInitialization();
    UpdateUntil([this] { return master->Initialized() && IsIn(OperationMode::OPERATE); });
    EXPECT_TRUE(master->Configured());
    for (unsigned char value = 1; value < 20; ++value) {
        in->Set(value % 4, value);
        UpdateUntil([&] { return Values(out) == Values(in); });
    }
    master->SetOperationMode(OperationMode::OFFLINE);
    UpdateUntil([this] { return !online && mode == OperationMode::STOP; });
    master->SetOperationMode(OperationMode::OPERATE);
    UpdateUntil([this] { return IsIn(OperationMode::OPERATE); });
}

TEST_F(Vt22LifeTest, InitialisesAsSoonAsItIsBooted) {
    BringUp(Plant());
    BeginMaster(Plant());
    UpdateUntil([this] { return master->State() == Vt22Module::ModuleState_e::DOWNLOADING; });
    master->BeginInitialization();
    UpdateUntil([this] { return master->Initialized() && master->Configured(); });
}

TEST_F(Vt22LifeTest, BringsEachByteOfAProgramIntoTheFlash) {
    for (const int type : {1, 2})
        for (const int size : {1, 256, 257, 600}) {
            SCOPED_TRACE(std::to_string(size) + " bytes, type " + std::to_string(type));
            const auto file = FirmwareFileBuilder().Type(type).Program(size);
            Flash(file.Read());
            const auto& [valid, version, image] = type == 1 ? flash.bootloader : flash.application;
            EXPECT_EQ(std::string(image.begin(), image.end()), file.Content().substr(128));
        }
}

TEST_F(Vt22LifeTest, BringsANewFirmwareToRunAndNoDamagedOne) {
    EXPECT_EQ(RunMaster(), (std::vector<int>{1, 4, 2}));
    const auto firmware = TarnFile::FromPath(SOURCE_DIR "/examples/firmware/vt22-1.5.0.fw");
    Flash(firmware);
    EXPECT_EQ(RunMaster(), (std::vector<int>{1, 5, 0}));
    firmware->ProgramData->Set(1000, static_cast<unsigned char>(firmware->ProgramData->Get(1000) ^ 1));
    EXPECT_THROW(Flash(firmware), std::shared_ptr<System::Exception>);
    EXPECT_THROW(RunMaster(), std::shared_ptr<System::Exception>);
}

// ---- the factories

static std::string dumpPath;

/// Before any test has changed it.
struct NoteDumpPath : testing::Environment {
    void SetUp() override { dumpPath = Vesk::RuntimeConfig::_hostInterfaceDumpPath.Value(); }
};

[[maybe_unused]] static const auto* const NOTE_DUMP_PATH =
    testing::AddGlobalTestEnvironment(new NoteDumpPath);

TEST(Vt22Test, OpensTheDpRamAtItsPlaceAndDumpsItBeforeTheLastReset) {
    EXPECT_EQ(dumpPath, "/tmp/hostinterface.bin");
    const TemporaryFolder folder;
    const std::string path = folder.Put("dpram", std::string(0x3000, 'x'));
    const auto put = [&path](char byte) { // where the DPRAM begins
        std::fstream(path, std::ios::in | std::ios::out | std::ios::binary).seekp(0x1000).put(byte);
    };
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = folder.Path("dump");
    const auto irq = System::Func<bool>::Create([] { return true; });
    const auto reset = System::ArgFunc<bool, void>::Create([&](bool) { put('r'); });
    const auto boot = System::ArgFunc<bool, void>::Create([](bool) {});
    const auto config = DatabaseFileBuilder().Master().Read();
    const std::function<std::shared_ptr<Vesk::Modules::IModule>()> factories[] = {
        [&] { return Vt22::CreateUnconfigured(path, 0x1000, irq, reset, boot); },
        [&] { return Vt22::CreateConfigured(path, 0x1000, irq, reset, boot, {}, {}, {}, config); },
        [&] { return Vt22::CreateBootloaderModule(path, 0x1000, irq, reset, boot); },
    };
    for (const auto& create : factories) {
        auto module = create();
        EXPECT_EQ(folder.Content("dpram")[0x1000], 'r');
        put('a');
        module = nullptr;
        EXPECT_EQ(folder.Content("dump"), "a" + std::string(0x1FFF, 'x'));
        EXPECT_EQ(folder.Content("dpram")[0x1000], 'r');
    }
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = dumpPath;
}
