// Registry values of hostile bytes under every registry type: each reads as the format says or as
// missing, and the tree goes on.
#include "fuzz/fuzz_driver.h"

#include <qxcore.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr char kKey[] = "Software\\qxcore registry fuzz";

// A key of this process's own, which goes with the driver.
class Key {
public:
    Key() : path(std::string(kKey) + " " + std::to_string(GetCurrentProcessId())) {
        RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &raw, nullptr);
        node = new_IParamCUReg(path.c_str());
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    ~Key() {
        node->Release();
        RegCloseKey(raw);
        RegDeleteTreeA(HKEY_CURRENT_USER, path.c_str());
    }

    std::string path;
    HKEY raw = nullptr;
    IParam* node = nullptr;
};

// How many bytes stand behind a code; -1 for a code without a form.
int PayloadOf(unsigned code) {
    constexpr int kPayloads[] = {0, 4, 1, 2, 4, 4, 4, 4, 8, 4, -1, 8, 16, 8, 16, 16, 32};
    return code < std::size(kPayloads) ? kPayloads[code] : -1;
}

unsigned First32(const std::string& bytes, size_t at) {
    unsigned number = 0;
    if (at < bytes.size())
        memcpy(&number, bytes.data() + at, std::min<size_t>(4, bytes.size() - at));
    return number;
}

bool IsAsWritten(const std::string& bytes, int answer, const CQXVariant& out) {
    unsigned code = First32(bytes, 0);
    std::string payload = bytes.size() > 4 ? bytes.substr(4) : "";
    if (code == QXVT_BLOB) {
        size_t there = payload.size() > 4 ? payload.size() - 4 : 0;
        size_t size = std::min<size_t>(First32(payload, 0), there);
        return answer == 1 && out.type == QXVT_BLOB && out.value.blob.size == size &&
               (size == 0 || memcmp(out.value.blob.data, payload.data() + 4, size) == 0);
    }
    int width = PayloadOf(code);
    if (width < 0) return answer == 0 && out.type == QXVT_EMPTY;
    payload.resize(width);
    return answer == 1 && out.type == code && memcmp(&out.value, payload.data(), width) == 0;
}

std::string HostileBytes(Random& random) {
    unsigned code = random.Below(8) ? random.Below(20) : random.Border();
    std::string bytes(reinterpret_cast<char*>(&code), 4);
    if (random.Below(2)) {
        unsigned size = random.Border();
        bytes.append(reinterpret_cast<char*>(&size), 4);
    }
    for (unsigned n = random.Below(40); n > 0; --n)
        bytes.push_back(static_cast<char>(random.Next()));
    if (random.Below(3) == 0) Mutate(bytes, random);
    return bytes;
}

bool Round(Random& random) {
    static Key key;
    constexpr DWORD kTypes[] = {REG_NONE,   REG_SZ,    REG_EXPAND_SZ, REG_BINARY, REG_BINARY,
                                REG_BINARY, REG_DWORD, REG_MULTI_SZ,  REG_QWORD};
    std::string bytes = HostileBytes(random);
    DWORD type = kTypes[random.Below(std::size(kTypes))];
    RegSetValueExW(key.raw, L"v", 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                   static_cast<DWORD>(bytes.size()));
    CQXVariant out("old");
    int answer = key.node->GetValue("v", &out);
    bool isText = type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
    if (type == REG_SZ) {
        // As long as what the platform converts, and ended.
        return answer ? out.type == QXVT_STRING && strlen(out.value.string) <= bytes.size() * 2
                      : out.type == QXVT_EMPTY;
    }
    if (isText) return out.type <= QXVT_BLOB;  // the bytes are the platform's conversion
    if (!IsAsWritten(bytes, answer, out)) return false;
    // What was read is written again and read back the same.
    if (!answer) return true;
    CQXVariant again;
    return key.node->SetValue("w", &out) == 1 && key.node->GetValue("w", &again) == 1 &&
           again.type == out.type;
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 5000, Round);
}
