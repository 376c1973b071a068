#include "document.h"

#include <qxcore/enum.h>
#include <qxcore/exception.h>
#include <qxcore/registry.h>
#include <qxcore/stream.h>
#include <qxcore/variant.h>

#include <cstdio>
#include <utility>

#include "plugin/note.h"

namespace {

// A storage answers null for a stream that it cannot open or create.
Reference<IXStream> Checked(IXStream* stream) {
    if (!stream) throw CXException(QXERR_FORMAT);
    return Reference<IXStream>(stream);
}

// The object as a T, or null.
template <class T>
Reference<T> Query(IQXUnknown* object) {
    IQXUnknown* answer = nullptr;
    object->QueryInterface(qx_typeid<T>(), &answer);
    return Reference<T>(static_cast<T*>(answer));
}

std::string ReadTitle(IXStorage* storage) {
    CQXVariant title;
    Checked(storage->OpenStream("title"))->ReadVariant(&title);
    if (title.type != QXVT_STRING || !title.value.string) throw CXException(QXERR_FORMAT);
    return title.value.string;
}

// An object of the plug-in's class where that is registered, and the library's stand-in for it
// where not.
Reference<IPersistXStream> ReadNote(IXStorage* folder, const char* name) {
    IQXUnknown* object;
    if (!ReadObjectFromXStream(Checked(folder->OpenStream(name)).get(), &object))
        throw CXException(QXERR_FORMAT);
    return Query<IPersistXStream>(Reference<IQXUnknown>(object).get());
}

void Write(Document const& document, IXStorage* storage) {
    CQXVariant title(document.title.c_str());
    Checked(storage->CreateStream("title"))->WriteVariant(&title);
    Reference<IXStorage> folder(storage->CreateStorage("notes", 0));
    for (auto const& [name, note] : document.notes) {
        WriteObjectToXStream(Checked(folder->CreateStream(name.c_str())).get(), note.get());
    }
}

// The last release commits, so what was written only in part is taken back first.
void WriteWhole(Document const& document, Reference<IXStorage> storage) {
    try {
        Write(document, storage.get());
    } catch (...) {
        static_cast<CStorage*>(storage.get())->Revert();
        throw;
    }
}

}  // namespace

bool Document::AddNote(const char* name, const char* text) {
    IQXUnknown* object;
    if (!CreateObject("SampleNote", nullptr, qx_typeid<INote>(), &object)) return false;
    Reference<INote> note(static_cast<INote*>(object));
    note->SetText(text);
    notes[name] = std::move(note);
    return true;
}

void Document::Load(const char* path) {
    Reference<IXStorage> storage(open_Storage(path, 1));
    title = ReadTitle(storage.get());
    Reference<IXStorage> folder(storage->OpenStorage("notes"));
    Reference<CTEnum<const char*>> names(folder->EnumStreams());
    notes.clear();
    const char* name;
    while (names->Next(1, &name, nullptr)) notes[name] = ReadNote(folder.get(), name);
}

void Document::SaveAs(const char* path) const {
    WriteWhole(*this, Reference<IXStorage>(new_Storage(path, QXSTG_TRANSACTED)));
}

void Document::Save(const char* path) const {
    WriteWhole(*this, Reference<IXStorage>(open_Storage(path, 0)));
}

void Document::Print() const {
    std::printf("title   %s\n", title.c_str());
    for (auto const& [name, object] : notes) {
        if (auto note = Query<INote>(object.get())) {
            std::printf("%s  %s\n", name.c_str(), note->GetText());
        } else {
            std::printf("%s  (a %s, kept as it is: its plug-in is not here)\n", name.c_str(),
                        object->GetClassName());
        }
    }
}
