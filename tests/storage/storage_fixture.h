// A directory of a test's own, and the raw platform calls beside which storages are tested.
#ifndef QXCORE_TESTS_STORAGE_FIXTURE_H
#define QXCORE_TESTS_STORAGE_FIXTURE_H

#include "storage/stream_kinds.h"

#include <algorithm>
#include <string>
#include <vector>

class StorageTest : public testing::Test {
protected:
    StorageTest() {
        char temp[MAX_PATH], file[MAX_PATH];
        GetTempPathA(MAX_PATH, temp);
        GetTempFileNameA(temp, "stg", 0, file);
        DeleteFileA(file);
        CreateDirectoryA(file, nullptr);
        m_directory = file;
    }
    ~StorageTest() override { RemoveTree(m_directory); }

    std::string Path(const std::string& name) const { return m_directory + "\\" + name; }
    const std::string& Directory() const { return m_directory; }

    static bool Exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

private:
    static void RemoveTree(const std::string& directory) {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA((directory + "\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                std::string name = found.cFileName, path = directory + "\\" + name;
                if (name == "." || name == "..") continue;
                if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                    RemoveTree(path);
                } else {
                    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
                    DeleteFileA(path.c_str());
                }
            } while (FindNextFileA(search, &found));
            FindClose(search);
        }
        RemoveDirectoryA(directory.c_str());
    }

    std::string m_directory;
};

inline std::wstring Widen(const std::string& text) {
    std::wstring wide(text.size(), L' ');
    int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                                     static_cast<int>(wide.size()));
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
    Owned<IXStream> stream(storage->CreateStream(name));
    ASSERT_TRUE(stream.Get()) << name;
    stream->Write(bytes.data(), static_cast<int>(bytes.size()));
}

// The stream's bytes, or "(none)".
inline std::string StreamOf(IXStorage* storage, const char* name) {
    Owned<IXStream> stream(storage->OpenStream(name));
    return stream ? BytesOf(stream) : "(none)";
}

#endif
