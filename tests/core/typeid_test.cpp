#include "core/block_tag.h"
#include "core/typeid_module.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <cstddef>
#include <cstring>
#include <string>

namespace {

qx_type_info Record(const char* name) {
    qx_type_info record = {};
    strncpy(record.name, name, sizeof record.name - 1);
    return record;
}

class CLocalSharedThing : public CQXUnknownImpl<ISharedThing> {
public:
    int Secret() override { return 1; }
};

}  // namespace

TEST(TypeIdTest, TheRecordHasThePlatformsLayout) {
    EXPECT_EQ(offsetof(qx_type_info, item), 8u);
    EXPECT_EQ(offsetof(qx_type_info, name), 16u);
    EXPECT_STREQ(qx_typeid<IQXUnknown>().name, ".?AUIQXUnknown@@");
    EXPECT_STREQ(qx_typeid<IHeap>().name, ".?AVIHeap@@");
    EXPECT_STREQ(qx_typeid<ICritSect>().name, ".?AVICritSect@@");
    EXPECT_STREQ(qx_typeid<IEvent>().name, ".?AVIEvent@@");
}

TEST(TypeIdTest, ARecordComparedWithItselfBeforeItIsCachedFillsItsItem) {
    qx_type_info record = Record(".?AUINeverSeenBefore1@@");
    EXPECT_EQ(record.item, nullptr);
    EXPECT_TRUE(record == record);
    ASSERT_NE(record.item, nullptr);
    EXPECT_STREQ(record.item->name, ".?AUINeverSeenBefore1@@");
}

TEST(TypeIdTest, TwoRecordsWithOneNameAreEqualAndHoldTheSameItem) {
    qx_type_info a = Record(".?AUINeverSeenBefore2@@"), b = a;
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(a != b);
    EXPECT_NE(a.item, nullptr);
    EXPECT_EQ(a.item, b.item);
}

TEST(TypeIdTest, NamesThatDifferInOneByteAreDifferent) {
    qx_type_info a = Record(".?AUIThing@@"), b = Record(".?AVIThing@@"), c = Record(".?AUIThing@"),
                 d = Record(".?AUithing@@");
    EXPECT_TRUE(a != b);
    EXPECT_TRUE(a != c);
    EXPECT_TRUE(a != d);
    EXPECT_NE(a.item, b.item);
}

TEST(TypeIdTest, ACachedAndAnUncachedRecordCompareByName) {
    qx_type_info a = Record(".?AUINeverSeenBefore3@@"), b = a,
                 c = Record(".?AUINeverSeenBefore4@@");
    EXPECT_TRUE(a == a);
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(c == c);
    qx_type_info d = Record(".?AUINeverSeenBefore3@@");
    EXPECT_FALSE(d == c);
    EXPECT_TRUE(d == a);
}

TEST(TypeIdTest, AFilledItemDecidesAndTheNameIsNotReadAgain) {
    qx_type_info a = Record(".?AUINeverSeenBefore5@@"), b = a;
    EXPECT_TRUE(a == b);
    a.name[0] = 'x';
    EXPECT_TRUE(a == b);
}

TEST(TypeIdTest, AnItemIsRuntimeMemoryAndOutlivesItsRecord) {
    _TI_Item* item = __find_ti_item(".?AUINeverSeenBefore6@@");
    EXPECT_EQ(reinterpret_cast<intptr_t>(TagOf(item)), -1);
    EXPECT_EQ(reinterpret_cast<intptr_t>(TagOf(item->name)), -1);
    EXPECT_EQ(__find_ti_item(".?AUINeverSeenBefore6@@"), item);
    std::string copy = ".?AUINeverSeenBefore6@@";
    EXPECT_EQ(__find_ti_item(copy.c_str()), item);
    EXPECT_NE(item->name, copy.c_str());
}

TEST(TypeIdTest, RecordsOfTwoModulesAreTwoAndCompareEqualWithBothCachesFilled) {
    qx_type_info const& ours = qx_typeid<ISharedThing>();
    qx_type_info const& theirs = *Module_RecordOfSharedThing();
    EXPECT_NE(&ours, &theirs);
    EXPECT_TRUE(ours == theirs);
    EXPECT_NE(ours.item, nullptr);
    EXPECT_EQ(ours.item, theirs.item);
}

TEST(TypeIdTest, AnObjectOfAnotherModuleAnswersOurRecord) {
    ISharedThing* thing = Module_NewSharedThing();
    IQXUnknown* out = nullptr;
    ASSERT_EQ(thing->QueryInterface(qx_typeid<ISharedThing>(), &out), 1);
    EXPECT_EQ(static_cast<ISharedThing*>(out)->Secret(), 4711);
    out->Release();
    EXPECT_EQ(thing->Release(), 0u);
}

TEST(TypeIdTest, OurObjectAnswersAnotherModulesRecord) {
    CLocalSharedThing thing;
    EXPECT_EQ(Module_AsksForSharedThing(&thing), 1);
    EXPECT_EQ(Module_AsksForSharedThing(Mem_DefaultHeap(0)), 0);
}

TEST(CrossModuleTest, ABlockMadeInOneModuleIsFreedInAnother) {
    void* theirs = Module_New(100);
    ::operator delete(theirs);
    void* ours = ::operator new(100);
    Module_Delete(ours);
    auto tagged = static_cast<intptr_t*>(malloc(32));
    *tagged = -1;
    Module_Delete(tagged + 1);
}

TEST(CrossModuleTest, BlocksOfAllModulesShareTheRotation) {
    IHeap* order[4];
    for (auto& each : order) each = Mem_DefaultHeap(0);
    void* theirs = Module_New(8);
    EXPECT_EQ(TagOf(theirs), order[0]);
    EXPECT_EQ(Mem_DefaultHeap(0), order[1]);
    ::operator delete(theirs);
}

TEST(CrossModuleTest, AnExceptionOfAnotherModuleIsCaughtByItsClassAndByTheRoot) {
    try {
        Module_ThrowFileException();
        ADD_FAILURE();
    } catch (CXFileException& e) {
        EXPECT_EQ(e.GetCode(), 8);
        EXPECT_STREQ(e.name, "from the module");
        EXPECT_EQ(e.operation, 9);
    }
    EXPECT_THROW(Module_ThrowFileException(), CXException);
}

TEST(CrossModuleTest, AModuleLoadedLaterFreesWhatWasMadeBefore) {
    void* block = ::operator new(100);
    HMODULE late = LoadLibraryA("test_late_module.dll");
    ASSERT_NE(late, nullptr);
    auto release = reinterpret_cast<void (*)(void*)>(
        reinterpret_cast<void*>(GetProcAddress(late, "Late_Delete")));
    auto make = reinterpret_cast<void* (*)(size_t)>(
        reinterpret_cast<void*>(GetProcAddress(late, "Late_New")));
    ASSERT_TRUE(release && make);
    release(block);
    void* theirs = make(100);
    FreeLibrary(late);
    ::operator delete(theirs);
}
