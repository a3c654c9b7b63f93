// SPDX-License-Identifier: MIT
// A bus whose slaves are not right, or send what a model of the plant says, as the host sees it.
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Life.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace VirtualModule;
using File = DatabaseFileBuilder;
using System::Array;

namespace {

constexpr std::uint8_t SLAVE = 3;

struct PlantModelTest : testing::Test, Life {
    PlantModelTest() : Life({}, {.faults = {}, .faultsOnRequest = true}) {
        model.SetInputListener([this](std::uint8_t address, ByteView input) {
            got.emplace_back(address, Bytes(input.begin(), input.end()));
        });
    }

    /// A life of a plant with two slaves, up to the exchange; the first is sent 1, 2, 3 and 4.
    void Start() {
        File file;
        file.Master(File::MasterRecord(1));
        file.Slave(SLAVE, File::SlaveRecord({{0, 1, 2, 3}, {0, 1, 2, 3}, {}, {0xF1}, {}}));
        file.Slave(9, File::SlaveRecord({{4}, {4}, {}}));
        BringUp(file.Read());
        master->MapInputData(0, toBus, 0, 4);
        master->MapOutputData(0, fromBus, 0, 4);
        master->BeginInitialization();
        UpdateUntil([this] { return master->Initialized() && IsIn(OperationMode::OPERATE); });
        Update(40);
    }

    static bool Has(const std::shared_ptr<System::IArray<unsigned char>>& list) {
        return (list->Get(SLAVE / 8) >> SLAVE % 8 & 1) != 0;
    }

    Bytes Diagnosis() {
        const auto answer = Ask([this](auto action) { master->GetSlaveDiag(SLAVE, std::move(action)); });
        return {answer->Data()->Data(), answer->Data()->Data() + answer->Data()->Count()};
    }

    Module& model = module.GetModule();
    std::vector<std::pair<std::uint8_t, Bytes>> got;
    std::shared_ptr<Array<unsigned char>> toBus = Array<unsigned char>::Create({1, 2, 3, 4});
    std::shared_ptr<Array<unsigned char>> fromBus = Array<unsigned char>::Create(4);
};

TEST_F(PlantModelTest, TheHostSeesWhatBecomesOfASlave) {
    EXPECT_THROW(model.Slave(SLAVE), std::invalid_argument) << "no database, no slaves";
    Start();
    Station& slave = model.Slave(SLAVE);
    const Bytes right = slave.Identifiers();
    EXPECT_EQ(slave.IdentNumber(), 0x1234);

    const Bytes none{0, 0, 0, 0}, echo{1, 2, 3, 4}, own{9, 8, 7, 6};

    const struct {
        std::function<void()> change;
        Bytes diagnosis;
        bool exchanges, diagnostic;
        Bytes output;
    } cases[]{
        {[] {}, {0, 4, 0, 1, 0x12, 0x34}, true, false, echo},
        {[&] { model.SetSlavePresent(SLAVE, false); }, {1, 0, 0, 0xFF, 0, 0}, false, true, none},
        {[&] {
             model.SetSlavePresent(SLAVE, true), slave.SetDiagnosis({3, 7, 8});
         },
         {8, 4, 0, 1, 0x12, 0x34, 3, 7, 8},
         true,
         true,
         echo},
        {[&] { slave.SetIdentNumber(0x9876); }, {0x4A, 5, 0, 0xFF, 0x98, 0x76, 3, 7, 8}, false, true, none},
        {[&] { slave.SetIdentNumber(0x1234), slave.SetIdentifiers({0xF2}), slave.SetDiagnosis({}); },
         {6, 5, 0, 0xFF, 0x12, 0x34},
         false,
         true,
         none},
        {[&] { slave.SetIdentifiers(right), slave.SetOutput(own); },
         {0, 4, 0, 1, 0x12, 0x34},
         true,
         false,
         own},
        {[&] { slave.SetOutput({}); }, {0, 4, 0, 1, 0x12, 0x34}, true, false, echo},
    };

    for (const auto& [change, diagnosis, exchanges, diagnostic, output] : cases) {
        change();
        Update(40);
        SCOPED_TRACE(testing::PrintToString(diagnosis));
        EXPECT_EQ(Diagnosis(), diagnosis);
        EXPECT_EQ(Has(master->GetDataTransferList()), exchanges);
        EXPECT_EQ(Has(master->GetSlaveDiagnosticList()), diagnostic);
        EXPECT_EQ(Bytes(fromBus->Data(), fromBus->Data() + 4), output);
        const bool present = (diagnosis[0] & 1) == 0;
        EXPECT_EQ(model.Slaves().front(),
                  (Module::SlaveState{SLAVE, slave.IdentNumber(), present, exchanges}));
    }
    for (const std::size_t size : {3u, 5u})
        EXPECT_THROW(slave.SetOutput(Bytes(size)), std::invalid_argument);
    EXPECT_THROW(slave.SetDiagnosis(Bytes(239)), std::invalid_argument);
    EXPECT_THROW(slave.SetIdentifiers({}), std::invalid_argument);
    EXPECT_EQ(got, (decltype(got){{SLAVE, echo}})) << "told once, and only what is new";

    slave.SetIdentNumber(1);
    Start();
    EXPECT_FALSE(model.Slaves().front().exchanges) << "a reset of the master does not change the slave";
    DropObject();
    EXPECT_EQ(slave.Input(), echo) << "what it got last";
}

TEST_F(PlantModelTest, FaultsStrikeOnRequestAndAPowerCycleHelps) {
    Start();
    const std::pair<const char*, const char*> cases[]{
        {"fatal=258", "Fatal"}, {"reboot", "ower"}, {"boot-empty", "Empty"}, {"dpram-ones", ""}};
    for (const auto& [fault, message] : cases) {
        SCOPED_TRACE(fault);
        model.Strike(fault, 1);
        EXPECT_THAT(
            [&] {
                Update(400);
                Start();
            },
            testing::ThrowsMessage<std::exception>(testing::HasSubstr(message)));
        DropObject();
        Start();
    }
    for (const char* wrong : {"", "dead@3", "deadx1", "daed"})
        EXPECT_THROW(model.Strike(wrong, 1), std::invalid_argument) << wrong;

    model.Strike("dead", 0);
    Update(40);
    model.ClearFaults();
    EXPECT_NO_THROW(Update(40)) << "it is silent";
    model.PowerCycle();
    EXPECT_THAT([&] { Update(40); }, testing::ThrowsMessage<std::exception>(testing::HasSubstr("ower")));
    Start();
    EXPECT_EQ(model.Violations(), std::vector<std::string>{});
}

} // namespace
