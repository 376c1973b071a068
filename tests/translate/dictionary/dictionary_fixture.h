// What the tests of dictionaries share.
#ifndef QXCORE_TESTS_TRANSLATE_DICTIONARY_DICTIONARY_FIXTURE_H
#define QXCORE_TESTS_TRANSLATE_DICTIONARY_DICTIONARY_FIXTURE_H

#include "support/build_kind.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <qxcore/dictionary.h>

#include <string>

// Texts with these bytes behind the number belong to a place.
inline constexpr char kKeyEnd[] = "\xFD\xFD";

// So many entries make a large dictionary.
inline const int kManyEntries = kHasGuardPages ? 2000 : 20000;

inline void Enter(CWld& dictionary, const char* source, const char* target) {
    ASSERT_EQ(1, dictionary.m_Contexts.SetAt(source, new CContext(source, target)));
}

// Makes a dictionary as new, but for its font.
inline void Empty(CWld& dictionary) {
    dictionary.m_Contexts.RemoveAll();
    dictionary.m_Contexts.destroyed = 0;
    dictionary.m_DlgPos.RemoveAll();
    dictionary.m_DlgPos.destroyed = 0;
    dictionary.m_bInit = 0;
    dictionary.m_nContexts = 0;
}

// The process's dictionary, empty before and after each test.
class GlobalDictionary : public testing::Test {
protected:
    GlobalDictionary() { Empty(g_Wld); }
    ~GlobalDictionary() override { Empty(g_Wld); }
};

// A text that may be null, for comparisons.
inline std::string Shown(const char* text) {
    return text ? text : "(null)";
}

// The translation of a text in a dictionary file of these bytes.
inline std::string TranslationIn(const std::string& bytes, const char* source) {
    ScratchDirectory directory;
    CWld dictionary;
    EXPECT_EQ(1, dictionary.Init(directory.Write("a.wld", bytes).c_str()));
    return Shown(dictionary.Translate(source, 1));
}

inline int ScreenDotsPerInch() {
    HDC screen = GetDC(nullptr);
    int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}

#endif
