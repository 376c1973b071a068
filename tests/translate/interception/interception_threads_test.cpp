// Many threads translate through the layer while nobody adds to the dictionary, and modules come
// and go.
#include "translate/interception/caller.h"
#include "translate/own_process.h"

#include <atomic>
#include <thread>

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 5000;

class InterceptionThreadsTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Teach("caller.dll#3#1\xFD\xFDOpen", "in its block");
        Teach("Open", "anywhere");
        Teach("Close", "Zu");
        WarmUp();
    }
    // The dictionary's tables are made by the first look.
    void WarmUp() { Supp_Translate("Open"); }
    template <class Act>
    void RunEverywhere(Act act) {
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&] {
                for (int round = 0; round < kRounds; ++round) act();
            });
        for (std::thread& thread : threads) thread.join();
    }
    CallerModule caller;
};

}  // namespace

TEST_F(InterceptionThreadsTest, StringsAreRightInEveryThread) {
    auto load = CALL(caller, LoadStringA);
    auto loadWide = CALL(caller, LoadStringW);
    std::atomic<int> wrong = 0;
    RunEverywhere([&] {
        char text[64];
        wchar_t wide[64];
        wrong += load(caller, 1, text, 64) != 12 || strcmp(text, "in its block") != 0;
        wrong += load(caller, 16, text, 64) != 8 || strcmp(text, "anywhere") != 0;
        wrong += loadWide(caller, 2, wide, 64) != 3 || wcscmp(wide, L"Zu") != 0;
    });
    EXPECT_EQ(wrong, 0);
}

TEST_F(InterceptionThreadsTest, StringsAreRightWhileModulesComeAndGo) {
    auto load = CALL(caller, LoadStringA);
    std::atomic<int> wrong = 0;
    std::atomic<bool> done = false;
    std::thread loader([&] {
        for (int i = 0; i < 100; ++i) {
            FreeLibrary(LoadLibraryA((ModuleFolder() + "other.dll").c_str()));
            FreeLibrary(LoadLibraryA((ModuleFolder() + "acopm.arx").c_str()));
        }
        done = true;
    });
    RunEverywhere([&] {
        char text[64];
        do {
            wrong += load(caller, 1, text, 64) != 12 || strcmp(text, "in its block") != 0;
        } while (!done);
    });
    loader.join();
    EXPECT_EQ(wrong, 0);
}

// A record keeps the block of its first load, so no other test's dialog may be loaded here.
TEST_F(InterceptionThreadsTest, EachThreadFindsTheRecordItAsksFor) {
    IN_A_PROCESS_OF_ITS_OWN();
    auto find = CALL(caller, FindResourceA);
    auto load = CALL(caller, LoadResource);
    constexpr int kIds[] = {200, 230};
    HRSRC records[2];
    HGLOBAL blocks[2];
    for (int i = 0; i < 2; ++i) {
        records[i] = find(caller, MAKEINTRESOURCEA(kIds[i]), RT_DIALOG);
        blocks[i] = load(caller, records[i]);
    }
    std::atomic<int> wrong = 0;
    RunEverywhere([&] {
        for (int i = 0; i < 2; ++i) {
            wrong += find(caller, MAKEINTRESOURCEA(kIds[i]), RT_DIALOG) != records[i];
            wrong += load(caller, records[i]) != blocks[i];
        }
    });
    EXPECT_NE(blocks[0], blocks[1]);
    EXPECT_EQ(wrong, 0);
}

TEST_F(InterceptionThreadsTest, TemplatesAreRightInEveryThread) {
    HRSRC found = FindResourceA(caller, MAKEINTRESOURCEA(200), RT_DIALOG);
    auto dialog = static_cast<unsigned char*>(LoadResource(caller, found));
    int firstSize;
    unsigned char* first = TranslateDlgInternal(dialog, &firstSize);
    std::atomic<int> wrong = 0;
    RunEverywhere([&] {
        int size;
        unsigned char* block = TranslateDlgInternal(dialog, &size);
        wrong += size != firstSize || memcmp(block, first, static_cast<size_t>(size)) != 0;
        free(block);
    });
    EXPECT_EQ(wrong, 0);
    free(first);
}
