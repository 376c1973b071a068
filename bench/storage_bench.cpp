// Streams beside the platform's own, beside plain copies, and beside the standard library's.
#include "bench/measure.h"

#include <qxcore.h>

#include <objbase.h>

#include <cstring>
#include <sstream>
#include <string>

namespace {

constexpr int kValues = 16384;     // typed values in one pass
constexpr int kBlock = 64 * 1024;  // a large block
constexpr int kBlocks = 16;        // of them in one pass: 1 MiB, which the caches hold
constexpr int kPiece = 4096;       // a block of the storage rows
constexpr int kPieces = 256;

// A stream of the platform's over memory.
struct PlatformStream {
    PlatformStream() { CreateStreamOnHGlobal(nullptr, TRUE, &ole); }
    ~PlatformStream() { ole->Release(); }
    IStream* ole = nullptr;
};

// A sink that never stops anything.
class GoOn final : public CQXUnknownImpl<IProgress> {
public:
    int IsCancelled() override { return 0; }
    void SetRange(int, int) override {}
};

qx::Reference<IXStorage> Watched(IXStorage* storage) {
    qx::Reference<IXStorage> document;
    new_CIXDocStorage(storage, qx::Make<GoOn>().Get(), document.Receive(), 0);
    return document;
}

// An object of a few values, as a drawing has thousands of.
class Shape final : public CQXUnknownImpl<IPersistXStream> {
public:
    int QueryInterface(qx_type_info const& id, IQXUnknown** out) override {
        if (InternalQueryInterface(id, out)) return 1;
        return QXAnswerQuery(id == qx_typeid<IPersistX>() ? this : nullptr, out);
    }
    const char* GetClassName() override { return "QxBenchShape"; }
    unsigned GetSizeMax() override { return 4 + 2 * 8 + sizeof m_name; }
    void Save(IXStream* stream) override {
        stream->WriteLong(m_colour);
        stream->WriteDouble(m_x);
        stream->WriteDouble(m_y);
        stream->WriteString("a shape");
    }
    void Load(IXStream* stream) override {
        m_colour = stream->ReadLong();
        m_x = stream->ReadDouble();
        m_y = stream->ReadDouble();
        stream->ReadString(m_name, sizeof m_name - 2);
    }

private:
    unsigned m_colour = 7;
    double m_x = 1, m_y = 2;
    char m_name[20] = {};
};

// A way back to the start, for each of the peers.
auto Rewind(IXStream* stream) {
    return [stream] { stream->Seek(0, 0); };
}
auto Rewind(IStream* stream) {
    return [stream] { stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr); };
}
auto Rewind(std::stringstream& stream) {
    return [&stream] {
        stream.seekg(0);
        stream.seekp(0);
    };
}

void BenchTypedValues() {
    qx::Reference<IXStream> held(new_StreamOnMemory());
    IXStream* ours = held.Get();
    PlatformStream platform;
    std::stringstream standard(std::ios::in | std::ios::out | std::ios::binary);
    auto write = bench::Pass(kValues, Rewind(ours), [=](int i) { ours->WriteLong(i); });
    auto read = bench::Pass(kValues, Rewind(ours), [=](int) { bench::Keep(ours->ReadLong()); });
    auto platformWrite = bench::Pass(kValues, Rewind(platform.ole),
                                     [&](int i) { platform.ole->Write(&i, sizeof i, nullptr); });
    auto platformRead = bench::Pass(kValues, Rewind(platform.ole), [&](int value) {
        platform.ole->Read(&value, sizeof value, nullptr);
        bench::Keep(value);
    });
    auto standardWrite = bench::Pass(kValues, Rewind(standard), [&](int i) {
        standard.write(reinterpret_cast<const char*>(&i), sizeof i);
    });
    auto standardRead = bench::Pass(kValues, Rewind(standard), [&](int value) {
        standard.read(reinterpret_cast<char*>(&value), sizeof value);
        bench::Keep(value);
    });
    bench::Compare("memory stream, WriteLong", "OLE memory stream", write, platformWrite, kValues);
    bench::Compare("memory stream, WriteLong", "std::stringstream", write, standardWrite, kValues);
    bench::Compare("memory stream, ReadLong", "OLE memory stream", read, platformRead, kValues);
    bench::Compare("memory stream, ReadLong", "std::stringstream", read, standardRead, kValues);
}

// Where a block lies decides how fast it is copied, so one of the plain copies uses a block of the
// library's heap.
void BenchBlocks() {
    qx::Reference<IXStream> held(new_StreamOnMemory());
    IXStream* ours = held.Get();
    PlatformStream platform;
    std::stringstream standard(std::ios::in | std::ios::out | std::ios::binary);
    constexpr size_t kArea = size_t(kBlock) * kBlocks;
    auto sameHeap = static_cast<char*>(Mem_DefaultHeap(0)->Alloc(kArea));
    auto aligned =
        static_cast<char*>(VirtualAlloc(nullptr, kArea, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE));
    std::string source(kBlock, 's'), target(kBlock, 't');
    auto write =
        bench::Pass(kBlocks, Rewind(ours), [&](int) { ours->Write(source.data(), kBlock); });
    auto read = bench::Pass(kBlocks, Rewind(ours), [&](int) { ours->Read(target.data(), kBlock); });
    auto copyInto = [&](char* area) {
        return bench::Pass(
            kBlocks, [] {},
            [&source, area](int i) {
                memcpy(area + size_t(i) * kBlock, source.data(), kBlock);
                bench::Keep(*area);
            });
    };
    auto copyFrom = [&](const char* area) {
        return bench::Pass(
            kBlocks, [] {},
            [&target, area](int i) {
                memcpy(target.data(), area + size_t(i) * kBlock, kBlock);
                bench::Keep(target[0]);
            });
    };
    auto platformWrite = bench::Pass(kBlocks, Rewind(platform.ole), [&](int) {
        platform.ole->Write(source.data(), kBlock, nullptr);
    });
    auto standardWrite =
        bench::Pass(kBlocks, Rewind(standard), [&](int) { standard.write(source.data(), kBlock); });
    write();
    bench::Compare("memory stream, Write of 64 KiB", "memcpy, block of the heap", write,
                   copyInto(sameHeap), kBlocks);
    bench::Compare("memory stream, Write of 64 KiB", "memcpy, aligned to a page", write,
                   copyInto(aligned), kBlocks);
    bench::Compare("memory stream, Write of 64 KiB", "OLE memory stream", write, platformWrite,
                   kBlocks);
    bench::Compare("memory stream, Write of 64 KiB", "std::stringstream", write, standardWrite,
                   kBlocks);
    bench::Compare("memory stream, Read of 64 KiB", "memcpy, block of the heap", read,
                   copyFrom(sameHeap), kBlocks);
    bench::Compare("memory stream, Read of 64 KiB", "memcpy, aligned to a page", read,
                   copyFrom(aligned), kBlocks);
    VirtualFree(aligned, 0, MEM_RELEASE);
    Mem_DefaultHeap(0)->Free(sameHeap);
}

// The raw stream is the one under ours, so both see the same blocks of the same file.
void BenchStorageStream() {
    qx::Reference<IXStorage> storage(new_Storage(nullptr, 0));
    qx::Reference<IXStream> held(storage->CreateStream("bench"));
    IXStream* ours = held.Get();
    qx::Reference<IStream> heldRaw(static_cast<IStream*>(Stream_GetOLEStream(ours)));
    IStream* raw = heldRaw.Get();
    std::string piece(kPiece, 'p');
    char* bytes = piece.data();
    for (int i = 0; i < kPieces; ++i) ours->Write(bytes, kPiece);
    ULONG count;

    bench::Compare(
        "storage stream, Read of 4 KiB", "raw IStream",
        bench::Pass(kPieces, Rewind(ours), [=](int) { ours->Read(bytes, kPiece); }),
        bench::Pass(kPieces, Rewind(raw), [&](int) { raw->Read(bytes, kPiece, &count); }), kPieces);
    bench::Compare(
        "storage stream, Write of 4 KiB", "raw IStream",
        bench::Pass(kPieces, Rewind(ours), [=](int) { ours->Write(bytes, kPiece); }),
        bench::Pass(kPieces, Rewind(raw), [&](int) { raw->Write(bytes, kPiece, &count); }),
        kPieces);
    bench::Compare("storage stream, ReadLong", "raw IStream, 4 bytes",
                   bench::Pass(kValues, Rewind(ours), [=](int) { bench::Keep(ours->ReadLong()); }),
                   bench::Pass(kValues, Rewind(raw),
                               [&](int value) {
                                   raw->Read(&value, sizeof value, &count);
                                   bench::Keep(value);
                               }),
                   kValues);
    bench::Compare(
        "storage stream, WriteLong", "raw IStream, 4 bytes",
        bench::Pass(kValues, Rewind(ours), [=](int i) { ours->WriteLong(i); }),
        bench::Pass(kValues, Rewind(raw), [&](int i) { raw->Write(&i, sizeof i, &count); }),
        kValues);
}

void BenchVariants() {
    constexpr int kVariants = 1000;
    qx::Reference<IXStream> held(new_StreamOnMemory());
    IXStream* ours = held.Get();
    PlatformStream platform;
    CQXVariant number(5), text("a text of thirty-two characters!");
    bench::Compare("memory stream, WriteVariant int", "OLE memory stream, 2 + 4 bytes",
                   bench::Pass(kVariants, Rewind(ours), [&](int) { ours->WriteVariant(&number); }),
                   bench::Pass(kVariants, Rewind(platform.ole),
                               [&](int) {
                                   platform.ole->Write(&number.type, 2, nullptr);
                                   platform.ole->Write(&number.value, 4, nullptr);
                               }),
                   kVariants);
    bench::Pass(kVariants, Rewind(ours), [&](int) { ours->WriteVariant(&text); })();
    bench::Compare("memory stream, ReadVariant text of 32", "a variant copied from text",
                   bench::Pass(kVariants, Rewind(ours),
                               [&](int) {
                                   CQXVariant read;
                                   ours->ReadVariant(&read);
                               }),
                   bench::Pass(
                       kVariants, [] {},
                       [](int) {
                           CQXVariant copy("a text of thirty-two characters!");
                           bench::Keep(copy.type);
                       }),
                   kVariants);
}

void TellDifference(const bench::Figures& figures) {
    printf("%52s %10.2f ns more\n", "", (figures.ours - figures.peer) / kValues * 1e9);
}

// What watching costs for one value: a virtual call more, and the sink's answer.
void BenchWatchedValues() {
    qx::Reference<IXStorage> storage(new_Storage(nullptr, 0)), document = Watched(storage.Get());
    qx::Reference<IXStream> memory(new_StreamOnMemory()), watched;
    new_CIXDocStream(document.Get(), memory.Get(), watched.Receive(), 0);
    IXStream *ours = watched.Get(), *plain = memory.Get();
    auto write = [](IXStream* stream) {
        return bench::Pass(kValues, Rewind(stream), [=](int i) { stream->WriteLong(i); });
    };
    auto read = [](IXStream* stream) {
        return bench::Pass(kValues, Rewind(stream), [=](int) { bench::Keep(stream->ReadLong()); });
    };
    TellDifference(bench::Compare("watched memory stream, WriteLong", "the stream beneath",
                                  write(ours), write(plain), kValues));
    TellDifference(bench::Compare("watched memory stream, ReadLong", "the stream beneath",
                                  read(ours), read(plain), kValues));
}

// Streams of a hundred objects each.
void BenchWatchedDocument() {
    constexpr int kStreams = 100, kObjects = 100;
    RegisterObject("QxBenchShape", GetModuleHandleA(nullptr));
    qx::Reference<IXStorage> storage(new_Storage(nullptr, 0)), document = Watched(storage.Get());
    auto nameOf = [](int i) { return "shapes " + std::to_string(i); };
    for (int i = 0; i < kStreams; ++i) {
        qx::Reference<IXStream> stream(storage->CreateStream(nameOf(i).c_str()));
        for (int n = 0; n < kObjects; ++n)
            WriteObjectToXStream(stream.Get(), qx::Make<Shape>().Get());
    }
    auto load = [&](IXStorage* from) {
        return [&, from] {
            for (int i = 0; i < kStreams; ++i) {
                qx::Reference<IXStream> stream(from->OpenStream(nameOf(i).c_str()));
                for (int n = 0; n < kObjects; ++n) {
                    qx::Reference<IQXUnknown> object;
                    ReadObjectFromXStream(stream.Get(), object.Receive());
                }
            }
        };
    };
    bench::Compare("document of 10,000 objects loaded, watched", "not watched",
                   load(document.Get()), load(storage.Get()), kStreams * kObjects);
}

}  // namespace

QX_CREATOR(QxBenchShape) {
    return QXCreateInstance<Shape>(outer, id, out);
}

int main() {
    BenchTypedValues();
    BenchBlocks();
    BenchStorageStream();
    BenchVariants();
    BenchWatchedValues();
    BenchWatchedDocument();
}
