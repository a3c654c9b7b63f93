// SPDX-License-Identifier: MIT
// A complete application: brings a master up on its configuration, exchanges process data with it, asks one
// slave for a record, and ends. Arguments: the DPRAM file, the lines file and the configuration database
// file.
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <chrono>
#include <iostream>
#include <thread>

using namespace Vesk::Modules::DPVM;
using System::Array;

int main(int argc, char** argv) try {
    if (argc != 4)
        throw std::runtime_error("usage: application DPRAM LINES CONFIG");
    const auto lines = LinesFile::Open(argv[2]);
    const auto config = Config::DdbParser::FromPath(argv[3]);
    const auto master = Vt22::CreateConfigured(
        argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(),
        System::Func<void>::Create([] { std::cout << "offline\n"; }),
        System::Func<void>::Create([] { std::cout << "online\n"; }),
        System::ArgFunc<OperationMode_e, void>::Create([](OperationMode_e) { std::cout << "new mode\n"; }),
        config);
    const auto updateUntil = [&](const std::function<bool()>& reached) {
        for (; !reached(); std::this_thread::sleep_for(std::chrono::microseconds(100)))
            master->Update();
    };
    updateUntil([&] { return master->Configured(); });

    const auto toBus = Array<unsigned char>::Create(1);
    const auto fromBus = Array<unsigned char>::Create(1);
    master->MapInputData(0, toBus, 0, 1);
    master->MapOutputData(0, fromBus, 0, 1);
    master->BeginInitialization();
    updateUntil([&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);
    toBus->Set(0, 42);
    updateUntil([&] { return fromBus->Get(0) == 42; });
    std::cout << "42 went to the bus and came back\n";

    bool answered = false;
    const unsigned char slave = config->SlaveAddresses()->Get(0);
    master->Class1Read(slave, 0, 0, 100,
                       System::ArgFunc<std::shared_ptr<Vesk::Mailbox::IResponse>, void>::Create(
                           [&](const std::shared_ptr<Vesk::Mailbox::IResponse>& response) {
                               std::cout << response->ToString().Value();
                               answered = true;
                           }));
    updateUntil([&] { return answered; });
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
