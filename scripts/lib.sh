# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034
# What the scripts share. Sourced by each of them; works from the root of the tree on.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libgpiod-dev
    libedit-dev libncurses-dev libsdbus-c++-dev libsdbus-c++-bin libsystemd-dev)
TEST_PACKAGES=(libgtest-dev libgmock-dev dbus python3-dbus python3-gi)

# Prints what happened as the last line and ends the script.
fail() {
    echo "$(basename "$0"): $*" >&2
    exit 1
}

# Whether the program or header that PACKAGE brings is there; asked where there are no Debian packages.
found_without_packages() {
    case $1 in
        ninja-build) command -v ninja ;;
        libcli11-dev) have_header CLI/CLI.hpp ;;
        nlohmann-json3-dev) have_header nlohmann/json.hpp ;;
        libtomlplusplus-dev) have_header toml++/toml.h ;;
        libgpiod-dev) have_header gpiod.h ;;
        libedit-dev) have_header editline/readline.h ;;
        libncurses-dev) have_header ncurses.h ;;
        libsdbus-c++-dev) have_header sdbus-c++/sdbus-c++.h ;;
        libsdbus-c++-bin) command -v sdbus-c++-xml2cpp ;;
        libsystemd-dev) have_header systemd/sd-daemon.h ;;
        dbus) command -v dbus-daemon ;;
        python3-dbus) python3 -c 'import dbus' ;;
        python3-gi) python3 -c 'import gi' ;;
        libgtest-dev) have_header gtest/gtest.h ;;
        libgmock-dev) have_header gmock/gmock.h ;;
        libbenchmark-dev) have_header benchmark/benchmark.h ;;
        *) command -v "$1" ;;
    esac >/dev/null
}

have_header() {
    echo "#include <$1>" | g++ -std=c++20 -x c++ -E - 2>/dev/null
}

installed() {
    if command -v dpkg-query >/dev/null; then
        [[ $(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) == installed ]]
    else
        found_without_packages "$1"
    fi
}

# Installs those of the Debian packages PACKAGE... that are missing; on a system other than Debian 12 it names
# them and stops.
need() {
    local package missing=() as_root=()
    for package in "$@"; do
        installed "$package" || missing+=("$package")
    done
    [[ ${#missing[@]} -gt 0 ]] || return 0

    # shellcheck source=/dev/null
    if [[ $(. /etc/os-release 2>/dev/null && echo "${ID:-} ${VERSION_ID:-}") != "debian 12" ]]; then
        fail "missing here (Debian's names): ${missing[*]}"
    fi
    if [[ $EUID -ne 0 ]]; then
        command -v sudo >/dev/null || fail "install as root first: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get -qq update
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq install --no-install-recommends "${missing[@]}" >/dev/null
}

# Configures and builds in the folder FOLDER with the options of CMake that follow; the targets in TARGETS only,
# where it is set.
build() {
    local folder=$1 target options=()
    shift
    for target in ${TARGETS:-all}; do
        options+=(--target "$target")
    done
    cmake -S . -B "$folder" -G Ninja --log-level=WARNING "$@" >/dev/null
    cmake --build "$folder" "${options[@]}"
}

# Runs the tests of the build folder FOLDER with the options of CTest that follow; adds their number to `passed`.
passed=0
run_tests() {
    local folder=$1 log=$1/tests.log
    shift
    ctest --test-dir "$folder" --output-on-failure --no-tests=error -j "$(nproc)" "$@" | tee "$log" \
        || fail "tests failed, see above"
    passed=$((passed + $(sed -n 's/^100% tests passed, 0 tests failed out of //p' "$log")))
}
