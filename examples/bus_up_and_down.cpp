// SPDX-License-Identifier: MIT
// Brings a bus up, until every slave exchanges data, and down again by way of the safe states. Arguments: the
// DPRAM file, the lines file and the configuration database file.
#include "Updating.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <iostream>

using namespace Vesk::Modules::DPVM;

/// Whether each slave of the configuration is in the exchange of data.
static bool AllExchange(IDPVMModule& master, const Config::IBusConfig& config) {
    const auto exchanging = master.GetDataTransferList(); // station n is bit n % 8 of byte n / 8
    const auto slaves = config.SlaveAddresses();
    for (int i = 0; i < slaves->Count(); ++i)
        if (!(exchanging->Get(slaves->Get(i) / 8) >> slaves->Get(i) % 8 & 1))
            return false;
    return true;
}

int main(int argc, char** argv) try {
    if (argc != 4)
        throw std::runtime_error("usage: bus_up_and_down DPRAM LINES CONFIG");
    const auto lines = LinesFile::Open(argv[2]);
    const auto config = Config::DdbParser::FromPath(argv[3]);

    bool online = false;
    auto mode = OperationMode_e::OFFLINE;
    const auto master = Vt22::CreateConfigured(
        argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(),
        System::Func<void>::Create([&] { online = false; }),
        System::Func<void>::Create([&] { online = true; }),
        System::ArgFunc<OperationMode_e, void>::Create([&](OperationMode_e reported) { mode = reported; }),
        config);
    UpdateUntil(*master, "the configuration is in the module", [&] { return master->Configured(); });
    master->BeginInitialization();
    UpdateUntil(*master, "the module is online", [&] { return master->Initialized() && online; });
    std::cout << "online\n";

    const auto change = [&](OperationMode_e wanted, const char* name) {
        master->SetOperationMode(wanted);
        UpdateUntil(*master, name, [&] { return mode == wanted; });
        std::cout << name << "\n";
    };
    change(OperationMode_e::OPERATE, "OPERATE");
    UpdateUntil(*master, "every slave exchanges data", [&] { return AllExchange(*master, *config); });
    std::cout << config->SlaveAddresses()->Count() << " slaves exchange data\n";

    change(OperationMode_e::CLEAR, "CLEAR"); // the slaves' inputs go to their safe values
    change(OperationMode_e::STOP, "STOP");   // the exchange ends
    master->SetOperationMode(OperationMode_e::OFFLINE);
    UpdateUntil(*master, "the module is offline", [&] { return !online; });
    std::cout << "offline\n";
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
