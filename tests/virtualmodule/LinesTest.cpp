// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Lines.h"

#include <gtest/gtest.h>

TEST(LinesTest, AnInterruptCountsOnlyInItsGeneration) {
    VirtualModule::Lines lines;
    lines.DriveReset_n(true);
    lines.AssertIrq(1);
    lines.DriveReset_n(false);
    lines.AssertIrq(1); // a module that has not noticed the reset yet
    EXPECT_TRUE(lines.ReadIrq_n()) << "reset releases it";
    lines.DriveReset_n(true);
    lines.AssertIrq(1); // nor that it was released again
    EXPECT_TRUE(lines.ReadIrq_n());
    lines.AssertIrq(2);
    lines.DriveReset_n(true);
    EXPECT_FALSE(lines.ReadIrq_n()) << "the line was high already";
    for (int i = 0; i < 254; ++i)
        lines.DriveReset_n(false), lines.DriveReset_n(true);
    EXPECT_EQ(lines.Generation(), 1) << "255 is followed by 1, never by 0";
}
