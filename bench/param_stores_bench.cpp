// Parameter trees over the registry and storages beside the platform's own calls.
#include "bench/measure.h"

#include <qxcore.h>

#include <objbase.h>

#include <string>

namespace {

// A key of this process's own, which goes with the program.
class Key {
public:
    Key() : m_path("Software\\qxcore bench " + std::to_string(GetCurrentProcessId())) {
        RegCreateKeyExA(HKEY_CURRENT_USER, m_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &raw, nullptr);
        node = new_IParamCUReg(m_path.c_str());
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        node->Release();
        RegCloseKey(raw);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_path.c_str());
    }

    HKEY raw = nullptr;
    IParam* node = nullptr;

private:
    std::string m_path;
};

// What a program without the library does for one value: ask for the size, then for the bytes.
void RawRead(HKEY key, const char* name) {
    DWORD size = 0, type = 0;
    RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size);
    std::string bytes(size, 0);
    RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()), &size);
    bench::Keep(bytes[0]);
}

void BenchRegistryValues() {
    Key key;
    CQXVariant number(42), text("some text of a usual length");
    key.node->SetValue("number", &number);
    key.node->SetValue("text", &text);
    CQXVariant out;
    bench::Compare(
        "registry GetValue, int", "two RegQueryValueExA",
        [&] { key.node->GetValue("number", &out); }, [&] { RawRead(key.raw, "number"); });
    bench::Compare(
        "registry GetValue, text", "two RegQueryValueExA",
        [&] { key.node->GetValue("text", &out); }, [&] { RawRead(key.raw, "text"); });
    const BYTE form[] = {5, 0, 0, 0, 42, 0, 0, 0};
    bench::Compare(
        "registry SetValue, int", "RegSetValueExA", [&] { key.node->SetValue("number", &number); },
        [&] { RegSetValueExA(key.raw, "number", 0, REG_BINARY, form, sizeof form); });
    bench::Compare(
        "registry SetValue, text", "RegSetValueExA", [&] { key.node->SetValue("text", &text); },
        [&] {
            RegSetValueExA(key.raw, "text", 0, REG_SZ,
                           reinterpret_cast<const BYTE*>(text.value.string),
                           static_cast<DWORD>(strlen(text.value.string) + 1));
        });
}

void Walk(CTEnum<const char*>* names) {
    const char* name;
    while (names->Next(1, &name, nullptr)) bench::Keep(name[0]);
    names->Release();
}

void BenchRegistryNames(int count) {
    Key key;
    for (int i = 0; i < count; ++i)
        RegSetValueExA(key.raw, std::to_string(i).c_str(), 0, REG_BINARY, nullptr, 0);
    std::string what = "registry, a list of " + std::to_string(count) + " names";
    bench::Compare(
        what.c_str(), "RegEnumValueA", [&] { Walk(key.node->EnumValues()); },
        [&] {
            char name[513];
            DWORD size = sizeof name;
            for (DWORD i = 0; RegEnumValueA(key.raw, i, name, &size, nullptr, nullptr, nullptr,
                                            nullptr) == ERROR_SUCCESS;
                 ++i)
                size = sizeof name;
        },
        count);
}

void RawList(IStorage* ole) {
    IEnumSTATSTG* elements = nullptr;
    ole->EnumElements(0, nullptr, 0, &elements);
    STATSTG element;
    while (elements->Next(1, &element, nullptr) == S_OK) CoTaskMemFree(element.pwcsName);
    elements->Release();
}

void BenchStorageNames(int count) {
    IXStorage* storage = new_Storage(nullptr, 0);
    IParam* node = new_IXStorParam(storage);
    CQXVariant value(1);
    for (int i = 0; i < count; ++i) node->SetValue(std::to_string(i).c_str(), &value);
    auto ole = static_cast<IStorage*>(Storage_GetOLEStorage(storage));
    std::string what = "storage, a list of " + std::to_string(count) + " names";
    auto list = [&] { Walk(node->EnumValues()); };
    auto rawList = [&] { RawList(ole); };
    if (count <= 1000) {
        bench::Compare(what.c_str(), "IEnumSTATSTG", list, rawList, count);
    } else {
        // Wine's enumerator looks for each element from the start: once is long enough.
        double ours = bench::SecondsFor(list, 1), raw = bench::SecondsFor(rawList, 1);
        printf("%-52s %10.2f ns   %-28s %10.2f ns   ratio %6.3f\n", what.c_str(),
               ours / count * 1e9, "IEnumSTATSTG", raw / count * 1e9, ours / raw);
    }
    ole->Release();
    node->Release();
    storage->Release();
}

}  // namespace

int main() {
    BenchRegistryValues();
    for (int count : {100, 1000, 10000}) BenchRegistryNames(count);
    for (int count : {100, 1000, 10000}) BenchStorageNames(count);
    return 0;
}
