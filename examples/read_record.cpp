// SPDX-License-Identifier: MIT
// Reads a record of a slave twice, over Class 1 and over a Class 2 connection. The master takes the database
// that its module holds. Arguments: the DPRAM file, the lines file, and the slave's address, the slot and the
// index in decimal.
#include "Updating.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <cstdio>
#include <iostream>

using namespace Vesk::Modules::DPVM;
using Response = std::shared_ptr<Vesk::Mailbox::IResponse>;

static unsigned char Number(const char* text) {
    const int number = std::stoi(text);
    if (number < 0 || number > 255)
        throw std::runtime_error(std::string(text) + " is not 0 to 255");
    return static_cast<unsigned char>(number);
}

static void Print(System::IArray<unsigned char>& record) {
    for (int i = 0; i < record.Count(); ++i)
        std::printf("%02x%c", record.Get(i), i + 1 == record.Count() ? '\n' : ' ');
}

int main(int argc, char** argv) try {
    if (argc != 6)
        throw std::runtime_error("usage: read_record DPRAM LINES SLAVE SLOT INDEX");
    const unsigned char slave = Number(argv[3]);
    const unsigned char slot = Number(argv[4]);
    const unsigned char index = Number(argv[5]);
    const auto lines = LinesFile::Open(argv[2]);
    const auto master = Vt22::CreateUnconfigured(argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(),
                                                 lines->BootloaderEnable_n());
    UpdateUntil(*master, "the module has booted", [&] { return master->Booted(); });
    master->BeginInitialization();
    UpdateUntil(*master, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::CLEAR); // slaves are in the exchange, their inputs are safe
    const auto exchanging = master->GetDataTransferList();
    UpdateUntil(*master, "the slave exchanges data",
                [&] { return exchanging->Get(slave / 8) >> slave % 8 & 1; });

    const auto ask = [&](const std::function<void(const IDPVMModule::ResponseAction&)>& service) {
        Response answer;
        service(
            System::ArgFunc<Response, void>::Create([&](const Response& response) { answer = response; }));
        UpdateUntil(*master, "the module answers", [&] { return answer != nullptr; });
        if (answer->Error() != Vesk::Mailbox::ErrorCode::NO_ERROR)
            throw std::runtime_error("refused: " + answer->Error()->Name.Value());
        return answer;
    };
    const unsigned char most = 240; // bytes in one record
    Print(*ask([&](const auto& action) { master->Class1Read(slave, slot, index, most, action); })->Data());

    ask([&](const auto& action) { master->Class2Initiate(slave, action); });
    Print(*ask([&](const auto& action) { master->Class2Read(slave, slot, index, most, action); })->Data());
    ask([&](const auto& action) { master->Class2Abort(slave, 0, 0, action); });
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
