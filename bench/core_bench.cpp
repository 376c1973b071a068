// Heaps and interfaces beside what a program would take instead.
#include "bench/measure.h"

#include <qxcore.h>

#include <cstdlib>
#include <cstring>

namespace {

struct IShape : IQXUnknown {
    virtual int Sides() = 0;

protected:
    ~IShape() = default;
};

struct Shape {
    virtual ~Shape() = default;
};
struct Square : virtual Shape {
    virtual int Sides() { return 4; }
};

void BenchAllocation(size_t size) {
    char what[64];
    snprintf(what, sizeof what, "new + delete, %d bytes", int(size));
    auto ours = [&] {
        void* p = ::operator new(size);
        bench::Keep(p);
        ::operator delete(p);
    };
    bench::Compare(what, "malloc + free", ours, [&] {
        void* p = malloc(size);
        bench::Keep(p);
        free(p);
    });
    HANDLE heap = HeapCreate(2, 0, 0);
    bench::Compare(what, "HeapAlloc(zero) + HeapFree", ours, [&] {
        void* p = HeapAlloc(heap, HEAP_ZERO_MEMORY, size);
        bench::Keep(p);
        HeapFree(heap, 0, p);
    });
    IHeap* qxHeap = new_MemoryHeap(0);
    snprintf(what, sizeof what, "IHeap Alloc + Free, %d bytes", int(size));
    bench::Compare(
        what, "HeapAlloc(zero) + HeapFree",
        [&] {
            void* p = qxHeap->Alloc(size);
            bench::Keep(p);
            qxHeap->Free(p);
        },
        [&] {
            void* p = HeapAlloc(heap, HEAP_ZERO_MEMORY, size);
            bench::Keep(p);
            HeapFree(heap, 0, p);
        });
    qxHeap->Release();
    HeapDestroy(heap);
}

}  // namespace

QX_DECLARE_TYPEID(IShape, ".?AUIShape@@");

namespace {

class CShape : public CQXUnknownImpl<IShape> {
public:
    int Sides() override { return 3; }
};

QXCORE_NOINLINE IQXUnknown* MakeShape() {
    return new CShape;
}
QXCORE_NOINLINE Shape* MakeSquare() {
    return new Square;
}

void BenchInterfaceTest() {
    IQXUnknown* object = MakeShape();
    Shape* peer = MakeSquare();
    bench::Compare(
        "QueryInterface hit + Release", "dynamic_cast",
        [&] {
            IQXUnknown* out;
            bench::Keep(object);
            object->QueryInterface(qx_typeid<IShape>(), &out);
            out->Release();
            bench::Keep(out);
        },
        [&] {
            bench::Keep(peer);
            Square* out = dynamic_cast<Square*>(peer);
            bench::Keep(out);
        });
    object->Release();
    delete peer;
}

}  // namespace

int main() {
    BenchAllocation(40);
    BenchAllocation(1000);
    BenchInterfaceTest();
}
