// What an observer is told at each of the 24 intercepted functions.
#include "translate/interception/caller.h"

namespace {

// One look-up as text: function, place, source, target, end. The two bytes behind a place are left
// out, and "-" stands for null.
std::string Shown(const QXLookup& lookup) {
    static const char* const kEnds[] = {"by place", "plain", "empty",    "miss",  "off",
                                        "excluded", "wide",  "long",     "class", "kept",
                                        "pointer",  "menu",  "no memory"};
    std::string place = lookup.place ? lookup.place : "-";
    if (lookup.place) place.resize(place.size() - 2);
    return std::string(lookup.function) + "|" + place + "|" +
           (lookup.source ? lookup.source : "-") + "|" + (lookup.target ? lookup.target : "-") +
           "|" + kEnds[lookup.end];
}

struct Told {
    std::vector<std::string> lines;
    std::vector<HMODULE> modules;
};

void Take(const QXLookup* lookup, void* context) {
    auto told = static_cast<Told*>(context);
    told->lines.push_back(Shown(*lookup));
    told->modules.push_back(lookup->module);
    SetLastError(815);  // what an observer does with it is not to be seen by the caller
}

using Lines = std::vector<std::string>;

INT_PTR CALLBACK EndAtOnce(HWND dialog, UINT message, WPARAM, LPARAM) {
    if (message == WM_INITDIALOG) EndDialog(dialog, 1);
    return FALSE;
}

LRESULT CALLBACK RefuseWindows(int code, WPARAM, LPARAM) {
    return code == HCBT_CREATEWND;
}

class ObserverTest : public DictionaryTest {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        _InitResTranslation(caller);
        Supp_SetLookupObserver(Take, &told);
    }
    void TearDown() override {
        Supp_SetLookupObserver(nullptr, nullptr);
        DictionaryTest::TearDown();
    }
    // What the act tells, all of it of this module.
    template <class Act>
    Lines Of(HMODULE module, Act act) {
        told = {};
        SetLastError(4711);
        act();
        EXPECT_NE(GetLastError(), 815u);
        for (HMODULE m : told.modules) EXPECT_EQ(m, module);
        return told.lines;
    }
    template <class Act>
    Lines OfCaller(Act act) {
        return Of(caller, act);
    }
    static CallerModule& Caller() {
        static auto& module = *new CallerModule;
        return module;
    }
    // Once found, the late module is known by its handle, so it stays for the whole run.
    static CallerModule& Late() {
        static auto& module = *new CallerModule("acopm.arx");
        return module;
    }
    CallerModule& caller = Caller();
    Told told;
    char text[64] = "";
    wchar_t wide[2048] = L"";
};

// The lines for a dialog of the label "Open" in the resource file, here with a miss.
Lines SmallDialog(const std::string& function, const std::string& place,
                  const std::string& rest = "Open|-|miss") {
    return {function + "|" + place + "|" + rest};
}

}  // namespace

TEST_F(ObserverTest, LoadStringATellsEachWayALookUpEnds) {
    auto load = [&](UINT id) {
        return OfCaller([&] { CALL(caller, LoadStringA)(caller, id, text, 64); });
    };
    EXPECT_EQ(load(1), Lines{"LoadStringA|caller.dll#3#1|Open|-|miss"});
    Teach("Open", "");
    EXPECT_EQ(load(1), Lines{"LoadStringA|caller.dll#3#1|Open|-|empty"});
    Teach("Open", "Auf");
    EXPECT_EQ(load(1), Lines{"LoadStringA|caller.dll#3#1|Open|Auf|plain"});
    EXPECT_STREQ(text, "Auf");
    Teach("caller.dll#3#2\xFD\xFDOpen", "In two");
    EXPECT_EQ(load(16), Lines{"LoadStringA|caller.dll#3#2|Open|In two|by place"});
    EXPECT_STREQ(text, "In two");
    // The number of this string is above those that have a place.
    EXPECT_EQ(load(0x10001), Lines{"LoadStringA|-|Open|Auf|plain"});
    EXPECT_EQ(load(9999), Lines{});
}

TEST_F(ObserverTest, APlaceWithAnEmptyTranslationEndsWithTheGeneralOne) {
    Teach("caller.dll#3#1\xFD\xFDOpen", "");
    auto load = [&] { return OfCaller([&] { CALL(caller, LoadStringA)(caller, 1, text, 64); }); };
    EXPECT_EQ(load(), Lines{"LoadStringA|caller.dll#3#1|Open|-|empty"});
    Teach("Open", "Auf");
    EXPECT_EQ(load(), Lines{"LoadStringA|caller.dll#3#1|Open|Auf|plain"});
}

TEST_F(ObserverTest, LoadStringWTellsOfTheNarrowTextWithoutAPlace) {
    Teach("Open", "Auf");
    Teach("caller.dll#3#1\xFD\xFDOpen", "In one");
    auto load = CALL(caller, LoadStringW);
    EXPECT_EQ(OfCaller([&] { load(caller, 1, wide, 64); }), Lines{"LoadStringW|-|Open|Auf|plain"});
    EXPECT_EQ(OfCaller([&] { load(caller, 2, wide, 64); }), Lines{"LoadStringW|-|Close|-|miss"});
    EXPECT_EQ(OfCaller([&] { load(caller, 9999, wide, 64); }), Lines{});
    EXPECT_EQ(OfCaller([&] { load(caller, 1, wide, 0); }), Lines{"LoadStringW|-|Open|-|pointer"});
    EXPECT_EQ(OfCaller([&] { load(caller, 1, nullptr, 0); }), Lines{});
}

TEST_F(ObserverTest, MenusTellOfEachItem) {
    Teach("Open", "Auf");
    Teach("caller.dll#2#100\xFD\xFDHelp", "Hilfe");
    auto lines = [](const std::string& function) {
        std::string call = function + "|caller.dll#2#100|";
        return Lines{call + "&File|-|miss", call + "Open|Auf|plain", call + "Close|-|miss",
                     call + "Checked|-|miss", call + "Help|Hilfe|by place"};
    };
    EXPECT_EQ(
        OfCaller([&] { DestroyMenu(CALL(caller, LoadMenuA)(caller, MAKEINTRESOURCEA(100))); }),
        lines("LoadMenuA"));
    EXPECT_EQ(
        OfCaller([&] { DestroyMenu(CALL(caller, LoadMenuW)(caller, MAKEINTRESOURCEW(100))); }),
        lines("LoadMenuW"));
    EXPECT_EQ(OfCaller([&] { CALL(caller, LoadMenuA)(caller, "NONE"); }), Lines{});
}

TEST_F(ObserverTest, LoadMenuIndirectANamesNoModuleAndNoPlace) {
    struct {
        WORD version = 0, offset = 0, flags = 0, id = 5;
        wchar_t text[5] = L"Open";
        WORD lastFlags = MF_END, lastId = 0;
        wchar_t lastText[5] = L"Zero";
    } menu;
    Teach("Open", "Auf");
    EXPECT_EQ(Of(nullptr, [&] { DestroyMenu(CALL(caller, LoadMenuIndirectA)(&menu)); }),
              (Lines{"LoadMenuIndirectA|-|Open|Auf|plain", "LoadMenuIndirectA|-|Zero|-|kept"}));
}

TEST_F(ObserverTest, AnEmptyDictionaryTellsOfMissesAndChangesNothing) {
    HMENU menu = nullptr;
    Lines lines = OfCaller([&] { menu = CALL(caller, LoadMenuA)(caller, "MAINMENU"); });
    EXPECT_EQ(lines, Lines{"LoadMenuA|caller.dll#2#MAINMENU|Open|-|miss"});
    DestroyMenu(menu);
    HRSRC found = nullptr;
    HGLOBAL block = nullptr;
    EXPECT_EQ(OfCaller([&] {
                  found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(205), RT_DIALOG);
                  block = CALL(caller, LoadResource)(caller, found);
              }),
              SmallDialog("LoadResource", "caller.dll#1#205"));
    EXPECT_EQ(block, LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(205), RT_DIALOG)));
}

TEST_F(ObserverTest, LoadResourceTellsOfADialogsTextsAtTheFirstLoad) {
    Teach("Open", "Auf");
    Teach("caller.dll#1#200\xFD\xFDName:", "Bezeichnung:");
    // The last control names its class "Button" in letters.
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(200), RT_DIALOG);
    auto load = [&] { CALL(caller, LoadResource)(caller, found); };
    std::string call = "LoadResource|caller.dll#1#200|";
    EXPECT_EQ(OfCaller(load), (Lines{call + "Open|Auf|plain", call + "Name:|Bezeichnung:|by place",
                                     call + "Close|-|miss", call + "Open|-|class"}));
    EXPECT_EQ(OfCaller(load), Lines{});
}

TEST_F(ObserverTest, LoadResourceTellsOfAStringTablesEntries) {
    Teach("Open", "Auf");
    auto load = [&](int block) {
        return OfCaller([&] {
            CALL(caller, LoadResource)
            (caller, CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(block), RT_STRING));
        });
    };
    std::string call = "LoadResource|caller.dll#3#1|";
    EXPECT_EQ(load(1), (Lines{call + "Open|Auf|plain", call + "Close|-|miss",
                              call + "Not in any dictionary|-|miss"}));
    Lines lines = load(26);  // one entry of 2000 characters
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "LoadResource|caller.dll#3#26|" + std::string(1023, 'a') + "|-|long");
}

TEST_F(ObserverTest, LoadResourceOfAMenuTellsThatItIsNone) {
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(100), RT_MENU);
    EXPECT_EQ(OfCaller([&] {
                  CALL(caller, LoadResource)
                  (caller, found);
              }),
              Lines{"LoadResource|caller.dll#2#100|-|-|menu"});
}

TEST_F(ObserverTest, FunctionsThatLookNothingUpTellNothing) {
    const char* dialog = MAKEINTRESOURCEA(5);
    auto wideDialog = MAKEINTRESOURCEW(5);
    EXPECT_EQ(OfCaller([&] {
                  HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(206), dialog);
                  CALL(caller, FindResourceW)(caller, MAKEINTRESOURCEW(206), wideDialog);
                  CALL(caller, FindResourceExA)(caller, dialog, MAKEINTRESOURCEA(206), 0);
                  CALL(caller, FindResourceExW)(caller, wideDialog, MAKEINTRESOURCEW(206), 0);
                  CALL(caller, SizeofResource)(caller, found);
                  CALL(caller, LockResource)(text);
                  CALL(caller, FreeResource)(text);
              }),
              Lines{});
}

TEST_F(ObserverTest, DialogsMadeFromResourcesTellUnderTheirOwnName) {
#define OF_RESOURCE(function, name) \
    OfCaller([&] { CALL(caller, function)(caller, name, nullptr, EndAtOnce, 0); })
    Teach("Open", "Auf");
    EXPECT_EQ(OF_RESOURCE(CreateDialogParamA, MAKEINTRESOURCEA(207)),
              SmallDialog("CreateDialogParamA", "caller.dll#1#207", "Open|Auf|plain"));
    EXPECT_EQ(OF_RESOURCE(CreateDialogParamW, MAKEINTRESOURCEW(208)),
              SmallDialog("CreateDialogParamW", "caller.dll#1#208", "Open|Auf|plain"));
    EXPECT_EQ(OF_RESOURCE(DialogBoxParamA, MAKEINTRESOURCEA(209)),
              SmallDialog("DialogBoxParamA", "caller.dll#1#209", "Open|Auf|plain"));
    EXPECT_EQ(OF_RESOURCE(DialogBoxParamW, L"WIDENAME"),
              SmallDialog("DialogBoxParamW", "caller.dll#1#W", "Open|Auf|plain"));
    EXPECT_EQ(OF_RESOURCE(DialogBoxParamA, "NONE"), Lines{});
#undef OF_RESOURCE
}

TEST_F(ObserverTest, DialogsMadeFromTemplatesHaveNoPlace) {
    auto dialog = static_cast<const DLGTEMPLATE*>(
        LoadResource(caller, FindResourceA(caller, MAKEINTRESOURCEA(212), RT_DIALOG)));
    Teach("caller.dll#1#212\xFD\xFDOpen", "In 212");
#define OF_TEMPLATE(function) \
    OfCaller([&] { CALL(caller, function)(caller, dialog, nullptr, EndAtOnce, 0); })
    EXPECT_EQ(OF_TEMPLATE(CreateDialogIndirectParamA),
              SmallDialog("CreateDialogIndirectParamA", "-"));
    EXPECT_EQ(OF_TEMPLATE(CreateDialogIndirectParamW),
              SmallDialog("CreateDialogIndirectParamW", "-"));
    EXPECT_EQ(OF_TEMPLATE(DialogBoxIndirectParamA), SmallDialog("DialogBoxIndirectParamA", "-"));
    EXPECT_EQ(OF_TEMPLATE(DialogBoxIndirectParamW), SmallDialog("DialogBoxIndirectParamW", "-"));
#undef OF_TEMPLATE
}

TEST_F(ObserverTest, TextsThatADialogKeepsTellWhy) {
    // A caption with a character above 0xFF, an edit field with a text, and the dictionary's font.
    struct {
        DWORD style = WS_POPUP | DS_SETFONT, exStyle = 0;
        WORD count = 1, x = 0, y = 0, cx = 50, cy = 50, menu = 0, windowClass = 0;
        wchar_t caption[3] = L"A\u0416";
        WORD points = 8;
        wchar_t face[7] = L"Tahoma";
        DWORD controlStyle = WS_CHILD, controlExStyle = 0;
        WORD controlX = 0, controlY = 0, controlCx = 9, controlCy = 9, id = 7;
        WORD atom[2] = {0xFFFF, 0x0081};
        wchar_t title[5] = L"Edit";
        WORD creation = 0;
    } dialog;
    static_assert(offsetof(decltype(dialog), controlStyle) == 44);
    g_Wld.m_bDialogFont = 1;
    std::string font = g_Wld.m_szFontName;
    auto act = [&] {
        CALL(caller, CreateDialogIndirectParamA)
        (caller, reinterpret_cast<const DLGTEMPLATE*>(&dialog), nullptr, EndAtOnce, 0);
    };
    std::string call = "CreateDialogIndirectParamA|-|";
    EXPECT_EQ(OfCaller(act),
              (Lines{call + "A?|-|wide", call + font + "|-|miss", call + "Edit|-|class"}));
}

TEST_F(ObserverTest, MessageBoxesTellOfTextAndCaption) {
    Teach("Open", "Auf");
    HHOOK hook = SetWindowsHookExA(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    EXPECT_EQ(Of(nullptr,
                 [&] {
                     CALL(caller, MessageBoxA)
                     (nullptr, "Open", nullptr, MB_OK);
                 }),
              (Lines{"MessageBoxA|-|Open|Auf|plain", "MessageBoxA|-|Error|-|miss"}));
    EXPECT_EQ(Of(nullptr,
                 [&] {
                     CALL(caller, MessageBoxExA)
                     (nullptr, "Open", "Close", MB_OK, 0);
                 }),
              (Lines{"MessageBoxExA|-|Open|-|kept", "MessageBoxExA|-|Close|-|kept"}));
    MSGBOXPARAMSA box = {};
    box.cbSize = sizeof box;
    box.hInstance = caller;
    box.lpszText = MAKEINTRESOURCEA(1);
    box.lpszCaption = "Close";
    EXPECT_EQ(
        OfCaller([&] {
            CALL(caller, MessageBoxIndirectA)
            (&box);
        }),
        (Lines{"MessageBoxIndirectA|-|Open|Auf|plain", "MessageBoxIndirectA|-|Close|-|miss"}));
    UnhookWindowsHookEx(hook);
}

TEST_F(ObserverTest, WithTheSwitchOffTextsAreNotLookedUp) {
    Teach("Open", "Auf");
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(OfCaller([&] {
                  CALL(caller, LoadStringA)
                  (caller, 1, text, 64);
              }),
              Lines{"LoadStringA|-|Open|-|off"});
    EXPECT_EQ(OfCaller([&] {
                  CALL(caller, LoadStringW)
                  (caller, 1, wide, 64);
              }),
              Lines{"LoadStringW|-|Open|-|off"});
    EXPECT_EQ(
        OfCaller([&] { DestroyMenu(CALL(caller, LoadMenuA)(caller, MAKEINTRESOURCEA(100))); }),
        Lines{"LoadMenuA|-|-|-|off"});
    EXPECT_EQ(OfCaller([&] {
                  CALL(caller, DialogBoxParamA)
                  (caller, MAKEINTRESOURCEA(213), nullptr, EndAtOnce, 0);
              }),
              Lines{"DialogBoxParamA|-|-|-|off"});
    HHOOK hook = SetWindowsHookExA(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId());
    EXPECT_EQ(Of(nullptr,
                 [&] {
                     CALL(caller, MessageBoxA)
                     (nullptr, "Open", nullptr, MB_OK);
                 }),
              Lines{"MessageBoxA|-|Open|-|off"});
    UnhookWindowsHookEx(hook);
}

TEST_F(ObserverTest, OfAnExcludedModuleNothingIsLookedUp) {
    Teach("Open", "Auf");
    HMODULE late = Late();
    EXPECT_EQ(Of(late,
                 [&] {
                     CALL(caller, LoadStringA)
                     (late, 1, text, 64);
                 }),
              Lines{"LoadStringA|-|Open|-|excluded"});
    EXPECT_EQ(Of(late, [&] { DestroyMenu(CALL(caller, LoadMenuW)(late, L"MAINMENU")); }),
              Lines{"LoadMenuW|-|-|-|excluded"});
    EXPECT_EQ(Of(late,
                 [&] {
                     CALL(caller, CreateDialogParamA)
                     (late, MAKEINTRESOURCEA(213), nullptr, EndAtOnce, 0);
                 }),
              Lines{"CreateDialogParamA|-|-|-|excluded"});
}

TEST_F(ObserverTest, WhatAHostTranslatesItselfIsNotTold) {
    Teach("Open", "Auf");
    EXPECT_EQ(OfCaller([&] {
                  Supp_Translate("Open");
                  strcpy(text, "Open");
                  Supp_Translate(text, 64);
                  TranslateInContext("Open", "a#1#1\xFD\xFD");
              }),
              Lines{});
}

namespace {

// An observer that makes calls of its own, which it hears of too.
struct Nested {
    HMODULE caller;
    Lines lines;
    HGLOBAL block = nullptr;
};

void LoadOnce(const QXLookup* lookup, void* context) {
    auto nested = static_cast<Nested*>(context);
    nested->lines.push_back(Shown(*lookup));
    if (nested->lines.size() > 1) return;
    auto find = reinterpret_cast<decltype(&FindResourceA)>(
        reinterpret_cast<void*>(GetProcAddress(nested->caller, "CallFindResourceA")));
    auto load = reinterpret_cast<decltype(&LoadResource)>(
        reinterpret_cast<void*>(GetProcAddress(nested->caller, "CallLoadResource")));
    nested->block = load(nested->caller, find(nested->caller, MAKEINTRESOURCEA(214), RT_DIALOG));
}

}  // namespace

TEST_F(ObserverTest, AnObserverMayLoadTheResourceThatItHearsOf) {
    Teach("Open", "Auf");
    Nested nested = {caller, {}, nullptr};
    Supp_SetLookupObserver(LoadOnce, &nested);
    HRSRC found = CALL(caller, FindResourceA)(caller, MAKEINTRESOURCEA(214), RT_DIALOG);
    HGLOBAL block = CALL(caller, LoadResource)(caller, found);
    EXPECT_EQ(block, nested.block);
    EXPECT_EQ(CALL(caller, LoadResource)(caller, found), block);
    EXPECT_EQ(nested.lines, (Lines{"LoadResource|caller.dll#1#214|Open|Auf|plain",
                                   "LoadResource|caller.dll#1#214|Open|Auf|plain"}));
}

TEST_F(ObserverTest, AnObserverMayChangeTheEntryThatItHearsOf) {
    Teach("Open", "Auf");
    Supp_SetLookupObserver(
        [](const QXLookup*, void*) {
            g_Wld.m_Contexts.SetAt("Open", new CContext("Open", "Changed"));
        },
        nullptr);
    CALL(caller, LoadStringA)(caller, 1, text, 64);
    EXPECT_STREQ(text, "Changed");
}

TEST_F(ObserverTest, OnceTakenBackItHearsNothing) {
    Supp_SetLookupObserver(nullptr, nullptr);
    EXPECT_EQ(OfCaller([&] { CALL(caller, LoadStringA)(caller, 1, text, 64); }), Lines{});
}
