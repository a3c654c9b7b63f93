// SPDX-License-Identifier: MIT
#include "vesk/hostinterface/BitLabels.h"

#include <gtest/gtest.h>

#include <array>

using Vesk::HostInterface::BitLabels;

TEST(BitLabelsTest, NamesTheSetBitsFromBitZeroOn) {
    constexpr std::array LABELS{"a", "b", "c"};
    EXPECT_EQ(BitLabels("Ind:", 0, LABELS).Value(), "Ind:");
    EXPECT_EQ(BitLabels("Ind:", 5, LABELS).Value(), "Ind: a c");
    EXPECT_EQ(BitLabels("", 0xFFFA, LABELS).Value(), " b");
}
