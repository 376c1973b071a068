#include "objects/name_collision.h"
#include "objects/services_fixture.h"

#include <qxcore/reference.h>

#include <algorithm>

namespace {

using ServiceEnumTest = ServicesTest;

// The walk goes by hash modulo 127, in each chain the newest first: the order of the names, added
// one after the other.
std::vector<std::string> WalkOrder(const std::vector<std::string>& added) {
    std::vector<std::string> order(added.rbegin(), added.rend());
    std::stable_sort(order.begin(), order.end(), [](const std::string& a, const std::string& b) {
        return TextHash(a) % 127 < TextHash(b) % 127;
    });
    return order;
}

}  // namespace

TEST_F(ServiceEnumTest, NamesComeInTheOrderOfTheTable) {
    auto plain = qx::Make<CPlain>();
    std::vector<std::string> added;
    for (int i = 0; i < 300; ++i) {
        added.push_back("service" + std::to_string(i));
        container->AddService(added.back().c_str(), plain.Get());
    }
    EXPECT_EQ(Names(container), WalkOrder(added));
}

TEST_F(ServiceEnumTest, NamesAreDeliveredInPortions) {
    auto plain = qx::Make<CPlain>();
    for (const char* name : {"a", "b", "c"})
        container->AddService(name, plain.Get());  // 97, 98, 99: in this order
    CTEnum<const char*>* names;
    container->EnumServiceNames(&names);
    const char* out[4] = {};
    unsigned fetched = 77;
    EXPECT_EQ(names->Next(0, out, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(names->Next(2, out, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_STREQ(out[0], "a");
    EXPECT_STREQ(out[1], "b");
    EXPECT_EQ(names->Next(4, out, &fetched), 1);
    EXPECT_EQ(fetched, 1u);
    EXPECT_STREQ(out[0], "c");
    // The end of the walk was reached, and the table's walk starts over.
    EXPECT_EQ(names->Next(1, out, &fetched), 1);
    EXPECT_STREQ(out[0], "a");
    names->Reset();
    EXPECT_EQ(names->Skip(2), 1);
    EXPECT_EQ(names->Next(1, out, nullptr), 1);
    EXPECT_STREQ(out[0], "c");
    EXPECT_EQ(names->Skip(5), 0);  // at the end: no step
    EXPECT_EQ(names->Skip(5), 1);  // over again: three steps
    EXPECT_EQ(names->Skip(0), 0);
    names->Release();
}

TEST_F(ServiceEnumTest, ANextThatReachesTheEndExactlyAnswersNothingTheNextTime) {
    auto plain = qx::Make<CPlain>();
    container->AddService("a", plain.Get());
    CTEnum<const char*>* names;
    container->EnumServiceNames(&names);
    const char* out[1];
    EXPECT_EQ(names->Next(1, out, nullptr), 1);
    EXPECT_EQ(names->Next(1, out, nullptr), 0);
    EXPECT_EQ(names->Next(1, out, nullptr), 1);
    names->Release();
}

TEST_F(ServiceEnumTest, AnEmptyContainerDeliversNothing) {
    CTEnum<const char*>* names;
    CTEnum<IQXUnknown*>* services;
    EXPECT_EQ(container->EnumServiceNames(&names), 1);
    EXPECT_EQ(container->EnumServices(qx_typeid<IQXUnknown>(), &services), 1);
    const char* name;
    IQXUnknown* object;
    unsigned fetched = 77;
    EXPECT_EQ(names->Next(1, &name, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(names->Skip(1), 0);
    fetched = 77;
    EXPECT_EQ(services->Next(1, &object, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
    EXPECT_EQ(services->Skip(1), 0);
    names->Release();
    services->Release();
}

TEST_F(ServiceEnumTest, AnInterfaceThatOneOfThreeHasDeliversOneObject) {
    auto a = new CSink("a"), c = new CSink("c");
    auto plain = qx::Make<CPlain>(5);
    container->AddService("a", a);
    container->AddService("b", plain.Get());
    container->AddService("c", c);
    CTEnum<IQXUnknown*>* services;
    EXPECT_EQ(container->EnumServices(qx_typeid<ITicket>(), &services), 1);
    IQXUnknown* out[3] = {};
    unsigned fetched = 0;
    EXPECT_EQ(services->Next(3, out, &fetched), 1);
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(static_cast<ITicket*>(out[0])->Number(), 5);
    EXPECT_EQ(plain->Refs(), 3u);
    out[0]->Release();
    services->Release();
    container->RemoveAllServices();
    EXPECT_EQ(plain->Refs(), 1u);
    a->Release();
    c->Release();
}

TEST_F(ServiceEnumTest, NextPassesOverRefusalsAndSkipEndsBehindTheFirst) {
    auto first = qx::Make<CPlain>(1), second = qx::Make<CPlain>(2), third = qx::Make<CPlain>(3);
    auto sink = new CSink("c");
    container->AddService("a", first.Get());
    container->AddService("b", second.Get());
    container->AddService("c", sink);  // refuses
    container->AddService("d", third.Get());
    CTEnum<IQXUnknown*>* services;
    container->EnumServices(qx_typeid<ITicket>(), &services);
    IQXUnknown* out[4];
    unsigned fetched;
    EXPECT_EQ(services->Skip(1), 1);
    EXPECT_EQ(services->Next(2, out, &fetched), 1);
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(static_cast<ITicket*>(out[0])->Number(), 2);
    EXPECT_EQ(static_cast<ITicket*>(out[1])->Number(), 3);
    out[0]->Release();
    out[1]->Release();

    services->Reset();
    EXPECT_EQ(services->Skip(10), 1);  // a and b; c ends it
    EXPECT_EQ(services->Skip(10), 1);  // d
    services->Reset();
    EXPECT_EQ(services->Skip(2), 1);
    EXPECT_EQ(services->Skip(1), 0);  // c refuses
    EXPECT_EQ(services->Next(4, out, &fetched), 1);
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(static_cast<ITicket*>(out[0])->Number(), 3);
    out[0]->Release();
    services->Release();
    EXPECT_EQ(first->Refs(), 2u);
    container->RemoveAllServices();
    sink->Release();
}

TEST_F(ServiceEnumTest, TheEnumeratorsAnswerTheirIdentity) {
    CTEnum<const char*>* names;
    CTEnum<IQXUnknown*>* services;
    container->EnumServiceNames(&names);
    container->EnumServices(qx_typeid<IQXUnknown>(), &services);
    IQXUnknown* answer;
    for (const qx_type_info* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<CTEnum<const char*>>()}) {
        EXPECT_EQ(names->QueryInterface(*id, &answer), 1);
        EXPECT_EQ(answer->Release(), 1u);
    }
    for (const qx_type_info* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<CTEnum<IQXUnknown*>>()}) {
        EXPECT_EQ(services->QueryInterface(*id, &answer), 1);
        EXPECT_EQ(answer->Release(), 1u);
    }
    EXPECT_EQ(names->QueryInterface(qx_typeid<CTEnum<IQXUnknown*>>(), nullptr), 0);
    EXPECT_EQ(services->QueryInterface(qx_typeid<CTEnum<const char*>>(), nullptr), 0);
    EXPECT_EQ(names->Release(), 0u);
    EXPECT_EQ(services->Release(), 0u);
}

TEST_F(ServiceEnumTest, AnEnumeratorHoldsNoReferenceOnTheContainer) {
    CTEnum<const char*>* names;
    container->EnumServiceNames(&names);
    EXPECT_EQ(container->AddRef(), 1u);
    container->Release();
    names->Release();
}

TEST_F(ServiceEnumTest, ServicesOfAnotherModuleAnswerOurRecord) {
    ASSERT_EQ(RegisterObject("TestInspector", "test_inspector_module.dll"), 1);
    IQXUnknown* object;
    ASSERT_EQ(CreateObject("TestInspector", nullptr, qx_typeid<IQXUnknown>(), &object), 1);
    qx::Reference<IQXUnknown> inspector(object);
    auto plain = qx::Make<CPlain>(3);
    container->AddService("theirs", object);
    container->AddService("ours", plain.Get());

    CTEnum<IQXUnknown*>* services;
    container->EnumServices(qx_typeid<IInspector>(), &services);
    IQXUnknown* out[2] = {};
    unsigned fetched = 0;
    EXPECT_EQ(services->Next(2, out, &fetched), 1);
    ASSERT_EQ(fetched, 1u);
    EXPECT_EQ(static_cast<IInspector*>(out[0])->Inspect(plain.Get()), 3);
    out[0]->Release();
    services->Release();
    container->RemoveAllServices();
    EXPECT_EQ(UnregisterObject("TestInspector"), 1);
}
