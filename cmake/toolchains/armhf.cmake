# SPDX-License-Identifier: MIT
# Debian's cross compiler for armhf; the programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/bin/qemu-arm -L /usr/arm-linux-gnueabihf)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabihf/pkgconfig) # not the packages of the machine that builds
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi) # notes on what GCC 7 changed, of code that nobody compiled with GCC 6
