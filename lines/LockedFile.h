// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/lines/InUse.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>

/// A file that host and module share, one process on either side. Its side is locked for as long as the
/// object lives, and the lock goes with the process however that ends.
class LockedFile {
public:
    enum class Side { HOST, MODULE };

    /// Opens the file at `path` for reading and writing, with `flags` of open(2) besides. InUse, which names
    /// the process, when another one, or this one already, has that side; std::system_error naming the file
    /// when it cannot be opened or locked.
    LockedFile(const std::string& path, Side side, int flags = 0)
        // Not blocking: a pipe that nobody reads must not hold the program up.
        : _descriptor(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | flags, 0666)) {
        if (_descriptor < 0)
            throw std::system_error(errno, std::generic_category(), path);
        try {
            Lock(path, side);
        } catch (...) {
            close(_descriptor);
            throw;
        }
    }

    ~LockedFile() { close(_descriptor); }

    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    int Descriptor() const { return _descriptor; }

private:
    /// The lock belongs to this opening of the file, so that closing another one does not lose it. Such a
    /// lock does not say whose it is, so its length does: it has as many bytes as the process its number.
    void Lock(const std::string& path, Side side) const {
        while (true) {
            struct flock lock {};

            lock.l_type = F_WRLCK;
            lock.l_whence = SEEK_SET;
            lock.l_start = side == Side::HOST ? 0x10000000 : 0x20000000; // no process has so high a number
            lock.l_len = getpid();
            if (fcntl(_descriptor, F_OFD_SETLK, &lock) == 0)
                return;
            if ((errno != EAGAIN && errno != EACCES) || fcntl(_descriptor, F_OFD_GETLK, &lock) != 0)
                throw std::system_error(errno, std::generic_category(), path);
            const auto process = static_cast<long>(lock.l_len);
            if (lock.l_type != F_UNLCK) // otherwise it was given back meanwhile
                throw InUse(path, ProcessText(process), process);
        }
    }

    /// "process 4711 (vesk)"; the number alone where the process is not to be seen from here.
    static std::string ProcessText(long number) {
        if (number == getpid())
            return "this process";
        std::string name;
        std::getline(std::ifstream("/proc/" + std::to_string(number) + "/comm"), name);
        for (char& character : name)
            if (character < ' ' || character > '~') // a process chooses its name
                character = '?';
        return "process " + std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
    }

    int _descriptor;
};
