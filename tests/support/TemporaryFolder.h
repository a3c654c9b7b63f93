// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// An empty folder of its own that goes with the test, and what is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "vesk-test.XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no temporary folder: " + name);
        _path = name;
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of the file `name` in the folder, whether or not it exists.
    std::string Path(const std::string& name) const { return (_path / name).string(); }

    /// Writes `content` into the file `name` and returns its path.
    std::string Put(const std::string& name, const std::string& content) const {
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    std::string Content(const std::string& name) const { return Read(Path(name)); }

    /// The content of any file; empty where there is none.
    static std::string Read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// Number of files in the folder.
    long Count() const { return std::distance(std::filesystem::directory_iterator(_path), {}); }

private:
    std::filesystem::path _path;
};
