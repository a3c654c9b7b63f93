# SPDX-License-Identifier: MIT
# Built from an archive of the source tree beside this recipe, in files/: git archive --prefix=vesk-2.0.0/ HEAD
SUMMARY = "Host-side driver library for the VT22 PROFIBUS DP-V1 master module"
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=4fd17f5732ee92a555159413e2b31094"

SRC_URI = "file://vesk-${PV}.tar.gz"

# The library needs nothing but the C++ library; these are for the command line. libedit and ncurses are in oe-core, the
# others are in meta-oe.
DEPENDS = "cli11 nlohmann-json libgpiod libedit ncurses tomlplusplus"

# libvesk-dbus, and the commands that use D-Bus; sdbus-c++ 1.x with its tools, which are in meta-oe.
PACKAGECONFIG ??= "dbus"
PACKAGECONFIG[dbus] = "-DCMAKE_DISABLE_FIND_PACKAGE_sdbus-c++=OFF,-DCMAKE_DISABLE_FIND_PACKAGE_sdbus-c++=ON,sdbus-c++ sdbus-c++-tools-native"

inherit cmake pkgconfig

EXTRA_OECMAKE = "-DVESK_BUILD_TESTS=OFF -DVESK_BUILD_EXAMPLES=OFF -DVESK_SEPARATE_DEBUG=OFF"

PACKAGES =+ "${PN}-tools ${PN}-dbus"
FILES:${PN}-tools = "${bindir} ${datadir}/bash-completion ${datadir}/zsh ${datadir}/fish \
    ${datadir}/dbus-1/system.d/org.libvesk.VirtualModule.conf"
FILES:${PN}-dbus = "${libdir}/libvesk-dbus.so.* ${datadir}/dbus-1/system.d/org.libvesk.Master.conf"
FILES:${PN}-dev += "${datadir}/dbus-1/interfaces"
