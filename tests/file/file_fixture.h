// Files and directories for tests, made and read back with the platform's own calls.
#ifndef QXCORE_TESTS_FILE_FIXTURE_H
#define QXCORE_TESTS_FILE_FIXTURE_H

#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <qxcore.h>
#include <qxcore/reference.h>

#include <string>
#include <vector>

constexpr unsigned kChunk = 2 * 65536;  // two allocation granularities of the platform

class FileTest : public testing::Test {
protected:
    const std::string& Directory() const { return m_directory.Path(); }
    std::string Path(const std::string& name) const { return m_directory.PathOf(name); }
    std::string MakeFile(const std::string& name, const std::string& content) const {
        return m_directory.Write(name, content);
    }
    std::vector<std::string> Names() const { return NamesIn(Directory()); }
    static std::vector<std::string> NamesIn(const std::string& directory);

private:
    ScratchDirectory m_directory;
};

// A directory whose path is at least so long, which only the platform's wide calls reach. Its path
// starts with
// "\\\\?\\".
class DeepDirectory {
public:
    DeepDirectory(const std::string& below, size_t length);
    ~DeepDirectory();
    DeepDirectory(const DeepDirectory&) = delete;

    std::string Path() const { return std::string(m_levels.back().begin(), m_levels.back().end()); }
    bool IsEmpty() const;

private:
    std::vector<std::wstring> m_levels;
};

std::string ContentOf(const std::string& path);
unsigned long long SizeOnDisk(const std::string& path);
void Overwrite(const std::string& path, const std::string& content);
void SetReadOnly(const std::string& path, bool on);
// The error of opening, 0 when it goes.
DWORD TryOpen(const std::string& path, DWORD access, DWORD sharing);

// Text in which every position is recognised: no two of its 8-byte groups are alike.
std::string Pattern(size_t size, unsigned seed = 1);

using File = qx::Reference<IXFile>;
using OutFile = qx::Reference<IXOutFile>;

inline File Open(const std::string& path, int flags = 0) {
    return File(Fio_Open(path.c_str(), flags));
}
inline OutFile OpenOut(const std::string& path, int flags = 0) {
    return OutFile(Fio_OpenOut(path.c_str(), flags));
}

struct Failure {
    int code = 0;
    int operation = -1;  // stays for a plain CXException
    std::string name;

    bool operator==(const Failure&) const = default;
};
void PrintTo(const Failure& failure, std::ostream* out);

// What a piece of code raises.
template <class Code>
Failure FailureOf(Code code) {
    try {
        code();
    } catch (CXFileException& e) {
        return {e.GetCode(), e.operation, e.name};
    } catch (CXException& e) {
        return {e.GetCode(), -1, ""};
    }
    return {};
}

// A second process: file_peer.exe with its arguments, in quotation marks where needed.
class Peer {
public:
    explicit Peer(const std::string& arguments);
    ~Peer();
    Peer(const Peer&) = delete;

    // The peer says with one byte that it has done what it was asked for, and goes on after
    // Continue.
    bool WaitForWord();
    void Continue();
    void Kill();
    DWORD ExitCode();

private:
    PROCESS_INFORMATION m_process = {};
    HANDLE m_fromPeer = nullptr;
    HANDLE m_toPeer = nullptr;
};

#endif
