// Saving through Fio_OpenOut in a process that is killed at each step: one of the contents is
// always there, whole.
#include "file/file_fixture.h"

#include <map>

namespace {

class KilledSavingTest : public FileTest {
protected:
    // Where the contents are found after the process is gone.
    enum Outcome { kOldInPlace, kNewInPlace, kNewInTheTemporary, kLost };

    Outcome Look(const std::string& target, const std::string& old,
                 const std::string& fresh) const {
        if (Exists(target)) {
            std::string content = ContentOf(target);
            return content == old ? kOldInPlace : content == fresh ? kNewInPlace : kLost;
        }
        for (const std::string& name : Names()) {
            if (ContentOf(Path(name)) == fresh) return kNewInTheTemporary;
        }
        return kLost;
    }
    void RemoveAll() const {
        for (const std::string& name : Names()) DeleteFileA(Path(name).c_str());
    }
};

constexpr DWORD kDied = 77;

}  // namespace

TEST_F(KilledSavingTest, AtEveryStepTheOldOrTheNewContentIsThereWhole) {
    constexpr unsigned kSize = 2 * kChunk + 1000;
    const std::string old = Pattern(kChunk + 7), fresh(kSize, 'n');
    std::map<Outcome, int> counts;
    std::vector<Outcome> order;
    int step = 1;
    for (;; ++step) {
        std::string target = MakeFile("document", old);
        DWORD exitCode =
            Peer("save \"" + target + "\" " + std::to_string(kSize) + " " + std::to_string(step))
                .ExitCode();
        Outcome outcome = Look(target, old, fresh);
        ++counts[outcome];
        order.push_back(outcome);
        RemoveAll();
        if (exitCode == 0) break;
        ASSERT_EQ(exitCode, kDied) << "step " << step;
    }
    printf(
        "killed at %d steps: old content %d, new content %d, new content in the temporary %d, lost "
        "%d\n",
        step - 1, counts[kOldInPlace], counts[kNewInPlace] - 1, counts[kNewInTheTemporary],
        counts[kLost]);
    EXPECT_EQ(counts[kLost], 0);
    EXPECT_GT(counts[kOldInPlace], 10);
    EXPECT_EQ(counts[kNewInTheTemporary], 1);  // between the delete and the rename
    EXPECT_GT(counts[kNewInPlace], 1);         // while the lock is taken again
    EXPECT_EQ(order.back(), kNewInPlace);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end(), [](Outcome a, Outcome b) {
        auto rank = [](Outcome o) {
            return o == kOldInPlace ? 0 : o == kNewInTheTemporary ? 1 : 2;
        };
        return rank(a) < rank(b);
    }));
}

TEST_F(KilledSavingTest, ANewDocumentIsThereWholeOrNotAtAll) {
    constexpr unsigned kSize = kChunk + 1000;
    const std::string fresh(kSize, 'n');
    for (int step = 1;; ++step) {
        std::string target = Path("document");
        DWORD exitCode =
            Peer("save \"" + target + "\" " + std::to_string(kSize) + " " + std::to_string(step))
                .ExitCode();
        EXPECT_TRUE(!Exists(target) || ContentOf(target) == fresh) << "step " << step;
        bool done = exitCode == 0;
        EXPECT_TRUE(!done || Exists(target));
        RemoveAll();
        if (done) break;
        ASSERT_EQ(exitCode, kDied) << "step " << step;
    }
}

TEST_F(KilledSavingTest, AProcessKilledFromOutsideWhileItSavesLeavesTheOldContent) {
    std::string target = MakeFile("document", "old");
    Peer saver("hold_saving \"" + target + "\"");
    ASSERT_TRUE(saver.WaitForWord());
    saver.Kill();
    EXPECT_EQ(ContentOf(target), "old");
    EXPECT_EQ(TryOpen(target, GENERIC_READ | GENERIC_WRITE, 0), 0u);  // its lock is gone too
    OutFile file = OpenOut(target);
    file->WriteByte('n');
    file->Commit();
    EXPECT_EQ(ContentOf(target), "n");
}
