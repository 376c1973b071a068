#include "note.h"

#include <qxcore/exception.h>
#include <qxcore/registry.h>
#include <qxcore/stream.h>
#include <qxcore/string.h>

namespace {

// The payload is a version, the text's length and the text.
constexpr unsigned char kVersion = 1;

class CNote : public CQXUnknownImpl<INote> {
public:
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        bool known = id == qx_typeid<IPersistX>() || id == qx_typeid<IPersistXStream>();
        return QXAnswerQuery(known ? this : nullptr, out);
    }

    const char* GetText() override { return text; }
    void SetText(const char* newText) override { text = newText; }

    const char* GetClassName() override { return "SampleNote"; }
    unsigned GetSizeMax() override { return 1 + 4 + static_cast<unsigned>(text.GetSize()); }

    void Save(IXStream* stream) override {
        int size = text.GetSize();
        stream->WriteByte(kVersion);
        stream->WriteLong(static_cast<unsigned>(size));
        stream->Write(text, size);
    }
    void Load(IXStream* stream) override {
        if (stream->ReadByte() != kVersion) throw CXException(QXERR_UNKNOWN);
        int size = static_cast<int>(stream->ReadLong());
        if (size < 0 || size > stream->GetLength() - stream->Tell())
            throw CXException(QXERR_FORMAT);
        CXString read;
        char* buffer = read.GetBuffer(size);
        stream->Read(buffer, size);
        buffer[size] = 0;
        read.ReleaseBuffer();
        text = read;
    }

private:
    CXString text;
};

}  // namespace

QX_CREATOR(SampleNote) {
    return QXCreateInstance<CNote>(outer, id, out);
}
