// Tests of urls that meet a server.
#ifndef QXCORE_TESTS_FILE_URL_FTP_FIXTURE_H
#define QXCORE_TESTS_FILE_URL_FTP_FIXTURE_H

#include "file/url/url_fixture.h"
#include "support/ftp/served_files.h"

#include <list>

// Each test ends with every connection gone.
class FtpTest : public UrlTest {
protected:
    ~FtpTest() override { EXPECT_TRUE(server.AllGone()); }

    // A url in memory that may be written to, as long as the test runs.
    char* Url(const std::string& name, const std::string& user = "user") {
        m_urls.push_back(ServedFiles::Url(name, user));
        return m_urls.back().data();
    }

    ServedFiles server;

private:
    std::list<std::string> m_urls;
};

#endif
