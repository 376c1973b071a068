#include "storage/streams/stream_variant.h"

#include "variant/plain_width.h"
#include "variant/value_block.h"

#include <qxcore/exception.h>
#include <qxcore/persist.h>
#include <qxcore/reference.h>
#include <qxcore/variant.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

namespace qx {

namespace {

// The bytes of the value area that travel. An empty value carries 4 bytes all the same.
constexpr int PayloadWidth(unsigned short type) {
    constexpr int kEmptyPayload = 4;
    return type == QXVT_EMPTY ? kEmptyPayload : PlainWidth(type);
}

struct ValueDeleter {
    void operator()(char* block) const { FreeValue(block); }
};

class CVariantReader {
    // A text that claims more takes no memory before the stream was asked whether it has as much.
    static constexpr unsigned kBelieved = 64 * 1024;

public:
    explicit CVariantReader(IXStream* stream) : m_stream(stream) {}

    int Read(tagQXVARIANT* variant) {
        ClearVariant(variant);
        Fill(&variant->type, sizeof variant->type);
        if (variant->type > QXVT_UNKNOWN) Refuse();
        switch (variant->type) {
            case QXVT_STRING:
                return ReadText(variant->value.string);
            case QXVT_BLOB:
                return ReadBlob(variant->value.blob);
            case QXVT_UNKNOWN:
                return ReadObject(variant->value.unknown);
            default:
                return Fill(&variant->value, PayloadWidth(variant->type));
        }
    }

private:
    // Whether anything came, or nothing was asked for. What the stream does not deliver keeps its
    // zeros.
    bool Fill(void* bytes, int count) { return count == 0 || m_stream->Read(bytes, count) != 0; }

    // The terminator travels with the text; one more byte stands guard where it does not.
    int ReadText(char*& text) {
        unsigned length = 0;
        bool hasLength = Fill(&length, sizeof length);
        if (length > INT_MAX) Refuse();
        if (length > kBelieved) length = std::min(length, Rest(length));
        std::unique_ptr<char, ValueDeleter> buffer(
            static_cast<char*>(AllocValue(static_cast<size_t>(length) + 1)));
        bool hasText = Fill(buffer.get(), static_cast<int>(length));
        text = buffer.release();
        return hasLength && hasText;
    }

    int ReadBlob(tagQXBLOB& value) {
        unsigned size = m_stream->ReadLong();
        if (size > INT_MAX) Refuse();
        QXBlob blob(size);
        bool hasBytes = Fill(blob.data, static_cast<int>(size));
        value = blob;
        blob.data = nullptr;
        return hasBytes;
    }

    // A null object has a frame too; where that is missing nothing was read.
    int ReadObject(IQXUnknown*& object) {
        int start = m_stream->Tell();
        return ReadObjectFromXStream(m_stream, &object) || m_stream->Tell() != start;
    }

    // The bytes that the stream still has, at least 1, so that its end is met by reading; those
    // that are claimed where it cannot tell.
    unsigned Rest(unsigned claimed) {
        int rest = m_stream->GetLength() - m_stream->Tell();
        return rest < 0 ? claimed : std::max(static_cast<unsigned>(rest), 1u);
    }

    [[noreturn]] void Refuse() {
        throw CXFileException(QXERR_FORMAT, m_stream->GetName(), QXOP_READ);
    }

    IXStream* m_stream;
};

// A null text travels as an empty one.
void WriteText(IXStream* stream, const char* text) {
    if (!text) text = "";
    size_t length = strlen(text) + 1;
    if (length > INT_MAX) throw CXMemException();
    auto count = static_cast<int>(length);
    stream->Write(&count, sizeof count);
    stream->Write(text, count);
}

// Null data counts as no bytes, whatever the size says.
void WriteBlob(IXStream* stream, const tagQXBLOB& blob) {
    unsigned size = blob.data ? blob.size : 0;
    if (size > INT_MAX) throw CXMemException();
    stream->WriteLong(size);
    if (size) stream->Write(blob.data, static_cast<int>(size));
}

// An object that cannot be written is written as a null one.
void WriteObject(IXStream* stream, IQXUnknown* object) {
    Reference<IPersistXStream> persistent = Ask<IPersistXStream>(object);
    WriteObjectToXStream(stream, persistent.Get());
}

}  // namespace

int ReadStreamVariant(IXStream* stream, tagQXVARIANT* variant) {
    return CVariantReader(stream).Read(variant);
}

void WriteStreamVariant(IXStream* stream, const tagQXVARIANT* variant) {
    stream->Write(&variant->type, sizeof variant->type);
    switch (variant->type) {
        case QXVT_STRING:
            return WriteText(stream, variant->value.string);
        case QXVT_BLOB:
            return WriteBlob(stream, variant->value.blob);
        case QXVT_UNKNOWN:
            return WriteObject(stream, variant->value.unknown);
        default:
            if (int width = PayloadWidth(variant->type)) stream->Write(&variant->value, width);
    }
}

}  // namespace qx
