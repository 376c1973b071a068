#include "objects/name_collision.h"
#include "objects/services_fixture.h"

#include <qxcore/reference.h>

#include <algorithm>

namespace {

std::vector<std::string> Sorted(std::vector<std::string> texts) {
    std::sort(texts.begin(), texts.end());
    return texts;
}

}  // namespace

// ---- the creator

TEST_F(ServicesTest, ACreatorWithoutAnOuterObjectAnswersBothInterfaces) {
    for (const qx_type_info* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<IQXServiceContainer>()}) {
        IQXUnknown* object = nullptr;
        EXPECT_EQ(CLSID_OFSERVICECONTAINER(nullptr, *id, &object), 1);
        IQXUnknown* other;
        EXPECT_EQ(object->QueryInterface(qx_typeid<IQXUnknown>(), &other), 1);
        other->Release();
        EXPECT_EQ(object->QueryInterface(qx_typeid<IQXServiceContainer>(), &other), 1);
        other->Release();
        EXPECT_EQ(object->QueryInterface(qx_typeid<ITicket>(), &other), 0);
        EXPECT_EQ(other, nullptr);
        EXPECT_EQ(object->Release(), 0u);
    }
}

TEST_F(ServicesTest, ACreatorWithAnOuterObjectGivesOnlyTheRoot) {
    auto outer = qx::Make<CPlain>();
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CLSID_OFSERVICECONTAINER(outer.Get(), qx_typeid<IQXServiceContainer>(), &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CreateObject(kClass, outer.Get(), qx_typeid<IQXServiceContainer>(), &object), 0);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CreateObject(kClass, outer.Get(), qx_typeid<IQXUnknown>(), &object), 1);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(outer->Refs(), 1u);
}

TEST_F(ServicesTest, AnotherInterfaceIsRefused) {
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CLSID_OFSERVICECONTAINER(nullptr, qx_typeid<ITicket>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST_F(ServicesTest, WithoutAggregationTheContainerCountsOnItsOwnObject) {
    IQXUnknown* root;
    EXPECT_EQ(container->QueryInterface(qx_typeid<IQXUnknown>(), &root), 1);
    EXPECT_EQ(root->Release(), 1u);
    EXPECT_EQ(container->AddRef(), 1u);  // the count from before
    EXPECT_EQ(container->Release(), 1u);
}

namespace {

// An object that has a service container as a part of itself.
class COuter : public CQXUnknownImpl<ITicket> {
public:
    ~COuter() override {
        if (inner) inner->Release();
        g_events.push_back("outer destroyed");
    }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return InternalQueryInterface(id, out) || (inner && inner->QueryInterface(id, out));
    }
    int Number() override { return 9; }
    void* Module() override { return nullptr; }
    IQXUnknown* inner = nullptr;
};

}  // namespace

TEST_F(ServicesTest, InAnAggregateReferencesAndQueriesGoToTheOuterObject) {
    auto outer = new COuter;
    ASSERT_EQ(CreateObject(kClass, outer, qx_typeid<IQXUnknown>(), &outer->inner), 1);
    IQXUnknown* part;
    ASSERT_EQ(outer->QueryInterface(qx_typeid<IQXServiceContainer>(), &part), 1);
    auto services = static_cast<IQXServiceContainer*>(part);
    EXPECT_EQ(services->AddRef(), 3u);  // the outer object's count
    EXPECT_EQ(services->Release(), 2u);
    IQXUnknown* other;
    EXPECT_EQ(services->QueryInterface(qx_typeid<ITicket>(), &other), 1);
    EXPECT_EQ(static_cast<ITicket*>(other)->Number(), 9);
    other->Release();

    auto sink = new CSink("s");
    EXPECT_EQ(services->AddService("s", sink), 1);
    EXPECT_EQ(sink->handle->QueryInterface(qx_typeid<ITicket>(), &other),
              1);  // the handle reaches the outer object
    other->Release();
    sink->Release();
    services->Release();
    EXPECT_EQ(outer->Release(), 0u);
    EXPECT_EQ(g_events, (Events{"s added", "s removed", "s destroyed", "outer destroyed"}));
}

// ---- adding and finding

TEST_F(ServicesTest, AServiceIsFoundByItsNameWithAReference) {
    auto plain = new CPlain;
    EXPECT_EQ(container->AddService("one", plain), 1);
    EXPECT_EQ(plain->Refs(), 2u);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(container->GetService("one", &found), 1);
    EXPECT_EQ(found, plain);
    EXPECT_EQ(plain->Refs(), 3u);
    found->Release();
    plain->Release();
}

TEST_F(ServicesTest, AskingWithoutAnOutPointerTakesNoReference) {
    auto plain = new CPlain;
    container->AddService("one", plain);
    EXPECT_EQ(container->GetService("one", nullptr), 1);
    EXPECT_EQ(plain->Refs(), 2u);
    plain->Release();
}

TEST_F(ServicesTest, AMissingNameIsNotFound) {
    IQXUnknown* found = nullptr;
    EXPECT_EQ(container->GetService("nobody", &found), 0);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(container->GetService("nobody", nullptr), 0);
}

TEST_F(ServicesTest, ANameThatIsTakenIsNotReplaced) {
    auto first = new CSink("first"), second = new CSink("second");
    EXPECT_EQ(container->AddService("name", first), 1);
    EXPECT_EQ(container->AddService("name", second), 0);
    EXPECT_EQ(second->Refs(), 1u);
    EXPECT_EQ(g_events, Events{"first added"});
    IQXUnknown* found;
    EXPECT_EQ(container->GetService("name", &found), 1);
    EXPECT_EQ(found, first);
    found->Release();
    first->Release();
    second->Release();
}

TEST_F(ServicesTest, TwoNamesOfOneHashAreOneService) {
    std::string other = NameWithTheHashOf("Printing");
    ASSERT_EQ(other.size(), 9u);
    auto plain = qx::Make<CPlain>();
    EXPECT_EQ(container->AddService("Printing", plain.Get()), 1);
    EXPECT_EQ(container->GetService(other.c_str(), nullptr), 1);
    EXPECT_EQ(container->AddService(other.c_str(), plain.Get()), 0);
    EXPECT_EQ(Names(container), std::vector<std::string>{"Printing"});
    EXPECT_EQ(container->RemoveService(other.c_str()), 1);
    EXPECT_EQ(container->GetService("Printing", nullptr), 0);
}

TEST_F(ServicesTest, ANullServiceIsANameAndNothingMore) {
    EXPECT_EQ(container->AddService("null", nullptr), 1);
    IQXUnknown* found = kUnset;
    EXPECT_EQ(container->GetService("null", &found), 1);
    EXPECT_EQ(found, nullptr);
    CTEnum<IQXUnknown*>* services;
    EXPECT_EQ(container->EnumServices(qx_typeid<IQXUnknown>(), &services), 1);
    EXPECT_EQ(services->Next(1, &found, nullptr), 0);
    EXPECT_EQ(services->Skip(1), 0);
    services->Release();
    EXPECT_EQ(container->RemoveService("null"), 1);
}

// ---- sinks

TEST_F(ServicesTest, TheHandleOfASinkCountsNothingAndReachesTheContainer) {
    auto sink = new CSink("s");
    container->AddService("s", sink);
    IQXUnknown* handle = sink->handle;
    EXPECT_EQ(handle->AddRef(), 0u);
    EXPECT_EQ(handle->Release(), 0u);
    IQXUnknown* answer;
    EXPECT_EQ(handle->QueryInterface(qx_typeid<IQXServiceContainer>(), &answer), 1);
    EXPECT_EQ(answer, static_cast<IQXUnknown*>(static_cast<IQXServiceContainer*>(container)));
    answer->Release();
    sink->Release();
}

TEST_F(ServicesTest, ARemovedSinkHearsOfItWhileItIsAlive) {
    auto sink = new CSink("s");
    container->AddService("s", sink);
    sink->Release();  // the container holds the only reference now
    EXPECT_EQ(container->RemoveService("s"), 1);
    EXPECT_EQ(g_events, (Events{"s added", "s removed", "s destroyed"}));
    EXPECT_EQ(container->RemoveService("s"), 0);
}

TEST_F(ServicesTest, ARemovedServiceIsGoneWhenItsSinkHears) {
    auto sink = new CSink("s");
    container->AddService("s", sink);
    container->RemoveService("s");
    EXPECT_EQ(sink->presentWhenRemoved, 0);
    EXPECT_EQ(sink->Release(), 0u);
}

TEST_F(ServicesTest, AThrowingSinkLeavesItsServiceInTheContainer) {
    auto sink = new CSink("s");
    sink->throwWhenAdded = true;
    EXPECT_THROW(container->AddService("s", sink), CXException);
    EXPECT_EQ(container->GetService("s", nullptr), 1);
    EXPECT_EQ(sink->Refs(), 2u);  // the query's reference is not lost
    container->RemoveService("s");
    EXPECT_EQ(sink->Release(), 0u);
}

TEST_F(ServicesTest, ASinkThatThrowsAtItsRemovalIsRemoved) {
    auto sink = new CSink("s");
    sink->throwWhenRemoved = true;
    container->AddService("s", sink);
    EXPECT_THROW(container->RemoveService("s"), CXException);
    EXPECT_EQ(container->GetService("s", nullptr), 0);
    EXPECT_EQ(sink->Release(), 0u);
}

TEST_F(ServicesTest, RemovingAllTellsEverySinkAndTheContainerGoesOn) {
    auto a = new CSink("a"), b = new CSink("b");
    auto plain = qx::Make<CPlain>();
    container->AddService("a", a);
    container->AddService("plain", plain.Get());
    container->AddService("b", b);
    g_events.clear();
    container->RemoveAllServices();
    EXPECT_EQ(Sorted(g_events), (Events{"a removed", "b removed"}));
    EXPECT_EQ(a->presentWhenRemoved, 1);
    EXPECT_EQ(plain->Refs(), 1u);
    EXPECT_TRUE(Names(container).empty());
    EXPECT_EQ(container->AddService("a", a), 1);
    EXPECT_EQ(Names(container), Events{"a"});
    container->RemoveAllServices();
    container->RemoveAllServices();
    EXPECT_EQ(container->AddService("plain", plain.Get()), 1);
    container->RemoveAllServices();
    a->Release();
    b->Release();
}

TEST_F(ServicesTest, TheEndOfTheContainerTellsEverySink) {
    auto a = new CSink("a"), b = new CSink("b");
    container->AddService("a", a);
    container->AddService("b", b);
    a->throwWhenRemoved =
        true;  // nobody is left to hear of it, and the other sink is told all the same
    b->throwWhenRemoved = true;
    a->Release();
    b->Release();
    g_events.clear();
    container.Destroy();
    EXPECT_EQ(Sorted(g_events), (Events{"a destroyed", "a removed", "b destroyed", "b removed"}));
}

TEST_F(ServicesTest, ServicesAreReleasedWithTheContainer) {
    auto plain = new CPlain(5);
    container->AddService("plain", plain);
    plain->Release();
    EXPECT_TRUE(g_events.empty());
    container.Destroy();
    EXPECT_EQ(g_events, Events{"destroyed 5"});
}
