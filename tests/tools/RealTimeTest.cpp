// SPDX-License-Identifier: MIT
#include "tests/support/RunTool.h"
#include "tools/vesk/text/Histogram.h"

using testing::ElementsAre;
using testing::HasSubstr;
using VeskTool::Histogram;

namespace {

/// Only root, or who was given the right, may.
bool MayHavePriorities() {
    return RunTool::Run({"-f", "10", "true"}, "/usr/bin/chrt").status == 0;
}

TEST(RealTimeTest, DurationsAreCountedByTheMicrosecond) {
    Histogram histogram;
    EXPECT_THAT(histogram.ToJson(), HasFacts(R"({"count":0,"least":0,"most":0,"buckets":[]})"));
    const auto add = [&](std::int64_t nanoseconds, int times) {
        for (int time = 0; time < times; ++time)
            histogram.Add(std::chrono::nanoseconds(nanoseconds));
    };
    add(2'000, 400);
    add(2'999, 100);
    add(3'000, 495);
    add(-5, 1); // no clock goes back, but no number may lead out of the buckets
    add(7'001, 1);
    add(12'345, 1);
    add(9'999'000, 1);
    add(4'000'000'000'000, 1);
    EXPECT_THAT(histogram.Lines(),
                ElementsAre("1000 times, 0 to 4000000000 us, half within 2 us, 99.9 % within 9999 us",
                            "0:1 2:500 3:495 7-9999+:4"));
    EXPECT_EQ(histogram.Quantile(0.501), 2);
    EXPECT_EQ(histogram.Quantile(0.502), 3);
    EXPECT_THAT(histogram.ToJson(), HasFacts(R"({"count":1000,"least":0,"median":2,"most":4000000000,
        "buckets":[[0,1],[2,500],[3,495],[7,1],[12,1],[9999,2]]})"));
}

TEST(RealTimeTest, ARightThatIsMissingIsNamed) {
    const auto run = [](const std::string& limit, const std::string& capability) {
        const Process::Arguments script{
            "-c", "[ \"$(id -u)\" != 0 ] || less='setpriv --bounding-set=-" + capability + " --inh-caps=-" +
                      capability + "'; exec prlimit " + limit + " $less \"$0\" \"$@\" run --rt 10"};
        return RunTool::Run(Process::Join(script, Process::WordsOf(VESK_TOOL)), "/bin/sh");
    };
    const ToolResult priority = run("--rtprio=0", "sys_nice");
    EXPECT_EQ(priority.status, 1);
    EXPECT_THAT(priority.err,
                HasSubstr("real-time priority 10 is refused: the limit (RLIMIT_RTPRIO) is 0\n"));
    if (!MayHavePriorities())
        GTEST_SKIP();
    EXPECT_THAT(run("--memlock=65536", "ipc_lock").err, HasSubstr("limit (RLIMIT_MEMLOCK) is 64 KiB\n"));
}

TEST(RealTimeTest, EachUpdateIsCounted) {
    if (!MayHavePriorities())
        GTEST_SKIP();
    const auto realTime = RunTool::Json({"run", "--cycles", "5", "--rt", "10"})["realTime"];
    EXPECT_THAT(realTime, HasFacts(R"({"priority":10})"));
    EXPECT_GE(realTime["update"]["count"], 5);
    EXPECT_EQ(realTime["period"]["count"].get<int>(), realTime["update"]["count"].get<int>() - 1);
}

} // namespace
