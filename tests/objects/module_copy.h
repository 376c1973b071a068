// A copy of a test module under a name of its own, so that each test sees it loaded for the first
// time.
#ifndef QXCORE_TESTS_OBJECTS_MODULE_COPY_H
#define QXCORE_TESTS_OBJECTS_MODULE_COPY_H

#include <qxcore/platform.h>

#include <string>

// The folder of the test program, with a delimiter.
std::string ProgramFolder();

class ModuleCopy {
public:
    // Copies `module`, a file beside the test program, into the folder of temporary files.
    explicit ModuleCopy(const char* module);
    ModuleCopy(const ModuleCopy&) = delete;
    ModuleCopy& operator=(const ModuleCopy&) = delete;
    // Unloads and deletes the copy. Its objects must be gone.
    ~ModuleCopy();

    const char* Path() const { return path.c_str(); }
    bool IsLoaded() const { return GetModuleHandleA(Path()) != nullptr; }

private:
    std::string path;
};

#endif
