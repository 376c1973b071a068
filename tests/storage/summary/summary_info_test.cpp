// The text properties of a document.
#include "storage/compound/ole_fakes.h"
#include "storage/compound/storage_fixture.h"

#include <propidl.h>

namespace {

// A new object over the storage.
IQXProperty* PropertiesOf(IXStorage* storage) {
    IQXUnknown* out = nullptr;
    EXPECT_EQ(storage->QueryInterface(qx_typeid<IQXProperty>(), &out), 1);
    return static_cast<IQXProperty*>(out);
}

void ExpectNoProperties(IQXProperty* properties) {
    CQXVariant value("kept");
    for (const char* name : {"Title", "Company"}) {
        EXPECT_EQ(properties->GetProperty(name, &value), 0) << name;
        EXPECT_EQ(properties->SetProperty(name, value), 0) << name;
    }
    EXPECT_STREQ(value, "kept");
}

class SummaryInfoTest : public StorageTest {
protected:
    static std::string Get(IQXProperty* properties, const char* name) {
        CQXVariant value("(unchanged)");
        int found = properties->GetProperty(name, &value);
        return std::to_string(found) + " " + static_cast<char*>(value);
    }
    static int Set(IQXProperty* properties, const char* name, const char* text) {
        CQXVariant value(text);
        return properties->SetProperty(name, value);
    }

    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    Reference<IQXProperty> properties{PropertiesOf(storage.Get())};
};

const List kNames = {"App name", "Author",      "Category", "Comments", "Company",
                     "Keywords", "Last Author", "Subject",  "Title"};

// Property sets that fail as badly as they can.
class ThrowingSets : public FakeObject<IPropertySetStorage> {
public:
    // Written out, since the platform's macro promises that nothing is thrown.
    HRESULT STDMETHODCALLTYPE Open(REFFMTID, DWORD, IPropertyStorage**) override {
        throw CXException(QXERR_DEVICE);
    }
    STDMETHOD(Create)(REFFMTID, const CLSID*, DWORD, DWORD, IPropertyStorage**) override {
        return E_FAIL;
    }
    STDMETHOD(Delete)(REFFMTID) override { return E_NOTIMPL; }
    STDMETHOD(Enum)(IEnumSTATPROPSETSTG**) override { return E_NOTIMPL; }
};

class StorageWithThrowingSets : public FakeStorage {
public:
    STDMETHOD(QueryInterface)(REFIID id, void** out) override {
        if (id != IID_IPropertySetStorage) return FakeStorage::QueryInterface(id, out);
        sets.AddRef();
        *out = &sets;
        return S_OK;
    }

    ThrowingSets sets;
};

struct NameRow {
    const char* name;
    const FMTID* set;
    PROPID id;
};
const NameRow kRows[] = {
    {"Title", &FMTID_SummaryInformation, 2},       {"Subject", &FMTID_SummaryInformation, 3},
    {"Author", &FMTID_SummaryInformation, 4},      {"Keywords", &FMTID_SummaryInformation, 5},
    {"Comments", &FMTID_SummaryInformation, 6},    {"Last Author", &FMTID_SummaryInformation, 8},
    {"App name", &FMTID_SummaryInformation, 18},   {"Category", &FMTID_DocSummaryInformation, 2},
    {"Company", &FMTID_DocSummaryInformation, 15},
};

// The property sets of a storage through the platform's own interfaces.
struct RawSets {
    explicit RawSets(IXStorage* storage) {
        Reference<IStorage> ole(static_cast<IStorage*>(Storage_GetOLEStorage(storage)));
        ole->QueryInterface(IID_IPropertySetStorage, reinterpret_cast<void**>(sets.Receive()));
    }

    std::string Read(const FMTID& format, PROPID id) {
        Reference<IPropertyStorage> set;
        if (FAILED(sets->Open(format, STGM_READ | STGM_SHARE_EXCLUSIVE, set.Receive())))
            return "(no set)";
        PROPSPEC spec = {};
        spec.ulKind = PRSPEC_PROPID;
        spec.propid = id;
        PROPVARIANT value = {};
        set->ReadMultiple(1, &spec, &value);
        std::string text =
            value.vt == VT_LPSTR ? value.pszVal : "(type " + std::to_string(value.vt) + ")";
        PropVariantClear(&value);
        return text;
    }
    void WriteNumber(const FMTID& format, PROPID id, int number) {
        Reference<IPropertyStorage> set;
        ASSERT_EQ(sets->Create(format, nullptr, PROPSETFLAG_ANSI,
                               STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, set.Receive()),
                  S_OK);
        PROPSPEC spec = {};
        spec.ulKind = PRSPEC_PROPID;
        spec.propid = id;
        PROPVARIANT value = {};
        value.vt = VT_I4;
        value.lVal = number;
        EXPECT_EQ(set->WriteMultiple(1, &spec, &value, 2), S_OK);
    }

    Reference<IPropertySetStorage> sets;
};

}  // namespace

TEST_F(SummaryInfoTest, EachQueryAnswersANewObject) {
    Reference<IQXProperty> other(PropertiesOf(storage.Get()));
    EXPECT_NE(other.Get(), properties.Get());
    EXPECT_EQ(CountOf(other.Get()), 1u);
    EXPECT_EQ(CountOf(storage.Get()), 1u);
}

TEST_F(SummaryInfoTest, AQuestionWithoutAnOutPointerMakesNothing) {
    EXPECT_EQ(storage->QueryInterface(qx_typeid<IQXProperty>(), nullptr), 1);
    EXPECT_EQ(CountOf(storage.Get()), 1u);
}

TEST_F(SummaryInfoTest, AnswersItsTwoIdentities) {
    for (auto* id : {&qx_typeid<IQXUnknown>(), &qx_typeid<IQXProperty>()}) {
        IQXUnknown* out = nullptr;
        EXPECT_EQ(properties->QueryInterface(*id, &out), 1);
        EXPECT_EQ(out, properties.Get());
        out->Release();
    }
    EXPECT_EQ(properties->QueryInterface(qx_typeid<IXStorage>(), nullptr), 0);
}

TEST_F(SummaryInfoTest, AFreshDocumentHasNoTitleAndTheValueStays) {
    EXPECT_EQ(Get(properties.Get(), "Title"), "0 (unchanged)");
}

TEST_F(SummaryInfoTest, SettingTheTitleMakesTheSet) {
    EXPECT_EQ(RawSets(storage.Get()).Read(FMTID_SummaryInformation, 2), "(no set)");
    EXPECT_EQ(Set(properties.Get(), "Title", "A plan"), 1);
    EXPECT_EQ(Get(properties.Get(), "Title"), "1 A plan");
    EXPECT_EQ(RawSets(storage.Get()).Read(FMTID_SummaryInformation, 2), "A plan");
}

TEST_F(SummaryInfoTest, EachNameLandsInItsSetUnderItsId) {
    for (const NameRow& row : kRows) {
        std::string text = std::string("the ") + row.name;
        EXPECT_EQ(Set(properties.Get(), row.name, text.c_str()), 1) << row.name;
        EXPECT_EQ(RawSets(storage.Get()).Read(*row.set, row.id), text);
    }
    for (const NameRow& row : kRows)
        EXPECT_EQ(Get(properties.Get(), row.name), std::string("1 the ") + row.name);
}

TEST_F(SummaryInfoTest, ASecondTextReplacesTheFirst) {
    Set(properties.Get(), "Author", "First");
    EXPECT_EQ(Set(properties.Get(), "Author", "Second, longer"), 1);
    EXPECT_EQ(Get(properties.Get(), "Author"), "1 Second, longer");
}

TEST_F(SummaryInfoTest, AnEmptyTextIsRefusedAndChangesNothing) {
    EXPECT_EQ(Set(properties.Get(), "Title", ""), 0);
    EXPECT_EQ(RawSets(storage.Get()).Read(FMTID_SummaryInformation, 2), "(no set)");
    Set(properties.Get(), "Title", "kept");
    EXPECT_EQ(Set(properties.Get(), "Title", ""), 0);
    EXPECT_EQ(Set(properties.Get(), "Title", nullptr), 0);
    EXPECT_EQ(Get(properties.Get(), "Title"), "1 kept");
}

TEST_F(SummaryInfoTest, AVariantThatIsNoTextIsRefused) {
    CQXVariant number(5), empty;
    EXPECT_EQ(properties->SetProperty("Title", number), 0);
    EXPECT_EQ(properties->SetProperty("Title", empty), 0);
}

TEST_F(SummaryInfoTest, AnUnknownNameAnswersZero) {
    EXPECT_EQ(Set(properties.Get(), "Colour", "red"), 0);
    EXPECT_EQ(Get(properties.Get(), "Colour"), "0 (unchanged)");
    EXPECT_EQ(Get(properties.Get(), "title"), "0 (unchanged)");
    EXPECT_EQ(Get(properties.Get(), ""), "0 (unchanged)");
}

TEST_F(SummaryInfoTest, APropertyOfAnotherTypeIsNoText) {
    RawSets(storage.Get()).WriteNumber(FMTID_SummaryInformation, 2, 7);
    EXPECT_EQ(Get(properties.Get(), "Title"), "0 (unchanged)");
}

TEST_F(SummaryInfoTest, ASetThatIsOpenElsewhereAnswersZero) {
    Set(properties.Get(), "Title", "T");
    RawSets raw(storage.Get());
    Reference<IPropertyStorage> set;
    ASSERT_EQ(
        raw.sets->Open(FMTID_SummaryInformation, STGM_READ | STGM_SHARE_EXCLUSIVE, set.Receive()),
        S_OK);
    EXPECT_EQ(Get(properties.Get(), "Title"), "0 (unchanged)");
    set.Release();
    EXPECT_EQ(Get(properties.Get(), "Title"), "1 T");
}

TEST_F(SummaryInfoTest, TheKnownNamesAreEnumerated) {
    EXPECT_EQ(Names(properties->EnumNames()), kNames);
}

TEST_F(SummaryInfoTest, RemoveNameMakesItUnknownForThisObjectOnly) {
    Set(properties.Get(), "Title", "T");
    EXPECT_EQ(properties->RemoveName("Title"), 1);
    EXPECT_EQ(properties->RemoveName("Title"), 0);
    EXPECT_EQ(Get(properties.Get(), "Title"), "0 (unchanged)");
    EXPECT_EQ(Set(properties.Get(), "Title", "new"), 0);
    Reference<IQXProperty> other(PropertiesOf(storage.Get()));
    EXPECT_EQ(Get(other.Get(), "Title"), "1 T");
}

TEST_F(SummaryInfoTest, WithoutNamesNothingIsKnownOrEnumerated) {
    Reference<CTEnum<const char*>> before(properties->EnumNames());
    properties->RemoveAllNames();
    EXPECT_EQ(properties->EnumNames(), nullptr);
    EXPECT_EQ(Set(properties.Get(), "Title", "T"), 0);
    EXPECT_EQ(properties->RemoveName("Author"), 0);
    const char* name;
    EXPECT_EQ(before->Next(1, &name, nullptr), 0);
}

TEST_F(SummaryInfoTest, AnEnumeratorOutlivesItsObjectAndIsEmptyThen) {
    Reference<CTEnum<const char*>> names(properties->EnumNames());
    properties.Release();
    const char* name;
    unsigned fetched = 9;
    EXPECT_EQ(names->Next(1, &name, &fetched), 0);
    EXPECT_EQ(fetched, 0u);
}

TEST_F(SummaryInfoTest, TheReservedOperationsDoNothing) {
    EXPECT_NO_THROW(properties->Reserved1(nullptr));
    EXPECT_NO_THROW(properties->Reserved2(nullptr));
}

TEST_F(SummaryInfoTest, ThePropertiesOutliveTheStorageObject) {
    storage.Release();
    EXPECT_NO_THROW(Get(properties.Get(), "Title"));
}

TEST_F(SummaryInfoTest, AValueReachesTheFileWithTheStoragesCommit) {
    std::string path = Path("doc.stg");
    {
        Reference<IXStorage> document(new_Storage(path.c_str(), 0));
        Reference<IQXProperty> all(PropertiesOf(document.Get()));
        EXPECT_EQ(Set(all.Get(), "Company", "Ours"), 1);
    }
    {
        Reference<IXStorage> document(open_Storage(path.c_str(), 0));
        Reference<IQXProperty> all(PropertiesOf(document.Get()));
        EXPECT_EQ(Get(all.Get(), "Company"), "1 Ours");
        EXPECT_EQ(Set(all.Get(), "Company", "Dropped"), 1);
        all.Release();
        static_cast<CStorage*>(document.Get())->Revert();
    }
    Reference<IXStorage> document(open_Storage(path.c_str(), 1));
    Reference<IQXProperty> all(PropertiesOf(document.Get()));
    EXPECT_EQ(Get(all.Get(), "Company"), "1 Ours");
    EXPECT_EQ(Set(all.Get(), "Company", "refused"), 0);
}

TEST(SummaryInfoWithoutSetsTest, AStorageThatRefusesKnowsNoNames) {
    FakeStorage ole;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    Reference<IQXProperty> properties(PropertiesOf(storage.Get()));
    ExpectNoProperties(properties.Get());
    EXPECT_EQ(properties->RemoveName("Title"), 0);
    EXPECT_EQ(Names(properties->EnumNames()), List{});
}

TEST(SummaryInfoFailureTest, AnExceptionOfTheSetsIsAnsweredByZero) {
    StorageWithThrowingSets ole;
    Reference<IXStorage> storage(new_StorageByOleStorage(&ole));
    Reference<IQXProperty> properties(PropertiesOf(storage.Get()));
    ExpectNoProperties(properties.Get());
    properties.Release();
    EXPECT_EQ(ole.sets.references, 1u);
}
