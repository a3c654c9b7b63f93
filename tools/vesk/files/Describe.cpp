// SPDX-License-Identifier: MIT
// The commands that make files of a bus description.
#include "busdescription/decompile/Decompile.h"
#include "busdescription/header/Header.h"
#include "busdescription/records/DatabaseBytes.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/files/DescriptionFile.h"
#include "tools/vesk/files/FileBytes.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Text.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace VeskTool {

namespace {

struct DescribeOptions {
    std::string path;
    std::string output; // empty: the text's name with another ending
    bool explain = false;
    bool strict = false;
    bool json = false;
};

/// "0-7" or, where they do not lie one behind the other, "0, 4-6".
std::string Shown(const BusDescription::Places& places) {
    return places.empty() ? "-" : Addresses({places.begin(), places.end()});
}

/// Where each slave's data lies.
void ShowPlaces(const BusDescription::CompiledBus& bus) {
    std::size_t width = std::string("name").size();
    for (const auto& slave : bus.slaves)
        width = std::max(width, slave.name.size());
    std::cout << "address  " << Padded("name", width) << "  to the bus (input)  from the bus (output)\n";
    for (const auto& slave : bus.slaves) {
        const auto places = [&slave](const char* field) {
            return Shown(std::get<BusDescription::Places>(slave.record.At(field)));
        };
        const std::string address = std::to_string(slave.address);
        std::cout << std::string(7 - address.size(), ' ') << address << "  " << Padded(slave.name, width)
                  << "  " << Padded(places("inputOffsetTable"), 18) << "  " << places("outputOffsetTable")
                  << "\n";
    }
}

/// A value as a description has it, numbers decimal.
std::string Shown(const BusDescription::FieldValue& value) {
    if (const auto* number = std::get_if<std::uint32_t>(&value))
        return std::to_string(*number);
    if (const auto* text = std::get_if<std::string>(&value))
        return '"' + Printable(*text) + '"';
    if (const auto* bytes = std::get_if<BusDescription::Bytes>(&value))
        return bytes->empty() ? "-" : HexDigits(*bytes);
    return Shown(std::get<BusDescription::Places>(value));
}

void ExplainRecord(const std::string& title, const BusDescription::FieldList& fields,
                   const BusDescription::RecordPlan& record) {
    std::cout << title << "\n";
    for (const auto& [field, value] : fields)
        std::cout << "  " << Padded(field, 29) << "  " << Padded(Shown(value), 12) << "  "
                  << Printable(record.OriginOf(field)) << "\n";
}

/// Where each value of the records comes from.
void Explain(const BusDescription::CompiledBus& bus) {
    ExplainRecord("master", BusDescription::FieldsOf(*bus.config->Master()), bus.master);
    for (const auto& slave : bus.slaves)
        ExplainRecord("slave " + slave.name, BusDescription::FieldsOf(*bus.config->Slave(slave.address)),
                      slave.record);
}

std::string OutputOf(const DescribeOptions& options, const char* ending) {
    return options.output.empty() ? std::filesystem::path(options.path).replace_extension(ending).string()
                                  : options.output;
}

nlohmann::ordered_json PlacesToJson(const BusDescription::CompiledBus& bus) {
    auto slaves = nlohmann::ordered_json::array();
    for (const auto& slave : bus.slaves)
        slaves.push_back(
            {{"name", slave.name},
             {"address", slave.address},
             {"toBus", std::get<BusDescription::Places>(slave.record.At("inputOffsetTable"))},
             {"fromBus", std::get<BusDescription::Places>(slave.record.At("outputOffsetTable"))}});
    return slaves;
}

void BuildDatabase(const DescribeOptions& options) {
    const CompiledDescription compiled = CompileDescription(options.path, options.strict);
    const auto bytes = BusDescription::DatabaseBytes(*compiled.bus.config);
    const std::string output = OutputOf(options, ".ddb");
    const std::string checksum = ChecksumText(compiled.bus.config->Checksum());
    WriteFile(output, bytes, options.path, "the description");
    if (options.json) {
        std::cout << JsonText({{"file", output},
                               {"bytes", bytes.size()},
                               {"checksum", checksum},
                               {"slaves", PlacesToJson(compiled.bus)}});
        return;
    }
    if (options.explain)
        Explain(compiled.bus);
    std::cout << Harmless(output) << ": " << bytes.size() << " bytes, checksum " << checksum << "\n";
    ShowPlaces(compiled.bus);
}

struct DecompileOptions {
    std::string path;
    std::string output; // empty: standard output
    std::string folder; // of device description files; or empty
};

void DecompileDatabase(const DecompileOptions& options) {
    const auto config = LoadDatabaseFile(options.path);
    const auto base = FolderOfText(options.output);
    BusDescription::DeviceFiles files(base.string());
    const std::string name = std::filesystem::path(options.path).filename().string();
    const std::string text =
        BusDescription::Decompile(*config, name, files, DeviceFilesIn(options.folder, base));
    if (options.output.empty())
        std::cout << text;
    else
        WriteFile(options.output, {text.begin(), text.end()}, options.path, "the database");
}

struct HeaderOptions {
    std::string path;
    std::string output; // empty: standard output
    std::string space;  // empty: the text's name
};

void MakeHeader(const HeaderOptions& options) {
    const CompiledDescription compiled = CompileDescription(options.path);
    BusDescription::Findings findings;
    const std::string space =
        options.space.empty() ? BusDescription::TypeName(std::filesystem::path(options.path).stem().string())
                              : options.space;
    if (!BusDescription::IsName(space))
        throw Failure("\"" + space + "\" is no name for a namespace, give one with --namespace");
    const std::string text = BusDescription::Header(compiled.description, compiled.bus, space, findings);
    Judge(options.path, findings, false);
    if (options.output.empty())
        std::cout << text;
    else
        WriteFile(options.output, {text.begin(), text.end()}, options.path, "the description");
}

} // namespace

Action AddConfigBuild(CLI::App& command) {
    const auto options = std::make_shared<DescribeOptions>();
    AddArgument(command, "FILE", options->path, "Bus description (.toml)");
    command.add_option("-o,--output", options->output, "Database to make (FILE with the ending .ddb)")
        ->type_name("FILE");
    command.add_flag("--explain", options->explain, "Show where each value of the records comes from");
    command.add_flag("--strict", options->strict, "Take warnings for errors");
    AddJson(command, options->json);
    return [options] {
        BuildDatabase(*options);
        return DONE;
    };
}

Action AddConfigDecompile(CLI::App& command) {
    const auto options = std::make_shared<DecompileOptions>();
    AddArgument(command, "FILE", options->path, "Configuration database file (.ddb)");
    command.add_option("-o,--output", options->output, "Bus description to make; standard output without it")
        ->type_name("FILE");
    command.add_option("--gsd", options->folder, "Folder of device description files to use where they fit")
        ->type_name("FOLDER");
    return [options] {
        DecompileDatabase(*options);
        return DONE;
    };
}

Action AddConfigHeader(CLI::App& command) {
    const auto options = std::make_shared<HeaderOptions>();
    AddArgument(command, "FILE", options->path, "Bus description (.toml)");
    command.add_option("-o,--output", options->output, "Header to make; standard output without it")
        ->type_name("FILE");
    command.add_option("--namespace", options->space, "Its namespace (the name of FILE)")->type_name("NAME");
    return [options] {
        MakeHeader(*options);
        return DONE;
    };
}

} // namespace VeskTool
