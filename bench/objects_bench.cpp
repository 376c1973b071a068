// Making objects by name beside a table of std::function.
#include "bench/measure.h"

#include <qxcore.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

struct IBenchThing : IQXUnknown {
    virtual int Number() = 0;

protected:
    ~IBenchThing() = default;
};
QX_DECLARE_TYPEID(IBenchThing, ".?AUIBenchThing@@");

namespace {

class CBenchThing : public CQXUnknownImpl<IBenchThing> {
public:
    int Number() override { return 1; }
};

struct Thing {
    virtual ~Thing() = default;
    virtual int Number() { return 1; }
};

constexpr char kName[] = "BenchThingOfSomeHost";
constexpr int kOtherClasses = 200;  // as a host with its plug-ins registers

std::string OtherName(int i) {
    return "OtherClassOfSomeHost" + std::to_string(i);
}

}  // namespace

QX_CREATOR(BenchThingOfSomeHost) {
    return QXCreateInstance<CBenchThing>(outer, id, out);
}

int main() {
    HINSTANCE program = GetModuleHandleA(nullptr);
    std::unordered_map<std::string, std::function<std::unique_ptr<Thing>()>> factories;
    RegisterObject(kName, program);
    factories[kName] = [] { return std::make_unique<Thing>(); };
    for (int i = 0; i < kOtherClasses; ++i) {
        RegisterObject(OtherName(i).c_str(), "kernel32.dll");
        factories[OtherName(i)] = factories[kName];
    }

    // A name comes to both as plain text, as from a file.
    const char* name = kName;
    auto create = [&] {
        IQXUnknown* object;
        CreateObject(name, nullptr, qx_typeid<IBenchThing>(), &object);
        bench::Keep(object);
        object->Release();
    };
    bench::Compare("CreateObject by name + Release", "std::function factory", create, [&] {
        auto object = factories.find(name)->second();
        bench::Keep(object);
    });
    bench::Compare("CreateObject by name + Release", "new + delete", create, [] {
        Thing* object = new Thing;
        bench::Keep(object);
        delete object;
    });
}
