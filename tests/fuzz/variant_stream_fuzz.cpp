// Broken streams of variants: each ends in a variant, a plain answer or an exception, and what was
// read whole is written and read again unchanged.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <objbase.h>

namespace {

using qx::Reference;

void WriteRandomVariant(IXStream* stream, Random& random) {
    char bytes[64];
    for (char& byte : bytes) byte = static_cast<char>(random.Next());
    tagQXVARIANT record;
    QXVariantInit(&record);
    record.type = static_cast<unsigned short>(random.Below(18));
    memcpy(&record.value, bytes, sizeof record.value);
    if (record.type == QXVT_STRING) {
        bytes[random.Below(64)] = 0;
        bytes[63] = 0;
        record.value.string = bytes;
    } else if (record.type == QXVT_BLOB) {
        record.value.blob = {random.Below(64), bytes};
    }
    stream->WriteVariant(&record);
}

std::string Bytes(IXStream* stream, int from) {
    std::string bytes(stream->Seek(0, 2) - from, 0);
    stream->Seek(from, 0);
    if (!bytes.empty()) stream->Read(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

// What is written for a variant comes out the same after another reading.
bool RoundTrips(const CQXVariant& variant) {
    if (variant.type == QXVT_BLOB && variant.value.blob.size > 1000000) return true;
    Reference<IXStream> stream(new_StreamOnMemory());
    stream->WriteVariant(&variant);
    std::string once = Bytes(stream.Get(), 0);
    stream->Seek(0, 0);
    CQXVariant again;
    bool whole = stream->ReadVariant(&again) == 1;
    int end = stream->Seek(0, 2);
    stream->WriteVariant(&again);
    return whole && Bytes(stream.Get(), end) == once;
}

Reference<IXStream> NewStream(Random& random) {
    if (random.Below(2)) return Reference<IXStream>(new_StreamOnMemory());
    Reference<IStream> ole;
    CreateStreamOnHGlobal(nullptr, TRUE, ole.Receive());
    return Reference<IXStream>(new_StreamByOleStream(ole.Get()));
}

bool ReadAll(IXStream* stream, int bytes) {
    try {
        for (int i = 0; i <= bytes; ++i) {
            CQXVariant variant;
            if (!stream->ReadVariant(&variant)) return true;
            if (!RoundTrips(variant)) return false;
        }
    } catch (CXException&) {
    }
    return true;
}

bool Round(Random& random) {
    Reference<IXStream> source(new_StreamOnMemory());
    for (unsigned n = 1 + random.Below(5); n > 0; --n) WriteRandomVariant(source.Get(), random);
    std::string bytes = Bytes(source.Get(), 0);
    Mutate(bytes, random);
    Reference<IXStream> stream = NewStream(random);
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
    stream->Seek(0, 0);
    return ReadAll(stream.Get(), static_cast<int>(bytes.size()));
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 10000, Round);
}
