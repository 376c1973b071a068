#include "containers/watched.h"
#include "support/slot.h"

#include <gtest/gtest.h>

namespace {

struct IFirst : public IQXUnknown {
protected:
    ~IFirst() = default;
};
struct ISecond : public IQXUnknown {
protected:
    ~ISecond() = default;
};

}  // namespace

QX_DECLARE_TYPEID(IFirst, ".?AUIFirst@@");
QX_DECLARE_TYPEID(ISecond, ".?AUISecond@@");

namespace {

// Carries a table as the library's classes do: the narrow query, and its own registration
// uncounted.
class Carrier : public CQXUnknownImpl<IRegisterIface> {
public:
    explicit Carrier(int* destroyed = nullptr) : destroyed(destroyed) {
        attached.Register(this, qx_typeid<IRegisterIface>(), 0);
    }
    ~Carrier() override {
        if (destroyed) ++*destroyed;
    }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return attached.Query(id, out);
    }
    int RegisterInterface(IQXUnknown* object, qx_type_info const& id, int counted) override {
        return attached.Register(object, id, counted);
    }

    CAttachedInterfaces attached;
    int* destroyed;
};

class AttachedTest : public testing::Test {
public:
    ~AttachedTest() override { carrier->Release(); }

    // Whether the carrier answers the object for this interface.
    template <class I>
    bool Answers(Counted& object) {
        IQXUnknown* found = nullptr;
        if (!carrier->QueryInterface(qx_typeid<I>(), &found)) return false;
        found->Release();
        return found == &object;
    }

    Counted object, other;
    Carrier* carrier = new Carrier;
};

}  // namespace

TEST_F(AttachedTest, AnAttachedInterfaceIsAnsweredWithAReference) {
    EXPECT_EQ(carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 0), 1);
    EXPECT_EQ(object.refs, 1u);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<IFirst>(), &found), 1);
    EXPECT_EQ(found, &object);
    EXPECT_EQ(object.refs, 2u);
}

TEST_F(AttachedTest, ACountedInterfaceIsHeldUntilTheCarrierGoes) {
    auto mortal = new Carrier;
    mortal->RegisterInterface(&object, qx_typeid<IFirst>(), 1);
    mortal->RegisterInterface(&other, qx_typeid<ISecond>(), 0);
    EXPECT_EQ(object.refs, 2u);
    EXPECT_EQ(other.refs, 1u);
    mortal->Release();
    EXPECT_EQ(object.refs, 1u);
    EXPECT_EQ(other.refs, 1u);
}

TEST_F(AttachedTest, RemovingAnUnknownInterfaceAnswersZero) {
    EXPECT_EQ(carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 0), 0);
    EXPECT_EQ(carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 1), 0);
}

TEST_F(AttachedTest, ANullObjectRemovesTheEntry) {
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 1);
    EXPECT_EQ(carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 0), 1);
    EXPECT_EQ(object.refs, 1u);
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<IFirst>(), nullptr), 0);
    EXPECT_EQ(carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 0), 0);
}

TEST_F(AttachedTest, AttachingAgainReplacesTheEntryAndReleasesACountedOldObject) {
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 1);
    EXPECT_EQ(carrier->RegisterInterface(&other, qx_typeid<IFirst>(), 1), 1);
    EXPECT_EQ(object.refs, 1u);
    EXPECT_EQ(other.refs, 2u);
    EXPECT_TRUE(Answers<IFirst>(other));
}

TEST_F(AttachedTest, AttachingAgainUncountedReleasesTheCountedReference) {
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 1);
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 0);
    EXPECT_EQ(object.refs, 1u);
    EXPECT_TRUE(Answers<IFirst>(object));
}

TEST_F(AttachedTest, TheLastReferenceCanBeAttachedAgain) {
    int destroyed = 0;
    auto mortal = new Watched(&destroyed);
    carrier->RegisterInterface(mortal, qx_typeid<IFirst>(), 1);
    mortal->Release();
    carrier->RegisterInterface(mortal, qx_typeid<IFirst>(), 1);
    EXPECT_EQ(destroyed, 0);
    carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 0);
    EXPECT_EQ(destroyed, 1);
}

TEST_F(AttachedTest, WhatNobodyAttachedIsNotAnswered) {
    IQXUnknown* found = &object;
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<ISecond>(), &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<ISecond>(), nullptr), 0);
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 0);
}

TEST_F(AttachedTest, ANullOutPointerAsksWithoutTakingAReference) {
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 0);
    EXPECT_EQ(carrier->QueryInterface(qx_typeid<IFirst>(), nullptr), 1);
    EXPECT_EQ(object.refs, 1u);
}

TEST_F(AttachedTest, EachInterfaceHasItsOwnEntry) {
    carrier->RegisterInterface(&object, qx_typeid<IFirst>(), 0);
    carrier->RegisterInterface(&other, qx_typeid<ISecond>(), 0);
    EXPECT_TRUE(Answers<IFirst>(object));
    EXPECT_TRUE(Answers<ISecond>(other));
    carrier->RegisterInterface(nullptr, qx_typeid<IFirst>(), 0);
    EXPECT_TRUE(Answers<ISecond>(other));
}

TEST_F(AttachedTest, AnUncountedEntryOfItsOwnDoesNotKeepTheCarrierAlive) {
    int destroyed = 0;
    auto mortal = new Carrier(&destroyed);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(mortal->QueryInterface(qx_typeid<IRegisterIface>(), &found), 1);
    EXPECT_EQ(found, mortal);
    mortal->Release();
    EXPECT_EQ(destroyed, 0);
    found->Release();
    EXPECT_EQ(destroyed, 1);
}

TEST_F(AttachedTest, RegisterInterfaceIsTheSlotBehindTheRoots) {
    auto registrar = static_cast<IRegisterIface*>(carrier);
    auto attach = Slot<int(void*, IQXUnknown*, qx_type_info const&, int)>(registrar, 3);
    EXPECT_EQ(attach(registrar, &object, qx_typeid<IFirst>(), 1), 1);
    EXPECT_EQ(object.refs, 2u);
    EXPECT_STREQ(qx_typeid<IRegisterIface>().name, ".?AUIRegisterIface@@");
}
