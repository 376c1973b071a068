#include "core/block_tag.h"
#include "support/slot.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <cstring>
#include <set>
#include <string>

namespace {

std::set<IHeap*> PermanentHeaps() {
    IHeap* heaps[4];  // filled before the set allocates, which turns the rotation too
    for (auto& heap : heaps) heap = Mem_DefaultHeap(0);
    return {heaps, heaps + 4};
}

unsigned Operations() {
    size_t bytes;
    unsigned operations;
    Get_CoreActivity(&bytes, &operations);
    return operations;
}

size_t BytesRequested() {
    size_t bytes;
    unsigned operations;
    Get_CoreActivity(&bytes, &operations);
    return bytes;
}

// Values and blocks that the compiler must not reason about.
template <class T>
QXCORE_NOINLINE T Opaque(T value) {
    volatile T hidden = value;
    return hidden;
}

class HeapTest : public testing::Test {
protected:
    void SetUp() override { heap = new_MemoryHeap(0); }
    void TearDown() override { heap->Release(); }

    IHeap* heap;
};

}  // namespace

TEST_F(HeapTest, FiveDefaultHeapsComeInRotation) {
    IHeap* heaps[5];
    for (auto& each : heaps) each = Mem_DefaultHeap(0);
    EXPECT_EQ(std::set<IHeap*>(heaps, heaps + 4).size(), 4u);
    EXPECT_EQ(heaps[0], heaps[4]);
}

TEST_F(HeapTest, TheSizeHintOfADefaultHeapHasNoEffect) {
    IHeap* first = Mem_DefaultHeap(1);
    for (int i = 0; i < 3; ++i) Mem_DefaultHeap(size_t(1) << 40);
    EXPECT_EQ(Mem_DefaultHeap(0), first);
}

TEST_F(HeapTest, TheRotationIsSharedWithNew) {
    IHeap* order[4];
    for (auto& each : order) each = Mem_DefaultHeap(0);
    auto p = new long(5);
    EXPECT_EQ(TagOf(p), order[0]);
    EXPECT_EQ(Mem_DefaultHeap(0), order[1]);
    delete p;
    EXPECT_EQ(Mem_DefaultHeap(0), order[2]);
}

TEST_F(HeapTest, ABlockOfNewCarriesItsHeapTwice) {
    auto p = new char[24];
    EXPECT_EQ(TagOf(p), TagOf(p - 8));
    EXPECT_EQ(PermanentHeaps().count(TagOf(p)), 1u);
    delete[] p;
}

TEST_F(HeapTest, ABlockOfNewIsZeroFilled) {
    auto p = static_cast<char*>(::operator new(500));
    for (int i = 0; i < 500; ++i) ASSERT_EQ(p[i], 0);
    ::operator delete(p);
}

TEST_F(HeapTest, NewThatCannotBeServedThrowsTheLibrarysException) {
    for (size_t size : {size_t(1) << 60, SIZE_MAX, SIZE_MAX - 8}) {
        EXPECT_THROW(::operator delete(::operator new(Opaque(size))), CXMemException);
    }
}

TEST_F(HeapTest, NothrowNewThatCannotBeServedIsNull) {
    EXPECT_EQ(::operator new(Opaque(size_t(1) << 60), std::nothrow), nullptr);
    EXPECT_EQ(::operator new[](Opaque(size_t(1) << 60), std::nothrow), nullptr);
}

TEST_F(HeapTest, DeleteOfNullDoesNothing) {
    unsigned before = Operations();
    ::operator delete(nullptr);
    ::operator delete[](nullptr);
    EXPECT_EQ(Operations(), before);
}

TEST_F(HeapTest, DeleteOfABlockTaggedMinusOneGoesToTheRuntime) {
    unsigned before = Operations();
    auto word = static_cast<intptr_t*>(malloc(16 + 8));
    *word = -1;
    ::operator delete(Opaque(word + 1));
    EXPECT_EQ(Operations(), before);
}

TEST_F(HeapTest, DeleteOfABlockTaggedZeroGoesThroughTheDefaultHeap) {
    auto tag = static_cast<intptr_t*>(heap->Alloc(16 + 8));
    *tag = 0;
    IHeap* next = Mem_DefaultHeap(0);
    for (int i = 0; i < 3; ++i) Mem_DefaultHeap(0);
    unsigned before = Operations();
    ::operator delete(Opaque(tag + 1));
    EXPECT_EQ(Operations(), before + 1);
    EXPECT_NE(Mem_DefaultHeap(0), next);
}

TEST_F(HeapTest, StandardLibraryTextLivesOnTheLibrarysHeaps) {
    std::string text(1000, 'x');
    EXPECT_EQ(PermanentHeaps().count(TagOf(text.data())), 1u);
}

TEST_F(HeapTest, CountingOnAPermanentHeapAnswersOneAndDoesNothing) {
    IHeap* permanent = Mem_DefaultHeap(0);
    EXPECT_EQ(permanent->AddRef(), 1u);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(permanent->Release(), 1u);
    void* block = permanent->Alloc(10);
    EXPECT_NE(block, nullptr);
    permanent->Free(block);
}

TEST_F(HeapTest, APrivateHeapCounts) {
    EXPECT_EQ(heap->AddRef(), 2u);
    EXPECT_EQ(heap->Release(), 1u);
}

TEST_F(HeapTest, AHeapAnswersItsTwoInterfacesAndNoOther) {
    IQXUnknown* out = nullptr;
    EXPECT_EQ(heap->QueryInterface(qx_typeid<IHeap>(), &out), 1);
    EXPECT_EQ(out, static_cast<IQXUnknown*>(heap));
    EXPECT_EQ(out->Release(), 1u);
    EXPECT_EQ(heap->QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 1);
    EXPECT_EQ(heap->QueryInterface(qx_typeid<ICritSect>(), &out), 0);
    EXPECT_EQ(out, nullptr);
}

TEST_F(HeapTest, AllocGivesAZeroFilledBlockWithItsHeapInTheWordBefore) {
    auto block = static_cast<char*>(heap->Alloc(300));
    for (int i = 0; i < 300; ++i) ASSERT_EQ(block[i], 0);
    EXPECT_EQ(TagOf(block), heap);
    heap->Free(block);
}

TEST_F(HeapTest, AllocOfNothingGivesABlock) {
    void* block = heap->Alloc(0);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(heap->Free(block), 1);
}

TEST_F(HeapTest, AllocOfASizeThatWrapsThrows) {
    EXPECT_THROW(heap->Alloc(SIZE_MAX), CXMemException);
    EXPECT_THROW(heap->Alloc(SIZE_MAX - 7), CXMemException);
}

TEST_F(HeapTest, FreeThroughAnyHeapFreesOnTheBlocksOwn) {
    IHeap* other = new_MemoryHeap(0);
    void* block = heap->Alloc(64);
    EXPECT_EQ(other->Free(block), 1);
    EXPECT_EQ(other->Release(), 0u);
    void* next = heap->Alloc(64);
    EXPECT_EQ(heap->Free(next), 1);
}

TEST_F(HeapTest, TheHeaderHasEightBytes) {
    EXPECT_EQ(heap->GetHeaderSize(), 8u);
}

TEST_F(HeapTest, GetSizeIsTheRequestOrWhatTheSystemRoundsUpTo) {
    for (size_t size : {size_t(0), size_t(1), size_t(8), size_t(100), size_t(5000)}) {
        void* block = heap->Alloc(size);
        EXPECT_GE(heap->GetSize(block), size);
        EXPECT_LE(heap->GetSize(block), size + 16);
        heap->Free(block);
    }
}

TEST_F(HeapTest, GetSizeTakesTheHeapFromTheBlock) {
    void* block = heap->Alloc(100);
    EXPECT_EQ(Mem_DefaultHeap(0)->GetSize(block), heap->GetSize(block));
    heap->Free(block);
}

TEST_F(HeapTest, ReallocToLargerKeepsTheContentAndZeroesTheRest) {
    auto block = static_cast<char*>(heap->Alloc(100));
    for (int i = 0; i < 100; ++i) block[i] = char(i + 1);
    auto grown = static_cast<char*>(heap->Realloc(block, 200));
    for (int i = 0; i < 100; ++i) ASSERT_EQ(grown[i], char(i + 1));
    for (int i = 100 + 16; i < 200; ++i)
        ASSERT_EQ(grown[i], 0);  // the system's rounding may hold up to 16 bytes
    heap->Free(grown);
}

TEST_F(HeapTest, ReallocToSmallerDropsTheLastEightBytes) {
    auto block = static_cast<char*>(heap->Alloc(100));
    memset(block, 'x', 100);
    auto shrunk = static_cast<char*>(heap->Realloc(block, 40));
    for (int i = 0; i < 32; ++i) ASSERT_EQ(shrunk[i], 'x');
    for (int i = 32; i < 40; ++i) ASSERT_EQ(shrunk[i], 0);
    heap->Free(shrunk);
}

TEST_F(HeapTest, ReallocByOneToSevenBytesMoreLosesTheTailToo) {
    for (size_t more = 1; more <= 7; ++more) {
        auto block = static_cast<char*>(heap->Alloc(96));
        memset(block, 'x', 96);
        auto grown = static_cast<char*>(heap->Realloc(block, 96 + more));
        EXPECT_EQ(grown[96 + more - 9], 'x');
        for (size_t i = 96 + more - 8; i < 96 + more; ++i) EXPECT_EQ(grown[i], 0) << more;
        heap->Free(grown);
    }
}

TEST_F(HeapTest, ReallocToEightCopiesNothing) {
    auto block = static_cast<char*>(heap->Alloc(8));
    memset(block, 'x', 8);
    auto same = static_cast<char*>(heap->Realloc(block, 8));
    EXPECT_EQ(std::string(same, 8), std::string(8, '\0'));
    heap->Free(same);
}

TEST_F(HeapTest, ReallocAlwaysMovesWithinTheBlocksOwnHeap) {
    void* block = heap->Alloc(100);
    void* moved = Mem_DefaultHeap(0)->Realloc(block, 100);
    EXPECT_NE(moved, block);
    EXPECT_EQ(TagOf(moved), heap);
    heap->Free(moved);
}

TEST_F(HeapTest, ReallocThatCannotBeServedLeavesTheBlock) {
    auto block = static_cast<char*>(heap->Alloc(100));
    block[99] = 'x';
    EXPECT_THROW(heap->Realloc(block, size_t(1) << 60), CXMemException);
    EXPECT_EQ(block[99], 'x');
    heap->Free(block);
}

TEST_F(HeapTest, AllocCountsItsBytesWithTheHeaderAndOneOperation) {
    size_t bytes = BytesRequested();
    unsigned operations = Operations();
    void* block = heap->Alloc(100);
    EXPECT_EQ(BytesRequested() - bytes, 108u);
    EXPECT_EQ(Operations() - operations, 1u);
    heap->Free(block);
    EXPECT_EQ(BytesRequested() - bytes, 108u);
    EXPECT_EQ(Operations() - operations, 2u);
}

TEST_F(HeapTest, NewCountsBothHeaders) {
    size_t bytes = BytesRequested();
    ::operator delete(::operator new(100));
    EXPECT_EQ(BytesRequested() - bytes, 116u);
}

TEST_F(HeapTest, ReallocCountsThreeOperations) {
    void* block = heap->Alloc(100);
    size_t bytes = BytesRequested();
    unsigned operations = Operations();
    block = heap->Realloc(block, 50);
    EXPECT_EQ(Operations() - operations, 3u);
    EXPECT_EQ(BytesRequested() - bytes, 58u);
    heap->Free(block);
}

TEST_F(HeapTest, MakingAHeapCountsItsSizeHint) {
    size_t bytes = BytesRequested();
    unsigned operations = Operations();
    IHeap* other = new_MemoryHeap(1000);
    EXPECT_EQ(BytesRequested() - bytes, 1000u);
    EXPECT_EQ(Operations() - operations, 1u);
    other->Release();
}

TEST_F(HeapTest, AFailedAllocLeavesTheCounters) {
    size_t bytes = BytesRequested();
    unsigned operations = Operations();
    EXPECT_THROW(heap->Alloc(size_t(1) << 60), CXMemException);
    EXPECT_EQ(BytesRequested(), bytes);
    EXPECT_EQ(Operations(), operations);
}

TEST_F(HeapTest, PrivateHeapsGoOnPast128) {
    IHeap* heaps[140];
    for (auto& each : heaps) each = new_MemoryHeap(0);
    std::set<IHeap*> permanent = PermanentHeaps();
    for (auto each : heaps) EXPECT_EQ(permanent.count(each), 0u);
    for (auto each : heaps) EXPECT_EQ(each->Release(), 0u);
}

TEST_F(HeapTest, TheHostsActivityVariableIsLeftAlone) {
    __core_activity = 17;
    delete new int;
    EXPECT_EQ(__core_activity, 17);
    __core_activity = 0;
}

TEST_F(HeapTest, TheSlotsStandInTheirOrder) {
    using Count = unsigned(void*);
    EXPECT_EQ(Slot<Count>(heap, 0)(heap), 2u);
    EXPECT_EQ(Slot<Count>(heap, 1)(heap), 1u);
    EXPECT_EQ(Slot<int(void*, qx_type_info const&, IQXUnknown**)>(heap, 2)(heap, qx_typeid<IHeap>(),
                                                                           nullptr),
              1);
    void* block = Slot<void*(void*, size_t)>(heap, 3)(heap, 50);
    block = Slot<void*(void*, void*, size_t)>(heap, 5)(heap, block, 60);
    EXPECT_GE(Slot<size_t(void*, void*)>(heap, 6)(heap, block), 60u);
    EXPECT_EQ(Slot<size_t(void*)>(heap, 7)(heap), 8u);
    EXPECT_EQ(Slot<int(void*, void*)>(heap, 4)(heap, block), 1);
}
