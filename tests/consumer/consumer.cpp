// <windows.h> before ours: every header must still compile, and the library must answer.
#include <windows.h>
#include <qxcore.h>

#include <cstdio>

int IncludesOursFirst();

int main() {
    IHeap* heap = new_MemoryHeap(0);
    void* block = heap->Alloc(100);
    bool allocates = block != nullptr && heap->GetSize(block) >= 100;
    heap->Free(block);
    IQXUnknown* unknown = nullptr;
    bool answers = heap->QueryInterface(qx_typeid<IHeap>(), &unknown) == 1;
    if (unknown) unknown->Release();
    heap->Release();
    bool throws = false;
    try {
        Mem_DefaultHeap(0)->Alloc(size_t(1) << 60);
    } catch (CXException& e) {
        throws = e.GetCode() == 2;
    }
    bool works = allocates && answers && throws && IncludesOursFirst() == 1;
    puts(works ? "the installed package works" : "the installed package fails");
    return works ? 0 : 1;
}
