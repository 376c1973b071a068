// A directory of one test's own.
#ifndef QXCORE_TESTS_TRANSLATE_SCRATCH_DIRECTORY_H
#define QXCORE_TESTS_TRANSLATE_SCRATCH_DIRECTORY_H

#include <qxcore/platform.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

// Goes with all files that were named through it.
class ScratchDirectory {
public:
    ScratchDirectory() {
        char temp[MAX_PATH], path[MAX_PATH];
        GetTempPathA(MAX_PATH, temp);
        GetTempFileNameA(temp, "qxt", 0, path);
        DeleteFileA(path);
        if (!CreateDirectoryA(path, nullptr)) throw std::runtime_error("no scratch directory");
        m_path = path;
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory() {
        for (auto& file : m_files) DeleteFileA(file.c_str());
        RemoveDirectoryA(m_path.c_str());
    }

    std::string PathOf(const std::string& name) {
        m_files.push_back(m_path + "\\" + name);
        return m_files.back();
    }
    std::string Write(const std::string& name, const std::string& bytes) {
        std::string path = PathOf(name);
        FILE* file = fopen(path.c_str(), "wb");
        if (!file || fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size()) throw std::runtime_error(path);
        fclose(file);
        return path;
    }

private:
    std::string m_path;
    std::vector<std::string> m_files;
};

#endif
