// Tests of urls that meet a server.
#ifndef QXCORE_TESTS_FILE_URL_FTP_FIXTURE_H
#define QXCORE_TESTS_FILE_URL_FTP_FIXTURE_H

#include "file/file_fixture.h"
#include "file/url/wininet_calls.h"
#include "support/ftp/served_files.h"

#include <list>

// Each test ends with every handle of the network service closed, every connection gone, and the
// error mode that it began with.
class FtpTest : public FileTest {
protected:
    ~FtpTest() override {
        EXPECT_EQ(calls.OpenHandles(), 0);
        EXPECT_EQ(calls.WrongClosings(), 0);
        EXPECT_TRUE(server.AllGone());
        EXPECT_EQ(GetErrorMode(), m_errorMode);
        EXPECT_EQ(TempFiles(), std::vector<std::string>());
    }

    // A url in memory that may be written to, as long as the test runs.
    char* Url(const std::string& name, const std::string& user = "user") {
        m_urls.push_back(ServedFiles::Url(name, user));
        return m_urls.back().data();
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

    ServedFiles server;
    WinInetCalls calls;

private:
    static std::string TempDirectory() {
        char directory[MAX_PATH];
        DWORD length = GetTempPathA(MAX_PATH, directory);
        return std::string(directory, length - 1);  // without its last delimiter
    }

    ScratchDirectory m_temp;
    TemporaryFilesIn m_inTemp{m_temp.Path()};
    std::list<std::string> m_urls;
    UINT m_errorMode = GetErrorMode();
};

#endif
