// A directory of one test's own, which goes with all it holds.
#ifndef QXCORE_TESTS_SCRATCH_DIRECTORY_H
#define QXCORE_TESTS_SCRATCH_DIRECTORY_H

#include <string>

class ScratchDirectory {
public:
    ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    // The test fails when something in it cannot be removed.
    ~ScratchDirectory();

    const std::string& Path() const { return m_path; }
    std::string PathOf(const std::string& name) const { return m_path + "\\" + name; }
    // Puts a file there and answers its path.
    std::string Write(const std::string& name, const std::string& bytes) const;

private:
    std::string m_path;
};

// For a scope the process makes its temporary files in this directory.
class TemporaryFilesIn {
public:
    explicit TemporaryFilesIn(const std::string& directory);
    TemporaryFilesIn(const TemporaryFilesIn&) = delete;
    TemporaryFilesIn& operator=(const TemporaryFilesIn&) = delete;
    ~TemporaryFilesIn();

private:
    std::string m_usual;
};

// Whether there is a file or a directory of that path.
bool Exists(const std::string& path);

#endif
