// The sample program's document, saved to a server and stopped on the way.
#include "support/ftp/served_files.h"

#include <gtest/gtest.h>
#include <qxcore/exception.h>

#include "samples/host/document.h"

namespace {

// Says stop when it is asked for the k-th time.
class StopsAt final : public CQXUnknownImpl<IProgress> {
public:
    explicit StopsAt(int k) : m_left(k) {}
    int IsCancelled() override { return ++asked, --m_left == 0; }
    void SetRange(int, int) override {}

    int asked = 0;

private:
    int m_left;
};

constexpr int kNever = 0;

int CodeOf(Document const& document, std::string const& url, IProgress* sink) {
    try {
        document.Save(url.c_str(), sink);
    } catch (CXException& failure) {
        return failure.GetCode();
    }
    return 0;
}

}  // namespace

TEST(SavedDocumentTest, ASaveThatIsStoppedSendsNothing) {
    ServedFiles server;
    server.MakeDirectory("lists.d");
    const std::string url = ServedFiles::Url("lists.d/plans.document");
    Document document;
    document.title = "old plans";
    document.SaveAs(url.c_str());
    const std::string before = server.ContentOf("lists.d\\plans.document");

    document.title = "new plans";
    auto whole = qx::Make<StopsAt>(kNever);
    EXPECT_EQ(CodeOf(document, url, whole.Get()), 0);
    EXPECT_NE(server.ContentOf("lists.d\\plans.document"), before);
    EXPECT_GE(whole->asked, 2);  // while it is written, and before it is sent
    int sent = server.Count("STOR");

    document.title = "newest plans";
    for (int k = 1; k <= whole->asked; ++k) {
        EXPECT_EQ(CodeOf(document, url, qx::Make<StopsAt>(k).Get()), QXERR_CANCELLED) << k;
        EXPECT_EQ(server.Count("STOR"), sent) << k;
    }
    Document read;
    read.Load(url.c_str());
    EXPECT_EQ(read.title, "new plans");
    EXPECT_TRUE(server.AllGone());
}
