// A container, services with and without a sink, and what they tell.
#ifndef QXCORE_TESTS_OBJECTS_SERVICES_FIXTURE_H
#define QXCORE_TESTS_OBJECTS_SERVICES_FIXTURE_H

#include "objects/ticket.h"

#include <gtest/gtest.h>
#include <qxcore/enum.h>
#include <qxcore/exception.h>
#include <qxcore/registry.h>
#include <qxcore/services.h>

#include <string>
#include <utility>
#include <vector>

inline constexpr char kClass[] = "CLSID_OFSERVICECONTAINER";
inline IQXUnknown* const kUnset = reinterpret_cast<IQXUnknown*>(8);

// A container with one reference, released at the end of a test.
class Container {
public:
    Container() {
        IQXUnknown* object;
        EXPECT_EQ(CreateObject(kClass, nullptr, qx_typeid<IQXServiceContainer>(), &object), 1);
        container = static_cast<IQXServiceContainer*>(object);
    }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;
    ~Container() { Destroy(); }

    void Destroy() {
        if (container) {
            EXPECT_EQ(container->Release(), 0u);
        }
        container = nullptr;
    }
    IQXServiceContainer* operator->() const { return container; }
    operator IQXServiceContainer*() const { return container; }

private:
    IQXServiceContainer* container;
};

// What the services of a test tell, in order.
inline std::vector<std::string> g_events;

// A service without a sink.
class CPlain : public CQXUnknownImpl<ITicket> {
public:
    explicit CPlain(int number = 0) : number(number) {}
    ~CPlain() override { g_events.push_back("destroyed " + std::to_string(number)); }
    int Number() override { return number; }
    void* Module() override { return nullptr; }
    unsigned Refs() {
        AddRef();
        return Release();
    }

private:
    int number;
};

// A service that tells what it hears. It answers IQXServiceSink and not ITicket.
class CSink : public CQXUnknownImpl<IQXServiceSink> {
public:
    explicit CSink(std::string name) : name(std::move(name)) {}
    ~CSink() override { g_events.push_back(name + " destroyed"); }

    void OnServiceAdded(IQXUnknown* container) override {
        g_events.push_back(name + " added");
        handle = container;
        if (throwWhenAdded) throw CXException(77);
    }
    void OnServiceRemoved(IQXUnknown* container) override {
        g_events.push_back(name + " removed");
        EXPECT_EQ(container, handle);
        // The container can be asked even while it is destroyed.
        IQXUnknown* asked;
        EXPECT_EQ(container->QueryInterface(qx_typeid<IQXServiceContainer>(), &asked), 1);
        presentWhenRemoved =
            static_cast<IQXServiceContainer*>(asked)->GetService(name.c_str(), nullptr);
        asked->Release();
        if (throwWhenRemoved) throw CXException(78);
    }
    unsigned Refs() {
        AddRef();
        return Release();
    }

    IQXUnknown* handle = nullptr;
    int presentWhenRemoved = -1;
    bool throwWhenAdded = false;
    bool throwWhenRemoved = false;

private:
    std::string name;
};

class ServicesTest : public testing::Test {
protected:
    void SetUp() override { g_events.clear(); }

    using Events = std::vector<std::string>;
    Container container;
};

inline std::vector<std::string> Names(IQXServiceContainer* container) {
    CTEnum<const char*>* names;
    EXPECT_EQ(container->EnumServiceNames(&names), 1);
    std::vector<std::string> found;
    const char* name;
    while (names->Next(1, &name, nullptr)) found.push_back(name);
    names->Release();
    return found;
}

#endif
