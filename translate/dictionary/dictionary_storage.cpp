#include "translate/dictionary/dictionary.h"

#include <qxcore/exception.h>
#include <qxcore/file.h>
#include <qxcore/reference.h>
#include <qxcore/storage.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

constexpr char kHeader[] = "ContextHeader";

CXString EntryName(int ordinal) {
    CXString name;
    name.Format("C%i", ordinal);
    return name;
}

// A storage answers null where it cannot open or create a stream.
qx::Reference<IXStream> OpenStream(IXStorage* storage, const char* name) {
    IXStream* stream = storage->OpenStream(name);
    if (!stream) throw CXFileException(QXERR_NOT_FOUND, name, QXOP_OPEN);
    return qx::Reference<IXStream>(stream);
}

qx::Reference<IXStream> CreateStream(IXStorage* storage, const char* name) {
    IXStream* stream = storage->CreateStream(name);
    if (!stream) throw CXFileException(QXERR_MEMORY, name, QXOP_OPEN);
    return qx::Reference<IXStream>(stream);
}

// A length that counts the NUL, then the bytes with it.
void WriteText(IXStream* stream, const char* text) {
    unsigned size = text ? static_cast<unsigned>(strlen(text)) + 1 : 0;
    stream->WriteLong(size);
    for (unsigned i = 0; i < size; ++i) stream->WriteByte(static_cast<unsigned char>(text[i]));
}

// A text as long as the stream says. Room is made as bytes arrive, so a length that lies costs no
// memory.
class StoredText {
public:
    explicit StoredText(IXStream* stream) : m_text(new char[kUsualRoom]), m_room(kUsualRoom) {
        unsigned size = stream->ReadLong();
        unsigned read = 0;
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
    qx::Reference<IXStream> stream = CreateStream(storage, EntryName(ordinal));
    WriteText(stream.Get(), entry.source);
    WriteText(stream.Get(), entry.target);
    stream->WriteLong(static_cast<unsigned>(entry.count));
}

void RestoreEntry(CWld& dictionary, IXStorage* storage, int ordinal) {
    qx::Reference<IXStream> stream = OpenStream(storage, EntryName(ordinal));
    StoredText source(stream.Get());
    StoredText target(stream.Get());
    auto entry = std::make_unique<CContext>(source, target);
    entry->count = static_cast<int>(stream->ReadLong());
    if (dictionary.m_Contexts.SetAt(entry->source, entry.get())) entry.release();
}

void SaveHeader(const CWld& dictionary, IXStorage* storage) {
    qx::Reference<IXStream> header = CreateStream(storage, kHeader);
    header->WriteLong(static_cast<unsigned>(dictionary.m_nContexts));
    WriteText(header.Get(), dictionary.m_szFontName);
    header->WriteLong(static_cast<unsigned>(dictionary.m_nFontScript));
    header->WriteLong(static_cast<unsigned>(dictionary.m_nFontSize));
}

void RestoreHeader(CWld& dictionary, IXStorage* storage) {
    qx::Reference<IXStream> header = OpenStream(storage, kHeader);
    dictionary.m_nContexts = static_cast<int>(header->ReadLong());
    CXString(StoredText(header.Get()))
        .CopyFit(dictionary.m_szFontName, sizeof dictionary.m_szFontName);
    dictionary.m_nFontScript = static_cast<int>(header->ReadLong());
    dictionary.m_nFontSize = static_cast<int>(header->ReadLong());
}

}  // namespace

void CWld::Save(IXStorage* storage) {
    int entries = 0;
    decltype(m_Contexts)::position at;
    while (CContext** entry = m_Contexts.GetNext(at)) SaveEntry(storage, entries++, **entry);
    m_nContexts = entries;
    SaveHeader(*this, storage);
}

void CWld::Restore(IXStorage* storage) {
    RestoreHeader(*this, storage);
    for (int i = 0; i < m_nContexts; ++i) RestoreEntry(*this, storage, i);
}
