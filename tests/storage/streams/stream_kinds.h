// The stream classes, so that one test can run over all of them.
#ifndef QXCORE_TESTS_STORAGE_STREAM_KINDS_H
#define QXCORE_TESTS_STORAGE_STREAM_KINDS_H

#include <gtest/gtest.h>
#include <qxcore.h>

#include <objbase.h>

#include <initializer_list>
#include <string>

using qx::Reference;

// The count, read without changing it.
template <class T>
unsigned CountOf(T* object) {
    object->AddRef();
    return static_cast<unsigned>(object->Release());
}

struct MemoryKind {
    static constexpr const char* kName = "Memory stream";
    static constexpr bool kReadCounts = true;  // Read answers a count, not a success flag
    Reference<IXStream> stream{new_StreamOnMemory()};
};

struct ElementKind {
    static constexpr const char* kName = "element";
    static constexpr bool kReadCounts = true;
    Reference<IXStorage> storage{new_Storage(nullptr, 0)};
    Reference<IXStream> stream{storage->CreateStream("element")};
};

struct WrapperKind {
    static constexpr const char* kName = "";
    static constexpr bool kReadCounts = false;
    WrapperKind() {
        IStream* ole = nullptr;
        CreateStreamOnHGlobal(nullptr, TRUE, &ole);
        stream = Reference<IXStream>(new_StreamByOleStream(ole));
        ole->Release();
    }
    Reference<IXStream> stream;
};

struct EmptyKind {
    static constexpr const char* kName = "Empty stream";
    Reference<IXStream> stream{new_EmptyStream()};
};

// The bytes from the start to the end. The position ends up behind them.
inline std::string BytesOf(IXStream* stream) {
    std::string bytes(stream->Seek(0, 2), '?');
    stream->Seek(0, 0);
    if (!bytes.empty()) stream->Read(bytes.data(), static_cast<int>(bytes.size()));
    return bytes;
}

inline std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (int value : values) bytes.push_back(static_cast<char>(value));
    return bytes;
}

// Replaces nothing: writes raw bytes at the start of a fresh stream and rewinds.
inline void Fill(IXStream* stream, const std::string& bytes) {
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
    stream->Seek(0, 0);
}

// What a call throws, as "code operation name", or "code" for a plain exception, or "nothing".
template <class Call>
std::string Thrown(Call call) {
    try {
        call();
    } catch (CXFileException& e) {
        return std::to_string(e.GetCode()) + " " + std::to_string(e.operation) + " " + e.name;
    } catch (CXException& e) {
        return std::to_string(e.GetCode());
    }
    return "nothing";
}

#endif
