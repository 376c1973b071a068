// The order of slots and fields in what modules share.
#include "support/slot.h"

#include <gtest/gtest.h>
#include <qxcore.h>
#include <qxcore/reference.h>

#include <cstddef>

namespace {

struct ILayout : IQXUnknown {
    virtual int Own() = 0;

protected:
    ~ILayout() = default;
};

}  // namespace

QX_DECLARE_TYPEID(ILayout, ".?AUILayout@@");

namespace {

using Count = unsigned(void*);
using Query = int(void*, qx_type_info const&, IQXUnknown**);

class CLayout : public CQXUnknownImpl<ILayout> {
public:
    int Own() override { return 42; }
};

class CChild : public CQXUnknownImplParent<ILayout, ILayout> {
public:
    int Own() override { return 43; }
};

class CPart : public CQXContainedObject<CPart> {
public:
    int ContainedQueryInterface(qx_type_info const&, IQXUnknown**) { return 0; }
};

// Whether the three slots from `first` on count and query the object. It has one reference.
void ExpectCountsAndQueries(void* object, int first) {
    Slot<Count>(object, first)(object);
    EXPECT_EQ(Slot<Count>(object, first + 1)(object), 1u);
    IQXUnknown* answer = nullptr;
    EXPECT_EQ(Slot<Query>(object, first + 2)(object, qx_typeid<IQXUnknown>(), &answer), 1);
    EXPECT_EQ(answer, object);
    EXPECT_EQ(answer->Release(), 1u);
}

// Where a field lies in its object.
size_t Place(const void* object, const void* field) {
    return static_cast<size_t>(static_cast<const char*>(field) - static_cast<const char*>(object));
}

// Where the template's operations begin, behind the interface's four and the destructor.
constexpr int kInternal = 4 + kDestructorSlots;

}  // namespace

TEST(LayoutTest, AnImplementationsOwnOperationsStandBehindItsInterfaceAndDestructor) {
    auto object = qx::Make<CLayout>();
    ILayout* table = object.Get();
    ExpectCountsAndQueries(table, 0);
    EXPECT_EQ(Slot<int(void*)>(table, 3)(table), 42);
    ExpectCountsAndQueries(table, kInternal);
}

TEST(LayoutTest, AParentedObjectAddsSetParentAndGetParentAtTheEnd) {
    auto child = qx::Make<CChild>(), parent = qx::Make<CChild>();
    ILayout* table = child.Get();
    ExpectCountsAndQueries(table, 0);
    Slot<void(void*, ILayout*)>(table, kInternal + 3)(table, parent.Get());
    ILayout* found = Slot<ILayout*(void*)>(table, kInternal + 4)(table);
    EXPECT_EQ(found, parent.Get());
    found->Release();
}

TEST(LayoutTest, TheDestructorOfAnImplementationFreesTheObject) {
    auto object = new CLayout;
    ILayout* table = object;
    // The deleting form is the last of the destructor's places.
#if defined(_MSC_VER)
    Slot<void*(void*, unsigned)>(table, kInternal - 1)(table, 1);
#else
    Slot<void(void*)>(table, kInternal - 1)(table);
#endif
}

TEST(LayoutTest, AContainedObjectForwardsItsFirstThreeSlots) {
    CQXAggObject<CPart> whole(nullptr);
    CPart* part = &whole.contained;
    EXPECT_EQ(Place(part, &part->outer), sizeof(void*));
    EXPECT_EQ(part->outer, &whole);
    EXPECT_EQ(Slot<Count>(part, 0)(part), 1u);  // of an aggregate: the count from before
    EXPECT_EQ(Slot<Count>(part, 1)(part), 1u);
    IQXUnknown* answer = nullptr;
    EXPECT_EQ(Slot<Query>(part, 2)(part, qx_typeid<IQXUnknown>(), &answer), 1);
    EXPECT_EQ(answer, &whole);
}

TEST(LayoutTest, AnAggregateIsItsThreeOperationsAndItsDestructor) {
    auto whole = new CQXAggObject<CPart>(nullptr);
    IQXUnknown* table = whole;
    ExpectCountsAndQueries(table, 0);
    EXPECT_EQ(Slot<Count>(table, 1)(table), 0u);
}

TEST(LayoutTest, AHandleHoldsItsOwnerAlone) {
    auto object = qx::Make<CLayout>();
    CUnknownInternal handle(object.Get());
    EXPECT_EQ(Place(&handle, &handle.owner), sizeof(void*));
    EXPECT_EQ(sizeof handle, 2 * sizeof(void*));
    EXPECT_EQ(Slot<Count>(&handle, 0)(&handle), 0u);
    EXPECT_EQ(Slot<Count>(&handle, 1)(&handle), 0u);
    EXPECT_EQ(Slot<Query>(&handle, 2)(&handle, qx_typeid<ILayout>(), nullptr), 1);
}

TEST(LayoutTest, AnExceptionIsItsDestructorGetCodeReport) {
    CXEofException exception;
    EXPECT_EQ(Slot<int(void*)>(&exception, kDestructorSlots)(&exception), 4);
    Slot<void(void*)>(&exception, kDestructorSlots + 1)(&exception);
    EXPECT_EQ(exception.code, 4);
    CXMemException other;
    EXPECT_EQ(Slot<int(void*)>(&exception, kDestructorSlots),
              Slot<int(void*)>(&other, kDestructorSlots));
}

TEST(LayoutTest, AnExceptionsFieldsStandInTheirOrder) {
    CXException plain(1);
    EXPECT_EQ(Place(&plain, &plain.code), 8u);
    EXPECT_EQ(Place(&plain, &plain.module), 16u);
    CXFileException file(1, nullptr, 0);
    EXPECT_EQ(Place(&file, &file.name), 24u);
    EXPECT_EQ(Place(&file, &file.operation), 32u);
    CXIFaceException missing(qx_typeid<IHeap>());
    EXPECT_EQ(Place(&missing, &missing.type), 24u);
    EXPECT_EQ(sizeof(CXMemException), sizeof(CXException));
    EXPECT_EQ(sizeof(CXEofException), sizeof(CXException));
}

TEST(LayoutTest, ListsAndItemsHoldTheirFieldsInOrder) {
    EXPECT_EQ(offsetof(QX_LISTITEM, next), 0u);
    EXPECT_EQ(offsetof(QX_LISTITEM, prev), 8u);
    EXPECT_EQ(offsetof(COList, count), 0u);
    EXPECT_EQ(offsetof(COList, head), 8u);
    EXPECT_EQ(offsetof(COList, tail), 16u);
    EXPECT_EQ(offsetof(_TI_Item, name), 0u);
    EXPECT_EQ(offsetof(_TI_Item, link), 8u);
    EXPECT_EQ(offsetof(_tIQXUnknown, name), 0u);
    EXPECT_EQ(offsetof(_tIQXUnknown, object), 8u);
    EXPECT_EQ(offsetof(_tIQXUnknown, counted), 16u);
}
