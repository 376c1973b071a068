// Saving and loading stopped in the middle: what the caller gets, what is left in memory, and what
// is left on the disk.
#include "storage/document/document_kinds.h"
#include "storage/document/drawing.h"
#include "support/allocation_failure.h"
#include "support/build_kind.h"

#include <atomic>

using qx::Make;
using qx::Reference;

QX_CREATOR(QxTestShape) {
    return QXCreateInstance<CShape>(outer, id, out);
}

namespace {

constexpr int kOld = 1000, kNew = 5000;  // the first numbers of the old and of the new objects
constexpr Drawing kSmall = {4, 5};
// Layers, and shapes of each.
const Drawing kLarge = {10, kHasGuardPages ? 200 : 1000};

// The ways in which a program saves. Each answers when the document is whole, and otherwise leaves
// the old one on the disk.

void SaveAndRevert(const std::string& path, IProgress* sink, const Drawing& drawing) {
    Reference<IXStorage> file(open_Storage(path.c_str(), 0)), watched = Watch(file.Get(), sink);
    try {
        SaveDrawing(watched.Get(), drawing, kNew);
    } catch (...) {
        watched.Release();
        static_cast<CStorage*>(file.Get())->Revert();
        throw;
    }
}

void SaveBeside(const std::string& path, IProgress* sink, const Drawing& drawing) {
    std::string beside = path + ".new";
    try {
        Reference<IXStorage> file(new_Storage(beside.c_str(), QXSTG_TRANSACTED)),
            watched = Watch(file.Get(), sink);
        SaveDrawing(watched.Get(), drawing, kNew);
    } catch (...) {
        Fio_DeleteFile(beside.c_str());
        throw;
    }
    Fio_DeleteFile(path.c_str());
    Fio_RenameFile(beside.c_str(), path.c_str());
}

void Load(const std::string& path, IProgress* sink, const Drawing& drawing) {
    Reference<IXStorage> file(open_Storage(path.c_str(), 1)), watched = Watch(file.Get(), sink);
    EXPECT_EQ(LoadDrawing(watched.Get(), drawing), NumbersFrom(kOld, drawing));
}

using Work = void (*)(const std::string& path, IProgress* sink, const Drawing& drawing);

class CancelTest : public StorageTest {
protected:
    void SetUp() override { RegisterObject("QxTestShape", GetModuleHandleA(nullptr)); }
    void TearDown() override { UnregisterObject("QxTestShape"); }

    void MakeOld(const Drawing& drawing) {
        Reference<IXStorage> file(new_Storage(path.c_str(), QXSTG_TRANSACTED));
        SaveDrawing(file.Get(), drawing, kOld);
    }
    // How often the whole work asks.
    int PollsOf(Work work, const Drawing& drawing) {
        Reference<TestSink> sink = Make<TestSink>();
        std::string copy = Path("copy.stg");
        Fio_CopyFile(path.c_str(), copy.c_str(), 0);
        work(copy, sink.Get(), drawing);
        Fio_DeleteFile(copy.c_str());
        return sink->polls;
    }
    // Does the work with a sink that stops it at poll k.
    void StopAt(int k, Work work, const Drawing& drawing) {
        long before = LiveBlocks();
        {
            Reference<TestSink> sink = Make<TestSink>();
            TestSink* raw = sink.Get();
            sink->answer = [raw, k] { return raw->polls == k; };
            EXPECT_EQ(Thrown([&] { work(path, sink.Get(), drawing); }), "1") << "poll " << k;
            EXPECT_EQ(sink->polls, k);
            EXPECT_EQ(CountOf(sink.Get()), 1u) << "poll " << k;
        }
        EXPECT_EQ(LiveBlocks(), before) << "poll " << k;
        ExpectOldDocument(drawing);
    }
    void StopAtEvery(Work work, const Drawing& drawing) {
        MakeOld(drawing);
        int polls = PollsOf(work, drawing);
        EXPECT_GT(polls, 8 * drawing.layers * drawing.shapesPerLayer);
        for (int k = 1; k <= polls && !HasFailure(); ++k) StopAt(k, work, drawing);
    }
    void StopAtFiftyPlaces(Work work, const Drawing& drawing) {
        MakeOld(drawing);
        int polls = PollsOf(work, drawing);
        for (int i = 0; i < 50 && !HasFailure(); ++i)
            StopAt(1 + static_cast<int>((polls - 1ll) * i / 49), work, drawing);
    }
    void ExpectOldDocument(const Drawing& drawing) {
        EXPECT_EQ(Files(), 1u) << "only the document may be there";
        Reference<IXStorage> file(open_Storage(path.c_str(), 1));
        EXPECT_EQ(LoadDrawing(file.Get(), drawing), NumbersFrom(kOld, drawing));
    }
    size_t Files() {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA(Path("*.*").c_str(), &found);
        size_t files = 0;
        do {
            files += !(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY);
        } while (FindNextFileA(search, &found));
        FindClose(search);
        return files;
    }

    std::string path = Path("drawing.stg");
};

// Asks a thread of its own and waits for what that says.
class AskingThread {
public:
    explicit AskingThread(int stopAt) : m_stopAt(stopAt) {
        m_thread = CreateThread(nullptr, 0, Run, this, 0, nullptr);
    }
    ~AskingThread() {
        m_ends = true;
        SetEvent(m_asked);
        WaitForSingleObject(m_thread, INFINITE);
        for (HANDLE handle : {m_thread, m_asked, m_answered}) CloseHandle(handle);
    }
    int Ask() {
        SetEvent(m_asked);
        WaitForSingleObject(m_answered, INFINITE);
        return m_answer;
    }

private:
    static DWORD WINAPI Run(void* self) {
        static_cast<AskingThread*>(self)->Answer();
        return 0;
    }
    void Answer() {
        for (int asked = 1;; ++asked) {
            WaitForSingleObject(m_asked, INFINITE);
            if (m_ends) return;
            m_answer = asked == m_stopAt;
            SetEvent(m_answered);
        }
    }

    int m_stopAt;
    HANDLE m_asked = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE m_answered = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    HANDLE m_thread = nullptr;
    std::atomic<bool> m_ends = false;
    std::atomic<int> m_answer = 0;
};

}  // namespace

TEST_F(CancelTest, ASaveStoppedAnywhereIsTakenBackByReverting) {
    StopAtEvery(SaveAndRevert, kSmall);
}

TEST_F(CancelTest, ASaveBesideTheDocumentStoppedAnywhereLeavesTheOldOne) {
    StopAtEvery(SaveBeside, kSmall);
}

TEST_F(CancelTest, ALoadStoppedAnywhereLeavesNothing) {
    StopAtEvery(Load, kSmall);
}

TEST_F(CancelTest, ALargeSaveStoppedAtFiftyPlacesIsTakenBackByReverting) {
    StopAtFiftyPlaces(SaveAndRevert, kLarge);
}

TEST_F(CancelTest, ALargeSaveBesideTheDocumentStoppedAtFiftyPlacesLeavesTheOldOne) {
    StopAtFiftyPlaces(SaveBeside, kLarge);
}

TEST_F(CancelTest, ALargeLoadStoppedAtFiftyPlacesLeavesNothing) {
    StopAtFiftyPlaces(Load, kLarge);
}

TEST_F(CancelTest, ASaveThatIsNotStoppedReplacesTheDocument) {
    for (Work work : {SaveAndRevert, SaveBeside}) {
        MakeOld(kSmall);
        work(path, Make<TestSink>().Get(), kSmall);
        Reference<IXStorage> file(open_Storage(path.c_str(), 1));
        EXPECT_EQ(LoadDrawing(file.Get(), kSmall), NumbersFrom(kNew, kSmall));
    }
}

// Closing commits: without Revert the half-written document takes the old one's place.
TEST_F(CancelTest, AStoppedSaveThatNobodyRevertsIsCommittedAsFarAsItCame) {
    MakeOld(kSmall);
    Reference<TestSink> sink = Make<TestSink>();
    sink->answer = [&] { return sink->polls == 100; };
    EXPECT_EQ(Thrown([&] {
                  Reference<IXStorage> file(open_Storage(path.c_str(), 0)),
                      watched = Watch(file.Get(), sink.Get());
                  SaveDrawing(watched.Get(), kSmall, kNew);
              }),
              "1");
    Reference<IXStorage> file(open_Storage(path.c_str(), 1)), layer(file->OpenStorage("layer 0"));
    Reference<IXStream> stream(layer->OpenStream("shapes"));
    Reference<IQXUnknown> first;
    ReadObjectFromXStream(stream.Get(), first.Receive());
    ASSERT_TRUE(first);
    EXPECT_EQ(static_cast<CShape*>(first.Get())->number, kNew);
}

TEST_F(CancelTest, WhatASinkThrowsReachesTheCallerAndNothingLeaks) {
    MakeOld(kSmall);
    struct Interruption {
        int poll;
    };
    for (Work work : {SaveAndRevert, SaveBeside, Load}) {
        int polls = PollsOf(work, kSmall);
        for (int k = 1; k <= polls; k += 7) {
            long before = LiveBlocks();
            {
                Reference<TestSink> sink = Make<TestSink>();
                TestSink* raw = sink.Get();
                sink->answer = [raw, k] {
                    if (raw->polls == k) throw Interruption{k};
                    return 0;
                };
                int caught = 0;
                try {
                    work(path, sink.Get(), kSmall);
                } catch (Interruption& interruption) {
                    caught = interruption.poll;
                }
                EXPECT_EQ(caught, k);
                EXPECT_EQ(CountOf(sink.Get()), 1u);
            }
            EXPECT_EQ(LiveBlocks(), before) << "poll " << k;
            ExpectOldDocument(kSmall);
        }
    }
}

TEST_F(CancelTest, ASinkMayHaveItsAnswerFromAnotherThread) {
    MakeOld(kSmall);
    for (Work work : {SaveAndRevert, SaveBeside, Load}) {
        int polls = PollsOf(work, kSmall);
        for (int k : {1, polls / 2, polls}) {
            AskingThread thread(k);
            Reference<TestSink> sink = Make<TestSink>([&] { return thread.Ask(); });
            EXPECT_EQ(Thrown([&] { work(path, sink.Get(), kSmall); }), "1");
            EXPECT_EQ(sink->polls, k);
        }
    }
    ExpectOldDocument(kSmall);
}

// As with a button: another thread sets a flag at some time.
TEST_F(CancelTest, AFlagSetByAnotherThreadStopsTheWork) {
    MakeOld(kSmall);
    static std::atomic<int> flag;
    flag = 0;
    HANDLE thread = CreateThread(
        nullptr, 0,
        [](void*) -> DWORD {
            Sleep(20);
            flag = 1;
            return 0;
        },
        nullptr, 0, nullptr);
    Reference<TestSink> sink = Make<TestSink>([] { return flag.load(); });
    EXPECT_EQ(Thrown([&] {
                  for (;;) Load(path, sink.Get(), kSmall);
              }),
              "1");
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(CountOf(sink.Get()), 1u);
}

// The program forgets the document as soon as the user says stop, or while it goes on.
TEST_F(CancelTest, ASinkMayLetGoOfTheDocumentInItsAnswer) {
    MakeOld(kSmall);
    for (int stop : {1, 0}) {
        for (int k = 1; k <= 40; ++k) {
            long before = LiveBlocks();
            {
                Reference<IXStorage> file(open_Storage(path.c_str(), 1));
                Reference<TestSink> sink = Make<TestSink>();
                Reference<IXStorage> document = Watch(file.Get(), sink.Get());
                Reference<IXStorage> folder(document->OpenStorage("layer 2"));
                Reference<IXStream> stream(folder->OpenStream("shapes"));
                file.Release();
                sink->answer = [&] {
                    if (sink->polls < k) return 0;
                    document.Release();
                    folder.Release();
                    stream.Release();
                    return stop;
                };
                int read = 0;
                std::string thrown = Thrown([&] {
                    while (stream) stream->ReadByte(), ++read;
                });
                EXPECT_EQ(thrown, stop ? "1" : "nothing");
                EXPECT_EQ(read, stop ? k - 1 : k);
                EXPECT_EQ(CountOf(sink.Get()), 1u);
            }
            EXPECT_EQ(LiveBlocks(), before) << "poll " << k;
        }
    }
}
