#include "objects/module_copy.h"
#include "objects/name_collision.h"
#include "objects/ticket.h"

#include <gtest/gtest.h>
#include <qxcore/exception.h>
#include <qxcore/reference.h>
#include <qxcore/registry.h>
#include <qxcore/services.h>

#include <cstdio>

// Creators of the test program itself.

static int g_ownCreatorCalls = 0;

QX_CREATOR(TestOwn) {
    ++g_ownCreatorCalls;
    (void)outer, (void)id, (void)out;
    return 0;
}

QX_CREATOR(TestOwnOther) {
    (void)outer, (void)id, (void)out;
    return 0;
}

namespace {

constexpr char kModule[] = "test_ticket_module.dll";

HINSTANCE OwnProgram() {
    return GetModuleHandleA(nullptr);
}

// Forgets a class at the end of a test.
struct Registered {
    explicit Registered(const char* name) : name(name) {}
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;
    ~Registered() { UnregisterObject(name); }
    const char* name;
};

// The number of the ticket of this class, or 0 if none was made.
int TicketNumber(const char* name) {
    IQXUnknown* object;
    if (!CreateObject(name, nullptr, qx_typeid<ITicket>(), &object)) return 0;
    int number = static_cast<ITicket*>(object)->Number();
    EXPECT_EQ(object->Release(), 0u);
    return number;
}

IQXUnknown* const kUnset = reinterpret_cast<IQXUnknown*>(8);

}  // namespace

// ---- registration

TEST(RegistryTest, AClassOfALoadedModuleIsRegisteredByItsHandle) {
    Registered guard("TestOwn");
    EXPECT_EQ(IsRegisterObject("TestOwn"), 0);
    EXPECT_EQ(RegisterObject("TestOwn", OwnProgram()), 1);
    EXPECT_EQ(IsRegisterObject("TestOwn"), 1);
}

TEST(RegistryTest, ANameThatTheModuleDoesNotExportIsRefused) {
    EXPECT_EQ(RegisterObject("TestNoSuchExport", OwnProgram()), 0);
    EXPECT_EQ(IsRegisterObject("TestNoSuchExport"), 0);
}

TEST(RegistryTest, ASecondRegistrationDoesNotLookAtItsModule) {
    Registered guard("TestOwn");
    EXPECT_EQ(RegisterObject("TestOwn", OwnProgram()), 1);
    EXPECT_EQ(RegisterObject("TestOwn", GetModuleHandleA("kernel32.dll")), 1);
    EXPECT_EQ(RegisterObject("TestOwn", "no such file.dll"), 1);
    g_ownCreatorCalls = 0;
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestOwn", nullptr, qx_typeid<IQXUnknown>(), &object), 0);
    EXPECT_EQ(g_ownCreatorCalls, 1);
}

TEST(RegistryTest, ASecondRegistrationWithAnotherPathChangesNothing) {
    ModuleCopy first(kModule), second(kModule);
    Registered guard("TestTicket");
    EXPECT_EQ(RegisterObject("TestTicket", first.Path()), 1);
    EXPECT_EQ(RegisterObject("TestTicket", second.Path()), 1);
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
    EXPECT_TRUE(first.IsLoaded());
    EXPECT_FALSE(second.IsLoaded());
}

TEST(RegistryTest, AFileThatCannotBeFoundIsRefused) {
    EXPECT_EQ(RegisterObject("TestTicket", "Z:\\no such folder\\no such file.dll"), 0);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 0);
    EXPECT_EQ(RegisterObject("TestTicket", ""), 0);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 0);
}

TEST(RegistryTest, APathOfMoreCharactersThanTheBufferIsRefused) {
    std::string path = ProgramFolder();
    while (path.size() < 600) path += ".\\";
    EXPECT_EQ(RegisterObject("TestTicket", (path + kModule).c_str()), 0);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 0);
}

TEST(RegistryTest, AFileIsFoundByTheSystemsSearchOrder) {
    Registered guard("TestTicket");
    EXPECT_EQ(RegisterObject("TestTicket", kModule), 1);  // beside the program
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
}

TEST(RegistryTest, ThePathIsResolvedAtRegistrationAndTheFileLoadedAtTheFirstCreation) {
    ModuleCopy module(kModule);
    Registered guard("TestTicket");
    EXPECT_EQ(RegisterObject("TestTicket", module.Path()), 1);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 1);
    EXPECT_FALSE(module.IsLoaded());
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
    EXPECT_TRUE(module.IsLoaded());
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
}

TEST(RegistryTest, TwoClassesOfOneFileAreTwoClasses) {
    ModuleCopy module(kModule);
    Registered first("TestTicket"), second("TestTicketByFortyTwo");
    EXPECT_EQ(RegisterObject("TestTicket", module.Path()), 1);
    EXPECT_EQ(RegisterObject("TestTicketByFortyTwo", module.Path()), 1);
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
    EXPECT_EQ(TicketNumber("TestTicketByFortyTwo"), 41);
}

TEST(RegistryTest, NamesAreTellingCaseApart) {
    Registered guard("TestOwn");
    EXPECT_EQ(RegisterObject("TestOwn", OwnProgram()), 1);
    EXPECT_EQ(IsRegisterObject("testown"), 0);
    EXPECT_EQ(IsRegisterObject("TestOw"), 0);
    EXPECT_EQ(IsRegisterObject(""), 0);
}

// ---- making objects

TEST(RegistryTest, AnUnknownNameGivesZeroAndNull) {
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestNobody", nullptr, qx_typeid<IQXUnknown>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, AFileWithoutTheEntryIsRegisteredAndMakesNothing) {
    ModuleCopy module(kModule);
    Registered guard("TestNoSuchExport");
    EXPECT_EQ(RegisterObject("TestNoSuchExport", module.Path()), 1);
    for (int attempt = 0; attempt < 2; ++attempt) {
        IQXUnknown* object = kUnset;
        EXPECT_EQ(CreateObject("TestNoSuchExport", nullptr, qx_typeid<IQXUnknown>(), &object), 0);
        EXPECT_EQ(object, nullptr);
        EXPECT_TRUE(module.IsLoaded());
        EXPECT_EQ(IsRegisterObject("TestNoSuchExport"), 1);
    }
}

TEST(RegistryTest, AFileThatCannotBeLoadedIsTriedAgain) {
    ModuleCopy module(kModule);
    Registered guard("TestTicket");
    EXPECT_EQ(RegisterObject("TestTicket", module.Path()), 1);
    std::string aside = module.Path() + std::string(".aside");
    ASSERT_TRUE(MoveFileA(module.Path(), aside.c_str()));
    FILE* noModule = fopen(module.Path(), "wb");
    fputs("this is no module", noModule);
    fclose(noModule);
    EXPECT_EQ(TicketNumber("TestTicket"), 0);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 1);
    ASSERT_TRUE(DeleteFileA(module.Path()));
    EXPECT_EQ(TicketNumber("TestTicket"), 0);
    ASSERT_TRUE(MoveFileA(aside.c_str(), module.Path()));
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
}

TEST(RegistryTest, AnObjectHasOneReference) {
    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestTicket", nullptr, qx_typeid<IQXUnknown>(), &object), 1);
    EXPECT_EQ(object->AddRef(), 2u);
    object->Release();
    EXPECT_EQ(object->Release(), 0u);
}

TEST(RegistryTest, AnInterfaceThatTheObjectLacksGivesZeroAndNull) {
    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestTicket", nullptr, qx_typeid<IInspector>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, TheCreatorsOwnAnswerComesBack) {
    Registered odd("TestTicketByFortyTwo"), failing("TestFailing");
    ASSERT_EQ(RegisterObject("TestTicketByFortyTwo", kModule), 1);
    ASSERT_EQ(RegisterObject("TestFailing", kModule), 1);
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestTicketByFortyTwo", nullptr, qx_typeid<ITicket>(), &object), 42);
    object->Release();
    object = kUnset;
    EXPECT_EQ(CreateObject("TestFailing", nullptr, qx_typeid<ITicket>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, ACreatorThatFailedLeavesNullWhateverItWrote) {
    Registered guard("TestFailingUntidily");
    ASSERT_EQ(RegisterObject("TestFailingUntidily", kModule), 1);
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestFailingUntidily", nullptr, qx_typeid<ITicket>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, WhatACreatorThrowsPassesThrough) {
    Registered guard("TestThrowing");
    ASSERT_EQ(RegisterObject("TestThrowing", kModule), 1);
    IQXUnknown* object = kUnset;
    try {
        CreateObject("TestThrowing", nullptr, qx_typeid<ITicket>(), &object);
        FAIL() << "nothing was thrown";
    } catch (CXFileException& e) {
        EXPECT_EQ(e.GetCode(), QXERR_SHARING);
        EXPECT_STREQ(e.name, "throwing");
    }
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, TheUndecoratedNameForwards) {
    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    auto create = reinterpret_cast<decltype(&CreateObjectC)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("qxcore.dll"), "CreateObjectC")));
    ASSERT_NE(create, nullptr);
    IQXUnknown* object = kUnset;
    EXPECT_EQ(create("TestTicket", nullptr, qx_typeid<ITicket>(), &object), 1);
    EXPECT_EQ(static_cast<ITicket*>(object)->Number(), 41);
    object->Release();
    EXPECT_EQ(create("TestNobody", nullptr, qx_typeid<ITicket>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

// ---- aggregation

namespace {

// An outer object that shows the ticket of an inner one as its own.
class COuter : public CQXUnknownImpl<IQXUnknown> {
public:
    ~COuter() override {
        if (inner) inner->Release();
    }
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return InternalQueryInterface(id, out) || (inner && inner->QueryInterface(id, out));
    }
    IQXUnknown* inner = nullptr;
};

}  // namespace

TEST(RegistryTest, TheOuterObjectReachesTheCreator) {
    Registered guard("TestAggregatedTicket");
    ASSERT_EQ(RegisterObject("TestAggregatedTicket", kModule), 1);
    auto outer = new COuter;
    ASSERT_EQ(CreateObject("TestAggregatedTicket", outer, qx_typeid<IQXUnknown>(), &outer->inner),
              1);
    IQXUnknown* ticket;
    ASSERT_EQ(outer->QueryInterface(qx_typeid<ITicket>(), &ticket), 1);
    EXPECT_EQ(static_cast<ITicket*>(ticket)->Number(), 43);
    IQXUnknown* root;
    EXPECT_EQ(ticket->QueryInterface(qx_typeid<IQXUnknown>(), &root), 1);
    EXPECT_EQ(root, outer);
    root->Release();
    ticket->Release();
    EXPECT_EQ(outer->Release(), 0u);
}

TEST(RegistryTest, AClassWithoutAggregationRefusesAnOuterObject) {
    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    auto outer = qx::Make<COuter>();
    IQXUnknown* object = kUnset;
    EXPECT_EQ(CreateObject("TestTicket", outer.Get(), qx_typeid<IQXUnknown>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

TEST(RegistryTest, ARefusedCreationClearsTheOutPointer) {
    auto outer = qx::Make<COuter>();
    IQXUnknown* object = kUnset;
    EXPECT_EQ(QXCreateInstance<COuter>(outer.Get(), qx_typeid<IQXUnknown>(), &object), 0);
    EXPECT_EQ(object, nullptr);
    object = kUnset;
    EXPECT_EQ(QXCreateInstance<COuter>(nullptr, qx_typeid<ITicket>(), &object), 0);
    EXPECT_EQ(object, nullptr);
    object = kUnset;
    EXPECT_EQ(CLSID_OFSERVICECONTAINER(outer.Get(), qx_typeid<IQXServiceContainer>(), &object), 0);
    EXPECT_EQ(object, nullptr);
}

// ---- forgetting

TEST(RegistryTest, AnUnknownNameCannotBeForgotten) {
    EXPECT_EQ(UnregisterObject("TestNobody"), 0);
}

TEST(RegistryTest, AForgottenClassLeavesItsObjectsAndItsModule) {
    ModuleCopy module(kModule);
    ASSERT_EQ(RegisterObject("TestTicket", module.Path()), 1);
    IQXUnknown* object;
    ASSERT_EQ(CreateObject("TestTicket", nullptr, qx_typeid<ITicket>(), &object), 1);
    EXPECT_EQ(UnregisterObject("TestTicket"), 1);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 0);
    EXPECT_EQ(UnregisterObject("TestTicket"), 0);
    EXPECT_TRUE(module.IsLoaded());
    EXPECT_EQ(static_cast<ITicket*>(object)->Number(), 41);
    object->Release();
    EXPECT_EQ(CreateObject("TestTicket", nullptr, qx_typeid<ITicket>(), &object), 0);
}

TEST(RegistryTest, AForgottenClassIsResolvedAfresh) {
    ModuleCopy first(kModule), second(kModule);
    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", first.Path()), 1);
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
    EXPECT_EQ(UnregisterObject("TestTicket"), 1);
    ASSERT_EQ(RegisterObject("TestTicket", second.Path()), 1);
    EXPECT_FALSE(second.IsLoaded());
    EXPECT_EQ(TicketNumber("TestTicket"), 41);
    EXPECT_TRUE(second.IsLoaded());
}

// ---- modules that change the registry while they are loaded

namespace {

// Loads a copy of the meddling module by making an object, and answers the object's number.
int NumberOfTicketFromAModuleThat(const char* meddles) {
    ModuleCopy module("test_meddling_module.dll");
    Registered guard("TestMeddling");
    SetEnvironmentVariableA("QXCORE_TEST_MEDDLING", meddles);
    EXPECT_EQ(RegisterObject("TestMeddling", module.Path()), 1);
    int number = TicketNumber("TestMeddling");
    EXPECT_TRUE(module.IsLoaded());
    EXPECT_EQ(TicketNumber("TestMeddling"), number);
    return number;
}

}  // namespace

TEST(RegistryTest, AModuleThatForgetsItsClassWhileItIsLoadedMakesNothing) {
    EXPECT_EQ(NumberOfTicketFromAModuleThat("does not meddle"), 51);
    EXPECT_EQ(NumberOfTicketFromAModuleThat("forget"), 0);
}

TEST(RegistryTest, AModuleThatRegistersItsClassAnewWhileItIsLoadedMakesItsObject) {
    EXPECT_EQ(NumberOfTicketFromAModuleThat("forget, handle"), 51);
}

TEST(RegistryTest, AModuleThatGivesItsClassToAnotherFileHasThatFileAsked) {
    // The other file has no such entry.
    EXPECT_EQ(NumberOfTicketFromAModuleThat("forget, path"), 0);
}

// ---- names

TEST(RegistryTest, TwoNamesOfOneHashAreOneClass) {
    std::string other = NameWithTheHashOf("TestTicket");
    ASSERT_EQ(other.size(), 9u);
    ASSERT_NE(other, "TestTicket");
    ASSERT_EQ(TextHash(other), TextHash("TestTicket"));

    Registered guard("TestTicket");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    EXPECT_EQ(IsRegisterObject(other.c_str()), 1);
    EXPECT_EQ(RegisterObject(other.c_str(), "no such file.dll"), 1);
    EXPECT_EQ(TicketNumber(other.c_str()), 41);  // by the entry point of the first name
    EXPECT_EQ(UnregisterObject(other.c_str()), 1);
    EXPECT_EQ(IsRegisterObject("TestTicket"), 0);
}

TEST(RegistryTest, BytesAboveOneHundredTwentySevenSubtract) {
    // "B\x80" hashes to 66 * 257 - 128, as "A\x01" would with 129 more: both differ from their
    // neighbours.
    EXPECT_EQ(TextHash("B\x80"), 66u * 257u - 128u);
    Registered guard("B\x80");
    ASSERT_EQ(RegisterObject("B\x80", kModule), 1);
    EXPECT_EQ(IsRegisterObject("B\x80"), 1);
    EXPECT_EQ(IsRegisterObject("B"), 0);
    EXPECT_EQ(IsRegisterObject("C\x80"), 0);
}

TEST(RegistryTest, ManyClassesLiveSideBySide) {
    std::string names[3000];
    for (int i = 0; i < 3000; ++i) {
        names[i] = "TestMany" + std::to_string(i);
        ASSERT_EQ(RegisterObject(names[i].c_str(), kModule), 1);
    }
    for (const std::string& name : names) EXPECT_EQ(IsRegisterObject(name.c_str()), 1);
    for (const std::string& name : names) EXPECT_EQ(UnregisterObject(name.c_str()), 1);
    for (const std::string& name : names) EXPECT_EQ(IsRegisterObject(name.c_str()), 0);
}

// ---- modules together

TEST(RegistryTest, ObjectsOfOneModuleAreQueriedInAnother) {
    Registered first("TestTicket"), second("TestInspector");
    ASSERT_EQ(RegisterObject("TestTicket", kModule), 1);
    ASSERT_EQ(RegisterObject("TestInspector", "test_inspector_module.dll"), 1);
    IQXUnknown *ticket, *object;
    ASSERT_EQ(CreateObject("TestTicket", nullptr, qx_typeid<IQXUnknown>(), &ticket), 1);
    ASSERT_EQ(CreateObject("TestInspector", nullptr, qx_typeid<IInspector>(), &object), 1);
    auto inspector = static_cast<IInspector*>(object);
    EXPECT_EQ(inspector->Inspect(ticket), 41);
    EXPECT_EQ(inspector->Inspect(inspector), -1);
    EXPECT_EQ(ticket->Release(), 0u);

    // The id is the caller's own record, the object the other module's, its memory freed wherever
    // the last release is.
    IQXUnknown* issued = inspector->Issue(qx_typeid<ITicket>());
    ASSERT_NE(issued, nullptr);
    EXPECT_EQ(static_cast<ITicket*>(issued)->Number(), 7);
    EXPECT_EQ(inspector->Inspect(issued), 7);
    EXPECT_EQ(issued->Release(), 0u);
    EXPECT_EQ(inspector->Issue(qx_typeid<IQXServiceContainer>()), nullptr);
    inspector->Release();
}

TEST(RegistryTest, TheLibraryRegistersItsServiceContainerAtLoad) {
    EXPECT_EQ(IsRegisterObject("CLSID_OFSERVICECONTAINER"), 1);
    EXPECT_NE(GetProcAddress(GetModuleHandleA("qxcore.dll"), "CLSID_OFSERVICECONTAINER"), nullptr);
}
