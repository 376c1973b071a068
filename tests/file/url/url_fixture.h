// Tests of urls, with or without a server.
#ifndef QXCORE_TESTS_FILE_URL_FIXTURE_H
#define QXCORE_TESTS_FILE_URL_FIXTURE_H

#include "file/file_fixture.h"
#include "file/url/wininet_calls.h"

// Each test ends with every handle of the network service closed, no temporary file of the library
// left, and the error mode that it began with.
class UrlTest : public FileTest {
protected:
    UrlTest() { SetErrorMode(kErrorMode); }
    ~UrlTest() override {
        EXPECT_EQ(calls.OpenHandles(), 0);
        EXPECT_EQ(calls.WrongClosings(), 0);
        EXPECT_EQ(GetErrorMode(), kErrorMode);
        EXPECT_EQ(TempFiles(), std::vector<std::string>());
        SetErrorMode(m_usualErrorMode);
    }

    // The library's temporary files, which are in a directory of the test's own.
    static std::vector<std::string> TempFiles() {
        std::vector<std::string> names = NamesIn(TempDirectory());
        std::erase_if(names, [](const std::string& name) { return name.compare(0, 3, "QXP"); });
        return names;
    }
    static std::string TempPath(const std::string& name) { return TempDirectory() + "\\" + name; }
    // Takes away what a test has made sure of.
    static void RemoveTempFiles() {
        for (const std::string& name : TempFiles())
            EXPECT_TRUE(DeleteFileA(TempPath(name).c_str())) << name;
    }

    WinInetCalls calls;

private:
    static constexpr UINT kErrorMode = SEM_NOGPFAULTERRORBOX;  // one that no search asks for

    static std::string TempDirectory() {
        char directory[MAX_PATH];
        DWORD length = GetTempPathA(MAX_PATH, directory);
        return std::string(directory, length - 1);  // without its last delimiter
    }

    ScratchDirectory m_temp;
    TemporaryFilesIn m_inTemp{m_temp.Path()};
    UINT m_usualErrorMode = GetErrorMode();
};

#endif
