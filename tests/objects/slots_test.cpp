// The slots of the interfaces.
#include "objects/services_fixture.h"
#include "support/slot.h"

#include <qxcore/persist.h>
#include <qxcore/reference.h>

namespace {

struct CRecorder : CQXUnknownImpl<IPersistXStream> {
    const char* GetClassName() override { return "Recorder"; }
    unsigned GetSizeMax() override { return 7; }
    void Load(IXStream*) override { called = "Load"; }
    void Save(IXStream*) override { called = "Save"; }
    std::string called;
};

using SlotsTest = ServicesTest;

}  // namespace

TEST_F(SlotsTest, APersistentObjectsAreClassNameSizeLoadSave) {
    auto object = qx::Make<CRecorder>();
    IQXUnknown* root = object.Get();
    EXPECT_STREQ(Slot<const char*(IQXUnknown*)>(root, 3)(root), "Recorder");
    EXPECT_EQ(Slot<unsigned(IQXUnknown*)>(root, 4)(root), 7u);
    Slot<void(IQXUnknown*, IXStream*)>(root, 5)(root, nullptr);
    EXPECT_EQ(object->called, "Load");
    Slot<void(IQXUnknown*, IXStream*)>(root, 6)(root, nullptr);
    EXPECT_EQ(object->called, "Save");
}

TEST_F(SlotsTest, AContainersAreTheEnumeratorsThenGetAddRemoveRemoveAll) {
    IQXUnknown* root = static_cast<IQXServiceContainer*>(container);
    auto plain = qx::Make<CPlain>(5);
    using Add = int(IQXUnknown*, const char*, IQXUnknown*);
    using Get = int(IQXUnknown*, const char*, IQXUnknown**);
    using Remove = int(IQXUnknown*, const char*);
    EXPECT_EQ(Slot<Add>(root, 6)(root, "one", plain.Get()), 1);
    EXPECT_EQ(Slot<Add>(root, 6)(root, "two", plain.Get()), 1);
    IQXUnknown* found = nullptr;
    EXPECT_EQ(Slot<Get>(root, 5)(root, "one", &found), 1);
    EXPECT_EQ(found, static_cast<IQXUnknown*>(plain.Get()));
    found->Release();

    CTEnum<IQXUnknown*>* services;
    EXPECT_EQ(Slot<int(IQXUnknown*, qx_type_info const&, CTEnum<IQXUnknown*>**)>(root, 3)(
                  root, qx_typeid<ITicket>(), &services),
              1);
    EXPECT_EQ(services->Skip(9), 1);
    services->Release();
    CTEnum<const char*>* names;
    EXPECT_EQ(Slot<int(IQXUnknown*, CTEnum<const char*>**)>(root, 4)(root, &names), 1);
    const char* name;
    EXPECT_EQ(names->Next(1, &name, nullptr), 1);
    names->Release();

    EXPECT_EQ(Slot<Remove>(root, 7)(root, "one"), 1);
    EXPECT_EQ(container->GetService("one", nullptr), 0);
    Slot<void(IQXUnknown*)>(root, 8)(root);
    EXPECT_EQ(container->GetService("two", nullptr), 0);
}

TEST_F(SlotsTest, ASinksAreAddedRemoved) {
    auto sink = qx::Make<CSink>("s");
    IQXUnknown* root = sink.Get();
    IQXUnknown* handle = static_cast<IQXServiceContainer*>(container);
    Slot<void(IQXUnknown*, IQXUnknown*)>(root, 3)(root, handle);
    Slot<void(IQXUnknown*, IQXUnknown*)>(root, 4)(root, handle);
    EXPECT_EQ(g_events, (Events{"s added", "s removed"}));
}
