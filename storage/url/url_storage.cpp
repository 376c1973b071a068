// The storage behind a url: a local copy of the whole file. Nothing goes back to the server.
#include "storage/forwarding/forwarding_storage.h"

#include <qxcore/exception.h>
#include <qxcore/fileops.h>
#include <qxcore/string.h>
#include <qxcore/url.h>

namespace qx {

namespace {

void DeleteQuietly(const char* path) {
    try {
        Fio_DeleteFile(path);
    } catch (CXException&) {
    }
}

class CUrlStorage final : public CForwardingStorage {
public:
    CUrlStorage(const char* url, const char* localPath, int flags)
        : m_url(url), m_flags(flags), m_local(localPath) {
        bool ownFile = !localPath || !*localPath;
        if (ownFile) m_local = Fio_GetTempFileName();
        try {
            Open();
        } catch (...) {
            if (ownFile) DeleteQuietly(m_local);
            throw;
        }
    }
    // The copy is still open, so the deletion fails and the file stays behind. It is tried on a
    // path that the caller gave, too.
    ~CUrlStorage() override {
        if (m_inner) DeleteQuietly(m_local);
    }

    // The inner storage answers, with itself and with the properties of the copy.
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return m_inner->QueryInterface(id, out);
    }
    const char* GetPath() override { return m_url; }

private:
    void Open() {
        if (!Fio_DownloadToFile(m_url, m_local))
            throw CXFileException(QXERR_NETWORK, nullptr, QXOP_OPEN);
        m_inner = Reference<IXStorage>(open_Storage(m_local, m_flags));
        if (!m_inner) throw CXMemException();
    }

    CXString m_url;
    int m_flags;
    CXString m_local;
};

}  // namespace

}  // namespace qx

IXStorage* open_UrlStorage(const char* url, const char* localPath, int readOnly) {
    try {
        return new qx::CUrlStorage(url, localPath, readOnly);
    } catch (CXMemException&) {
        return nullptr;
    }
}
