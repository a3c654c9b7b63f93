// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

/// Expects the file `name` of tests/data to hold `text`. With VESK_WRITE_DATA=1 in the environment the file
/// is written instead, for a look at what has changed.
inline void ExpectGolden(const std::string& name, const std::string& text) {
    const std::string path = SOURCE_DIR "/tests/data/" + name;
    if (std::getenv("VESK_WRITE_DATA"))
        std::ofstream(path) << text;
    EXPECT_EQ(text, TemporaryFolder::Read(path)) << "in " << path;
}
