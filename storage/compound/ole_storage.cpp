#include "storage/compound/ole_storage.h"

#include "core/memory_manager.h"
#include "storage/compound/deep_deletion.h"
#include "storage/compound/ole_failure.h"
#include "storage/compound/ole_name.h"
#include "storage/compound/ole_stream.h"
#include "storage/summary/summary_info.h"

#include <qxcore/exception.h>
#include <qxcore/list.h>

#include <new>
#include <utility>

namespace qx {

namespace {

// A refused name never reaches the platform, whose implementations differ in what they let pass.
template <class Call>
HRESULT WithElementName(OleName& wide, const char* name, Call call) {
    wide.Set(name);
    return wide.NamesElement() ? call(wide.Text()) : STG_E_INVALIDNAME;
}

HRESULT DeleteElement(IStorage* ole, OleName& wide, const char* name) {
    HRESULT status = WithElementName(wide, name, [&](const wchar_t* text) {
        DeleteDeepLevels(ole, text);
        return ole->DestroyElement(text);
    });
    if (FAILED(status)) throw CXFileException(CodeOfStatus(status), nullptr, QXOP_DELETE_ELEMENT);
    return status;
}

IXStream* NewStream(HRESULT status, const char* name, IStream* ole) {
    return FAILED(status) ? nullptr : new (std::nothrow) CStream(name, ole);
}

void CheckPlain(HRESULT status) {
    if (FAILED(status)) throw CXException(CodeOfStatus(status));
}

// An element that the platform has described, with its name.
struct Element : STATSTG {
    explicit Element(IMalloc* allocator) : STATSTG{}, allocator(allocator) {}
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    ~Element() { allocator->Free(pwcsName); }

    IMalloc* allocator;
};

// Whether the reference held is the only one.
bool IsLast(IXStorage* storage) {
    storage->AddRef();
    return storage->Release() == 1;
}

const char* NarrowName(const wchar_t* name) {
    constexpr int kSize = 512;
    static constinit char narrow[kSize] = {};
    if (!WideCharToMultiByte(CP_ACP, 0, name, -1, narrow, kSize, nullptr, nullptr))
        narrow[kSize - 1] = 0;
    return narrow;
}

}  // namespace

DWORD OleModeOf(unsigned flags, OleRole role) {
    bool transacted = flags & QXSTG_TRANSACTED, readOnly = flags & QXSTG_READ_ONLY,
         root = role == OleRole::Root;
    DWORD mode = STGM_SHARE_EXCLUSIVE;
    if (!readOnly) mode |= STGM_READWRITE;
    if (transacted && role != OleRole::Stream) mode |= STGM_TRANSACTED;
    if (root && (flags & QXSTG_DELETE_ON_RELEASE)) mode |= STGM_DELETEONRELEASE;
    if (root && transacted && readOnly && g_memory.isWin9x) mode |= STGM_NOSCRATCH;
    return mode;
}

COleStorage::COleStorage(IStorage* ole, unsigned flags, COleStorage* parent, const char* path)
    : m_path(path), m_flags(flags), m_parent(Hold(parent)), m_ole(Hold(ole)) {}

// The storage goes before its parent, so that the root closes last. Each parent that would go is
// parted from its own parent first.
COleStorage::~COleStorage() {
    Commit();
    m_ole.Release();
    Reference<COleStorage> parent = std::move(m_parent);
    while (parent && IsLast(parent.Get())) {
        Reference<COleStorage> next = std::move(parent->m_parent);
        parent = std::move(next);
    }
}

int COleStorage::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (id != qx_typeid<IQXProperty>()) return InternalQueryInterface(id, out);
    if (!out) return 1;
    *out = new_SummaryInfo(m_ole.Get());
    return *out != nullptr;
}

IXStorage* COleStorage::NewChild(HRESULT status, IStorage* ole, const char* name) {
    if (FAILED(status)) throw CXFileException(CodeOfStatus(status), name, QXOP_OPEN);
    return new (std::nothrow) COleStorage(ole, m_flags, this, m_path);
}

IXStorage* COleStorage::CreateStorage(const char* name, int) {
    static constinit OleName wide;
    Reference<IStorage> child;
    HRESULT status = WithElementName(wide, name, [&](const wchar_t* text) {
        return m_ole->CreateStorage(text, OleModeOf(m_flags, OleRole::SubStorage) | STGM_CREATE, 0,
                                    0, child.Receive());
    });
    return NewChild(status, child.Get(), name);
}

IXStorage* COleStorage::OpenStorage(const char* name) {
    static constinit OleName wide;
    Reference<IStorage> child;
    HRESULT status = WithElementName(wide, name, [&](const wchar_t* text) {
        return m_ole->OpenStorage(text, nullptr, OleModeOf(m_flags, OleRole::SubStorage), nullptr,
                                  0, child.Receive());
    });
    return NewChild(status, child.Get(), name);
}

HRESULT COleStorage::DeleteStorage(const char* name) {
    static constinit OleName wide;
    return DeleteElement(m_ole.Get(), wide, name);
}

IXStream* COleStorage::CreateStream(const char* name) {
    static constinit OleName wide;
    Reference<IStream> stream;
    HRESULT status = WithElementName(wide, name, [&](const wchar_t* text) {
        return m_ole->CreateStream(text, OleModeOf(m_flags, OleRole::Stream) | STGM_CREATE, 0, 0,
                                   stream.Receive());
    });
    return NewStream(status, name, stream.Get());
}

IXStream* COleStorage::OpenStream(const char* name) {
    static constinit OleName wide;
    Reference<IStream> stream;
    HRESULT status = WithElementName(wide, name, [&](const wchar_t* text) {
        return m_ole->OpenStream(text, nullptr, OleModeOf(m_flags, OleRole::Stream), 0,
                                 stream.Receive());
    });
    return NewStream(status, name, stream.Get());
}

HRESULT COleStorage::DeleteStream(const char* name) {
    static constinit OleName wide;
    return DeleteElement(m_ole.Get(), wide, name);
}

// A storage that is read-only and transacted commits all the same.
void COleStorage::Commit() {
    if (m_flags != QXSTG_READ_ONLY && IsInItsParent()) m_ole->Commit(STGC_DEFAULT);
}

void COleStorage::Revert() {
    if ((m_flags & QXSTG_TRANSACTED) && IsInItsParent()) m_ole->Revert();
}

// Not every platform refuses without harm to commit a storage whose element was deleted or replaced
// while it was open.
bool COleStorage::IsInItsParent() {
    STATSTG facts = {};
    return m_ole->Stat(&facts, STATFLAG_NONAME) != STG_E_REVERTED;
}

CTEnum<const char*>* COleStorage::EnumNames(DWORD type) {
    Reference<CTListEnum<const char*>> names(new CTListEnum<const char*>);
    Reference<IEnumSTATSTG> elements;
    CheckPlain(m_ole->EnumElements(0, nullptr, 0, elements.Receive()));
    Reference<IMalloc> allocator;
    CheckPlain(CoGetMalloc(1, allocator.Receive()));
    for (;;) {
        Element element(allocator.Get());
        HRESULT status = elements->Next(1, &element, nullptr);
        if (FAILED(status) || status == S_FALSE) break;
        if (element.type == type) names->AddTail(NarrowName(element.pwcsName));
    }
    return names->CreateEnum();
}

}  // namespace qx
