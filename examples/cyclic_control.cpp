// SPDX-License-Identifier: MIT
// Cyclic control of one slave, the conveyor drive at station 3: every millisecond its speed is read and a new
// set point written. It runs up to 1000 rpm, slows down and stands still again. Arguments: the DPRAM file,
// the lines file, the configuration database file, and the real-time priority of the cycle if it is to have
// one. Plant.h is made of the plant's description:
//
//     vesk config header examples/plant.toml -o examples/Plant.h
#include "Plant.h"
#include "RealTime.h"
#include "Updating.h"
#include "vesk/lines/LinesFile.h"

#include "vesk/Vesk.h"

#include <algorithm>
#include <iostream>

using namespace Vesk::Modules::DPVM;

int main(int argc, char** argv) try {
    if (argc != 4 && argc != 5)
        throw std::runtime_error("usage: cyclic_control DPRAM LINES CONFIG [PRIORITY]");
    const auto lines = LinesFile::Open(argv[2]);
    const auto config = Config::DdbParser::FromPath(argv[3]);
    const auto master =
        Vt22::CreateConfigured(argv[1], 0, lines->VelmoIrq_n(), lines->Reset_n(), lines->BootloaderEnable_n(),
                               nullptr, nullptr, nullptr, config);
    UpdateUntil(*master, "the configuration is in the module", [&] { return master->Configured(); });

    if (config->Checksum() != Plant::CHECKSUM)
        throw std::runtime_error("the program and the configuration are of different plants");

    const Plant::Conveyor1 drive;
    drive.Map(*master);
    master->BeginInitialization();
    UpdateUntil(*master, "the module is initialised", [&] { return master->Initialized(); });
    master->SetOperationMode(OperationMode_e::OPERATE);
    if (argc == 5)
        RunInRealTime(std::stoi(argv[4]));

    const auto exchanging = master->GetDataTransferList();
    int target = 1000;
    int speed = 0;
    auto next = std::chrono::steady_clock::now();
    do {
        master->Update();
        speed = drive.Speed();
        if (speed == target && target > 0) {
            std::cout << "running at " << speed << " rpm\n";
            target = 0;
        }
        const bool driveThere = exchanging->Get(drive.ADDRESS / 8) >> drive.ADDRESS % 8 & 1;
        if (target == 0 && !driveThere) // its bytes are 0 now, which says nothing about its speed
            throw std::runtime_error("the drive is lost, and may not stand still");
        const int command = driveThere ? speed + std::clamp(target - speed, -50, 50) : 0;
        drive.SetSetpoint(static_cast<std::int16_t>(command));
        std::this_thread::sleep_until(next += std::chrono::milliseconds(1));
    } while (target > 0 || speed > 0);
    std::cout << "standing still\n";
    return 0;

} catch (const std::exception& failure) {

    std::cerr << failure.what() << "\n";
    return 1;
}
