// Files behind a url: a local copy that is brought on opening, or sent on Commit.
#include <qxcore/url.h>

#include "file/platform/file_error.h"
#include "file/platform/temp_name.h"
#include "file/shapes/forwarding_file.h"

#include <qxcore/fileops.h>
#include <qxcore/platform.h>

namespace qx {

namespace {

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
    CUrlFile(const char* url, const char* temp) : CForwardingFile<I, I>(url), m_temp(temp) {}

    void SetCopy(I* opened) {
        if (!opened) throw CXMemException();
        this->m_inner = Reference<I>(opened);
    }

    CXString m_temp;
};

class CXUrlFile final : public CUrlFile<IXFile> {
public:
    CXUrlFile(const char* url, const char* temp, int flags) : CUrlFile(url, temp) {
        if (!Fio_DownloadToFile(m_path, m_temp)) RaiseFileError(m_path, QXOP_OPEN);
        SetCopy(Fio_Open(m_temp, flags));
    }

private:
    // The local copy is still open, so the deletion fails and the file stays behind.
    ~CXUrlFile() override { DeleteFileA(m_temp); }
};

class CXUrlOutFile final : public CUrlFile<IXOutFile> {
public:
    CXUrlOutFile(const char* url, const char* temp, int flags) : CUrlFile(url, temp) {
        SetCopy(Fio_OpenOut(m_temp, flags));
    }

    // A second one finds no local file to delete: code 6.
    void Commit() override {
        Inner().Commit();
        Fio_UrlPutFile(m_path, m_temp);  // a failed upload is not reported
        Fio_DeleteFile(m_temp);
    }
};

// The temporary file goes with an object that does not come to be. Null when the heap gives no
// memory.
template <class File>
File* NewFile(const char* url, int flags) {
    TemporaryFile temp;
    if (!temp) RaiseFileError(url, QXOP_OPEN);
    try {
        auto file = new File(url, temp.Path(), flags);
        temp.Keep();
        return file;
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
