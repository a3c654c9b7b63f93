// SPDX-License-Identifier: MIT
// The way from the reset to the booted module, which both module objects go.
#include "tests/support/ExpectFailure.h"
#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/Vt22.h"

#include <tuple>

using namespace Vesk::Modules::DPVM;
using Host = RecordingHostInterface;
using Log = std::vector<std::string>;
using Faults = std::vector<std::tuple<int, int, int, const char*>>; // offset, two bytes, message

struct Master {
    using Module = Vt22Module;

    static std::shared_ptr<Module> Create(std::shared_ptr<Host> host) {
        return Module::Create(std::move(host), nullptr, nullptr, nullptr, nullptr);
    }

    static void PutIdentity(Host& host) {
        host.Put(0, {2, 1, 0, 0, 0, 0, 1, 2, 3, 4, 0x02, 0x01, 0, 1, 0, 5, 3, 4, 5});
        host.Put(0x1FFB, {0x90});
    }

    static constexpr const char* PROGRAM = "app";
    static constexpr int SECONDS_TO_BOOT = 2;
    static constexpr int STATES = 7;
    static constexpr const char* FIRST_AREA = "_deviceIdArea is null";
    static constexpr const char* LAST_AREA = "_outArea is null";
    inline static const Log BOOT{"irq",      "R8 1ffb",  "R8 1ffe",  "R16 0000", "R16 0002", "R16 0004",
                                 "R32 0006", "R16 000a", "R16 000c", "R16 000e", "R16 0010", "R8 0012"};
    inline static const std::vector<unsigned> IDENTITY{2, 1, 5, 0x0201, 0x01020304, 1};
    inline static const Faults FAULTS{
        {12, 0x12, 0x34, "Unexpected vendor id!\nExpected: 1, Read: 1234"},
        {14, 0xAB, 0xCD, "Unexpected fieldbus type!\nExpected: 5, Read: abcd"},
        {10, 0x02, 0x02, "Unexpected module type!\nExpected: 201, Read: 202"},
    };
};

struct Bootloader {
    using Module = Vt22Bootloader;

    static std::shared_ptr<Module> Create(std::shared_ptr<Host> host) {
        return Module::Create(std::move(host));
    }

    static void PutIdentity(Host& host) {
        host.Put(0x1FBE, {3, 7, 0, 0, 0, 0, 0x01, 0x02, 0x03, 0x04});
        host.Put(0x1FDE, {0x01, 0x01});
    }

    static constexpr const char* PROGRAM = "boot";
    static constexpr int SECONDS_TO_BOOT = 1;
    static constexpr int STATES = 6;
    static constexpr const char* FIRST_AREA = "_bootloaderCtrl is null";
    static constexpr const char* LAST_AREA = "_mailbox is null";
    inline static const Log BOOT{"irq",      "R8 1fff",  "R8 1fff",  "R8 1fbe", "R8 1fbf",
                                 "R32 1fc4", "R16 1fc8", "R16 1fca", "R16 1fde"};
    inline static const std::vector<unsigned> IDENTITY{3, 7, 0, 0x0101, 0x01020304, 0};
    inline static const Faults FAULTS{
        {0x1FBE, 1, 0, "Unsupported major bootloader version: 1, expected: 2"},
        {0x1FC8, 0x00, 0x01, "Unexpected vendor id!\nExpected: 0, Read: 1"},
        {0x1FCA, 0xAB, 0xCD, "Unexpected fieldbus type!\nExpected: 0, Read: abcd"},
        {0x1FDE, 0x02, 0x01, "Unexpected module type!\nExpected: 101, Read: 201"},
    };
};

template <class Kind>
class StartUpTest : public testing::Test {
protected:
    using State = typename Kind::Module::ModuleState_e;

    StartUpTest() { Create(); }

    void Create(int size = 0x2000) {
        _host = std::make_shared<Host>(size);
        _module = Kind::Create(_host);
        Kind::PutIdentity(*_host);
    }

    /// Lets time pass, and then what an Update does on the bus and to the lines.
    Log Update(std::int64_t nanoseconds = 0) {
        _clock.Advance(nanoseconds);
        _module->Update();
        return _host->TakeLog();
    }

    template <class ExceptionType>
    void ExpectUpdate(const std::string& message) {
        ExpectFailure<ExceptionType>(message, [this] { _module->Update(); });
    }

    std::vector<unsigned> Identity() {
        return {_module->BootloaderMajor(), _module->BootloaderMinor(), _module->FieldbusType(),
                _module->ModuleType(),      _module->Serial(),          _module->VendorId()};
    }

    TestClock _clock;
    std::shared_ptr<Host> _host;
    std::shared_ptr<typename Kind::Module> _module;
};

using Kinds = testing::Types<Master, Bootloader>;
TYPED_TEST_SUITE(StartUpTest, Kinds);

TYPED_TEST(StartUpTest, ResetsForHalfAMillisecondAndThenReadsTheIdentity) {
    EXPECT_EQ(this->_host->TakeLog(), (Log{TypeParam::PROGRAM, "off"}));
    EXPECT_EQ(this->Update(499'999), Log{});
    ExpectFailure<System::NullReferenceException>(TypeParam::FIRST_AREA, [this] { this->Identity(); });
    EXPECT_EQ(this->Update(1), (Log{"irq", "on"}));
    EXPECT_FALSE(this->_module->Booted());
    this->_host->irq = true;
    EXPECT_EQ(this->Update(), TypeParam::BOOT) << "no mailbox and no area in this step";
    EXPECT_TRUE(this->_module->Booted());
    EXPECT_EQ(this->Identity(), TypeParam::IDENTITY);
}

TYPED_TEST(StartUpTest, RefusesAnInterruptInResetAnotherDpRamAndAStateThatIsNone) {
    this->Create(0x2001);
    this->_host->irq = true;
    this->_clock.Advance(500'000);
    for (int i = 0; i < 2; ++i)
        this->template ExpectUpdate<Vesk::ModuleStateException>("IRQ not cleared at power off");
    EXPECT_EQ(this->_host->TakeLog(), (Log{TypeParam::PROGRAM, "off", "irq", "irq"})) << "still in reset";
    this->_host->irq = false;
    this->_module->Reset();
    this->_clock.Advance(500'000);
    this->template ExpectUpdate<System::ArgumentOutOfRangeException>(
        "_hostInterface->Size() (8193) must be equal to sizeof(DpRam) (8192)");
    this->_host->irq = true;
    this->template ExpectUpdate<System::NullReferenceException>(TypeParam::LAST_AREA);
    for (const int value : {TypeParam::STATES, -1}) {
        this->_module->ChangeState(static_cast<typename TestFixture::State>(value));
        this->template ExpectUpdate<Vesk::ModuleStateException>("Unknown state: " + std::to_string(value));
    }
}

TYPED_TEST(StartUpTest, WaitsForTheFirstInterrupt) {
    this->Update(500'000);
    EXPECT_EQ(this->Update(TypeParam::SECONDS_TO_BOOT * std::int64_t{1'000'000'000} - 1), Log{"irq"});
    this->_clock.Advance(1);
    for (int i = 0; i < 2; ++i)
        this->template ExpectUpdate<Vesk::StartupException>("Timeout waiting for initial IRQ");
    EXPECT_EQ(this->_module->State(), TestFixture::State::POWER_ON);
    this->_host->irq = true;
    this->Update(1'000'000'000);
    EXPECT_TRUE(this->_module->Booted()) << "an interrupt counts even then";
}

TYPED_TEST(StartUpTest, LastsUntilUpdateHasReturned) {
    this->Update(500'000);
    const std::weak_ptr<Vesk::Modules::IModule> module = this->_module;
    this->_host->beforeAccess = [&](const std::string&) {
        this->_module = nullptr;
        EXPECT_FALSE(module.expired());
    };
    this->_host->irq = true;
    this->_module->Update();
    EXPECT_TRUE(module.expired());
}

TYPED_TEST(StartUpTest, ChecksTheIdentityInOrder) {
    for (std::size_t count = 1; count <= TypeParam::FAULTS.size(); ++count) {
        this->Create();
        this->Update(500'000);
        std::string expected;
        for (std::size_t i = 0; i < count; ++i) { // each hides the one before it
            const auto& [offset, high, low, message] = TypeParam::FAULTS[i];
            this->_host->Put(offset, {high, low});
            expected = message;
        }
        this->_host->irq = true;
        this->template ExpectUpdate<Vesk::ModuleIdentityException>(expected);
        EXPECT_EQ(this->_module->State(), TestFixture::State::POWER_ON);
    }
}
