# SPDX-License-Identifier: MIT
# Built from an archive of the source tree beside this recipe, in files/: git archive --prefix=vesk-2.0.0/ HEAD
SUMMARY = "Host-side driver library for the VT22 PROFIBUS DP-V1 master module"
SECTION = "libs"
LICENSE = "MIT"
LIC_FILES_CHKSUM = "file://LICENSE;md5=4fd17f5732ee92a555159413e2b31094"

SRC_URI = "file://vesk-${PV}.tar.gz"

# The library needs nothing but the C++ library; these are for the command line. libedit is in oe-core, the others are
# in meta-oe.
DEPENDS = "cli11 nlohmann-json libgpiod libedit tomlplusplus"

inherit cmake pkgconfig

EXTRA_OECMAKE = "-DVESK_BUILD_TESTS=OFF -DVESK_BUILD_EXAMPLES=OFF -DVESK_SEPARATE_DEBUG=OFF"

PACKAGES =+ "${PN}-tools"
FILES:${PN}-tools = "${bindir} ${datadir}/bash-completion ${datadir}/zsh ${datadir}/fish"
