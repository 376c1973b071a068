// The storage that watches what its streams do.
#ifndef QXCORE_STORAGE_DOCUMENT_DOC_STORAGE_H
#define QXCORE_STORAGE_DOCUMENT_DOC_STORAGE_H

#include "storage/forwarding/forwarding_storage.h"

#include <qxcore/progress.h>
#include <qxcore/stream.h>

namespace qx {

class CIXDocStorage final : public CForwardingStorage {
public:
    // A null root makes this object a root, which tells the sink its range. The sink may be null.
    CIXDocStorage(CIXDocStorage* root, Reference<IXStorage> inner, IProgress* progress, int flag);

    // The storage as one of this class, or null. Looks at the object's table and at nothing behind
    // it: a storage of a host's compiler may have no type record there, or another kind of one.
    static CIXDocStorage* From(IXStorage* storage);

    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override;
    IXStorage* CreateStorage(const char* name, int unused) override;
    IXStorage* OpenStorage(const char* name) override;
    IXStream* CreateStream(const char* name) override;
    IXStream* OpenStream(const char* name) override;

    IProgress* Sink() const { return m_progress.Get(); }
    IXStorage* Inner() const { return m_inner.Get(); }

private:
    CIXDocStorage* Root() { return m_root ? m_root.Get() : this; }
    // Wrap what the inner storage has handed out; null stays null.
    IXStorage* Wrapped(IXStorage* child);
    IXStream* Wrapped(IXStream* stream);

    // The sink goes first, then the root.
    Reference<CIXDocStorage> m_root;  // null on the root itself
    Reference<IProgress> m_progress;
    int m_flag;
};

// Of the class in doc_stream.cpp: a new wrapper of the stream, with one reference; null when the
// heap gives no memory. The storage may be null.
IXStream* NewDocStream(CIXDocStorage* storage, Reference<IXStream> stream, int flag);

}  // namespace qx

#endif
