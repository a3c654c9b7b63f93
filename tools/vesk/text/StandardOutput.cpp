// SPDX-License-Identifier: MIT
#include "tools/vesk/text/StandardOutput.h"

#include "tools/vesk/text/Interruption.h"

#include <cerrno>
#include <fcntl.h>
#include <iostream>
#include <system_error>
#include <unistd.h>

namespace VeskTool {

void OpenStandardDescriptors() {
    int descriptor = 0;
    do // the lowest that is free
        descriptor = ::open("/dev/null", O_RDONLY);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    ::close(descriptor);
}

StandardOutput::StandardOutput() : _replaced(std::cout.rdbuf(this)) {
    setp(_buffer.data(), _buffer.data() + _buffer.size());
    std::cout.exceptions(std::ios::badbit);
}

StandardOutput::~StandardOutput() {
    std::cout.exceptions(std::ios::goodbit);
    std::cout.rdbuf(_replaced);
}

void StandardOutput::Finish() {
    if (_error == 0)
        std::cout.flush();
    if (_error != 0 && !NobodyReads())
        Fail();
}

StandardOutput::int_type StandardOutput::overflow(int_type character) {
    Write();
    return traits_type::eq_int_type(character, traits_type::eof())
               ? traits_type::not_eof(character)
               : sputc(traits_type::to_char_type(character));
}

int StandardOutput::sync() {
    Write();
    return 0;
}

void StandardOutput::Write() {
    const char* from = pbase();
    const char* const end = pptr();
    setp(_buffer.data(), _buffer.data() + _buffer.size()); // what cannot be written is not tried again
    while (from != end) {
        const ::ssize_t written = ::write(STDOUT_FILENO, from, static_cast<std::size_t>(end - from));
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0) {
            _error = errno;
            std::cerr.tie(nullptr); // what is said of it would be thrown out of std::cout again
            StopIfSignalled([](int) { return "while writing its output"; });
            Fail();
        }
        from += written;
    }
}

void StandardOutput::Fail() const {
    throw std::system_error(_error, std::generic_category(), "standard output");
}

} // namespace VeskTool
