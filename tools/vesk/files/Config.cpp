// SPDX-License-Identifier: MIT
#include "tools/vesk/files/ConfigJson.h"
#include "tools/vesk/files/ConfigText.h"
#include "tools/vesk/files/DatabaseFile.h"
#include "tools/vesk/files/FileCommands.h"
#include "tools/vesk/text/ByteText.h"
#include "tools/vesk/text/Failure.h"

#include <algorithm>
#include <iostream>
#include <optional>
#include <sstream>

namespace VeskTool {

using nlohmann::ordered_json;

namespace {

struct ConfigOptions {
    std::string path;
    std::string otherPath; // of what it is compared with
    bool json = false;
    bool force = false;
    bool raw = false;
};

void ShowConfig(const ConfigOptions& options) {
    const DatabaseFile file = ReadDatabaseFile(options.path);
    const auto& config = file.config;
    if (file.Damaged() && !options.force)
        throw Failure(file.Damage(options.path));
    if (file.Damaged())
        std::cerr << "vesk: warning: " << Harmless(file.Damage(options.path)) << std::endl;
    if (options.json) {
        auto json = ToJson(*config);
        json["statedChecksum"] = file.checksum;
        std::cout << JsonText(json);
        return;
    }
    if (!options.raw) {
        std::cout << ConfigText(*config);
        return;
    }
    std::istringstream lines(config->ToString().Value());
    for (std::string line; std::getline(lines, line);) {
        // The name of the Class 2 master is padded with zero bytes.
        std::cout << Printable(line.substr(0, line.find_last_not_of('\0') + 1)) << "\n";
    }
}

/// Collects the fields that differ, `path` being the way to both objects. A null stands for what one of the
/// two does not have.
void Compare(const ordered_json& a, const ordered_json& b, const std::string& path,
             ordered_json& differences) {
    if (a == b)
        return;
    if (!a.is_object() || !b.is_object()) {
        differences.push_back({{"field", path}, {"a", a}, {"b", b}});
        return;
    }
    const std::string prefix = path.empty() ? "" : path + ".";
    for (const auto& [name, value] : a.items())
        Compare(value, b.contains(name) ? b.at(name) : ordered_json(), prefix + name, differences);
    for (const auto& [name, value] : b.items())
        if (!a.contains(name))
            Compare(ordered_json(), value, prefix + name, differences);
}

/// Slaves as members by their address instead of an array; their order, upon which the checksum depends, as
/// a field of its own.
ordered_json Comparable(ordered_json config) {
    ordered_json slaves = ordered_json::object();
    ordered_json order = ordered_json::array();
    for (const ordered_json& slave : config.at("slaves")) {
        slaves["slave " + std::to_string(slave.at("address").get<int>())] = slave;
        order.push_back(slave.at("address"));
    }
    config.erase("slaves");
    config.update(slaves);
    config["slaveOrder"] = order;
    return config;
}

/// A way to a field, for people.
class FieldPath {
public:
    explicit FieldPath(const std::string& path)
        : _path(path), _field(path.substr(path.rfind('.') + 1)), _below(_field != path) {
        constexpr std::string_view slave = "slave ";
        if (path.starts_with(slave))
            _slave = static_cast<unsigned char>(std::stoi(path.substr(slave.size())));
    }

    /// With the name of the slave, where one of the files has it.
    std::string Title(const DescribedBus& a, const DescribedBus& b) const {
        const auto* text = _slave ? a.SlaveAt(*_slave) : nullptr;
        if (_slave && text == nullptr)
            text = b.SlaveAt(*_slave);
        const std::size_t point = std::min(_path.find('.'), _path.size());
        return text == nullptr ? _path
                               : _path.substr(0, point) + " (" + text->name + ")" + _path.substr(point);
    }

    /// The field's value in a file, and what it means.
    std::string Value(const DescribedBus& bus, const ordered_json& value) const {
        return _below ? FieldText(*bus.config, _slave, _field) : value.dump();
    }

private:
    const std::string& _path;
    std::string _field;
    bool _below; // a field of a record
    std::optional<unsigned char> _slave;
};

/// Whether the files say the same.
bool DiffConfigs(const ConfigOptions& options) {
    const auto busA = LoadDescribedBus(options.path);
    const auto busB = LoadDescribedBus(options.otherPath);
    const ordered_json a = Comparable(ToJson(*busA->config));
    const ordered_json b = Comparable(ToJson(*busB->config));
    ordered_json differences = ordered_json::array();
    Compare(a, b, "", differences);
    if (options.json) {
        std::cout << JsonText({{"same", differences.empty()}, {"differences", differences}});
        return differences.empty();
    }
    for (const ordered_json& difference : differences) {
        const auto path = difference.at("field").get<std::string>();
        const FieldPath field(path);
        std::cout << field.Title(*busA, *busB) << ": ";
        if (difference.at("a").is_null() || difference.at("b").is_null())
            std::cout << "only in "
                      << Harmless(difference.at("b").is_null() ? options.path : options.otherPath) << "\n";
        else
            std::cout << field.Value(*busA, difference.at("a")) << " -> "
                      << field.Value(*busB, difference.at("b")) << "\n";
    }
    return differences.empty();
}

} // namespace

Action AddConfigShow(CLI::App& command) {
    const auto options = std::make_shared<ConfigOptions>();
    AddArgument(command, "FILE", options->path, "Configuration database (.ddb) or bus description (.toml)");
    command.add_flag("--force", options->force,
                     "Show a file that does not have the checksum of its first line, too");
    command.add_flag("--raw", options->raw, "Show the values as they are, without what they mean");
    AddJson(command, options->json);
    return [options] {
        ShowConfig(*options);
        return DONE;
    };
}

Action AddConfigDiff(CLI::App& command) {
    const auto options = std::make_shared<ConfigOptions>();
    AddArgument(command, "A", options->path, "Configuration database (.ddb) or bus description (.toml)");
    AddArgument(command, "B", options->otherPath, "The file that it is compared with");
    AddJson(command, options->json);
    return [options] { return DiffConfigs(*options) ? DONE : DIFF_DIFFERENT; };
}

} // namespace VeskTool
