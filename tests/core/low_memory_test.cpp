// A process has one sink, once; so these tests are a program of their own.
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <thread>
#include <vector>

namespace {

constexpr size_t kTooMuch = size_t(1) << 60;

class RecordingSink : public ILowMemoryNotifySink {
public:
    int OnLowMemory(unsigned attempt) override {
        attempts.push_back(attempt);
        if (throws) throw "a sink's own failure";
        return attempt < retries;
    }

    void Reset(unsigned newRetries) {
        attempts.clear();
        retries = newRetries;
        throws = false;
    }

    std::vector<unsigned> attempts;
    unsigned retries = 0;
    bool throws = false;
};

RecordingSink& Sink() {
    static RecordingSink sink;
    return sink;
}

class LowMemoryTest : public testing::Test {
protected:
    static void SetUpTestSuite() { Mem_SetLowMemoryNotifySink(&Sink()); }
    void SetUp() override { Sink().Reset(0); }
};

}  // namespace

TEST_F(LowMemoryTest, ASinkThatAsksTwiceForAnotherTryIsCalledWithZeroOneAndTwo) {
    Sink().Reset(2);
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(kTooMuch), CXMemException);
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0, 1, 2}));
}

TEST_F(LowMemoryTest, ASinkThatGivesUpAtOnceIsCalledOnce) {
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(kTooMuch), CXMemException);
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0}));
}

TEST_F(LowMemoryTest, EachFailingRequestCountsItsAttemptsFromZero) {
    Sink().Reset(1);
    EXPECT_THROW(::operator delete(::operator new(kTooMuch)), CXMemException);
    EXPECT_THROW(::operator delete(::operator new(kTooMuch)), CXMemException);
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0, 1, 0, 1}));
}

TEST_F(LowMemoryTest, ASuccessfulAllocDoesNotAskTheSink) {
    delete new int;
    EXPECT_TRUE(Sink().attempts.empty());
}

TEST_F(LowMemoryTest, ASizeThatWrapsIsRefusedWithoutAskingTheSink) {
    Sink().Reset(5);
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(SIZE_MAX), CXMemException);
    EXPECT_TRUE(Sink().attempts.empty());
}

TEST_F(LowMemoryTest, ARequestThatSucceedsOnItsSecondTryIsServed) {
    Sink().Reset(1);
    void* block;
    {
        FailingAllocation failing(1);
        block = Mem_DefaultHeap(0)->Alloc(100);
    }
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0}));
    EXPECT_EQ(static_cast<char*>(block)[99], 0);
    Mem_DefaultHeap(0)->Free(block);
}

TEST_F(LowMemoryTest, ReallocThatFailsAsksTheSinkAndKeepsTheBlock) {
    void* block = Mem_DefaultHeap(0)->Alloc(100);
    {
        FailingAllocation failing(1);
        EXPECT_THROW(Mem_DefaultHeap(0)->Realloc(block, 200), CXMemException);
    }
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0}));
    EXPECT_GE(Mem_DefaultHeap(0)->GetSize(block), 100u);
    Mem_DefaultHeap(0)->Free(block);
}

TEST_F(LowMemoryTest, WhatASinkThrowsReachesTheCallerAndLeavesTheHeapsUsable) {
    Sink().throws = true;
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(kTooMuch), const char*);
    EXPECT_THROW(::operator delete(::operator new(kTooMuch)), const char*);
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0, 0}));
    bool free = false;  // the lock was given back
    std::thread other([&] {
        delete new int;
        free = true;
    });
    other.join();
    EXPECT_TRUE(free);
}

TEST_F(LowMemoryTest, NothrowNewAnswersNullWhenTheSinkThrows) {
    Sink().throws = true;
    EXPECT_EQ(::operator new(kTooMuch, std::nothrow), nullptr);
    EXPECT_EQ(::operator new[](kTooMuch, std::nothrow), nullptr);
    EXPECT_EQ(Sink().attempts, (std::vector<unsigned>{0, 0}));
}

TEST_F(LowMemoryTest, AMapGoesOnWithoutItsIndexWhenTheSinkThrows) {
    CTMap<int, int> map;
    for (int key = 0; key < 126; ++key) map.SetAt(key, key);
    Sink().throws = true;
    {
        FailingAllocation failing(2);  // the first is the node
        EXPECT_EQ(map.SetAt(126, 126), 1);
        EXPECT_TRUE(failing.Happened());
    }
    EXPECT_EQ(Sink().attempts, std::vector<unsigned>{0});
    for (int key = 0; key < 127; ++key) {
        ASSERT_NE(map.Find(key), nullptr);
        EXPECT_EQ(*map.Find(key), key);
    }
}

TEST_F(LowMemoryTest, AMapGoesOnWithoutItsIndexWhenTheSinkThrowsAtItsGrowth) {
    CTMap<int, int> map;
    int added = 0;
    for (; added < 127; ++added) map.SetAt(added, added);
    Sink().throws = true;
    bool grew = false;
    for (; !grew; ++added) {
        FailingAllocation failing(2);
        ASSERT_EQ(map.SetAt(added, added), 1);
        grew = failing.Happened();
    }
    for (int key = 0; key < added; ++key) {
        ASSERT_NE(map.Find(key), nullptr);
        EXPECT_EQ(*map.Find(key), key);
    }
}

TEST_F(LowMemoryTest, ASecondSinkThrowsEvenIfItIsNull) {
    RecordingSink other;
    for (ILowMemoryNotifySink* sink :
         {static_cast<ILowMemoryNotifySink*>(&other), (ILowMemoryNotifySink*)nullptr,
          static_cast<ILowMemoryNotifySink*>(&Sink())}) {
        try {
            Mem_SetLowMemoryNotifySink(sink);
            ADD_FAILURE();
        } catch (CXException& e) {
            EXPECT_EQ(e.GetCode(), 10);
        }
    }
}
