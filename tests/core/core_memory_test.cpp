// What the core does when the n-th allocation fails: of a heap's blocks, and of what the core takes
// beside its heaps.
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore/heap.h>
#include <qxcore/reference.h>

#include <cstring>
#include <string>

namespace {

qx::Reference<IHeap> NewHeap() {
    return qx::Reference<IHeap>(new_MemoryHeap(0));
}

int Nothing() {
    return 0;
}

// Answers whether making T took memory of either kind.
template <class T, class... Args>
bool MakingAllocates(Args... args) {
    FailingAllocation block(1), runtime(1, Memory::runtime);
    T object(args...);
    return block.Happened() || runtime.Happened();
}

qx_type_info RecordOf(const char* name) {
    qx_type_info record = {};
    strcpy(record.name, name);
    return record;
}

}  // namespace

TEST(CoreMemoryTest, AHeapThatCannotBeMadeLeavesNothing) {
    auto make = [](int) { NewHeap(); };
    auto check = [](int) {
        qx::Reference<IHeap> heap = NewHeap();
        heap->Free(heap->Alloc(8));
    };
    EXPECT_EQ(FailEachAllocation(Nothing, make, check, false, Memory::runtime),
              2u);  // the object and the system's heap
    FailingAllocation block(1);
    NewHeap();
    EXPECT_FALSE(block.Happened());
}

TEST(CoreMemoryTest, AHeapThatCannotBeMadeCountsAsActivity) {
    size_t before, after;
    unsigned operationsBefore, operationsAfter;
    Get_CoreActivity(&before, &operationsBefore);
    {
        FailingAllocation systemHeap(2, Memory::runtime);
        EXPECT_THROW(new_MemoryHeap(1234), CXMemException);
    }
    Get_CoreActivity(&after, &operationsAfter);
    EXPECT_EQ(after - before, 1234u);
    EXPECT_EQ(operationsAfter - operationsBefore, 1u);
}

TEST(CoreMemoryTest, ABlockThatCannotBeMadeLeavesTheHeapUsable) {
    auto check = [](qx::Reference<IHeap>& heap) { heap->Free(heap->Alloc(100)); };
    EXPECT_EQ(FailEachAllocation(
                  NewHeap, [](qx::Reference<IHeap>& heap) { heap->Free(heap->Alloc(100)); }, check),
              1u);
}

TEST(CoreMemoryTest, ABlockThatCannotBeMovedKeepsItsContent) {
    struct Block {
        explicit Block(const char* text)
            : bytes(static_cast<char*>(Mem_DefaultHeap(0)->Alloc(100))) {
            strcpy(bytes, text);
        }
        Block(Block&& other) noexcept : bytes(std::exchange(other.bytes, nullptr)) {}
        ~Block() {
            if (bytes) Mem_DefaultHeap(0)->Free(bytes);
        }
        char* bytes;
    };
    auto grow = [](Block& block) {
        block.bytes = static_cast<char*>(Mem_DefaultHeap(0)->Realloc(block.bytes, 200));
    };
    auto check = [](Block& block) { EXPECT_STREQ(block.bytes, "content"); };
    EXPECT_EQ(FailEachAllocation([] { return Block("content"); }, grow, check), 1u);
}

TEST(CoreMemoryTest, EveryFormOfNewTakesOneBlockAndThrows) {
    auto check = [](int) {};
    EXPECT_EQ(FailEachAllocation(
                  Nothing, [](int) { ::operator delete(::operator new(40)); }, check),
              1u);
    EXPECT_EQ(FailEachAllocation(
                  Nothing, [](int) { ::operator delete[](::operator new[](40)); }, check),
              1u);
}

TEST(CoreMemoryTest, NothrowNewAnswersNullAndLeavesNothing) {
    for (unsigned n : {1u, 2u}) {
        long before = LiveBlocks();
        FailingAllocation failing(n);
        void* block = ::operator new(40, std::nothrow);
        EXPECT_EQ(block == nullptr, n == 1);
        ::operator delete(block, std::nothrow);
        EXPECT_EQ(LiveBlocks(), before);
    }
}

TEST(CoreMemoryTest, ANameThatCannotBeInternedLeavesNothing) {
    static const char kName[] = ".?AUIInternedWithFailures@@";
    for (unsigned n : {1u, 2u}) {  // the item and the copy of its name
        long before = LiveBlocks(Memory::runtime);
        {
            FailingAllocation failing(n, Memory::runtime);
            EXPECT_THROW(__find_ti_item(kName), CXMemException);
        }
        EXPECT_EQ(LiveBlocks(Memory::runtime), before) << "allocation " << n;
    }
    _TI_Item* item = __find_ti_item(kName);
    EXPECT_STREQ(item->name, kName);
    FailingAllocation failing(1, Memory::runtime);
    EXPECT_EQ(__find_ti_item(kName), item);
}

TEST(CoreMemoryTest, RecordsWhoseNamesCannotBeInternedAreComparedByText) {
    for (unsigned n : {1u, 2u}) {
        std::string name = ".?AUIComparedWithout" + std::to_string(n) + "@@";
        qx_type_info a = RecordOf(name.c_str()), b = RecordOf(name.c_str()),
                     other = RecordOf(".?AUIAnotherComparedWithout@@");
        {
            FailingAllocation failing(n, Memory::runtime);
            EXPECT_TRUE(a == b);
            EXPECT_TRUE(failing.Happened());
        }
        {
            FailingAllocation failing(n, Memory::runtime);
            EXPECT_FALSE(other == a);
        }
        EXPECT_TRUE(a == b);  // with memory again, by their item
        EXPECT_NE(a.item, nullptr);
        EXPECT_EQ(a.item, b.item);
        EXPECT_FALSE(other == a);
        EXPECT_NE(other.item, nullptr);
    }
}

TEST(CoreMemoryTest, AnInternedRecordIsComparedByTextWithOneThatCannotBe) {
    qx_type_info known = RecordOf(".?AUIKnownBeforehand@@"), same = known,
                 other = RecordOf(".?AUINotInterned@@");
    EXPECT_TRUE(known == known);
    FailingAllocation failing(1, Memory::runtime);
    EXPECT_FALSE(known == other);
    EXPECT_TRUE(failing.Happened());
    EXPECT_FALSE(other == known);
    EXPECT_TRUE(same == known);
}

TEST(CoreMemoryTest, AQueryNeverThrowsThoughItsFirstComparisonFindsNoMemory) {
    for (unsigned n : {1u, 2u}) {
        qx_type_info unknown =
            RecordOf((".?AUIAskedWithoutMemory" + std::to_string(n) + "@@").c_str());
        qx::Reference<IHeap> heap = NewHeap();
        IQXUnknown* answer = heap.Get();
        FailingAllocation failing(n, Memory::runtime);
        EXPECT_EQ(heap->QueryInterface(unknown, &answer), 0);
        EXPECT_TRUE(failing.Happened());
        EXPECT_EQ(answer, nullptr);
    }
    qx_type_info ownHeap = RecordOf(".?AVIHeap@@");
    qx::Reference<IHeap> heap = NewHeap();
    FailingAllocation failing(1, Memory::runtime);
    EXPECT_EQ(heap->QueryInterface(ownHeap, nullptr), 1);
}

TEST(CoreMemoryTest, MakingAnExceptionTakesNoMemory) {
    EXPECT_FALSE(MakingAllocates<CXException>(7));
    EXPECT_FALSE(MakingAllocates<CXMemException>());
    EXPECT_FALSE(MakingAllocates<CXEofException>());
    EXPECT_FALSE((MakingAllocates<CXFileException>(6, "a name", 0)));
    EXPECT_FALSE((MakingAllocates<CXIFaceException, qx_type_info const&>(qx_typeid<IHeap>())));
}
