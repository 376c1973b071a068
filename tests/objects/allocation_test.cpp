// Every allocation of the registry's, the frames' and the container's operations fails once.
#include "support/allocation_failure.h"

#include <gtest/gtest.h>
#include <qxcore/enum.h>
#include <qxcore/persist.h>
#include <qxcore/reference.h>
#include <qxcore/registry.h>
#include <qxcore/services.h>
#include <qxcore/stream.h>

#include <cstring>
#include <memory>

QX_CREATOR(AllocationOwn) {
    (void)outer, (void)id, (void)out;
    return 0;
}

namespace {

constexpr char kClass[] = "CLSID_OFSERVICECONTAINER";

using ContainerRef = qx::Reference<IQXServiceContainer>;

ContainerRef NewContainer() {
    IQXUnknown* object;
    CreateObject(kClass, nullptr, qx_typeid<IQXServiceContainer>(), &object);
    return ContainerRef(static_cast<IQXServiceContainer*>(object));
}

// A container whose table exists.
ContainerRef UsedContainer() {
    ContainerRef container = NewContainer();
    container->AddService("first", nullptr);
    return container;
}

class CPlain : public CQXUnknownImpl<IQXUnknown> {};

constexpr char kFrame[] = "AllocationNobody\0\x03\0\0\0abc";
constexpr int kFrameSize = sizeof kFrame - 1;

// A stream at the start of the frame of an unknown class.
qx::Reference<IXStream> NewFrame() {
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    stream->Write(kFrame, kFrameSize);
    stream->Seek(0, 0);
    return stream;
}

// The proxy for that frame.
qx::Reference<IPersistXStream> NewProxy() {
    IQXUnknown* object;
    ReadObjectFromXStream(NewFrame().Get(), &object);
    IQXUnknown* persistent;
    object->QueryInterface(qx_typeid<IPersistXStream>(), &persistent);
    object->Release();
    return qx::Reference<IPersistXStream>(static_cast<IPersistXStream*>(persistent));
}

void ExpectFrameOf(IPersistXStream* object) {
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    WriteObjectToXStream(stream.Get(), object);
    ASSERT_EQ(stream->GetLength(), kFrameSize);
    char bytes[kFrameSize];
    stream->Seek(0, 0);
    stream->Read(bytes, kFrameSize);
    EXPECT_EQ(memcmp(bytes, kFrame, kFrameSize), 0);
}

}  // namespace

TEST(ObjectAllocationTest, AFailedRegistrationRegistersNothing) {
    auto none = [] { return 0; };
    auto check = [](int) { EXPECT_EQ(IsRegisterObject("AllocationOwn"), 0); };
    HINSTANCE program = GetModuleHandleA(nullptr);
    auto byHandle = [&](int) {
        RegisterObject("AllocationOwn", program);
        UnregisterObject("AllocationOwn");
    };
    auto byPath = [](int) {
        RegisterObject("AllocationOwn", "test_ticket_module.dll");
        UnregisterObject("AllocationOwn");
    };
    EXPECT_GE(FailEachAllocation(none, byHandle, check), 2u);  // the entry and its node
    EXPECT_GE(FailEachAllocation(none, byPath, check), 4u);    // and the path and the entry's name
}

TEST(ObjectAllocationTest, AFileThatCannotBeFoundIsRefusedWithoutMemory) {
    FailingAllocation failing(1);
    EXPECT_EQ(RegisterObject("AllocationOwn", "no such file.dll"), 0);
    EXPECT_FALSE(failing.Happened());
}

TEST(ObjectAllocationTest, AFailedContainerIsNotMade) {
    IQXUnknown* object = nullptr;
    auto act = [&](int) {
        CreateObject(kClass, nullptr, qx_typeid<IQXServiceContainer>(), &object);
        object->Release();
        object = nullptr;
    };
    EXPECT_GE(FailEachAllocation([] { return 0; }, act, [&](int) { EXPECT_EQ(object, nullptr); }),
              1u);
}

TEST(ObjectAllocationTest, AServiceThatCouldNotBeAddedIsNotThere) {
    auto plain = qx::Make<CPlain>();
    auto add = [&](ContainerRef& container) { container->AddService("name", plain.Get()); };
    auto check = [&](ContainerRef& container) {
        EXPECT_EQ(container->GetService("name", nullptr), 0);
        EXPECT_EQ(container->AddService("name", plain.Get()), 1);
        EXPECT_EQ(container->GetService("name", nullptr), 1);
    };
    EXPECT_GE(FailEachAllocation(NewContainer, add, check), 2u);  // the table and the node
    EXPECT_GE(FailEachAllocation(UsedContainer, add, check), 1u);
    plain->AddRef();
    EXPECT_EQ(plain->Release(), 1u);
}

TEST(ObjectAllocationTest, AnEnumeratorThatCouldNotBeMadeLeavesTheContainerUsable) {
    auto act = [](ContainerRef& container) {
        CTEnum<const char*>* names;
        container->EnumServiceNames(&names);
        qx::Reference<CTEnum<const char*>> held(names);
        CTEnum<IQXUnknown*>* services;
        container->EnumServices(qx_typeid<IQXUnknown>(), &services);
        services->Release();
    };
    auto check = [](ContainerRef& container) {
        EXPECT_EQ(container->GetService("first", nullptr), 1);
    };
    EXPECT_EQ(FailEachAllocation(UsedContainer, act, check), 2u);
}

TEST(ObjectAllocationTest, AFrameThatCouldNotBeReadLeavesNoObject) {
    auto make = [] { return NewFrame(); };
    IQXUnknown* object = nullptr;
    auto read = [&](qx::Reference<IXStream>& stream) {
        ReadObjectFromXStream(stream.Get(), &object);
        object->Release();
        object = nullptr;
    };
    auto check = [&](qx::Reference<IXStream>& stream) {
        EXPECT_EQ(object, nullptr);
        stream->Seek(0, 0);
        EXPECT_EQ(ReadObjectFromXStream(stream.Get(), &object), 1);
        object->Release();
        object = nullptr;
    };
    EXPECT_GE(FailEachAllocation(make, read, check), 3u);  // the proxy, its name, its bytes
}

TEST(ObjectAllocationTest, AProxyThatCouldNotBeLoadedCanBeLoadedLater) {
    qx::Reference<IXStream> payload(new_StreamOnMemory());
    payload->Write("abc", 3);
    auto load = [&](qx::Reference<IPersistXStream>& proxy) {
        payload->Seek(0, 0);
        proxy->Load(payload.Get());
    };
    auto check = [&](qx::Reference<IPersistXStream>& proxy) {
        load(proxy);
        ExpectFrameOf(proxy.Get());
    };
    EXPECT_EQ(FailEachAllocation(NewProxy, load, check), 1u);
}

TEST(ObjectAllocationTest, AnObjectWhoseFrameCouldNotBeWrittenCanBeWrittenElsewhere) {
    auto write = [](qx::Reference<IPersistXStream>& proxy) {
        qx::Reference<IXStream> stream(new_StreamOnMemory());
        if (!stream) throw CXMemException();
        WriteObjectToXStream(stream.Get(), proxy.Get());
    };
    EXPECT_EQ(FailEachAllocation(
                  NewProxy, write,
                  [](qx::Reference<IPersistXStream>& proxy) { ExpectFrameOf(proxy.Get()); }),
              2u);
}

TEST(ObjectAllocationTest, MeasuringAndSkippingAFrameTakesNoMemory) {
    qx::Reference<IPersistXStream> proxy = NewProxy();
    qx::Reference<IXStream> stream = NewFrame();
    FailingAllocation failing(1);
    EXPECT_EQ(SizeOfObject(proxy.Get()), static_cast<unsigned long>(kFrameSize));
    EXPECT_EQ(SkipObjectToXStream(stream.Get()), 0u);
    EXPECT_FALSE(failing.Happened());
}
