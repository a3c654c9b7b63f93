// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/LockedFile.h"
#include "vesk/system/Delegates.h"

#include <atomic>
#include <cerrno>
#include <memory>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

/// The three control lines of a virtual module that runs as a process of its own: four bytes in a file that
/// both map. On a controller, functions that read and drive real lines take its place. They belong to this
/// host for as long as the object, or one of its callbacks, lives.
///
/// Byte 0, irq: not 0 when the module asserts its interrupt, and then the generation in which it does. Byte
/// 1: level of the reset line. Byte 2: level of the bootloader-enable line. Byte 3, generation: counts the
/// releases of reset, 1 to 255 over and over.
class LinesFile : public std::enable_shared_from_this<LinesFile> {
public:
    /// Maps the file. InUse, which names the process, when another host has the lines, in this process or
    /// another one; std::system_error naming the file when it cannot be opened or has fewer than four bytes.
    static std::shared_ptr<LinesFile> Open(const std::string& path) {
        return std::shared_ptr<LinesFile>(new LinesFile(path));
    }

    ~LinesFile() { munmap(_bytes, SIZE); }

    LinesFile(const LinesFile&) = delete;
    LinesFile& operator=(const LinesFile&) = delete;

    /// The callbacks for the factories of Vt22.h; each keeps the file open.
    std::shared_ptr<System::IFunc<bool>> VelmoIrq_n() {
        return System::Func<bool>::Create([lines = shared_from_this()] { return lines->ReadIrq_n(); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> Reset_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->DriveReset_n(level); });
    }

    std::shared_ptr<System::IArgFunc<bool, void>> BootloaderEnable_n() {
        return System::ArgFunc<bool, void>::Create(
            [lines = shared_from_this()](bool level) { lines->_bytes[BOOTLOADER_ENABLE_N] = level; });
    }

private:
    enum { IRQ, RESET_N, BOOTLOADER_ENABLE_N, GENERATION, SIZE };

    using Byte = std::atomic<unsigned char>;
    static_assert(sizeof(Byte) == 1 && Byte::is_always_lock_free);

    explicit LinesFile(const std::string& path) : _file(path, LockedFile::Side::HOST) {
        if (lseek(_file.Descriptor(), 0, SEEK_END) < SIZE)
            throw std::system_error(EINVAL, std::generic_category(), path + ": shorter than the four lines");
        void* const memory = mmap(nullptr, SIZE, PROT_READ | PROT_WRITE, MAP_SHARED, _file.Descriptor(), 0);
        if (memory == MAP_FAILED)
            throw std::system_error(errno, std::generic_category(), path);
        _bytes = static_cast<Byte*>(memory);
    }

    /// The level of the interrupt line. On the real bus reading the module's register releases it.
    bool ReadIrq_n() {
        const unsigned char irq = _bytes[IRQ];
        if (_bytes[RESET_N] == 0 || irq == 0 || irq != _bytes[GENERATION])
            return true;
        _bytes[IRQ] = 0;
        // The module must see the release before whatever the host then writes to the DPRAM: in answer to
        // that it may raise the next interrupt, which a release that is seen later would take away.
        std::atomic_thread_fence(std::memory_order_seq_cst);
        return false;
    }

    /// A rise starts a new generation, so that an interrupt of the life before counts no more.
    void DriveReset_n(bool level) {
        if (!level) {
            _bytes[RESET_N] = 0;
            _bytes[IRQ] = 0;
        } else if (_bytes[RESET_N] == 0) {
            _bytes[IRQ] = 0;
            const unsigned char generation = _bytes[GENERATION];
            _bytes[GENERATION] = static_cast<unsigned char>(generation == 255 ? 1 : generation + 1);
            _bytes[RESET_N] = 1;
        }
    }

    LockedFile _file;
    Byte* _bytes = nullptr;
};
