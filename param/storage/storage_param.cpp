#include "param/storage/storage_param.h"

#include "param/names/each_name.h"
#include "param/names/path.h"

#include <qxcore/exception.h>

#include <cassert>

namespace qx {

namespace {

// What `call` answers; nothing where it throws a CXException.
template <class Call>
auto Caught(Call call) -> decltype(call()) {
    try {
        return call();
    } catch (CXException&) {
        return decltype(call())();
    }
}

void CommitWithParent(IXStorage* storage) {
    storage->Commit();
    if (Reference<IXStorage> parent(storage->GetParent()); parent) parent->Commit();
}

}  // namespace

CIXStorParam::CIXStorParam(IXStorage* storage, CIXStorParam* parent, const char* name)
    : m_name(name), m_storage(Hold(storage)), m_above(parent) {
    m_attached.Register(storage, qx_typeid<IXStorage>(), 0);
    m_attached.Register(static_cast<IRegisterIface*>(this), qx_typeid<IRegisterIface>(), 0);
    SetParent(parent);
}

CIXStorParam::~CIXStorParam() {
    if (m_storage) Caught([this] { CommitWithParent(m_storage.Get()); });
}

unsigned CIXStorParam::Release() {
    if (m_held > 1) {
        --m_held;
        return Base::Release();
    }
    End(CloseUpwards());
    return 0;
}

// The last release of a node commits its storage, then lets go of the parent, then destroys the
// node, which commits once more, with the storage above: what the parents wrote as they closed goes
// up with it. Where that was the parent's last reference, the same happens to the parent in
// between; the way up is walked, not nested. Answers the node that was closed last.
CIXStorParam* CIXStorParam::CloseUpwards() {
    CIXStorParam* node = this;
    for (;;) {
        if (node->m_storage) Caught([node] { node->m_storage->Commit(); });
        Reference<CIXStorParam> above = Hold(node->m_above);
        node->SetParent(nullptr);
        if (!above || above->m_held > 1) return node;
        above->m_below = node;
        node = above.Detach();
    }
}

// Destroys the closed nodes from `top` down to the one whose release it was.
void CIXStorParam::End(CIXStorParam* top) {
    while (CIXStorParam* node = top) {
        top = node->m_below;
        node->Base::Release();
    }
}

void CIXStorParam::SetParent(IParam* parent) {
    if (parent != m_above) m_above = nullptr;
    Base::SetParent(parent);
}

// The storage of a node that still has one.
IXStorage* CIXStorParam::Storage() const {
    if (!m_storage) throw CXException(QXERR_BAD_USE);
    return m_storage.Get();
}

Reference<CIXStorParam> CIXStorParam::NewChild(const char* name) {
    constexpr int kUnused = 2;
    Reference<IXStorage> storage(Storage()->CreateStorage(name, kUnused));
    if (!storage) return nullptr;
    return Make<CIXStorParam>(storage.Get(), this, name);
}

Reference<CIXStorParam> CIXStorParam::Child(const char* name, Missing missing) {
    Reference<IXStorage> storage(Caught([&] { return Storage()->OpenStorage(name); }));
    if (storage) return Make<CIXStorParam>(storage.Get(), this, name);
    return missing == Missing::isMade ? NewChild(name) : nullptr;
}

IParam* CIXStorParam::CreateSubParam(const char* name) {
    return Caught([&]() -> IParam* {
        PathLevels levels(name ? name : "");
        Reference<CIXStorParam> node = Hold(this);
        while (levels.MoreThanOne()) {
            node = node->NewChild(levels.TakeFirst());
            if (!node) return nullptr;
        }
        return node->NewChild(levels.Rest()).Detach();
    });
}

// Only the first level of a path is made; the levels below it have to be there.
IParam* CIXStorParam::OpenSubParam(const char* name, int create) {
    return Caught([&]() -> IParam* {
        PathLevels levels(name ? name : "");
        Reference<CIXStorParam> node = Hold(this);
        Missing missing = create ? Missing::isMade : Missing::stays;
        while (levels.MoreThanOne()) {
            node = node->Child(levels.TakeFirst(), missing);
            if (!node) return nullptr;
            missing = Missing::stays;
        }
        return node->Child(levels.Rest(), missing).Detach();
    });
}

void CIXStorParam::DeleteSubParam(const char* name) {
    Reference<IParam> child(OpenSubParam(name, 0));
    if (child) child->Clear();
}

void CIXStorParam::DeleteAllSubParams() {
    Caught(
        [this] { EachName(EnumSubParams(), [this](const char* name) { DeleteSubParam(name); }); });
}

CTEnum<const char*>* CIXStorParam::EnumSubParams() {
    return Caught([this] { return Storage()->EnumStorages(); });
}

CTEnum<const char*>* CIXStorParam::EnumValues() {
    return Caught([this] { return Storage()->EnumStreams(); });
}

int CIXStorParam::GetValue(const char* name, tagQXVARIANT* out) {
    assert(out);
    return Caught([&] {
        if (auto path = SplitAtLast(name)) {
            Reference<IParam> child(OpenSubParam(path->head, 0));
            return child ? child->GetValue(path->tail, out) : 0;
        }
        Reference<IXStream> stream(Storage()->OpenStream(ValueName(name)));
        if (stream) return stream->ReadVariant(out);
        QXVariantClear(out);
        return 0;
    });
}

// The whole name of a path is tried here too; a storage refuses it, so the value stands in the
// child alone.
int CIXStorParam::SetValue(const char* name, const tagQXVARIANT* value) {
    assert(value);
    return Caught([&] {
        int stored = 0;
        if (auto path = SplitAtLast(name)) {
            Reference<IParam> child(OpenSubParam(path->head, 1));
            if (!child) return 0;
            stored = child->SetValue(path->tail, value);
        }
        return Caught([&] { return SetOwnValue(ValueName(name), value); }) ? 1 : stored;
    });
}

// A longer value keeps its rest behind the new one; reading stops in front of it.
int CIXStorParam::SetOwnValue(const char* name, const tagQXVARIANT* value) {
    Reference<IXStream> stream(Storage()->OpenStream(name));
    if (!stream) stream = Reference<IXStream>(Storage()->CreateStream(name));
    if (!stream) return 0;
    stream->WriteVariant(value);
    return 1;
}

int CIXStorParam::DeleteValue(const char* name) {
    return Caught([&] {
        Storage()->DeleteStream(name);
        return 1;
    });
}

void CIXStorParam::DeleteAllValues() {
    Caught([this] { EachName(EnumValues(), [this](const char* name) { DeleteValue(name); }); });
}

void CIXStorParam::Clear() {
    Caught([this] {
        IXStorage* storage = Storage();
        EachName(storage->EnumStorages(), [&](const char* name) { storage->DeleteStorage(name); });
        EachName(storage->EnumStreams(), [&](const char* name) { storage->DeleteStream(name); });
        storage->Commit();
        Reference<IXStorage> parent(storage->GetParent());
        LetGoOfStorage();
        if (!parent) return;
        parent->DeleteStorage(m_name);
        parent->Commit();
    });
}

// The table's entry holds no reference, so it must not outlive the node's own.
void CIXStorParam::LetGoOfStorage() {
    Reference<IXStorage> attached = Ask<IXStorage>(static_cast<IParam*>(this));
    if (attached.Get() == m_storage.Get()) m_attached.Register(nullptr, qx_typeid<IXStorage>(), 0);
    m_storage = nullptr;
}

}  // namespace qx

IParam* new_IXStorParam(IXStorage* storage) {
    try {
        return new qx::CIXStorParam(storage, nullptr, "Root");
    } catch (CXMemException&) {
        return nullptr;
    }
}
