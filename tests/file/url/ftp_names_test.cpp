// Names with blanks, against a real server.
#include "file/url/ftp_fixture.h"

namespace {

class FtpNamesTest : public FtpTest {
protected:
    void SetUp() override { server.MakeDirectory("dir.d"); }
};

}  // namespace

TEST_F(FtpNamesTest, ANameWithABlankIsTransferred) {
    server.Put("dir.d\\b c.txt", "blank");
    EXPECT_NE(Fio_DownloadToFile(Url("dir.d/b c.txt"), Path("local").c_str()), 0);
    EXPECT_EQ(ContentOf(Path("local")), "blank");
    EXPECT_NE(Fio_UrlPutFile(Url("dir.d/d e.txt"), Path("local").c_str()), 0);
    EXPECT_EQ(server.ContentOf("dir.d\\d e.txt"), "blank");
}
