// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <streambuf>

namespace VeskTool {

/// Opens those of the descriptors 0 to 2 that are closed, so that no file of the program gets their numbers.
/// Nothing can be written to them, which is an error then as on any other output.
void OpenStandardDescriptors();

/// What std::cout writes to while it lives. What cannot be written is an exception out of std::cout: that of
/// StopIfSignalled where the reader is gone, otherwise std::system_error "standard output: ...".
class StandardOutput : private std::streambuf {
public:
    StandardOutput();
    ~StandardOutput() override;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /// Writes what is left. std::system_error for what could not be written at any time, unless it is that
    /// nobody reads it.
    void Finish();

private:
    int_type overflow(int_type character) override;
    int sync() override;
    void Write();
    [[noreturn]] void Fail() const;

    std::array<char, 4096> _buffer{};
    std::streambuf* _replaced;
    int _error = 0; // of the first write that failed
};

} // namespace VeskTool
