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

// The six virtual calls of a query and a release, and nothing else.
struct ICalls {
    virtual unsigned AddRef() = 0;
    virtual unsigned Release() = 0;
    virtual int Query(const void* id, ICalls** out) = 0;
};
class CCalls : public ICalls {
public:
    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int Query(const void* id, ICalls** out) override { return InternalQuery(id, out); }
    virtual ~CCalls() = default;
    virtual unsigned InternalAddRef() { return ++m_refs; }
    virtual unsigned InternalRelease() { return --m_refs; }
    virtual int InternalQuery(const void*, ICalls** out) {
        *out = this;
        AddRef();
        return 1;
    }

protected:
    unsigned m_refs = 1;
};

// Others of the kind, so that a compiler does not guess whose function a call reaches.
class COtherShape : public CShape {
public:
    unsigned AddRef() override { return 3; }
    unsigned Release() override { return 3; }
    int QueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }
    unsigned InternalAddRef() override { return 3; }
    unsigned InternalRelease() override { return 3; }
    int InternalQueryInterface(qx_type_info const&, IQXUnknown**) override { return 0; }
};
class COtherCalls : public CCalls {
public:
    unsigned AddRef() override { return 3; }
    unsigned Release() override { return 3; }
    int Query(const void*, ICalls**) override { return 0; }
    unsigned InternalAddRef() override { return 3; }
    unsigned InternalRelease() override { return 3; }
    int InternalQuery(const void*, ICalls**) override { return 0; }
};

QXCORE_NOINLINE IQXUnknown* MakeShape(bool other) {
    return other ? new COtherShape : new CShape;
}
QXCORE_NOINLINE ICalls* MakeCalls(bool other) {
    return other ? new COtherCalls : new CCalls;
}
QXCORE_NOINLINE Shape* MakeSquare() {
    return new Square;
}

void BenchInterfaceTest(bool other) {
    IQXUnknown* object = MakeShape(other);
    Shape* peer = MakeSquare();
    ICalls* calls = MakeCalls(other);
    auto ours = [&] {
        IQXUnknown* out;
        bench::Keep(object);
        object->QueryInterface(qx_typeid<IShape>(), &out);
        out->Release();
        bench::Keep(out);
    };
    bench::Compare("QueryInterface hit + Release", "its six virtual calls", ours, [&] {
        ICalls* out;
        bench::Keep(calls);
        calls->Query(&calls, &out);
        out->Release();
        bench::Keep(out);
    });
    bench::Compare("QueryInterface hit + Release", "dynamic_cast", ours, [&] {
        bench::Keep(peer);
        Square* out = dynamic_cast<Square*>(peer);
        bench::Keep(out);
    });
    object->Release();
    delete static_cast<CCalls*>(calls);
    delete peer;
}

}  // namespace

int main(int argc, char**) {
    BenchAllocation(40);
    BenchAllocation(1000);
    BenchInterfaceTest(argc > 5);
}
