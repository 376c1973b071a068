// Uses the library as a host would and lets go of everything, or misuses memory in the way its
// argument names. The standard library's containers stay away: what they keep would count as well.
#include <qxcore.h>

#include <cstring>

namespace {

void UseTheCore() {
    IHeap* heap = new_MemoryHeap(0);
    heap->Free(heap->Realloc(heap->Alloc(100), 200));
    heap->Release();
    ICritSect* lock = CriticalSection_New();
    lock->Enter();
    lock->Leave();
    lock->Release();
    IEvent* event = Event_New(1);
    event->Wait(0);
    event->Release();
    delete[] new int[100];
}

void Misuse(const char* how) {
    auto block = static_cast<volatile char*>(::operator new(100));
    if (strcmp(how, "leak") == 0) return;
    if (strcmp(how, "overrun") == 0) block[112] = 1;  // the block's end, rounded up to 16
    if (strcmp(how, "slack") == 0) block[100] = 1;
    // Called through a pointer, so that the compiler does not see what comes next for what it is.
    void (*volatile release)(void*) = ::operator delete;
    release(const_cast<char*>(block));
    if (strcmp(how, "use after free") == 0) block[0] = 1;
}

}  // namespace

int main(int argc, char** argv) {
    UseTheCore();
    if (argc > 1) Misuse(argv[1]);
    return 0;
}
