// SPDX-License-Identifier: MIT
#include "virtualmodule/wires/Lines.h"
#include "virtualmodule/InProcess.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using VirtualModule::Lines;

TEST(LinesTest, KeepTheirPlacesInSharedMemory) {
    alignas(Lines) unsigned char file[4]{};
    Lines& lines = Lines::At(file);
    EXPECT_TRUE(lines.ResetAsserted() && lines.BootloaderEnabled() && lines.ReadIrq_n());
    lines.DriveBootloaderEnable_n(true);
    lines.DriveReset_n(true);
    lines.AssertIrq(1);
    const unsigned char expected[4]{1, 1, 1, 1};
    EXPECT_EQ(std::memcmp(file, expected, 4), 0);
    EXPECT_FALSE(lines.ReadIrq_n());
    EXPECT_TRUE(lines.ReadIrq_n()) << "reading it low releases it";
}

TEST(LinesTest, AnInterruptCountsOnlyInItsGeneration) {
    Lines lines;
    lines.DriveReset_n(true);
    lines.AssertIrq(1);
    lines.DriveReset_n(false);
    lines.AssertIrq(1); // a module that has not noticed the reset yet
    EXPECT_TRUE(lines.ReadIrq_n());
    lines.DriveReset_n(true);
    EXPECT_EQ(lines.Generation(), 2);
    EXPECT_TRUE(lines.ReadIrq_n()) << "reset releases it";
    lines.AssertIrq(1); // nor that it was released again
    EXPECT_TRUE(lines.ReadIrq_n());
    lines.AssertIrq(2);
    lines.DriveReset_n(true);
    EXPECT_EQ(lines.Generation(), 2) << "the line was high already";
    EXPECT_FALSE(lines.ReadIrq_n());
    for (int i = 0; i < 254; ++i) {
        lines.DriveReset_n(false);
        lines.DriveReset_n(true);
    }
    EXPECT_EQ(lines.Generation(), 1) << "255 is followed by 1, never by 0";
}

TEST(InProcessTest, OwnsADpRamFileThroughWhichTheModuleIsReached) {
    std::string path;
    VirtualModule::Flash flash;
    {
        std::int64_t now = 0;
        VirtualModule::InProcess module(flash, [&] { return now; });
        path = module.DpRamPath();
        EXPECT_EQ(std::filesystem::file_size(path), 8192u);
        module.BootloaderEnable_n(true);
        module.Reset_n(true);
        EXPECT_TRUE(module.VelmoIrq_n()) << "it takes its time to boot";
        now += 1'000'000;
        EXPECT_FALSE(module.VelmoIrq_n());

        std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekg(0x1FFB);
        EXPECT_EQ(file.get(), 0x10) << "power-on";
        file.seekp(0x1FFA);
        file << "\x80\x80\x80" << std::flush; // a reserved bit, and 0x1FFB is not the host's
        module.VelmoIrq_n();
        EXPECT_EQ(module.GetModule().Violations().size(), 2u);
        module.Reset_n(false);
        now += 10'000'000;
        EXPECT_TRUE(module.VelmoIrq_n()) << "dead in reset";
        EXPECT_THROW(module.GetModule().RaiseLog(), std::logic_error);
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
