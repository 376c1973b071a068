#include <gtest/gtest.h>
#include <qxcore.h>

#include <string>

namespace {

// The tag word before a block of `new`. The compiler must not see through it.
QXCORE_NOINLINE IHeap* TagOf(const volatile void* block) {
    return static_cast<IHeap*>(const_cast<void*>(static_cast<const volatile void* const volatile*>(block)[-1]));
}

}  // namespace

TEST(HeapTest, FiveDefaultHeapsComeInRotation) {
    IHeap* heaps[5];
    for (auto& heap : heaps) heap = Mem_DefaultHeap(0);
    EXPECT_NE(heaps[0], heaps[1]);
    EXPECT_NE(heaps[1], heaps[2]);
    EXPECT_NE(heaps[2], heaps[3]);
    EXPECT_NE(heaps[3], heaps[0]);
    EXPECT_EQ(heaps[0], heaps[4]);
}

TEST(HeapTest, TheRotationIsSharedWithNew) {
    IHeap* first = Mem_DefaultHeap(0);
    auto p = new long(5);
    IHeap* tag = TagOf(p);
    EXPECT_NE(tag, first);
    IHeap* afterNew = Mem_DefaultHeap(0);
    EXPECT_NE(afterNew, tag);
    EXPECT_NE(afterNew, first);
    delete p;
}

TEST(ExceptionTest, ExceptionOfTheLibraryIsCaughtByItsClass) {
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(size_t(1) << 60), CXMemException);
}

TEST(HeapTest, StandardLibraryTextLivesOnTheLibrarysHeaps) {
    std::string text(1000, 'x');
    IHeap* tag = TagOf(text.data());
    bool known = false;
    for (int i = 0; i < 4; ++i) known = known || Mem_DefaultHeap(0) == tag;
    EXPECT_TRUE(known);
}
