#include "document.h"

#include <qxcore/document.h>
#include <qxcore/enum.h>
#include <qxcore/exception.h>
#include <qxcore/fileops.h>
#include <qxcore/registry.h>
#include <qxcore/stream.h>
#include <qxcore/url.h>
#include <qxcore/variant.h>

#include <cstdio>
#include <utility>
#include <vector>

#include "plugin/note.h"

namespace {

// A storage answers null for a stream that it cannot open or create.
qx::Reference<IXStream> Checked(IXStream* stream) {
    if (!stream) throw CXException(QXERR_FORMAT);
    return qx::Reference<IXStream>(stream);
}

std::string ReadTitle(IXStorage* storage) {
    CQXVariant title;
    Checked(storage->OpenStream("title"))->ReadVariant(&title);
    if (title.type != QXVT_STRING || !title.value.string) throw CXException(QXERR_FORMAT);
    return title.value.string;
}

// An object of the plug-in's class where that is registered, and the library's stand-in for it
// where not.
qx::Reference<IPersistXStream> ReadNote(IXStorage* folder, const char* name) {
    IQXUnknown* object;
    if (!ReadObjectFromXStream(Checked(folder->OpenStream(name)).Get(), &object))
        throw CXException(QXERR_FORMAT);
    return qx::Ask<IPersistXStream>(qx::Reference<IQXUnknown>(object).Get());
}

void Write(Document const& document, IXStorage* storage) {
    CQXVariant title(document.title.c_str());
    Checked(storage->CreateStream("title"))->WriteVariant(&title);
    qx::Reference<IXStorage> folder(storage->CreateStorage("notes", 0));
    for (auto const& [name, note] : document.notes) {
        WriteObjectToXStream(Checked(folder->CreateStream(name.c_str())).Get(), note.Get());
    }
}

// The last release commits, so what was written only in part is taken back first. Every operation
// on a stream of the storage asks the sink, if there is one, whether to go on.
void WriteWhole(Document const& document, qx::Reference<IXStorage> storage,
                IProgress* sink = nullptr) {
    qx::Reference<IXStorage> watched = storage;
    if (sink) new_CIXDocStorage(storage.Get(), sink, watched.Receive(), 0);
    try {
        Write(document, watched.Get());
    } catch (...) {
        watched.Release();
        static_cast<CStorage*>(storage.Get())->Revert();
        throw;
    }
    watched.Release();
    storage.Release();
}

// A file of this machine in which a document is made before it goes to its server.
class LocalCopy {
public:
    LocalCopy() : m_path(Fio_GetTempFileName()) {}
    ~LocalCopy() { DeleteFileA(m_path.c_str()); }
    LocalCopy(LocalCopy const&) = delete;
    LocalCopy& operator=(LocalCopy const&) = delete;

    const char* Path() const { return m_path.c_str(); }
    void Fetch(const char* url) const {
        if (!Fio_DownloadToFile(url, Path())) throw CXFileException(QXERR_NETWORK, url, QXOP_OPEN);
    }
    void PutBack(const char* url) const {
        if (!Fio_UrlPutFile(url, Path())) throw CXFileException(QXERR_NETWORK, url, QXOP_WRITE);
    }

private:
    std::string m_path;
};

}  // namespace

bool Document::AddNote(const char* name, const char* text) {
    IQXUnknown* object;
    if (!CreateObject("SampleNote", nullptr, qx_typeid<INote>(), &object)) return false;
    qx::Reference<INote> note(static_cast<INote*>(object));
    note->SetText(text);
    notes[name] = std::move(note);
    return true;
}

void Document::Load(const char* path) {
    Load(qx::Reference<IXStorage>(open_Storage(path, 1)).Get());
}

void Document::Load(IXStorage* storage, std::function<void(int, int)> const& tell) {
    std::vector<std::string> names;
    qx::Reference<IXStorage> folder(storage->OpenStorage("notes"));
    if (!folder) throw CXException(QXERR_FORMAT);
    qx::Reference<CTEnum<const char*>> all(folder->EnumStreams());
    const char* name;
    while (all->Next(1, &name, nullptr)) names.push_back(name);

    Document read;
    read.title = ReadTitle(storage);
    int done = 0;
    for (std::string const& each : names) {
        read.notes[each] = ReadNote(folder.Get(), each.c_str());
        if (tell) tell(++done, static_cast<int>(names.size()));
    }
    *this = std::move(read);
}

void Document::SaveAs(const char* path) const {
    if (!Fio_PathIsURL(path))
        return WriteWhole(*this, qx::Reference<IXStorage>(new_Storage(path, QXSTG_TRANSACTED)));
    LocalCopy copy;
    SaveAs(copy.Path());
    copy.PutBack(path);
}

void Document::Save(const char* path, IProgress* sink) const {
    if (!Fio_PathIsURL(path))
        return WriteWhole(*this, qx::Reference<IXStorage>(open_Storage(path, 0)), sink);
    LocalCopy copy;
    copy.Fetch(path);
    Save(copy.Path(), sink);
    if (sink && sink->IsCancelled()) throw CXException(QXERR_CANCELLED);
    copy.PutBack(path);
}

std::vector<std::string> Document::Lines() const {
    std::vector<std::string> lines;
    for (auto const& [name, object] : notes) {
        auto note = qx::Ask<INote>(object.Get());
        lines.push_back(name + "  " +
                        (note ? note->GetText()
                              : std::string("(a ") + object->GetClassName() +
                                    ", kept as it is: its plug-in is not here)"));
    }
    return lines;
}

void Document::Print() const {
    std::printf("title   %s\n", title.c_str());
    for (std::string const& line : Lines()) std::printf("%s\n", line.c_str());
}
