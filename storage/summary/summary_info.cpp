#include "storage/summary/summary_info.h"

#include "storage/summary/property_set_check.h"

#include <qxcore/exception.h>
#include <qxcore/map.h>
#include <qxcore/platform.h>
#include <qxcore/reference.h>
#include <qxcore/variant.h>

#include <objidl.h>
#include <propidl.h>

#include <new>

namespace qx {

namespace {

// A number above 65535 is a property of the document summary set, whose id is its upper half.
constexpr int kDocument = 0x10000;

struct NameRow {
    const char* name;
    int number;
};

constexpr NameRow kNames[] = {
    {"Title", PIDSI_TITLE},       {"Subject", PIDSI_SUBJECT},   {"Author", PIDSI_AUTHOR},
    {"Keywords", PIDSI_KEYWORDS}, {"Comments", PIDSI_COMMENTS}, {"Last Author", PIDSI_LASTAUTHOR},
    {"App name", PIDSI_APPNAME},  {"Category", 2 * kDocument},  {"Company", 15 * kDocument},
};

bool IsDocument(int number) {
    return number >= kDocument;
}

PROPSPEC SpecOf(int number) {
    PROPSPEC spec = {};
    spec.ulKind = PRSPEC_PROPID;
    spec.propid = IsDocument(number) ? number / kDocument : number;
    return spec;
}

// Nothing raises: whatever goes wrong is answered by nothing.
template <class Call>
auto OrNothing(Call call) -> decltype(call()) {
    try {
        return call();
    } catch (...) {
        return {};
    }
}

// Opens its sets for each access and closes them again.
class CIQXSummaryInfo final : public CQXUnknownImpl<IQXProperty> {
    using NameMap = CTMapEnum<const char*, int>;

public:
    explicit CIQXSummaryInfo(IStorage* storage) : m_names(new NameMap) {
        storage->QueryInterface(IID_IPropertySetStorage,
                                reinterpret_cast<void**>(m_sets.Receive()));
        if (!m_sets) return;
        for (const NameRow& row : kNames) m_names->SetAt(row.name, row.number);
    }
    // An enumerator that is still out there finds no names.
    ~CIQXSummaryInfo() override { RemoveAllNames(); }

    int GetProperty(const char* name, CQXVariant* value) override {
        return OrNothing([&] { return Read(name, value); });
    }
    int SetProperty(const char* name, CQXVariant& value) override {
        return OrNothing([&] { return Write(name, value); });
    }
    CTEnum<const char*>* EnumNames() override {
        return OrNothing([&] { return m_names->CreateEnum(); });
    }
    int RemoveName(const char* name) override { return m_names->RemoveKey(name); }
    void RemoveAllNames() override { m_names->RemoveAll(); }

private:
    int Read(const char* name, CQXVariant* value);
    int Write(const char* name, const CQXVariant& value);
    PropertySetState StateOf(const FMTID& format);
    Reference<IPropertyStorage> OpenSet(bool writing, bool document);
    bool Find(const char* name, int& number) { return m_sets && m_names->Lookup(name, number); }

    Reference<NameMap> m_names;
    Reference<IPropertySetStorage> m_sets;
};

// Owns what a property set has handed out.
struct PropertyValue : PROPVARIANT {
    PropertyValue() : PROPVARIANT{} {}
    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;
    ~PropertyValue() { PropVariantClear(this); }
};

PropertySetState CIQXSummaryInfo::StateOf(const FMTID& format) {
    Reference<IStorage> storage;
    m_sets->QueryInterface(IID_IStorage, reinterpret_cast<void**>(storage.Receive()));
    return storage ? StateOfPropertySet(storage.Get(), format) : PropertySetState::Sound;
}

// Writing makes the set when it is missing, and in place of a damaged one.
Reference<IPropertyStorage> CIQXSummaryInfo::OpenSet(bool writing, bool document) {
    const FMTID& format = document ? FMTID_DocSummaryInformation : FMTID_SummaryInformation;
    DWORD mode = STGM_SHARE_EXCLUSIVE | (writing ? STGM_READWRITE : STGM_READ);
    return OrNothing([&] {
        Reference<IPropertyStorage> set;
        PropertySetState state = StateOf(format);
        HRESULT status = STG_E_DOCFILECORRUPT;
        if (state == PropertySetState::Sound) status = m_sets->Open(format, mode, set.Receive());
        if (FAILED(status) && writing && state != PropertySetState::Alien)
            m_sets->Create(format, nullptr, PROPSETFLAG_ANSI, mode | STGM_CREATE, set.Receive());
        return set;
    });
}

// Both sets are opened whichever is needed, so a set that another object holds open is no hindrance
// only to the other.
int CIQXSummaryInfo::Read(const char* name, CQXVariant* value) {
    int number;
    if (!Find(name, number)) return 0;
    Reference<IPropertyStorage> summary = OpenSet(false, false);
    Reference<IPropertyStorage> document = OpenSet(false, true);
    IPropertyStorage* set = IsDocument(number) ? document.Get() : summary.Get();
    if (!set) return 0;
    PROPSPEC spec = SpecOf(number);
    PropertyValue read;
    HRESULT status = set->ReadMultiple(1, &spec, &read);
    if (FAILED(status) || read.vt != VT_LPSTR || !read.pszVal) return 0;
    CQXVariant text(read.pszVal);
    value->Attach(text);
    return 1;
}

int CIQXSummaryInfo::Write(const char* name, const CQXVariant& value) {
    int number;
    if (!Find(name, number)) return 0;
    char* text = value.type == QXVT_STRING ? value.value.string : nullptr;
    if (!text || !*text) return 0;
    Reference<IPropertyStorage> set = OpenSet(true, IsDocument(number));
    if (!set) return 0;
    PROPSPEC spec = SpecOf(number);
    PROPVARIANT written = {};
    written.vt = VT_LPSTR;
    written.pszVal = text;
    HRESULT status = set->WriteMultiple(1, &spec, &written, spec.propid);
    set->Commit(STGC_DEFAULT);
    return SUCCEEDED(status);
}

}  // namespace

IQXProperty* new_SummaryInfo(IStorage* storage) {
    return OrNothing([&]() -> IQXProperty* { return new CIQXSummaryInfo(storage); });
}

}  // namespace qx
