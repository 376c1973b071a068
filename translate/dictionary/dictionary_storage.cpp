#include "translate/dictionary/dictionary.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/reference.h>
#include <qxcore/storage.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace qx {

namespace {

constexpr char kHeader[] = "ContextHeader";

CXString EntryName(int ordinal) {
    CXString name;
    name.Format("C%i", ordinal);
    return name;
}

// A storage answers null where it cannot open or create a stream.
Reference<IXStream> OpenStream(IXStorage* storage, const char* name) {
    IXStream* stream = storage->OpenStream(name);
    if (!stream) throw CXFileException(QXERR_NOT_FOUND, name, QXOP_OPEN);
    return Reference<IXStream>(stream);
}

Reference<IXStream> CreateStream(IXStorage* storage, const char* name) {
    IXStream* stream = storage->CreateStream(name);
    if (!stream) throw CXFileException(QXERR_MEMORY, name, QXOP_OPEN);
    return Reference<IXStream>(stream);
}

// A length that counts the NUL, then the bytes with it.
void WriteText(IXStream* stream, const char* text) {
    size_t size = text ? strlen(text) + 1 : 0;
    stream->WriteLong(static_cast<unsigned>(size));
    for (size_t i = 0; i < size; ++i) stream->WriteByte(static_cast<unsigned char>(text[i]));
}

// A text as long as the stream says. Room is made as bytes arrive, so a length that lies costs no
// memory.
class StoredText {
public:
    explicit StoredText(IXStream* stream) : m_text(new char[kUsualRoom]), m_room(kUsualRoom) {
        size_t size = stream->ReadLong();
        size_t read = 0;
        for (; read < size; ++read) {
            if (read + 1 == m_room) Grow();
            m_text[read] = static_cast<char>(stream->ReadByte());
        }
        m_text[read] = 0;
    }
    operator const char*() const { return m_text.get(); }

private:
    static constexpr size_t kUsualRoom = 1024;

    void Grow() {
        std::unique_ptr<char[]> grown(new char[m_room * 2]);
        memcpy(grown.get(), m_text.get(), m_room);
        m_text = std::move(grown);
        m_room *= 2;
    }

    std::unique_ptr<char[]> m_text;
    size_t m_room;
};

void SaveEntry(IXStorage* storage, int ordinal, const CContext& entry) {
    Reference<IXStream> stream = CreateStream(storage, EntryName(ordinal));
    WriteText(stream.Get(), entry.source);
    WriteText(stream.Get(), entry.target);
    stream->WriteLong(static_cast<unsigned>(entry.count));
    stream.Release();
}

void RestoreEntry(CWld& dictionary, IXStorage* storage, int ordinal) {
    Reference<IXStream> stream = OpenStream(storage, EntryName(ordinal));
    StoredText source(stream.Get());
    StoredText target(stream.Get());
    auto entry = std::make_unique<CContext>(source, target);
    entry->count = static_cast<int>(stream->ReadLong());
    if (dictionary.m_Contexts.SetAt(entry->source, entry.get())) entry.release();
    stream.Release();
}

void SaveHeader(const CWld& dictionary, IXStorage* storage) {
    Reference<IXStream> header = CreateStream(storage, kHeader);
    header->WriteLong(static_cast<unsigned>(dictionary.m_nContexts));
    WriteText(header.Get(), dictionary.m_szFontName);
    header->WriteLong(static_cast<unsigned>(dictionary.m_nFontScript));
    header->WriteLong(static_cast<unsigned>(dictionary.m_nFontSize));
    header.Release();
}

void RestoreHeader(CWld& dictionary, IXStorage* storage) {
    Reference<IXStream> header = OpenStream(storage, kHeader);
    dictionary.m_nContexts = static_cast<int>(header->ReadLong());
    CXString(StoredText(header.Get()))
        .CopyFit(dictionary.m_szFontName, sizeof dictionary.m_szFontName);
    dictionary.m_nFontScript = static_cast<int>(header->ReadLong());
    dictionary.m_nFontSize = static_cast<int>(header->ReadLong());
    header.Release();
}

}  // namespace

}  // namespace qx

void CWld::Save(IXStorage* storage) {
    int entries = 0;
    decltype(m_Contexts)::position at;
    while (CContext** entry = m_Contexts.GetNext(at)) qx::SaveEntry(storage, entries++, **entry);
    m_nContexts = entries;
    qx::SaveHeader(*this, storage);
}

void CWld::Restore(IXStorage* storage) {
    qx::RestoreHeader(*this, storage);
    for (int i = 0; i < m_nContexts; ++i) qx::RestoreEntry(*this, storage, i);
}
