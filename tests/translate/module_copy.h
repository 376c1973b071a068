// The test module loaded under a name of the test's choice.
#ifndef QXCORE_TESTS_TRANSLATE_MODULE_COPY_H
#define QXCORE_TESTS_TRANSLATE_MODULE_COPY_H

#include <qxcore/platform.h>

#include <cstdio>
#include <stdexcept>
#include <string>

// Copies it into a directory of its own, loads it, and leaves nothing behind.
class ModuleCopy {
public:
    explicit ModuleCopy(const char* name) {
        char temp[MAX_PATH], path[MAX_PATH];
        GetTempPathA(MAX_PATH, temp);
        GetTempFileNameA(temp, "qxm", 0, path);
        DeleteFileA(path);
        m_directory = path;
        CreateDirectoryA(path, nullptr);
        m_path = m_directory + "\\" + name;
        GetModuleFileNameA(nullptr, path, MAX_PATH);
        std::string source = path;
        source.replace(source.rfind('\\') + 1, std::string::npos, "test_named_module.dll");
        if (!CopyFileA(source.c_str(), m_path.c_str(), TRUE)) throw std::runtime_error("cannot copy " + source);
        m_module = LoadLibraryA(m_path.c_str());
        if (!m_module) throw std::runtime_error("cannot load " + m_path);
    }
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;
    ~ModuleCopy() {
        FreeLibrary(m_module);
        DeleteFileA(m_path.c_str());
        RemoveDirectoryA(m_directory.c_str());
    }

    HMODULE Handle() const { return m_module; }

private:
    std::string m_directory, m_path;
    HMODULE m_module;
};

#endif
