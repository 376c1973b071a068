// The storage behind a url: a local copy of the whole file. Nothing goes back to the server.
#include "file/platform/temp_name.h"
#include "storage/forwarding/forwarding_storage.h"

#include <qxcore/exception.h>
#include <qxcore/platform.h>
#include <qxcore/string.h>
#include <qxcore/url.h>

namespace qx {

namespace {

class CUrlStorage final : public CForwardingStorage {
public:
    CUrlStorage(const char* url, const char* local, int readOnly) : m_url(url), m_local(local) {
        if (!Fio_DownloadToFile(m_url, m_local))
            throw CXFileException(QXERR_NETWORK, nullptr, QXOP_OPEN);
        m_inner = Reference<IXStorage>(open_Storage(m_local, readOnly));
        if (!m_inner) throw CXMemException();
    }
    // The copy is still open, so the deletion fails and the file stays behind. It is tried on a
    // path that the caller gave, too.
    ~CUrlStorage() override { DeleteFileA(m_local); }

    // The inner storage answers, with itself and with the properties of the copy.
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        return m_inner->QueryInterface(id, out);
    }
    const char* GetPath() override { return m_url; }

private:
    CXString m_url;
    CXString m_local;
};

IXStorage* NewWithTemporaryCopy(const char* url, int readOnly) {
    TemporaryFile temp;
    IXStorage* storage = new CUrlStorage(url, temp.Path(), readOnly);
    temp.Keep();
    return storage;
}

}  // namespace

}  // namespace qx

IXStorage* open_UrlStorage(const char* url, const char* localPath, int readOnly) {
    try {
        bool given = localPath && *localPath;
        return given ? new qx::CUrlStorage(url, localPath, readOnly)
                     : qx::NewWithTemporaryCopy(url, readOnly);
    } catch (CXMemException&) {
        return nullptr;
    }
}
