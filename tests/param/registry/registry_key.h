// A registry key of one test's own, which goes with all below it, and the raw calls beside which
// trees over it are tested.
#ifndef QXCORE_TESTS_PARAM_REGISTRY_KEY_H
#define QXCORE_TESTS_PARAM_REGISTRY_KEY_H

#include <qxcore/platform.h>

#include <string>

class TestKey {
public:
    explicit TestKey(HKEY hive = HKEY_CURRENT_USER)
        : m_hive(hive),
          m_path(std::string(kFamily) + "\\" + std::to_string(GetCurrentProcessId()) + " " +
                 std::to_string(++s_made)) {
        HKEY key = nullptr;
        RegCreateKeyExA(hive, m_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr);
        m_key = key;
    }
    TestKey(const TestKey&) = delete;
    TestKey& operator=(const TestKey&) = delete;
    ~TestKey() {
        RegCloseKey(m_key);
        RegDeleteTreeA(m_hive, m_path.c_str());
        RegDeleteKeyA(m_hive, kFamily);  // which succeeds when this was the last one
    }

    const std::string& Path() const { return m_path; }
    HKEY Raw() const { return m_key; }

    // As the platform stores it: text in UTF-16. The platform looks behind a text for the
    // terminator that it may lack.
    void Put(const char* name, DWORD type, const std::string& bytes) const {
        std::wstring wide(name, name + strlen(name));
        std::string guarded = bytes + "\xFF\xFF";
        RegSetValueExW(m_key, wide.c_str(), 0, type, reinterpret_cast<const BYTE*>(guarded.data()),
                       static_cast<DWORD>(bytes.size()));
    }
    // "TYPE:BYTES IN HEXADECIMAL", or "none".
    std::string Get(const char* name) const {
        std::wstring wide(name, name + strlen(name));
        DWORD type = 0, size = 0;
        if (RegQueryValueExW(m_key, wide.c_str(), nullptr, &type, nullptr, &size)) return "none";
        std::string bytes(size, '?');
        RegQueryValueExW(m_key, wide.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(bytes.data()),
                         &size);
        std::string text = std::to_string(type) + ":";
        char digits[3];
        for (unsigned char byte : bytes) {
            snprintf(digits, sizeof digits, "%02x", byte);
            text += digits;
        }
        return text;
    }
    bool Has(const char* subkey) const {
        HKEY key = nullptr;
        bool there = RegOpenKeyExA(m_key, subkey, 0, KEY_READ, &key) == ERROR_SUCCESS;
        if (there) RegCloseKey(key);
        return there;
    }

private:
    static constexpr const char* kFamily = "Software\\qxcore tests";
    inline static int s_made = 0;

    HKEY m_hive;
    std::string m_path;
    HKEY m_key;
};

#endif
