// A plug-in that is loaded while the program runs.
#include <cstddef>
#include <new>

extern "C" __declspec(dllexport) void Late_Delete(void* block) {
    ::operator delete(block);
}

extern "C" __declspec(dllexport) void* Late_New(size_t size) {
    return ::operator new(size);
}
