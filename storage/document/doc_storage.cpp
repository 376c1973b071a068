#include "storage/document/doc_storage.h"

#include <qxcore/document.h>

#include <cassert>
#include <cstring>
#include <new>

namespace qx {

namespace {

constexpr int kWholeRange = 100;

const void* TableOf(const IXStorage* object) {
    const void* table;
    memcpy(&table, static_cast<const void*>(object), sizeof table);
    return table;
}

// The table of this class's objects; null until there was one.
constinit const void* g_table = nullptr;

}  // namespace

CIXDocStorage::CIXDocStorage(CIXDocStorage* root, Reference<IXStorage> inner, IProgress* progress,
                             int flag)
    : CForwardingStorage(std::move(inner)),
      m_root(Hold(root)),
      m_progress(Hold(progress)),
      m_flag(flag) {
    g_table = TableOf(this);
    if (!root && progress) progress->SetRange(0, kWholeRange);
}

CIXDocStorage* CIXDocStorage::From(IXStorage* storage) {
    bool own = storage && g_table && TableOf(storage) == g_table;
    return own ? static_cast<CIXDocStorage*>(storage) : nullptr;
}

int CIXDocStorage::QueryInterface(qx_type_info const& id, IQXUnknown** out) {
    if (id != qx_typeid<IProgress>()) return InternalQueryInterface(id, out);
    return m_progress ? m_progress->QueryInterface(id, out) : QXAnswerQuery(nullptr, out);
}

IXStorage* CIXDocStorage::Wrapped(IXStorage* child) {
    Reference<IXStorage> inner(child);
    if (!inner) return nullptr;
    return new (std::nothrow) CIXDocStorage(Root(), std::move(inner), m_progress.Get(), m_flag);
}

IXStream* CIXDocStorage::Wrapped(IXStream* stream) {
    return stream ? NewDocStream(Root(), Reference<IXStream>(stream), m_flag) : nullptr;
}

IXStorage* CIXDocStorage::CreateStorage(const char* name, int unused) {
    return Wrapped(m_inner->CreateStorage(name, unused));
}

IXStorage* CIXDocStorage::OpenStorage(const char* name) {
    return Wrapped(m_inner->OpenStorage(name));
}

IXStream* CIXDocStorage::CreateStream(const char* name) {
    return Wrapped(m_inner->CreateStream(name));
}

IXStream* CIXDocStorage::OpenStream(const char* name) {
    return Wrapped(m_inner->OpenStream(name));
}

}  // namespace qx

int new_CIXDocStorage(IXStorage* storage, IProgress* progress, IXStorage** out, int flag) {
    assert(storage && out);
    *out = nullptr;
    *out = new (std::nothrow) qx::CIXDocStorage(nullptr, qx::Hold(storage), progress, flag);
    return 1;
}
