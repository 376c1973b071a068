#include "core/stack_room.h"
#include "objects/proxy.h"

#include <qxcore/exception.h>
#include <qxcore/reference.h>
#include <qxcore/registry.h>
#include <qxcore/stream.h>

#include <cstring>

namespace qx {

namespace {

constexpr int kNameBytes = 260;
constexpr int kSizeBytes = 4;

// The class name at the start of a frame.
class FrameName {
public:
    explicit FrameName(IXStream* stream) : present(Read(stream)) {}

    // A stream may terminate a full text behind its end, or not at all.
    char text[kNameBytes + 2] = {};
    bool present;

private:
    // At their end some kinds of stream deliver an empty name and others raise: where no byte came
    // there is no name either way, and a name that breaks off is a failure.
    bool Read(IXStream* stream) {
        try {
            return stream->ReadString(text, kNameBytes) && text[0];
        } catch (CXException& failure) {
            if (failure.GetCode() != QXERR_EOF || text[0]) throw;
            return false;
        }
    }
};

// The frame's own class, or a proxy for it, not loaded yet.
Reference<IPersistXStream> NewObjectOfFrame(const char* className, unsigned size) {
    IQXUnknown* object;
    if (!CreateObject(className, nullptr, qx_typeid<IPersistXStream>(), &object) || !object) {
        return Reference<IPersistXStream>(new CXProxy(className, size));
    }
    return Reference<IPersistXStream>(static_cast<IPersistXStream*>(object));
}

}  // namespace

}  // namespace qx

unsigned long SizeOfObject(IPersistXStream* object) {
    if (!object) return 1;
    auto nameBytes = static_cast<unsigned long>(strlen(object->GetClassName()) + 1);
    return nameBytes + qx::kSizeBytes + object->GetSizeMax();
}

int WriteObjectToXStream(IXStream* stream, IPersistXStream* object) {
    if (!object) {
        stream->WriteString("");
        return 1;
    }
    stream->WriteString(object->GetClassName());
    stream->WriteLong(0);
    int start = stream->Seek(0, 1);
    object->Save(stream);
    int end = stream->Seek(0, 1);
    stream->Seek(start - qx::kSizeBytes, 0);
    stream->WriteLong(static_cast<unsigned>(end - start));
    stream->Seek(end, 0);
    return 1;
}

int ReadObjectFromXStream(IXStream* stream, IQXUnknown** out) {
    *out = nullptr;
    // A class whose payload holds frames comes back here, as deep as the stream says.
    if (!qx::HasStackRoom()) throw CXException(QXERR_FORMAT);
    qx::FrameName name(stream);
    if (!name.present) return 0;
    unsigned size = stream->ReadLong();
    qx::Reference<IPersistXStream> object = qx::NewObjectOfFrame(name.text, size);
    object->Load(stream);
    return object->QueryInterface(qx_typeid<IQXUnknown>(), out);
}

unsigned long SkipObjectToXStream(IXStream* stream) {
    int start = stream->Seek(0, 1);
    qx::FrameName name(stream);
    unsigned size = stream->ReadLong();
    stream->Seek(static_cast<int>(size), 1);
    return static_cast<unsigned long>(start);
}
