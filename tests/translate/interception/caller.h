// Test modules that call the intercepted functions through their own import tables.
#ifndef QXCORE_TESTS_TRANSLATE_INTERCEPTION_CALLER_H
#define QXCORE_TESTS_TRANSLATE_INTERCEPTION_CALLER_H

#include <gtest/gtest.h>
#include <qxcore.h>

#include <string>

// The folder of the test modules, with a separator at the end.
inline std::string ModuleFolder() {
    char path[MAX_PATH];
    GetModuleFileNameA(nullptr, path, sizeof path);
    std::string folder = path;
    return folder.substr(0, folder.find_last_of("\\/") + 1) + "translate\\";
}

// A copy of the calling module, loaded for the scope of a test and restored before it goes.
class CallerModule {
public:
    explicit CallerModule(const char* file = "caller.dll") {
        handle =
            LoadLibraryExA((ModuleFolder() + file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        EXPECT_NE(handle, nullptr) << file;
    }
    ~CallerModule() {
        _DeInitResTranslation(handle);
        if (handle) FreeLibrary(handle);
    }
    CallerModule(const CallerModule&) = delete;
    CallerModule& operator=(const CallerModule&) = delete;

    operator HMODULE() const { return handle; }

    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(handle, name)));
    }

private:
    HMODULE handle = nullptr;
};

// The module's own call of a function: CALL(caller, LoadStringA)(...).
#define CALL(caller, function) (caller).Find<decltype(function)>("Call" #function)

// The translations that one test needs, taken back at its end. The dialog font is off unless the
// test sets it.
class DictionaryTest : public testing::Test {
protected:
    void SetUp() override {
        font = g_Wld.m_bDialogFont;
        g_Wld.m_bDialogFont = 0;
    }
    void TearDown() override {
        for (const std::string& source : sources) g_Wld.m_Contexts.RemoveKey(source.c_str());
        g_Wld.m_bDialogFont = font;
        Supp_SetTranslationEnable(1);
    }
    void Teach(const std::string& source, const std::string& target) {
        g_Wld.m_Contexts.SetAt(source.c_str(), new CContext(source.c_str(), target.c_str()));
        sources.push_back(source);
    }

private:
    int font = 0;
    std::vector<std::string> sources;
};

#endif
