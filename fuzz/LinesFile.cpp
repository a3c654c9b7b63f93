// SPDX-License-Identifier: MIT
// The lines file: any bytes in it, of any number, changed by both sides and by nobody. The application's side
// and the virtual module's own have to agree. The input is the file's size, its bytes, and then what happens.
#include "fuzz/Properties.h"

#include "vesk/lines/LinesFile.h"
#include "virtualmodule/wires/Lines.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fcntl.h>

using Fuzz::Bytes;
using Fuzz::Require;
using VirtualModule::Lines;

namespace {

/// One mapping of the file, as the module has it.
class Mapping {
public:
    explicit Mapping(const std::string& path) {
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        memory = ::mmap(nullptr, Lines::SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        ::close(file);
        Require(memory != MAP_FAILED, "the file can be mapped");
    }

    ~Mapping() { ::munmap(memory, Lines::SIZE); }

    Mapping(const Mapping&) = delete;
    Mapping& operator=(const Mapping&) = delete;

    std::array<unsigned char, Lines::SIZE> Content() const {
        std::array<unsigned char, Lines::SIZE> content{};
        std::memcpy(content.data(), memory, content.size());
        return content;
    }

    void* memory;
};

/// Does to the application's lines and to the module's the same, step by step.
void Play(const std::string& path, std::span<const unsigned char> steps) {
    const auto host = LinesFile::Open(path);
    const auto velmoIrq_n = host->VelmoIrq_n();
    const auto reset_n = host->Reset_n();
    const auto bootloaderEnable_n = host->BootloaderEnable_n();
    const Mapping file(path);

    alignas(Lines) unsigned char twin[Lines::SIZE];
    std::memcpy(twin, file.memory, sizeof twin);
    Lines& module = Lines::At(twin);
    for (const unsigned char step : steps) {
        const bool level = step & 0x80;
        switch (step % 5) {
        case 0:
            Require(velmoIrq_n->Invoke() == module.ReadIrq_n(), "both sides see one interrupt line");
            break;
        case 1:
            reset_n->Invoke(level);
            module.DriveReset_n(level);
            break;
        case 2:
            bootloaderEnable_n->Invoke(level);
            module.DriveBootloaderEnable_n(level);
            break;
        case 3:
            Lines::At(file.memory).AssertIrq(level ? module.Generation() : step);
            module.AssertIrq(level ? module.Generation() : step);
            break;
        case 4: // somebody else scribbles
            static_cast<unsigned char*>(file.memory)[step >> 3 & 3] = step;
            twin[step >> 3 & 3] = step;
            break;
        }
        const auto content = file.Content();
        Require(std::equal(content.begin(), content.end(), twin), "both sides leave the same bytes");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::span<const unsigned char> input(data + 1, size - 1);
    const std::size_t fileSize = std::min<std::size_t>(data[0] % 8, input.size());
    const Fuzz::TemporaryFile file(input.first(fileSize));
    try {
        Play(file.Path(), input.subspan(fileSize));
        Require(fileSize >= Lines::SIZE, "a file without all lines is refused");
    } catch (const std::system_error& refused) {
        Require(fileSize < Lines::SIZE, "only a file without all lines is refused", refused.what());
    }
    return 0;
}
