// What unloading the library does to its registry, in a process of its own.
#include "objects/registry_calls.h"
#include "support/debugged_process.h"

#include <gtest/gtest.h>

TEST(UnloadTest, UnloadingForgetsAllClassesAndLoadingStartsAfresh) {
    DebuggedRun run = RunDebugged("test_unload_child.exe");
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output.find("still live"), std::string::npos) << run.output;
}

TEST(UnloadTest, TheEntryHookIsCalledFirstAndTheRegistryOutlivesCom) {
    DebuggedRun run = RunDebugged("test_unload_child.exe order");
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitCode, 0u);
}

TEST(UnloadTest, CallsAfterTheEndOfTheLibraryFailWithoutHarm) {
    DebuggedRun run = RunDebugged("test_unload_child.exe late");
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitCode, kLateCallsDidNoHarm);
}
