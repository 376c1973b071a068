// Makes allocations of the library fail on purpose, and counts the blocks that it holds.
//
// The library has no seam for this: the fixture puts functions of its own into the slots through
// which qxcore.dll calls the system's allocators, so whatever takes memory from the library's heaps
// can fail, `new` of the test program included.
#ifndef QXCORE_TESTS_ALLOCATION_FAILURE_H
#define QXCORE_TESTS_ALLOCATION_FAILURE_H

#include <gtest/gtest.h>
#include <qxcore/exception.h>

enum class Memory {
    heaps,    // blocks of the library's heaps
    runtime,  // what those need themselves, and interned names: blocks of the runtime's malloc and
              // system heaps
};

// Blocks taken and not given back, counted from the first call on; blocks that go with a destroyed
// private heap are not counted back. Only differences tell something.
long LiveBlocks(Memory memory = Memory::heaps);

// While it lives, the n-th allocation of this thread (1 is the next one) fails; others succeed.
class FailingAllocation {
public:
    explicit FailingAllocation(unsigned n, Memory memory = Memory::heaps);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    // Whether as many allocations were asked for.
    bool Happened() const;

private:
    Memory m_memory;
};

// Lets `act` run on a fresh subject with its first allocation failing, then with its second, and so
// on until it needs no more. Each failure must come out as CXMemException and no run may leak;
// `check` then looks at the subject, which must be usable. `make` gives the subject by value, for
// instance as a std::unique_ptr. Answers how many allocations failed, so that a test can see that
// there were some.
//
// An operation that does without the memory instead of throwing is let pass when `mayDoWithout` is
// set.
template <class Make, class Act, class Check>
unsigned FailEachAllocation(Make make, Act act, Check check, bool mayDoWithout = false,
                            Memory memory = Memory::heaps) {
    for (unsigned n = 1;; ++n) {
        bool failed = false;
        long before = LiveBlocks(memory);
        {
            auto subject = make();
            bool threw = false;
            {
                FailingAllocation failing(n, memory);
                try {
                    act(subject);
                } catch (CXMemException&) {
                    threw = true;
                }
                failed = failing.Happened();
            }
            EXPECT_TRUE(threw == failed || (mayDoWithout && !threw)) << "allocation " << n;
            if (failed) check(subject);
        }
        EXPECT_EQ(LiveBlocks(memory), before)
            << "blocks leaked when allocation " << n << (failed ? " failed" : " did not");
        if (!failed) return n - 1;
    }
}

#endif
