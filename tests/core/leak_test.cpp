// What a debug build does about blocks that nobody freed, and about writes beyond and after a
// block's life.
#include "support/debugged_process.h"

#include <gtest/gtest.h>

TEST(LeakReportTest, AProgramThatLetsGoOfEverythingIsNotReported) {
    DebuggedRun run = RunDebugged("test_leak_child.exe");
    ASSERT_TRUE(run.started);
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.output.find("still live"), std::string::npos) << run.output;
}

TEST(LeakReportTest, ALostBlockIsReportedWithItsSizeAndHeap) {
    DebuggedRun run = RunDebugged("test_leak_child.exe leak");
    ASSERT_TRUE(run.started);
    EXPECT_NE(run.output.find("qxcore: 1 blocks of 116 bytes are still live on permanent heap "),
              std::string::npos)
        << run.output;
}

TEST(GuardHeapTest, AWriteBehindABlockFaults) {
    EXPECT_EQ(RunDebugged("test_leak_child.exe overrun").exitCode,
              DWORD(EXCEPTION_ACCESS_VIOLATION));
}

TEST(GuardHeapTest, AWriteIntoAFreedBlockFaults) {
    EXPECT_EQ(RunDebugged("test_leak_child.exe \"use after free\"").exitCode,
              DWORD(EXCEPTION_ACCESS_VIOLATION));
}

TEST(GuardHeapTest, AWriteIntoTheRoundingBehindABlockIsFoundWhenItIsFreed) {
    DebuggedRun run = RunDebugged("test_leak_child.exe slack");
    EXPECT_NE(run.output.find("a block was written behind its end"), std::string::npos)
        << run.output;
}
