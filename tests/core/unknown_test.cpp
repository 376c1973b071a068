#include <gtest/gtest.h>
#include <qxcore.h>

#include <string>
#include <vector>

struct ITicket : IQXUnknown {
    virtual int Number() = 0;

protected:
    ~ITicket() = default;
};
QX_DECLARE_TYPEID(ITicket, ".?AUITicket@@");

struct IStamp : IQXUnknown {
    virtual int Value() = 0;

protected:
    ~IStamp() = default;
};
QX_DECLARE_TYPEID(IStamp, ".?AUIStamp@@");

namespace {

std::vector<std::string> g_events;

class CTicket : public CQXUnknownImpl<ITicket> {
public:
    ~CTicket() override { g_events.push_back("ticket destroyed"); }
    int Number() override { return 42; }
};

// A class with a further interface, written as the pattern goes.
class CStampedTicket : public CQXUnknownImpl<ITicket>, public IStamp {
public:
    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        IStamp* stamp = id == qx_typeid<IStamp>() ? this : nullptr;
        return QXAnswerQuery(stamp, out);
    }
    int Number() override { return 1; }
    int Value() override { return 2; }
};

class CountingImpl : public CQXUnknownImpl<ITicket> {
public:
    int Number() override { return 0; }
    unsigned InternalAddRef() override {
        ++internalCalls;
        return CQXUnknownImpl<ITicket>::InternalAddRef();
    }
    unsigned InternalRelease() override {
        ++internalCalls;
        return CQXUnknownImpl<ITicket>::InternalRelease();
    }
    int internalCalls = 0;
};

class UnknownTest : public testing::Test {
protected:
    void SetUp() override { g_events.clear(); }
};

}  // namespace

TEST_F(UnknownTest, ANewObjectCarriesTheCreatorsReference) {
    ITicket* ticket = new CTicket;
    EXPECT_EQ(ticket->AddRef(), 2u);
    EXPECT_EQ(ticket->Release(), 1u);
    EXPECT_TRUE(g_events.empty());
    EXPECT_EQ(ticket->Release(), 0u);
    EXPECT_EQ(g_events, std::vector<std::string>{"ticket destroyed"});
}

TEST_F(UnknownTest, AQueryForTheRootOrTheOwnInterfaceGivesTheObjectWithAReference) {
    CTicket* ticket = new CTicket;
    IQXUnknown* out = nullptr;
    EXPECT_EQ(ticket->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    EXPECT_EQ(out, ticket);
    EXPECT_EQ(ticket->QueryInterface(qx_typeid<ITicket>(), &out), 1);
    EXPECT_EQ(out, ticket);
    EXPECT_EQ(ticket->Release(), 2u);
    EXPECT_EQ(ticket->Release(), 1u);
    EXPECT_EQ(ticket->Release(), 0u);
}

TEST_F(UnknownTest, AQueryForAnotherInterfaceAnswersZeroAndNull) {
    CTicket ticket;
    IQXUnknown* out = &ticket;
    EXPECT_EQ(ticket.QueryInterface(qx_typeid<IStamp>(), &out), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(ticket.AddRef(), 2u);
}

TEST_F(UnknownTest, AQueryWithANullOutPointerIsAQuestionAndTakesNoReference) {
    CTicket ticket;
    EXPECT_EQ(ticket.QueryInterface(qx_typeid<ITicket>(), nullptr), 1);
    EXPECT_EQ(ticket.QueryInterface(qx_typeid<IQXUnknown>(), nullptr), 1);
    EXPECT_EQ(ticket.QueryInterface(qx_typeid<IStamp>(), nullptr), 0);
    EXPECT_EQ(ticket.AddRef(), 2u);
}

TEST_F(UnknownTest, AClassWithAFurtherInterfaceAnswersBoth) {
    CStampedTicket* ticket = new CStampedTicket;
    IQXUnknown* out = nullptr;
    ASSERT_EQ(ticket->QueryInterface(qx_typeid<IStamp>(), &out), 1);
    auto stamp = static_cast<IStamp*>(out);
    EXPECT_EQ(stamp->Value(), 2);
    ASSERT_EQ(stamp->QueryInterface(qx_typeid<ITicket>(), &out), 1);
    EXPECT_EQ(static_cast<ITicket*>(out)->Number(), 1);
    EXPECT_EQ(out->Release(), 2u);
    EXPECT_EQ(stamp->Release(), 1u);
    EXPECT_EQ(ticket->QueryInterface(qx_typeid<IHeap>(), &out), 0);
    EXPECT_EQ(ticket->Release(), 0u);
}

TEST_F(UnknownTest, ThePublicThreeForwardThroughTheTable) {
    CountingImpl object;
    object.AddRef();
    object.Release();
    object.QueryInterface(qx_typeid<ITicket>(), nullptr);
    EXPECT_EQ(object.internalCalls, 2);
}

namespace {

struct INode : IQXUnknown {
    virtual const char* Name() = 0;

protected:
    ~INode() = default;
};

class CNode;

}  // namespace

QX_DECLARE_TYPEID(INode, ".?AUINode@@");

namespace {

class CNode : public CQXUnknownImplParent<INode, INode> {
public:
    explicit CNode(const char* name) : name(name) {}
    ~CNode() override { g_events.push_back(std::string(name) + " destroyed"); }
    unsigned Release() override {
        g_events.push_back(std::string(name) + " released");
        return CQXUnknownImplParent<INode, INode>::Release();
    }
    const char* Name() override { return name; }

private:
    const char* name;
};

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

}  // namespace

TEST_F(UnknownTest, TheLastReleaseOfAChildReleasesTheParentBeforeTheChildIsDestroyed) {
    CNode* parent = new CNode("parent");
    CNode* child = new CNode("child");
    child->SetParent(parent);
    parent->Release();
    g_events.clear();
    EXPECT_EQ(child->Release(), 0u);
    EXPECT_EQ(g_events, (std::vector<std::string>{"child released", "parent released",
                                                  "parent destroyed", "child destroyed"}));
}

TEST_F(UnknownTest, SetParentWithThePresentParentLeavesItsCount) {
    CNode* parent = new CNode("parent");
    CNode* child = new CNode("child");
    child->SetParent(parent);
    EXPECT_EQ(CountOf(parent), 2u);
    child->SetParent(parent);
    EXPECT_EQ(CountOf(parent), 2u);
    parent->Release();
    child->SetParent(parent);  // the child's is the only reference now
    EXPECT_EQ(CountOf(parent), 1u);
    child->Release();
}

TEST_F(UnknownTest, SetParentMovesTheReferenceAndNullMakesARoot) {
    CNode* first = new CNode("first");
    CNode* second = new CNode("second");
    CNode* child = new CNode("child");
    child->SetParent(first);
    child->SetParent(second);
    EXPECT_EQ(CountOf(first), 1u);
    EXPECT_EQ(CountOf(second), 2u);
    child->SetParent(nullptr);
    EXPECT_EQ(CountOf(second), 1u);
    EXPECT_EQ(child->GetParent(), nullptr);
    first->Release();
    second->Release();
    child->Release();
}

TEST_F(UnknownTest, GetParentGivesAReference) {
    CNode* parent = new CNode("parent");
    CNode* child = new CNode("child");
    child->SetParent(parent);
    INode* got = child->GetParent();
    EXPECT_EQ(got, parent);
    EXPECT_EQ(CountOf(parent), 3u);
    got->Release();
    parent->Release();
    child->Release();
}

namespace {

// A parent that uses its child while it goes: what the child asks its parent for.
class CPryingParent : public CQXUnknownImpl<INode> {
public:
    ~CPryingParent() override {
        g_events.push_back("prying parent destroyed");
        if (!child) return;
        INode* parent = child->GetParent();
        g_events.push_back(parent ? parent->Name() : "no parent");
        if (parent) parent->Release();
        child->AddRef();
        child->Release();
    }
    const char* Name() override { return "prying parent"; }

    CNode* child = nullptr;
};

// Its last release fails.
class CRaisingParent : public CQXUnknownImpl<INode> {
public:
    unsigned Release() override {
        if (unsigned refs = InternalRelease()) return refs;
        throw 2;
    }
    const char* Name() override { return "raising parent"; }
};

}  // namespace

TEST_F(UnknownTest, AParentMayUseItsChildWhileTheChildLetsItGo) {
    auto parent = new CPryingParent;
    CNode* child = new CNode("child");
    parent->child = child;
    child->SetParent(parent);
    parent->Release();
    g_events.clear();
    EXPECT_EQ(child->Release(), 0u);
    EXPECT_EQ(g_events,
              (std::vector<std::string>{"child released", "prying parent destroyed", "no parent",
                                        "child released", "child destroyed"}));
}

TEST_F(UnknownTest, AnOldParentThatGoesFindsTheNewOneInItsChild) {
    auto old = new CPryingParent;
    CNode* fresh = new CNode("fresh");
    CNode* child = new CNode("child");
    old->child = child;
    child->SetParent(old);
    old->Release();
    g_events.clear();
    child->SetParent(fresh);
    EXPECT_EQ(g_events, (std::vector<std::string>{"prying parent destroyed", "fresh",
                                                  "fresh released", "child released"}));
    EXPECT_EQ(CountOf(fresh), 2u);
    child->Release();
    fresh->Release();
}

TEST_F(UnknownTest, AParentWhoseReleaseRaisesIsReplacedAllTheSame) {
    CNode* fresh = new CNode("fresh");
    CNode* child = new CNode("child");
    auto raising = new CRaisingParent;
    child->SetParent(raising);
    raising->Release();
    EXPECT_THROW(child->SetParent(fresh), int);
    INode* parent = child->GetParent();
    EXPECT_EQ(parent, fresh);
    parent->Release();
    child->Release();
    fresh->Release();
}

TEST_F(UnknownTest, AChildWhoseParentsReleaseRaisesIsDestroyedAllTheSame) {
    CNode* child = new CNode("child");
    auto raising = new CRaisingParent;
    child->SetParent(raising);
    raising->Release();
    g_events.clear();
    EXPECT_THROW(child->Release(), int);
    EXPECT_EQ(g_events, (std::vector<std::string>{"child released", "child destroyed"}));
}

TEST_F(UnknownTest, AParentedObjectCountsOnItsSecondField) {
    CNode* node = new CNode("node");
    EXPECT_EQ(node->AddRef(), 2u);
    EXPECT_EQ(node->InternalAddRef(), 2u);
    EXPECT_EQ(node->Release(), 1u);
    EXPECT_EQ(node->Release(), 0u);
}

namespace {

// Somebody queries and releases the object while it is being destroyed.
template <class Base>
class CQueriedAtItsEnd : public Base {
public:
    explicit CQueriedAtItsEnd(int* destroyed) : destroyed(destroyed) {}
    ~CQueriedAtItsEnd() override {
        ++*destroyed;
        IQXUnknown* self = nullptr;
        this->QueryInterface(qx_typeid<IQXUnknown>(), &self);
        self->Release();
    }
    const char* Name() override { return ""; }

private:
    int* destroyed;
};

}  // namespace

TEST_F(UnknownTest, AnObjectThatIsQueriedByItsDestructorEndsOnce) {
    int destroyed = 0;
    EXPECT_EQ((new CQueriedAtItsEnd<CQXUnknownImpl<INode>>(&destroyed))->Release(), 0u);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ((new CQueriedAtItsEnd<CQXUnknownImplParent<INode, INode>>(&destroyed))->Release(),
              0u);
    EXPECT_EQ(destroyed, 2);
}

namespace {

// Leaves the root's operations open; the other form, with its own, stands in the tests of the class
// registry.
class CContainedTicket : public CQXContainedObject<CContainedTicket>, public ITicket {
public:
    ~CContainedTicket() override { g_events.push_back("contained destroyed"); }
    int Number() override { return 7; }

    int ContainedQueryInterface(qx_type_info const& id, IQXUnknown** out) {
        ITicket* ticket = id == qx_typeid<ITicket>() ? this : nullptr;
        return QXAnswerQuery(ticket, out);
    }
};

using AggregateTicket = CQXAggObject<CContainedTicket>;

}  // namespace

TEST_F(UnknownTest, AddRefOfAnAggregateAnswersTheCountFromBefore) {
    auto aggregate = new AggregateTicket(nullptr);
    EXPECT_EQ(aggregate->AddRef(), 1u);
    EXPECT_EQ(aggregate->AddRef(), 2u);
    EXPECT_EQ(aggregate->Release(), 2u);
    EXPECT_EQ(aggregate->Release(), 1u);
    EXPECT_EQ(aggregate->Release(), 0u);
    EXPECT_EQ(g_events, std::vector<std::string>{"contained destroyed"});
}

TEST_F(UnknownTest, AnAggregateWithoutOuterControlsItself) {
    auto aggregate = new AggregateTicket(nullptr);
    EXPECT_EQ(aggregate->contained.outer, aggregate);
    IQXUnknown* out = nullptr;
    ASSERT_EQ(aggregate->QueryInterface(qx_typeid<ITicket>(), &out), 1);
    auto ticket = static_cast<ITicket*>(out);
    EXPECT_EQ(ticket->Number(), 7);
    ASSERT_EQ(ticket->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    EXPECT_EQ(out, aggregate);
    EXPECT_EQ(aggregate->Release(), 2u);
    EXPECT_EQ(aggregate->Release(), 1u);
    EXPECT_EQ(ticket->Release(), 0u);
}

TEST_F(UnknownTest, AnAggregatedInterfaceCountsAndQueriesItsOuter) {
    CTicket* outer = new CTicket;
    auto aggregate = new AggregateTicket(outer);
    EXPECT_EQ(aggregate->contained.outer, outer);
    IQXUnknown* out = nullptr;
    ASSERT_EQ(aggregate->QueryInterface(qx_typeid<ITicket>(), &out), 1);
    auto inner = static_cast<ITicket*>(out);
    EXPECT_EQ(inner->Number(), 7);
    EXPECT_EQ(CountOf(outer), 2u);
    ASSERT_EQ(inner->QueryInterface(qx_typeid<ITicket>(), &out), 1);
    EXPECT_EQ(static_cast<ITicket*>(out)->Number(), 42);
    EXPECT_EQ(out->Release(), 2u);
    EXPECT_EQ(inner->Release(), 1u);
    EXPECT_EQ(aggregate->Release(), 0u);
    EXPECT_EQ(outer->Release(), 0u);
}

TEST_F(UnknownTest, AnAggregateAnswersTheRootWithItselfAlsoWhenAggregated) {
    CTicket outer;
    auto aggregate = new AggregateTicket(&outer);
    IQXUnknown* out = nullptr;
    ASSERT_EQ(aggregate->QueryInterface(qx_typeid<IQXUnknown>(), &out), 1);
    EXPECT_EQ(out, aggregate);
    EXPECT_EQ(out->Release(), 1u);
    EXPECT_EQ(aggregate->Release(), 0u);
}

TEST_F(UnknownTest, AnAggregateClearsTheOutPointerOnAMiss) {
    auto aggregate = new AggregateTicket(nullptr);
    IQXUnknown* out = aggregate;
    EXPECT_EQ(aggregate->QueryInterface(qx_typeid<IStamp>(), &out), 0);
    EXPECT_EQ(out, nullptr);
    aggregate->Release();
}

TEST_F(UnknownTest, AHandleOnItsOwnerCountsNothingAndQueriesTheOwner) {
    CTicket owner;
    CUnknownInternal handle(&owner);
    EXPECT_EQ(handle.AddRef(), 0u);
    EXPECT_EQ(handle.Release(), 0u);
    IQXUnknown* out = nullptr;
    EXPECT_EQ(handle.QueryInterface(qx_typeid<ITicket>(), &out), 1);
    EXPECT_EQ(out, &owner);
    EXPECT_EQ(out->Release(), 1u);
}
