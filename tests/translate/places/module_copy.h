// The test module loaded under a name of the test's choice.
#ifndef QXCORE_TESTS_TRANSLATE_PLACES_MODULE_COPY_H
#define QXCORE_TESTS_TRANSLATE_PLACES_MODULE_COPY_H

#include "support/scratch_directory.h"

#include <qxcore/platform.h>

#include <stdexcept>

// A copy in a directory of its own, loaded as long as the object lives.
class ModuleCopy {
public:
    explicit ModuleCopy(const char* name, DWORD flags = 0) {
        std::string path = m_directory.PathOf(name);
        if (!CopyFileA(SourcePath().c_str(), path.c_str(), TRUE))
            throw std::runtime_error("cannot copy to " + path);
        m_module = LoadLibraryExA(path.c_str(), nullptr, flags);
        if (!m_module) throw std::runtime_error("cannot load " + path);
    }
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;
    ~ModuleCopy() { FreeLibrary(m_module); }

    HMODULE Handle() const { return m_module; }
    // A place in the module's memory that may be written.
    void** Slot() const {
        auto slot = reinterpret_cast<void**>(GetProcAddress(m_module, "NamedModuleSlot"));
        if (!slot) throw std::runtime_error("no slot");
        return slot;
    }

private:
    static std::string SourcePath() {
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        std::string path = program;
        return path.replace(path.rfind('\\') + 1, std::string::npos, "test_named_module.dll");
    }

    ScratchDirectory m_directory;
    HMODULE m_module;
};

#endif
