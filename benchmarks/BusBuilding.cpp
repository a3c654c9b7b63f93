// SPDX-License-Identifier: MIT
// Building the database of a bus of 125 slaves, each with a device description file of its own of 200 kB.
#include "benchmarks/Measure.h"

#include "busdescription/compile/Compile.h"
#include "busdescription/records/DatabaseBytes.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

constexpr int SLAVES = 125;

/// The files, in a folder that goes with the object.
class Plant {
public:
    Plant() {
        std::string folder = (std::filesystem::temp_directory_path() / "vesk-building.XXXXXX").string();
        if (mkdtemp(folder.data()) == nullptr)
            throw std::runtime_error("no temporary folder: " + folder);
        _folder = folder;
        for (int address = 1; address <= SLAVES; ++address) {
            const std::string file = std::to_string(address) + ".gsd";
            std::ofstream(std::filesystem::path(_folder) / file) << DeviceFile();
            text += "[[slave]]\naddress = " + std::to_string(address) + "\ngsd = \"" + file +
                    "\"\nmodules = [\"Module 1\", \"Module 500\"]\n";
        }
    }

    ~Plant() {
        std::error_code ignored;
        std::filesystem::remove_all(_folder, ignored);
    }

    Plant(const Plant&) = delete;
    Plant& operator=(const Plant&) = delete;

    void Read() const {
        BusDescription::DeviceFiles files(_folder);
        for (int address = 1; address <= SLAVES; ++address)
            benchmark::DoNotOptimize(files.Read(std::to_string(address) + ".gsd"));
    }

    void Build() const {
        BusDescription::DeviceFiles files(_folder);
        BusDescription::Findings findings;
        const auto bus = Compile(BusDescription::ReadText(text, "plant.toml", findings), files, findings);
        if (!bus)
            throw std::runtime_error(findings.at(0).ToString());
        benchmark::DoNotOptimize(BusDescription::DatabaseBytes(*bus->config));
    }

    std::string text = "[bus]\nrate = \"1.5M\"\nmaster = 0\nwatchdog = \"5 s\"\n";

private:
    /// 200 kB, most of them modules.
    static std::string DeviceFile() {
        std::string file =
            "#Profibus_DP\nGSD_Revision = 3\nVendor_Name = \"V\"\nModel_Name = \"M\"\nRevision = \"1\"\n"
            "Ident_Number = 0x1234\nProtocol_Ident = 0\nStation_Type = 0\n1.5M_supp = 1\n"
            "MaxTsdr_1.5M = 150\nModular_Station = 1\nMax_Module = 8\nMax_Input_Len = 64\n"
            "Max_Output_Len = 64\nMax_Data_Len = 128\nMax_Diag_Data_Len = 32\n"
            "User_Prm_Data_Len = 3\nUser_Prm_Data = 0,0,0\n";
        for (int module = 1; file.size() < 200'000; ++module)
            file += "Module = \"Module " + std::to_string(module) + "\" 0x31, 0x20, 0x10\n" +
                    std::to_string(module) + "\nExt_Module_Prm_Data_Len = 4\n" +
                    "Ext_User_Prm_Data_Const(0) = 0x01,0x02,0x03,0x04\nEndModule\n";
        return file;
    }

    std::string _folder;
};

void Building(benchmark::State& state) {
    const Plant plant;
    Compare(
        state, {"<= 1.2 x reading the files", 1.2, 0}, 1, [&] { plant.Read(); }, [&] { plant.Build(); });
}

} // namespace

BENCHMARK(Building)->Name("building a database, 125 slaves with files of 200 kB")->UseManualTime();
