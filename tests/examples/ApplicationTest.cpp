// SPDX-License-Identifier: MIT
#include "tests/support/ModuleFiles.h"

#include <gtest/gtest.h>

namespace {

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(ApplicationTest, IsWhatTheReadmeShows) {
    const std::string readme = Content(SOURCE_DIR "/README.md");
    const std::string application = Content(SOURCE_DIR "/examples/application.cpp");
    ASSERT_NE(application, "");
    EXPECT_NE(readme.find("```cpp\n" + application + "```\n"), std::string::npos);
}

TEST(ApplicationTest, RunsAgainstAModuleInAnotherProcess) {
    const ModuleFiles files{};
    const auto module = files.StartModule();
    for (int life = 0; life < 2; ++life) { // with a download and without
        Process application(EXAMPLE_APPLICATION,
                            {files.dpRam, files.lines, SOURCE_DIR "/examples/plant.ddb"});
        EXPECT_EQ(application.Wait(), 0) << application.Err();
        EXPECT_EQ(application.Out().rfind("online\nnew mode\n42 went to the bus and came back\n", 0), 0u);
        EXPECT_NE(application.Out().find("\nError: No error\n"), std::string::npos);
    }
    EXPECT_EQ(module->End(SIGTERM), 0);
    EXPECT_EQ(module->Err(), "");
}

} // namespace
