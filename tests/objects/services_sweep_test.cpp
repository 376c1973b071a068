// Services that use their container while it is emptied.
#include "objects/services_fixture.h"

#include <algorithm>
#include <functional>

namespace {

// A service that tells of its removal and then acts.
class CActor : public CQXUnknownImpl<IQXServiceSink> {
public:
    using Act = std::function<void(IQXServiceContainer*)>;

    CActor(std::string name, Act act, Act last = nullptr)
        : m_name(std::move(name)), m_act(std::move(act)), m_last(std::move(last)) {}
    ~CActor() override {
        g_events.push_back(m_name + " destroyed");
        if (m_last) m_last(m_container);
    }

    void OnServiceAdded(IQXUnknown* container) override {
        IQXUnknown* answer;
        container->QueryInterface(qx_typeid<IQXServiceContainer>(), &answer);
        m_container = static_cast<IQXServiceContainer*>(answer);
        m_container->Release();
    }
    void OnServiceRemoved(IQXUnknown*) override {
        g_events.push_back(m_name + " removed");
        if (m_act) m_act(m_container);
    }

private:
    std::string m_name;
    Act m_act, m_last;
    IQXServiceContainer* m_container = nullptr;
};

class ServicesSweepTest : public ServicesTest {
protected:
    void Add(const std::string& name, CActor::Act act, CActor::Act last = nullptr) {
        auto actor = new CActor(name, std::move(act), std::move(last));
        EXPECT_EQ(container->AddService(name.c_str(), actor), 1);
        actor->Release();
    }
    // Twelve services, each with the same act, which is told its own name.
    void AddTwelve(std::function<void(IQXServiceContainer*, const std::string&)> act) {
        for (int i = 0; i < 12; ++i) {
            std::string name = std::to_string(i);
            Add(name, [act, name](IQXServiceContainer* services) { act(services, name); });
        }
    }
    static long CountOf(const std::string& event) {
        return std::count(g_events.begin(), g_events.end(), event);
    }
    static void ExpectEachOnce(const char* what) {
        for (int i = 0; i < 12; ++i) EXPECT_EQ(CountOf(std::to_string(i) + what), 1) << i;
    }
};

}  // namespace

TEST_F(ServicesSweepTest, ASinkMayRemoveItsOwnService) {
    AddTwelve([](IQXServiceContainer* services, const std::string& name) {
        services->RemoveService(name.c_str());  // tells it a second time, and finds nothing then
    });
    container->RemoveAllServices();
    for (int i = 0; i < 12; ++i) EXPECT_EQ(CountOf(std::to_string(i) + " removed"), 2) << i;
    ExpectEachOnce(" destroyed");
    EXPECT_TRUE(Names(container).empty());
}

TEST_F(ServicesSweepTest, ASinkMayRemoveAllTheOthers) {
    bool first = true;
    AddTwelve([&first](IQXServiceContainer* services, const std::string& own) {
        if (!std::exchange(first, false)) return;
        for (int i = 0; i < 12; ++i) {
            if (std::to_string(i) != own) services->RemoveService(std::to_string(i).c_str());
        }
    });
    container->RemoveAllServices();
    ExpectEachOnce(" removed");
    ExpectEachOnce(" destroyed");
    EXPECT_TRUE(Names(container).empty());
}

TEST_F(ServicesSweepTest, ASweepInsideASweepTellsEachServiceOnce) {
    AddTwelve([](IQXServiceContainer* services, const std::string&) {
        services->RemoveAllServices();
        EXPECT_TRUE(Names(services).empty());
    });
    container->RemoveAllServices();
    ExpectEachOnce(" removed");
    ExpectEachOnce(" destroyed");
}

TEST_F(ServicesSweepTest, WhatASinkAddsInASweepIsReleased) {
    auto late = new CPlain(1);
    AddTwelve([late](IQXServiceContainer* services, const std::string& name) {
        services->AddService(("late" + name).c_str(), late);
    });
    container->RemoveAllServices();
    EXPECT_TRUE(Names(container).empty());
    EXPECT_EQ(late->Release(), 0u);
    ExpectEachOnce(" destroyed");
}

TEST_F(ServicesSweepTest, WhatASinkAddsBehindASweepOfItsOwnIsReleased) {
    auto late = new CPlain(1);
    AddTwelve([late](IQXServiceContainer* services, const std::string& name) {
        services->RemoveAllServices();
        services->AddService(("late" + name).c_str(), late);
    });
    container->RemoveAllServices();
    EXPECT_TRUE(Names(container).empty());
    EXPECT_EQ(late->Release(), 0u);
    ExpectEachOnce(" removed");
}

TEST_F(ServicesSweepTest, AServiceThatEndsInASweepMayEmptyTheContainerAndAddToIt) {
    auto late = new CPlain(1);
    for (int i = 0; i < 12; ++i) {
        Add(std::to_string(i), nullptr, [late](IQXServiceContainer* services) {
            services->RemoveAllServices();
            services->AddService("late", late);
        });
    }
    container->RemoveAllServices();
    ExpectEachOnce(" removed");
    ExpectEachOnce(" destroyed");
    container->RemoveAllServices();
    EXPECT_EQ(late->Release(), 0u);
    EXPECT_EQ(container->AddService("again", nullptr), 1);
}

TEST_F(ServicesSweepTest, AFailedSweepStartsAfreshTheNextTime) {
    bool fails = true;
    AddTwelve([&fails](IQXServiceContainer*, const std::string& name) {
        if (fails && name == "5") throw CXException(79);
    });
    EXPECT_THROW(container->RemoveAllServices(), CXException);
    EXPECT_EQ(Names(container).size(), 12u);
    g_events.clear();
    fails = false;
    container->RemoveAllServices();
    ExpectEachOnce(" removed");
    ExpectEachOnce(" destroyed");
}

TEST_F(ServicesSweepTest, ASinkMayChangeTheContainerWhileThatEnds) {
    auto late = new CPlain(1);
    AddTwelve([late](IQXServiceContainer* services, const std::string& name) {
        services->RemoveService(name.c_str());
        if (name == "3") services->RemoveService("7");
        if (name == "7") services->RemoveService("3");
        services->AddService("late", late);
        if (name == "4") services->RemoveAllServices();
    });
    container.Destroy();
    ExpectEachOnce(" destroyed");
    EXPECT_EQ(late->Release(), 0u);
}

TEST_F(ServicesSweepTest, ASinkThatRemovesAServiceOutsideASweepDisturbsNoLaterOne) {
    Add("a", [](IQXServiceContainer* services) { services->RemoveService("b"); });
    Add("b", [](IQXServiceContainer* services) { services->RemoveService("a"); });
    EXPECT_EQ(container->RemoveService("a"), 1);
    EXPECT_EQ(g_events, (Events{"a removed", "b removed", "b destroyed", "a destroyed"}));
    Add("c", nullptr);
    container->RemoveAllServices();
    EXPECT_EQ(CountOf("c removed"), 1);
}

TEST_F(ServicesSweepTest, AServiceIsRefusedWhileTheTableIsCleared) {
    int added = -1;
    IQXServiceContainer* services = container;
    Add("a", nullptr, [&](IQXServiceContainer*) { added = services->AddService("late", nullptr); });
    container->RemoveAllServices();
    EXPECT_EQ(added, 0);
    EXPECT_TRUE(Names(container).empty());
}

namespace {

// A service whose last release raises.
class CStubborn : public CQXUnknownImpl<ITicket> {
public:
    unsigned Release() override {
        if (InternalRelease() == 0) throw CXException(80);
        return 1;
    }
    int Number() override { return 0; }
    void* Module() override { return nullptr; }
};

int CodeOf(const std::function<void()>& act) {
    try {
        act();
        return 0;
    } catch (CXException& e) {
        return e.GetCode();
    }
}

}  // namespace

TEST_F(ServicesSweepTest, WhatARemovedServicesReleaseRaisesReachesTheCallerAndTheServiceIsGone) {
    auto stubborn = new CStubborn;
    EXPECT_EQ(container->AddService("stubborn", stubborn), 1);
    stubborn->Release();
    EXPECT_EQ(CodeOf([&] { container->RemoveService("stubborn"); }), 80);
    EXPECT_EQ(container->GetService("stubborn", nullptr), 0);
    EXPECT_EQ(container->AddService("stubborn", nullptr), 1);
}

TEST_F(ServicesSweepTest, AContainerTakesServicesAgainThoughAReleaseRaisedWhenItWasEmptied) {
    Add("a", nullptr);
    auto stubborn = new CStubborn;
    EXPECT_EQ(container->AddService("stubborn", stubborn), 1);
    stubborn->Release();
    Add("z", nullptr);
    EXPECT_EQ(CodeOf([&] { container->RemoveAllServices(); }), 80);
    EXPECT_EQ(CountOf("a destroyed") + CountOf("z destroyed"), 2);
    EXPECT_TRUE(Names(container).empty());
    Add("again", nullptr);
    EXPECT_EQ(container->GetService("again", nullptr), 1);
}
