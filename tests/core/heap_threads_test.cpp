#include <gtest/gtest.h>
#include <qxcore.h>

#include <atomic>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 4000;

void OnThreads(void (*work)(int)) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
}

// A small generator of its own for each thread, so that runs repeat.
struct Random {
    unsigned state;
    unsigned Next() { return (state = state * 1664525u + 1013904223u) >> 8; }
};

std::atomic<int> g_damaged;

// Every block is filled with its owner's mark and looked at before it goes.
void AllocateAndRelease(int thread) {
    Random random{unsigned(thread) + 1};
    struct Block {
        unsigned char* bytes;
        size_t size;
    } live[32] = {};
    for (int round = 0; round < kRounds; ++round) {
        Block& block = live[random.Next() % 32];
        for (size_t i = 0; i < block.size; ++i) {
            if (block.bytes[i] != unsigned(thread) + 1) ++g_damaged;
        }
        delete[] block.bytes;
        block.size = random.Next() % 200;
        block.bytes = new unsigned char[block.size];
        memset(block.bytes, thread + 1, block.size);
    }
    for (Block& block : live) delete[] block.bytes;
}

std::mutex g_handOverLock;
std::vector<void*> g_handedOver;

// Blocks made here are freed by whoever comes next.
void HandOver(int) {
    for (int round = 0; round < kRounds; ++round) {
        void* made = ::operator new(64);
        void* taken = nullptr;
        {
            std::lock_guard<std::mutex> guard(g_handOverLock);
            g_handedOver.push_back(made);
            if (g_handedOver.size() > 16) {
                taken = g_handedOver.front();
                g_handedOver.erase(g_handedOver.begin());
            }
        }
        ::operator delete(taken);
    }
}

void MakeAndReleaseHeaps(int) {
    for (int round = 0; round < 100; ++round) {
        IHeap* heap = new_MemoryHeap(0);
        void* block = heap->Alloc(100);
        block = heap->Realloc(block, 300);
        heap->Free(block);
        heap->Release();
    }
}

}  // namespace

TEST(HeapThreadsTest, ManyThreadsAllocateAndReleaseAtOnce) {
    g_damaged = 0;
    OnThreads(AllocateAndRelease);
    EXPECT_EQ(g_damaged, 0);
}

TEST(HeapThreadsTest, ABlockMadeOnOneThreadIsFreedOnAnother) {
    OnThreads(HandOver);
    for (void* block : g_handedOver) ::operator delete(block);
    g_handedOver.clear();
}

TEST(HeapThreadsTest, PrivateHeapsComeAndGoOnManyThreads) {
    OnThreads(MakeAndReleaseHeaps);
    IHeap* heap = Mem_DefaultHeap(0);
    void* block = heap->Alloc(10);
    EXPECT_EQ(heap->Free(block), 1);
}
