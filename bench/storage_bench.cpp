// Streams beside the platform's own, beside plain copies, and beside the standard library's.
#include "bench/measure.h"

#include <qxcore.h>

#include <objbase.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace {

constexpr int kValues = 16384;     // typed values in one pass
constexpr int kBlock = 64 * 1024;  // a large block
constexpr int kBlocks = 16;        // of them in one pass: 1 MiB, which the caches hold
constexpr int kPiece = 4096;       // a block of the storage rows
constexpr int kPieces = 256;

LARGE_INTEGER Start() {
    return LARGE_INTEGER{};
}

// A stream of the platform's over memory.
struct PlatformStream {
    PlatformStream() { CreateStreamOnHGlobal(nullptr, TRUE, &ole); }
    ~PlatformStream() { ole->Release(); }
    IStream* ole = nullptr;
};

void BenchTypedValues() {
    IXStream* ours = new_StreamOnMemory();
    PlatformStream platform;
    std::stringstream standard(std::ios::in | std::ios::out | std::ios::binary);
    auto write = [&] {
        ours->Seek(0, 0);
        for (int i = 0; i < kValues; ++i) ours->WriteLong(i);
    };
    auto read = [&] {
        ours->Seek(0, 0);
        for (int i = 0; i < kValues; ++i) bench::Keep(ours->ReadLong());
    };
    auto platformWrite = [&] {
        platform.ole->Seek(Start(), STREAM_SEEK_SET, nullptr);
        for (int i = 0; i < kValues; ++i) platform.ole->Write(&i, sizeof i, nullptr);
    };
    auto platformRead = [&] {
        platform.ole->Seek(Start(), STREAM_SEEK_SET, nullptr);
        int value;
        for (int i = 0; i < kValues; ++i) {
            platform.ole->Read(&value, sizeof value, nullptr);
            bench::Keep(value);
        }
    };
    auto standardWrite = [&] {
        standard.seekp(0);
        for (int i = 0; i < kValues; ++i) standard.write(reinterpret_cast<const char*>(&i), sizeof i);
    };
    auto standardRead = [&] {
        standard.seekg(0);
        int value;
        for (int i = 0; i < kValues; ++i) {
            standard.read(reinterpret_cast<char*>(&value), sizeof value);
            bench::Keep(value);
        }
    };
    bench::Compare("memory stream, WriteLong", "OLE memory stream", write, platformWrite, kValues);
    bench::Compare("memory stream, WriteLong", "std::stringstream", write, standardWrite, kValues);
    bench::Compare("memory stream, ReadLong", "OLE memory stream", read, platformRead, kValues);
    bench::Compare("memory stream, ReadLong", "std::stringstream", read, standardRead, kValues);
    ours->Release();
}

void BenchBlocks() {
    IXStream* ours = new_StreamOnMemory();
    PlatformStream platform;
    std::stringstream standard(std::ios::in | std::ios::out | std::ios::binary);
    std::string source(kBlock, 's'), target(kBlock, 't'), area(size_t(kBlock) * kBlocks, 'a');
    auto write = [&] {
        ours->Seek(0, 0);
        for (int i = 0; i < kBlocks; ++i) ours->Write(source.data(), kBlock);
    };
    auto read = [&] {
        ours->Seek(0, 0);
        for (int i = 0; i < kBlocks; ++i) ours->Read(target.data(), kBlock);
    };
    auto copyIn = [&] {
        for (int i = 0; i < kBlocks; ++i) {
            memcpy(area.data() + size_t(i) * kBlock, source.data(), kBlock);
            bench::Keep(area[0]);
        }
    };
    auto copyOut = [&] {
        for (int i = 0; i < kBlocks; ++i) {
            memcpy(target.data(), area.data() + size_t(i) * kBlock, kBlock);
            bench::Keep(target[0]);
        }
    };
    auto platformWrite = [&] {
        platform.ole->Seek(Start(), STREAM_SEEK_SET, nullptr);
        for (int i = 0; i < kBlocks; ++i) platform.ole->Write(source.data(), kBlock, nullptr);
    };
    auto standardWrite = [&] {
        standard.seekp(0);
        for (int i = 0; i < kBlocks; ++i) standard.write(source.data(), kBlock);
    };
    write();
    bench::Compare("memory stream, Write of 64 KiB", "memcpy", write, copyIn, kBlocks);
    bench::Compare("memory stream, Write of 64 KiB", "OLE memory stream", write, platformWrite, kBlocks);
    bench::Compare("memory stream, Write of 64 KiB", "std::stringstream", write, standardWrite, kBlocks);
    bench::Compare("memory stream, Read of 64 KiB", "memcpy", read, copyOut, kBlocks);
    ours->Release();
}

// The raw stream is the one under ours, so both see the same blocks of the same file.
void BenchStorageStream() {
    IXStorage* storage = new_Storage(nullptr, 0);
    IXStream* ours = storage->CreateStream("bench");
    auto raw = static_cast<IStream*>(Stream_GetOLEStream(ours));
    std::string piece(kPiece, 'p');
    for (int i = 0; i < kPieces; ++i) ours->Write(piece.data(), kPiece);
    ULONG count;
    auto rewindRaw = [&] { raw->Seek(Start(), STREAM_SEEK_SET, nullptr); };

    bench::Compare(
        "storage stream, Read of 4 KiB", "raw IStream",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kPieces; ++i) ours->Read(piece.data(), kPiece);
        },
        [&] {
            rewindRaw();
            for (int i = 0; i < kPieces; ++i) raw->Read(piece.data(), kPiece, &count);
        },
        kPieces);
    bench::Compare(
        "storage stream, Write of 4 KiB", "raw IStream",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kPieces; ++i) ours->Write(piece.data(), kPiece);
        },
        [&] {
            rewindRaw();
            for (int i = 0; i < kPieces; ++i) raw->Write(piece.data(), kPiece, &count);
        },
        kPieces);
    bench::Compare(
        "storage stream, ReadLong", "raw IStream, 4 bytes",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kValues; ++i) bench::Keep(ours->ReadLong());
        },
        [&] {
            rewindRaw();
            int value;
            for (int i = 0; i < kValues; ++i) {
                raw->Read(&value, sizeof value, &count);
                bench::Keep(value);
            }
        },
        kValues);
    bench::Compare(
        "storage stream, WriteLong", "raw IStream, 4 bytes",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kValues; ++i) ours->WriteLong(i);
        },
        [&] {
            rewindRaw();
            for (int i = 0; i < kValues; ++i) raw->Write(&i, sizeof i, &count);
        },
        kValues);
    raw->Release();
    ours->Release();
    storage->Release();
}

void BenchVariants() {
    IXStream* ours = new_StreamOnMemory();
    CQXVariant number(5), text("a text of thirty-two characters!");
    constexpr int kVariants = 1000;
    bench::Compare(
        "memory stream, WriteVariant int", "OLE memory stream, 2 + 4 bytes",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kVariants; ++i) ours->WriteVariant(&number);
        },
        [&, platform = std::make_unique<PlatformStream>()] {
            platform->ole->Seek(Start(), STREAM_SEEK_SET, nullptr);
            for (int i = 0; i < kVariants; ++i) {
                platform->ole->Write(&number.type, 2, nullptr);
                platform->ole->Write(&number.value, 4, nullptr);
            }
        },
        kVariants);
    ours->Seek(0, 0);
    for (int i = 0; i < kVariants; ++i) ours->WriteVariant(&text);
    bench::Compare(
        "memory stream, ReadVariant text of 32", "a variant copied from text",
        [&] {
            ours->Seek(0, 0);
            for (int i = 0; i < kVariants; ++i) {
                CQXVariant read;
                ours->ReadVariant(&read);
            }
        },
        [&] {
            for (int i = 0; i < kVariants; ++i) {
                CQXVariant copy("a text of thirty-two characters!");
                bench::Keep(copy.type);
            }
        },
        kVariants);
    ours->Release();
}

}  // namespace

int main() {
    BenchTypedValues();
    BenchBlocks();
    BenchStorageStream();
    BenchVariants();
}
