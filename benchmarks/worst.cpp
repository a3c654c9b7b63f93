// SPDX-License-Identifier: MIT
// How long can a single Update become, and how deep its stack? Plays a life with the configuration FILE
// against a module in the same process, and prints of each counted Update what it did and the bytes of its
// stack, a line each, in the order in which callgrind writes its counts. The module takes its turns between
// the Updates, so the counts are the library's alone.
#include "benchmarks/Instructions.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "virtualmodule/Module.h"

#include <alloca.h>
#include <cstdio>
#include <cstring>
#include <span>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

using namespace Vesk::Modules::DPVM;
using System::Array;

namespace {

std::int64_t now = 0;

constexpr std::size_t STACK = 64 * 1024;
constexpr unsigned char UNUSED = 0xA5;

/// Paints the stack that a call from the same place will use.
__attribute__((noinline)) void PaintStack() {
    void* const stack = ::alloca(STACK);
    std::memset(stack, UNUSED, STACK);
    asm volatile("" : : "r"(stack) : "memory");
}

/// How much of it has been used since.
__attribute__((noinline)) std::size_t UsedStack() {
    const volatile unsigned char* const stack = static_cast<unsigned char*>(::alloca(STACK));
    std::size_t unused = 0;
    while (unused < STACK && stack[unused] == UNUSED)
        ++unused;
    return STACK - unused;
}

class Life {
public:
    explicit Life(const std::shared_ptr<Config::IBusConfig>& config);
    void Run();

private:
    static std::span<volatile std::uint8_t> Map(int file);
    void Update(const std::string& kind = "");
    void UpdateUntil(const std::string& kind, const std::function<bool()>& reached);
    void Cycles();
    void Services();
    void Fail();

    int _file = ::memfd_create("dpram", MFD_CLOEXEC);
    std::span<volatile std::uint8_t> _dpRam = Map(_file);
    VirtualModule::Lines _lines;
    VirtualModule::Flash _flash;
    VirtualModule::Module _module{_dpRam, _lines, _flash, [] { return now; }};
    std::shared_ptr<Config::IBusConfig> _config;
    std::shared_ptr<Array<unsigned char>> _in = Array<unsigned char>::Create(3500);
    std::shared_ptr<Array<unsigned char>> _out = Array<unsigned char>::Create(3500);
    bool _online = false;
    bool _answered = false;
    bool _failed = false;
    std::shared_ptr<Vt22Module> _master;
};

std::span<volatile std::uint8_t> Life::Map(int file) {
    constexpr std::size_t SIZE = 0x2000;
    if (file < 0 || ::ftruncate(file, SIZE) != 0)
        throw std::system_error(errno, std::generic_category(), "dpram");
    void* const memory = ::mmap(nullptr, SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "dpram");
    return {static_cast<volatile std::uint8_t*>(memory), SIZE};
}

Life::Life(const std::shared_ptr<Config::IBusConfig>& config) : _config(config) {
    System::DateTime::SetSource([] { return now; });
    _master = Vt22::CreateConfigured(
        "/proc/self/fd/" + std::to_string(_file), 0,
        System::Func<bool>::Create([this] { return _lines.ReadIrq_n(); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { _lines.DriveReset_n(level); }),
        System::ArgFunc<bool, void>::Create([this](bool level) { _lines.DriveBootloaderEnable_n(level); }),
        System::Func<void>::Create([] {}), System::Func<void>::Create([this] { _online = true; }),
        System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) {}), config);
}

/// The module's turn, then an Update, which is not counted unless it has a `kind`.
void Life::Update(const std::string& kind) {
    now += 100'000;
    _module.Step();
    if (kind.empty())
        return _master->Update();
    PaintStack();
    Instructions::Begin();
    try {
        _master->Update();
    } catch (const std::exception&) {
        _failed = true;
    }
    Instructions::End();
    std::printf("%s\t%zu\n", kind.c_str(), UsedStack());
}

void Life::UpdateUntil(const std::string& kind, const std::function<bool()>& reached) {
    while (!reached())
        Update(kind);
}

void Life::Run() {
    while (!_master->Configured())
        Update("in " + Vt22Module::StateToString(_master->State()).Value());
    _master->MapInputData(0, _in, 0, _master->GetDatabaseInfo()->TotalInputLength);
    _master->MapOutputData(0, _out, 0, _master->GetDatabaseInfo()->TotalOutputLength);
    _master->BeginInitialization();
    UpdateUntil("in INITIALIZING", [&] { return _master->Initialized() && _online; });
    for (int i = 0; i < 200; ++i)
        Update(); // until every slave exchanges data
    Cycles();
    Services();
    Fail();
}

void Life::Cycles() {
    for (int i = 0; i < 40; ++i)
        Update("nothing has changed");
    for (int i = 0; i < 100; ++i) {
        _in->Set(0, static_cast<unsigned char>(i));
        Update("process data both ways");
    }
    _module.SetSlavePresent(_config->SlaveAddresses()->Get(0), false);
    for (int i = 0; i < 40; ++i)
        Update("a slave lost");
    _module.SetSlavePresent(_config->SlaveAddresses()->Get(0), true);
    for (int i = 0; i < 200; ++i)
        Update();
}

void Life::Services() {
    const auto data = Array<unsigned char>::Create(240);
    const auto answered = System::ArgFunc<std::shared_ptr<Vesk::Mailbox::IResponse>, void>::Create(
        [this](const std::shared_ptr<Vesk::Mailbox::IResponse>&) { _answered = true; });
    const unsigned char slave = _config->SlaveAddresses()->Get(1);
    _master->Class1Write(slave, 1, 2, data, answered);
    UpdateUntil("a record of 240 bytes written", [&] { return _answered; });
    _answered = false;
    _master->Class1Read(slave, 1, 2, 240, answered);
    UpdateUntil("a record of 240 bytes read, with its callback", [&] { return _answered; });
}

void Life::Fail() {
    _module.RaiseFatal({1, 2, 3, 4, {}, 5, "dpmaster.c"});
    UpdateUntil("a fatal event, as an exception", [&] { return _failed; });
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2)
        return 2;
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    Life(Config::DdbParser::FromPath(argv[1])).Run();
    return 0;
}
