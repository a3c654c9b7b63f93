// SPDX-License-Identifier: MIT
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/FirmwareFileBuilder.h"
#include "tests/support/Life.h"
#include "tests/support/TemporaryFolder.h"

#include "vesk/hostinterface/RuntimeConfig.h"

#include <gtest/gtest.h>

using namespace Vesk::Modules::DPVM;
using Names = std::vector<std::string>;

using File = DatabaseFileBuilder;

/// Two slaves: 3 with 4 bytes in each direction and a record of two whole fragments, 9 with 2 bytes in and 3
/// bytes out, an odd parameter block and one byte in its second fragment.
static const std::map<std::uint8_t, File::Bytes> SLAVES{
    {3,
     File::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, File::Bytes(237, 0x33), {0xF3}, File::Bytes(218, 0x33)})},
    {9, File::SlaveRecord({{10, 11}, {4, 5, 6}, {1, 2}, {0xE1, 0xD2}, File::Bytes(203, 0x33)})}};

/// A master and these slaves. The checksum begins with a zero.
static std::shared_ptr<Config::IBusConfig> Plant(int masterAddress = 1) {
    File file;
    file.Master(File::MasterRecord(masterAddress));
    for (const auto& [address, record] : SLAVES)
        file.Slave(address, record);
    return file.Read();
}

class Vt22LifeTest : public testing::Test, protected Life {
protected:
    explicit Vt22LifeTest(std::vector<VirtualModule::Fault> faults = {})
        : Life({}, {.faults = std::move(faults)}) {
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

    Names _requests;
};

TEST_F(Vt22LifeTest, DownloadsOnceAndFindsItsDatabaseFromThenOn) {
    BringUp(Plant());
    EXPECT_EQ(TakeRequests(),
              (Names{"GetDatabaseInfo", "StartDatabaseDownload", "DeleteDatabase", "MasterRecordDownload",
                     "SlaveRecordDownload", "SlaveRecordDownload", "SlaveRecordDownload",
                     "SlaveRecordDownload", "EndDatabaseDownload", "GetDatabaseInfo"}));
    EXPECT_EQ(flash.database.master, File::MasterRecord());
    EXPECT_EQ(flash.database.slaves, SLAVES);
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

/// Once in its life, here at the second start, the module says that it has another database.
struct ForgetfulModuleTest : Vt22LifeTest {
    ForgetfulModuleTest() : Vt22LifeTest({{VirtualModule::FaultId::DATABASE_CHECKSUM, 3, 1}}) {}
};

TEST_F(ForgetfulModuleTest, IsGivenItsDatabaseAgainAndGoesOn) {
    EXPECT_TRUE(Downloads());
    EXPECT_TRUE(Downloads());
    master->BeginInitialization();
    UpdateUntil([this] { return master->Initialized() && IsIn(OperationMode::OPERATE); });
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
            BeginBootloader();
            UpdateUntil([this] { return bootloader->Booted(); });
            int remaining = 0;
            type == 1 ? bootloader->BeginBootloaderDownload(file.Read(), &remaining)
                      : bootloader->BeginFirmwareDownload(file.Read(), &remaining);
            UpdateUntil([&] { return bootloader->EndDownload(&remaining); });
            const auto& [valid, version, image] = type == 1 ? flash.bootloader : flash.application;
            EXPECT_EQ(std::string(image.begin(), image.end()), file.Content().substr(128));
        }
}

// ---- the factories

TEST(Vt22Test, OpensTheDpRamAtItsPlaceAndDumpsItBeforeTheLastReset) {
    const System::String dumpPath = Vesk::RuntimeConfig::_hostInterfaceDumpPath;
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
