#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <qxcore/platform.h>

#include <cstdio>
#include <stdexcept>

namespace {

void RemoveTree(const std::string& directory) {
    WIN32_FIND_DATAA found;
    HANDLE search = FindFirstFileA((directory + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        std::string name = found.cFileName;
        if (name == "." || name == "..") continue;
        std::string path = directory + "\\" + name;
        SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            RemoveTree(path);
        } else {
            DeleteFileA(path.c_str());
        }
    } while (FindNextFileA(search, &found));
    FindClose(search);
    RemoveDirectoryA(directory.c_str());
}

}  // namespace

ScratchDirectory::ScratchDirectory() {
    char temp[MAX_PATH];
    GetTempPathA(MAX_PATH, temp);
    // Process numbers come again, and several runs may share the directory.
    for (unsigned number = GetTickCount();; ++number) {
        m_path = std::string(temp) + "qxtest" + std::to_string(number % 1000000);
        if (CreateDirectoryA(m_path.c_str(), nullptr)) return;
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            throw std::runtime_error("cannot make " + m_path);
    }
}

ScratchDirectory::~ScratchDirectory() {
    // A process that was killed a moment ago may still hold a file.
    for (int i = 0; i < 500 && Exists(m_path); ++i) {
        if (i) Sleep(10);
        RemoveTree(m_path);
    }
    EXPECT_FALSE(Exists(m_path)) << m_path;
}

std::string ScratchDirectory::Write(const std::string& name, const std::string& bytes) const {
    std::string path = PathOf(name);
    FILE* file = fopen(path.c_str(), "wb");
    if (!file || fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
        throw std::runtime_error(path);
    fclose(file);
    return path;
}

TemporaryFilesIn::TemporaryFilesIn(const std::string& directory) {
    char usual[MAX_PATH] = {};
    GetEnvironmentVariableA("TMP", usual, MAX_PATH);
    m_usual = usual;
    SetEnvironmentVariableA("TMP", directory.c_str());
}

TemporaryFilesIn::~TemporaryFilesIn() {
    SetEnvironmentVariableA("TMP", m_usual.c_str());
}

bool Exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
