// A directory of a test's own, and the raw platform calls beside which storages are tested.
#ifndef QXCORE_TESTS_STORAGE_FIXTURE_H
#define QXCORE_TESTS_STORAGE_FIXTURE_H

#include "storage/streams/stream_kinds.h"
#include "support/scratch_directory.h"

#include <algorithm>
#include <string>
#include <vector>

class StorageTest : public testing::Test {
protected:
    const std::string& Directory() const { return m_directory.Path(); }
    std::string Path(const std::string& name) const { return m_directory.PathOf(name); }

private:
    ScratchDirectory m_directory;
};

inline std::wstring Widen(const std::string& text) {
    std::wstring wide(text.size(), L' ');
    int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                     wide.data(), static_cast<int>(wide.size()));
    wide.resize(length);
    return wide;
}

// The names of an enumerator, sorted; the enumerator is released.
inline std::vector<std::string> Names(CTEnum<const char*>* all) {
    std::vector<std::string> names;
    const char* name;
    unsigned fetched;
    while (all->Next(1, &name, &fetched) && fetched == 1) names.push_back(name);
    all->Release();
    std::sort(names.begin(), names.end());
    return names;
}

using List = std::vector<std::string>;

inline void PutStream(IXStorage* storage, const char* name, const std::string& bytes) {
    Reference<IXStream> stream(storage->CreateStream(name));
    ASSERT_TRUE(stream.Get()) << name;
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
}

// The stream's bytes, or "(none)".
inline std::string StreamOf(IXStorage* storage, const char* name) {
    Reference<IXStream> stream(storage->OpenStream(name));
    return stream ? BytesOf(stream.Get()) : "(none)";
}

#endif
