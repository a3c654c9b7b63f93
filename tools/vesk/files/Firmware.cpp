// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/files/FirmwareFile.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Numbers.h"
#include "tools/vesk/text/Text.h"
#include "vesk/system/Convert.h"

#include <algorithm>
#include <iostream>
#include <limits>

namespace VeskTool {

using Vesk::Modules::Bootloader::FirmwareHeader;
using Vesk::Modules::Bootloader::FirmwareType_e;

namespace {

struct BuildOptions {
    std::string imagePath;
    std::string outputPath;
    FirmwareHeader header;
    std::optional<unsigned int> crcStart;
    std::optional<unsigned int> crcLength;
    bool seal = false;
};

template <class Number>
Number Parse(const std::string& name, const std::string& text) {
    return static_cast<Number>(ParseNumber(name, text, 0, std::numeric_limits<Number>::max()));
}

/// Adds an option whose text is a Number that `target` takes.
template <class Number, class Target>
CLI::Option* AddNumber(CLI::App& command, const std::string& name, Target& target,
                       const std::string& description) {
    const auto take = [name, &target](const std::string& text) { target = Parse<Number>(name, text); };
    return command.add_option_function<std::string>(name, take, description)->type_name("NUMBER");
}

/// One of the three, as the option has checked.
void ParseType(FirmwareHeader& header, const std::string& text) {
    if (text == "bootloader")
        header.type = FirmwareType_e::BOOTLOADER_FIRMWARE;
    else if (text == "application")
        header.type = FirmwareType_e::APPLICATION_FIRMWARE;
    else
        header.type = FirmwareType_e::CONFIGURATION_FIRMWARE;
}

void ParseDescription(FirmwareHeader& header, const std::string& text) {
    for (const char character : text)
        if (character < ' ' || character > '~')
            throw CLI::ValidationError("--description", "holds something else than printable ASCII");
    if (text.size() > header.description.size())
        throw CLI::ValidationError("--description", std::to_string(text.size()) +
                                                        " characters are not a length from 0 to " +
                                                        std::to_string(header.description.size()));
    header.description = {};
    std::copy(text.begin(), text.end(), header.description.begin());
}

void ParseOldest(FirmwareHeader& header, const std::string& text) {
    const auto dot = text.find('.');
    if (dot == std::string::npos)
        throw CLI::ValidationError("--oldest", text + " is not MAJOR.MINOR");
    header.oldestMajor = Parse<unsigned char>("--oldest", text.substr(0, dot));
    header.oldestMinor = Parse<unsigned char>("--oldest", text.substr(dot + 1));
}

void ParseEraseSegmentsCount(FirmwareHeader& header, const std::vector<std::string>& texts) {
    for (std::size_t i = 0; i < texts.size(); ++i)
        header.eraseSegmentsCount.at(i) = Parse<unsigned char>("--erase-segments-count", texts[i]);
}

/// A device or a folder must not give way to the new file, nor the image that it is made from.
void Build(const BuildOptions& options) {
    Program program = LoadProgram(options.imagePath);
    if (options.seal)
        Seal(program);
    FirmwareHeader header = options.header;
    constexpr std::uint64_t space = std::uint64_t{1} << 32;
    const std::uint64_t end = std::uint64_t{header.addressBurnStart} + program.size();
    if (program.size() > MAX_PROGRAM_SIZE || end > space)
        throw Failure(options.imagePath + ": a program of " + std::to_string(program.size()) + " bytes at " +
                      Hex(header.addressBurnStart) + " does not fit: it has up to " +
                      std::to_string(MAX_PROGRAM_SIZE) + " bytes and ends at 0xffffffff at the latest");
    header.crcStart = options.crcStart.value_or(header.addressBurnStart);
    header.crcLength = options.crcLength.value_or(
        static_cast<unsigned int>(end - std::min<std::uint64_t>(end, header.crcStart)));
    const auto bytes = EncodeFirmwareFile(header, program);
    WriteFile(options.outputPath, bytes, options.imagePath, "the image");
    const auto file = FirmwareFile(options.outputPath).Content();
    std::cout << Harmless(options.outputPath) << ": " << bytes.size() << " bytes, checksum " << Hex(file->Crc)
              << "\n";
}

/// Failure when what the file says about its program is not true.
nlohmann::ordered_json ToJson(const Vesk::Modules::Bootloader::TarnFile& file, bool checked) {
    auto& counts = *file.EraseSegmentsCount;
    return {{"description", Printable(file.Description.Value())},
            {"type", Vesk::Modules::Bootloader::TarnFile::FirmwareTypeToString(file.FirmwareType).Value()},
            {"moduleId", file.ModuleId},
            {"eraseSegments", file.EraseSegments},
            {"address", file.AddressBurnStart},
            {"length", file.ProgramData->Count()},
            {"crcStart", file.CrcStart},
            {"crcLength", file.CrcLength},
            {"crc", file.Crc},
            {"checksum", Hex(file.Crc)},
            {"oldest", std::to_string(file.OldestMajor) + "." + std::to_string(file.OldestMinor)},
            {"eraseSegmentsCount", std::vector<unsigned int>(counts.Data(), counts.Data() + counts.Count())},
            {"checked", checked}};
}

/// The lines of the header, the description so that it can do nothing to a terminal.
std::string HeaderText(const Vesk::Modules::Bootloader::TarnFile& file) {
    std::string text = file.ToString().Value();
    const std::string description = file.Description.Value();
    return text.replace(text.find(description), description.size(), Printable(description));
}

/// A program that its checksum does not fit is a failure; the text shows the file all the same.
void Show(const std::string& path, bool json) {
    const auto file = FirmwareFile(path).Content();
    const auto covered = CoveredChecksum(*file);
    const bool damaged = covered && *covered != file->Crc;
    if (!json)
        std::cout << HeaderText(*file) << "Checksum: "
                  << (!covered  ? "covers other bytes than the program's, cannot be checked"
                      : damaged ? "does not fit the program"
                                : "fits the program")
                  << std::endl;
    if (damaged)
        throw Failure(Damage(path, *file, *covered));
    if (json)
        std::cout << JsonText(ToJson(*file, covered.has_value()));
}

} // namespace

Action AddFirmwareShow(CLI::App& command) {
    const auto path = std::make_shared<std::string>();
    const auto json = std::make_shared<bool>(false);
    command.add_option("FILE", *path, "Firmware file")->required();
    AddJson(command, *json);
    return [path, json] {
        Show(*path, *json);
        return DONE;
    };
}

Action AddFirmwareBuild(CLI::App& command) {
    const auto options = std::make_shared<BuildOptions>();
    FirmwareHeader& header = options->header;
    command.add_option("IMAGE", options->imagePath, "Program image")->required();
    command.add_option("-o,--output", options->outputPath, "File to make")->required();
    command
        .add_option_function<std::string>(
            "--type", [&header](const std::string& text) { ParseType(header, text); },
            "bootloader, application or configuration")
        ->required()
        ->check(CLI::IsMember({"bootloader", "application", "configuration"}))
        ->type_name("TYPE");
    AddNumber<unsigned short>(command, "--module-id", header.moduleId, "Module identification")->required();
    AddNumber<unsigned int>(command, "--address", header.addressBurnStart, "Flash address of the program")
        ->required();
    command
        .add_option_function<std::string>(
            "--description", [&header](const std::string& text) { ParseDescription(header, text); },
            "Text of up to 64 characters")
        ->type_name("TEXT");
    AddNumber<unsigned short>(command, "--erase-segments", header.eraseSegments, "Erase segments");
    command
        .add_option_function<std::vector<std::string>>(
            "--erase-segments-count",
            [&header](const std::vector<std::string>& texts) { ParseEraseSegmentsCount(header, texts); },
            "Up to 22 counts, with commas between")
        ->delimiter(',')
        ->expected(1, static_cast<int>(header.eraseSegmentsCount.size()))
        ->type_name("NUMBER,...");
    command
        .add_option_function<std::string>(
            "--oldest", [&header](const std::string& text) { ParseOldest(header, text); },
            "Oldest version that it is compatible with")
        ->type_name("MAJOR.MINOR");
    AddNumber<unsigned int>(command, "--crc-start", options->crcStart,
                            "Address of the first byte under the checksum (the program's first)");
    AddNumber<unsigned int>(command, "--crc-length", options->crcLength,
                            "Bytes under the checksum (up to the program's end)");
    command.add_flag("--seal", options->seal,
                     "Append the program's own checksum, which the virtual module checks before it runs it");
    return [options] {
        Build(*options);
        return DONE;
    };
}

} // namespace VeskTool
