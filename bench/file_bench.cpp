// Files beside the platform's read calls, the runtime's, the same slide of views in raw calls, and
// plain copies.
#include "bench/measure.h"

#include <qxcore.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr unsigned kMegabyte = 1 << 20;
constexpr unsigned kFileSize = 64 * kMegabyte;
constexpr unsigned kBlock = 64 * 1024;
constexpr unsigned kChunk = 128 * 1024;  // what CXFile shows at once
constexpr int kValues = kChunk / 4;

// A file of random bytes that stays in the system's cache.
class SampleFile {
public:
    SampleFile() {
        char directory[MAX_PATH];
        GetTempPathA(MAX_PATH, directory);
        GetTempFileNameA(directory, "qxb", 0, m_path);
        std::vector<unsigned> bytes(kFileSize / 4);
        unsigned state = 1;
        for (auto& value : bytes) value = state = state * 1664525 + 1013904223;
        HANDLE file = CreateFileA(m_path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
        DWORD written;
        WriteFile(file, bytes.data(), kFileSize, &written, nullptr);
        CloseHandle(file);
    }
    ~SampleFile() { DeleteFileA(m_path); }

    const char* Path() const { return m_path; }
    HANDLE OpenRaw() const {
        return CreateFileA(m_path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                           nullptr);
    }

private:
    char m_path[MAX_PATH];
};

// The slide that CXFile makes, written out in the platform's calls.
class RawSlide {
public:
    explicit RawSlide(HANDLE file)
        : m_mapping(CreateFileMappingA(file, nullptr, PAGE_READONLY, 0, 0, nullptr)) {
        Map(0);
    }
    ~RawSlide() {
        UnmapViewOfFile(m_view);
        CloseHandle(m_mapping);
    }

    void Read(void* buffer, unsigned count) {
        if (m_position == kFileSize) m_position = 0;
        if (m_position - m_offset >= kChunk) {
            UnmapViewOfFile(m_view);
            Map(m_position);
        }
        memcpy(buffer, m_view + (m_position - m_offset), count);
        m_position += count;
    }

private:
    void Map(unsigned offset) {
        m_view =
            static_cast<const char*>(MapViewOfFile(m_mapping, FILE_MAP_READ, 0, offset, kChunk));
        m_offset = offset;
    }

    HANDLE m_mapping;
    const char* m_view = nullptr;
    unsigned m_offset = 0;
    unsigned m_position = 0;
};

void ReadRaw(HANDLE file, void* buffer, unsigned count) {
    DWORD read;
    if (!ReadFile(file, buffer, count, &read, nullptr) || read < count) {
        SetFilePointer(file, 0, nullptr, FILE_BEGIN);
        ReadFile(file, buffer, count, &read, nullptr);
    }
}

void ReadStdio(FILE* file, void* buffer, unsigned count) {
    if (fread(buffer, 1, count, file) < count) {
        rewind(file);
        bench::Keep(fread(buffer, 1, count, file));
    }
}

void BenchValues(const SampleFile& sample) {
    IXFile* file = Fio_Open(sample.Path(), 0);
    HANDLE raw = sample.OpenRaw();
    FILE* stdio = fopen(sample.Path(), "rb");
    std::vector<char> bytes(kChunk);
    file->Read(bytes.data(), kChunk);
    auto ours = bench::Pass(
        kValues, [=] { file->Seek(0, QXSEEK_START); }, [=](int) { bench::Keep(file->ReadLong()); });
    bench::Compare("CXFile ReadLong, one view", "ReadFile of 4 bytes", ours,
                   bench::Pass(
                       kValues, [=] { SetFilePointer(raw, 0, nullptr, FILE_BEGIN); },
                       [=](int value) {
                           ReadRaw(raw, &value, 4);
                           bench::Keep(value);
                       }),
                   kValues);
    bench::Compare("CXFile ReadLong, one view", "fread of 4 bytes", ours,
                   bench::Pass(
                       kValues, [=] { rewind(stdio); },
                       [=](int value) {
                           ReadStdio(stdio, &value, 4);
                           bench::Keep(value);
                       }),
                   kValues);
    bench::Compare("CXFile ReadLong, one view", "memcpy of 4 cached bytes", ours,
                   bench::Pass(
                       kValues, [] {},
                       [&](int i) {
                           unsigned value;
                           memcpy(&value, &bytes[i * 4], 4);
                           bench::Keep(value);
                       }),
                   kValues);
    fclose(stdio);
    CloseHandle(raw);
    file->Release();
}

void BenchBlocks(const SampleFile& sample) {
    IXFile* file = Fio_Open(sample.Path(), 0);
    HANDLE raw = sample.OpenRaw();
    FILE* stdio = fopen(sample.Path(), "rb");
    setvbuf(stdio, nullptr, _IOFBF, kBlock);
    std::vector<char> buffer(kBlock), cached(kFileSize, 'c');
    RawSlide slide(raw);
    HANDLE plain = sample.OpenRaw();
    auto ours = [&] {
        if (file->Read(buffer.data(), kBlock) < kBlock) file->Seek(0, QXSEEK_START);
    };
    bench::Compare("CXFile, 64 KiB of 64 MiB in turn", "the same slide, raw calls", ours,
                   [&] { slide.Read(buffer.data(), kBlock); });
    bench::Compare("CXFile, 64 KiB of 64 MiB in turn", "ReadFile", ours,
                   [&] { ReadRaw(plain, buffer.data(), kBlock); });
    bench::Compare("CXFile, 64 KiB of 64 MiB in turn", "fread", ours,
                   [&] { ReadStdio(stdio, buffer.data(), kBlock); });
    unsigned at = 0;
    bench::Compare("CXFile, 64 KiB of 64 MiB in turn", "memcpy of the cached bytes", ours, [&] {
        memcpy(buffer.data(), &cached[at], kBlock);
        bench::Keep(buffer[0]);
        at = (at + kBlock) % kFileSize;
    });
    CloseHandle(plain);
    fclose(stdio);
    CloseHandle(raw);
    file->Release();
}

// The position jumps over the whole file, so that nearly each read moves the view.
void BenchRandom(const SampleFile& sample, unsigned count) {
    IXFile* file = Fio_Open(sample.Path(), QXFIO_RANDOM);
    HANDLE raw = sample.OpenRaw();
    FILE* stdio = fopen(sample.Path(), "rb");
    std::vector<char> buffer(count);
    unsigned a = 1, b = 1, c = 1;
    auto next = [count](unsigned& state) {
        state = state * 1664525 + 1013904223;
        return (state >> 4) % (kFileSize - count);
    };
    auto ours = [&] {
        file->Seek(next(a), QXSEEK_START);
        file->Read(buffer.data(), count);
    };
    char what[64];
    snprintf(what, sizeof what, "CXFile, %u bytes at random", count);
    bench::Compare(what, "SetFilePointer + ReadFile", ours, [&] {
        SetFilePointer(raw, LONG(next(b)), nullptr, FILE_BEGIN);
        ReadRaw(raw, buffer.data(), count);
    });
    bench::Compare(what, "fseek + fread", ours, [&] {
        fseek(stdio, long(next(c)), SEEK_SET);
        ReadStdio(stdio, buffer.data(), count);
    });
    fclose(stdio);
    CloseHandle(raw);
    file->Release();
}

void BenchLines() {
    constexpr int kLine = 60;
    char path[MAX_PATH];
    GetTempPathA(MAX_PATH, path);
    GetTempFileNameA(path, "qxb", 0, path);
    FILE* make = fopen(path, "wb");
    for (int i = 0; i < 2000; ++i) fprintf(make, "%0*d\n", kLine - 1, i);
    fclose(make);
    IXFile* file = Fio_Open(path, 0);
    FILE* stdio = fopen(path, "rb");
    char line[128];
    bench::Compare(
        "CXFile ReadLine, 60 characters", "fgets",
        [&] {
            if (!file->ReadLine(line, 100)) file->Seek(0, QXSEEK_START);
        },
        [&] {
            if (!fgets(line, 100, stdio)) rewind(stdio);
        });
    fclose(stdio);
    file->Release();
    DeleteFileA(path);
}

void BenchWrites() {
    IXFile* file = Fio_Open(nullptr, QXFIO_OUTPUT | QXFIO_TEMPORARY);
    FILE* stdio = tmpfile();
    bench::Compare(
        "CXFile WriteLong, one view", "fwrite of 4 bytes",
        bench::Pass(
            kValues, [=] { file->Seek(0, QXSEEK_START); }, [=](int i) { file->WriteLong(i); }),
        bench::Pass(
            kValues, [=] { rewind(stdio); }, [=](int i) { bench::Keep(fwrite(&i, 1, 4, stdio)); }),
        kValues);
    fclose(stdio);
    file->Release();
}

}  // namespace

int main() {
    SampleFile sample;
    BenchValues(sample);
    BenchBlocks(sample);
    BenchRandom(sample, 4);
    BenchRandom(sample, 4096);
    BenchLines();
    BenchWrites();
}
