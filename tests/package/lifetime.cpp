// SPDX-License-Identifier: MIT
// What a program may ask of the library before main and after it, whichever of the libraries it has.
// Argument: the DPRAM file.
#include "vesk/Vesk.h"

#include "vesk/modules/dpvm/DPVMMessages.h"

#include <cstdio>

using namespace Vesk::Modules::DPVM;

/// Made before main.
static const System::String request = DPVMMessages::GetLiveList()->ToString();
static const auto refusal = Vesk::Mailbox::ErrorCode::GetById(Vesk::Mailbox::ErrorCode::COMMAND->Id);

/// Part of the trace listener, which has to last longer than what it listens to.
struct Part {
    ~Part() { std::puts("the listener has ended"); }
};

/// Ends after main.
static std::shared_ptr<Vt22Module> master;

int main(int, char** argv) {
    std::printf("%s%s\n", request.Value().c_str(), refusal->Name.Value().c_str());
    try {
        Config::DdbParser::FromPath("missing");
    } catch (const System::IO::FileNotFoundException& failure) {
        std::puts(failure.ToString().Value().c_str());
    }
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = std::string(argv[1]) + ".dump";
    Vesk::RuntimeConfig::_printHostInterfaceDump = true;
    System::Diagnostics::Trace::SetListener(
        [part = std::make_shared<Part>()](const std::string&) { std::puts("traced"); });
    const auto line =
        System::ArgFunc<bool, void>::Create([](bool level) { std::puts(level ? "high" : "low"); });
    master =
        Vt22::CreateUnconfigured(argv[1], 0, System::Func<bool>::Create([] { return true; }), line, line);
}
