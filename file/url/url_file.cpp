// Files behind a url: a local copy that is brought on opening, or sent on Commit.
#include <qxcore/url.h>

#include "file/platform/file_error.h"
#include "file/shapes/forwarding_file.h"

#include <qxcore/fileops.h>

namespace qx {

namespace {

void DeleteQuietly(const char* path) {
    try {
        Fio_DeleteFile(path);
    } catch (CXException&) {
    }
}

CXString NewTempFile(const char* url) {
    const char* temp = Fio_GetTempFileName();
    if (!*temp) RaiseFileError(url, QXOP_OPEN);
    try {
        return temp;
    } catch (...) {
        DeleteQuietly(temp);
        throw;
    }
}

// A file whose data operations go to the local copy. The copy is closed when nothing else of the
// object is left, and what that raises reaches the caller of the last Release.
template <class I>
class CUrlFile : public CForwardingFile<I, I> {
public:
    unsigned Release() final {
        Reference<I> local = this->m_inner;
        unsigned references = CForwardingFile<I, I>::Release();
        local.Release();
        return references;
    }

protected:
    explicit CUrlFile(const char* url) : CForwardingFile<I, I>(url), m_temp(NewTempFile(url)) {}

    // The temporary file goes with an object that does not come to be.
    template <class OpenLocal>
    void Open(OpenLocal open) {
        try {
            this->m_inner = Reference<I>(open());
            if (!this->m_inner) throw CXMemException();
        } catch (...) {
            DeleteQuietly(m_temp);
            throw;
        }
    }

    CXString m_temp;
};

class CXUrlFile final : public CUrlFile<IXFile> {
public:
    CXUrlFile(const char* url, int flags) : CUrlFile(url) {
        Open([&] {
            if (!Fio_DownloadToFile(m_path, m_temp)) RaiseFileError(m_path, QXOP_OPEN);
            return Fio_Open(m_temp, flags);
        });
    }

private:
    // The local copy is still open, so the deletion fails and the file stays behind.
    ~CXUrlFile() override {
        if (m_inner) DeleteQuietly(m_temp);
    }
};

class CXUrlOutFile final : public CUrlFile<IXOutFile> {
public:
    CXUrlOutFile(const char* url, int flags) : CUrlFile(url) {
        Open([&] { return Fio_OpenOut(m_temp, flags); });
    }

    // A second one finds no local file to delete: code 6.
    void Commit() override {
        Inner().Commit();
        Fio_UrlPutFile(m_path, m_temp);  // a failed upload is not reported
        Fio_DeleteFile(m_temp);
    }
};

// Null when the heap gives no memory.
template <class File>
File* NewFile(const char* url, int flags) {
    try {
        return new File(url, flags);
    } catch (CXMemException&) {
        return nullptr;
    }
}

}  // namespace

}  // namespace qx

IXFile* Fio_UrlOpen(const char* url, int flags) {
    return qx::NewFile<qx::CXUrlFile>(url, flags);
}

IXOutFile* Fio_UrlOpenOut(const char* url, int flags) {
    if (!Fio_IsWritableFile(url)) throw CXException(QXERR_ACCESS_DENIED);
    return qx::NewFile<qx::CXUrlOutFile>(url, flags | QXFIO_OUTPUT);
}
