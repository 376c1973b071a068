// The functions that a host calls. Most tests look at a process from its start on.
#include "support/allocation_failure.h"
#include "support/debugged_process.h"
#include "support/scratch_directory.h"
#include "translate/interception/caller.h"
#include "translate/own_process.h"

namespace {

constexpr const char* kLibraries[] = {"mfc80u.dll", "mfc42d.dll", "mfco42d.dll", "mfc42.dll",
                                      "cfc42.dll",  "mfc70d.dll", "mfco70d.dll", "mfc70.dll",
                                      "mfco70.dll", "mfc71.dll",  "mfco71.dll",  "mfc80.dll"};

std::string LoadThrough(const CallerModule& module, HMODULE from) {
    char buffer[64] = "";
    CALL(module, LoadStringA)(from, 1, buffer, sizeof buffer);
    return buffer;
}

std::string Load(const CallerModule& module) {
    return LoadThrough(module, module);
}

class FacadeTest : public testing::Test {
protected:
    std::string Dictionary(const char* name, const char* bytes) {
        return directory.Write(name, bytes);
    }
    std::string German() { return Dictionary("de.wld", "\"Open\"\n\"Auf\"\n\"Close\"\n\"Zu\"\n"); }
    ScratchDirectory directory;
};

}  // namespace

TEST_F(FacadeTest, AMissingDictionaryAnswers0AndPatchesNothing) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    g_Wld.m_Contexts.SetAt("Open", new CContext("Open", "Auf"));
    EXPECT_EQ(Supp_Init(directory.PathOf("missing.wld").c_str()), 0);
    EXPECT_EQ(Load(library), "Open");
    EXPECT_EQ(Supp_AddWld(directory.PathOf("missing.wld").c_str()), 0);
    EXPECT_EQ(Load(library), "Open");
}

TEST_F(FacadeTest, EveryLoadedClassLibraryIsPatchedByItsName) {
    IN_A_PROCESS_OF_ITS_OWN();
    std::vector<std::unique_ptr<CallerModule>> libraries;
    for (const char* name : kLibraries) libraries.push_back(std::make_unique<CallerModule>(name));
    CallerModule other("other.dll");
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    for (auto& library : libraries) EXPECT_EQ(Load(*library), "Auf");
    EXPECT_EQ(Load(other), "Open");
}

TEST_F(FacadeTest, TheSystemsCommonDialogsArePatched) {
    IN_A_PROCESS_OF_ITS_OWN();
    HMODULE library = LoadLibraryA("comdlg32.dll");
    auto find =
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32"), "LoadResource"));
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    // The real address is in no slot of the module any more, so installing again changes nothing.
    int replacement;
    EXPECT_EQ(HookProc_Install(library, "kernel32", "LoadResource", &replacement), find);
    auto base = reinterpret_cast<char*>(library);
    auto headers = reinterpret_cast<IMAGE_NT_HEADERS64*>(
        base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
    auto d = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(
        base + headers->OptionalHeader.DataDirectory[1].VirtualAddress);
    for (; d->Name; ++d) {
        for (auto slot = reinterpret_cast<void**>(base + d->FirstThunk); *slot; ++slot) {
            EXPECT_NE(*slot, find);
            EXPECT_NE(*slot, &replacement);
        }
    }
}

TEST_F(FacadeTest, ASecondCallReadsNothingButReachesLibrariesLoadedSince) {
    IN_A_PROCESS_OF_ITS_OWN();
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    CallerModule library("mfc71.dll");
    EXPECT_EQ(Load(library), "Open");
    EXPECT_EQ(Supp_Init(directory.PathOf("missing.wld").c_str()), 1);
    EXPECT_EQ(Load(library), "Auf");
    EXPECT_EQ(Supp_Init(Dictionary("more.wld", "\"Help\"\n\"Hilfe\"\n").c_str()), 1);
    EXPECT_STREQ(Supp_Translate("Help"), "Help");
}

TEST_F(FacadeTest, WithoutANameTheDictionaryIsAppWldInTheCurrentDirectory) {
    IN_A_PROCESS_OF_ITS_OWN();
    std::string path = Dictionary("app.wld", "\"Open\"\n\"Auf\"\n");
    SetCurrentDirectoryA(path.substr(0, path.rfind('\\')).c_str());
    EXPECT_EQ(Supp_Init(nullptr), 1);
    SetCurrentDirectoryA("\\");
    EXPECT_STREQ(Supp_Translate("Open"), "Auf");
}

TEST_F(FacadeTest, TheFirstAddedDictionaryInstallsAndALaterOneOnlyAdds) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    EXPECT_EQ(Supp_AddWld(German().c_str()), 1);
    EXPECT_EQ(Load(library), "Auf");
    CallerModule late("mfc70.dll");
    EXPECT_EQ(
        Supp_AddWld(Dictionary("more.wld", "\"Open\"\n\"other\"\n\"Help\"\n\"Hilfe\"\n").c_str()),
        1);
    EXPECT_STREQ(Supp_Translate("Help"), "Hilfe");
    EXPECT_STREQ(Supp_Translate("Open"), "Auf");
    EXPECT_EQ(Load(late), "Open");
}

TEST_F(FacadeTest, TheFirstAddedDictionaryWithoutANameIsAppWld) {
    IN_A_PROCESS_OF_ITS_OWN();
    std::string path = Dictionary("app.wld", "\"Open\"\n\"Auf\"\n");
    SetCurrentDirectoryA(path.substr(0, path.rfind('\\')).c_str());
    EXPECT_EQ(Supp_AddWld(nullptr), 1);
    // A later null goes to the file layer, which makes an empty temporary file of it.
    EXPECT_EQ(Supp_AddWld(nullptr), 1);
    SetCurrentDirectoryA("\\");
    EXPECT_STREQ(Supp_Translate("Open"), "Auf");
    EXPECT_EQ(g_Wld.m_Contexts.count, 1u);
}

TEST_F(FacadeTest, ExcludedModulesAreKnownFromTheCallOn) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    const char* const names[] = {"acadres.dll", "acltres.dll", "acopm.arx", "acad.exe", "aclt.exe"};
    std::vector<std::unique_ptr<CallerModule>> modules;
    for (const char* name : names) modules.push_back(std::make_unique<CallerModule>(name));
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    for (auto& module : modules) EXPECT_EQ(LoadThrough(library, *module), "Open");
    EXPECT_EQ(Load(library), "Auf");
}

TEST_F(FacadeTest, OfTheExcludedModulesOnlyOneMayComeLater) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    CallerModule early("acadres.dll");
    CallerModule late("acopm.arx");
    EXPECT_EQ(LoadThrough(library, early), "Auf");
    EXPECT_EQ(LoadThrough(library, late), "Open");
    // The next call of Supp_Init looks for all five again.
    EXPECT_EQ(Supp_Init(nullptr), 1);
    EXPECT_EQ(LoadThrough(library, early), "Open");
}

TEST_F(FacadeTest, AModuleOfTheHostIsInterceptedWhenNamed) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule module("other.dll");
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    EXPECT_EQ(Load(module), "Open");
    EXPECT_EQ(Supp_InitResTranslation(module), 1);
    EXPECT_EQ(Load(module), "Auf");
    EXPECT_EQ(Supp_InitResTranslation(nullptr), 0);
}

TEST_F(FacadeTest, InterceptionWithoutADictionaryFindsAnEmptyOne) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule module("other.dll");
    EXPECT_EQ(Supp_InitResTranslation(module), 1);
    EXPECT_EQ(Load(module), "Open");
    wchar_t wide[64];
    EXPECT_EQ(CALL(module, LoadStringW)(module, 1, wide, 64),
              5);  // the terminator counts, so the layer is there
    EXPECT_STREQ(wide, L"Open");
}

TEST_F(FacadeTest, TheSwitchIsOnAtTheStartAndKeepsWhatItIsSetTo) {
    IN_A_PROCESS_OF_ITS_OWN();
    EXPECT_EQ(Supp_IsTranslationEnable(), 1);
    Supp_SetTranslationEnable(0);
    EXPECT_EQ(Supp_IsTranslationEnable(), 0);
    Supp_SetTranslationEnable(-7);
    EXPECT_EQ(Supp_IsTranslationEnable(), -7);
}

TEST_F(FacadeTest, TheSwitchGovernsTheInterceptionOnly) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    Supp_SetTranslationEnable(0);
    EXPECT_STREQ(Supp_Translate("Open"), "Auf");
    EXPECT_EQ(Load(library), "Open");
    Supp_SetTranslationEnable(2);
    EXPECT_EQ(Load(library), "Auf");
}

TEST_F(FacadeTest, BeforeTheStartTextsComeBackAsTheyAre) {
    IN_A_PROCESS_OF_ITS_OWN();
    const char* text = "Open";
    EXPECT_EQ(Supp_Translate(text), text);
    EXPECT_EQ(Supp_Translate(static_cast<const char*>(nullptr)), nullptr);
    EXPECT_EQ(Supp_Translate(""), nullptr);
    char buffer[16] = "Open";
    EXPECT_EQ(Supp_Translate(buffer, sizeof buffer), 4u);
    EXPECT_STREQ(buffer, "Open");
    EXPECT_EQ(Supp_Translate(static_cast<HMENU>(nullptr)), 1);
}

TEST_F(FacadeTest, TextsBuffersMenusAndWindowsAreTranslated) {
    IN_A_PROCESS_OF_ITS_OWN();
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    EXPECT_STREQ(Supp_Translate("Open"), "Auf");
    char buffer[16] = "Open";
    EXPECT_EQ(Supp_Translate(buffer, sizeof buffer), 3u);
    EXPECT_STREQ(buffer, "Auf");
    HMENU menu = CreatePopupMenu();
    AppendMenuA(menu, MF_STRING, 5, "Close");
    EXPECT_EQ(Supp_Translate(menu), 1);
    GetMenuStringA(menu, 0, buffer, sizeof buffer, MF_BYPOSITION);
    EXPECT_STREQ(buffer, "Zu");
    DestroyMenu(menu);
    HWND window =
        CreateWindowA("STATIC", "Open", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(Supp_Translate(window), 1);
    GetWindowTextA(window, buffer, sizeof buffer);
    EXPECT_STREQ(buffer, "Auf");
    DestroyWindow(window);
}

TEST_F(FacadeTest, ChildrenOfAWindowGetTextsAndTheDialogFont) {
    IN_A_PROCESS_OF_ITS_OWN();
    ASSERT_EQ(Supp_Init(German().c_str()), 1);
    HWND window =
        CreateWindowA("STATIC", "?", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    HWND child =
        CreateWindowA("BUTTON", "Close", WS_CHILD, 0, 0, 5, 5, window, nullptr, nullptr, nullptr);
    EXPECT_EQ(Supp_Translate(window), 1);
    char text[16] = "";
    GetWindowTextA(child, text, sizeof text);
    EXPECT_STREQ(text, "Zu");
    EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageA(child, WM_GETFONT, 0, 0)), Supp_GetFont());
    DestroyWindow(window);
}

TEST_F(FacadeTest, AFailedStartMayBeRepeated) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    EXPECT_EQ(Supp_AddWld(directory.PathOf("missing.wld").c_str()), 0);
    EXPECT_EQ(g_Wld.m_bInit, 0);
    EXPECT_EQ(Supp_Init(German().c_str()), 1);
    EXPECT_EQ(Load(library), "Auf");
    EXPECT_EQ(Supp_AddWld(directory.PathOf("missing.wld").c_str()), 0);
    EXPECT_EQ(Load(library), "Auf");
}

TEST_F(FacadeTest, StartingAndAddingSurviveEveryFailingAllocation) {
    IN_A_PROCESS_OF_ITS_OWN();
    CallerModule library("mfc42.dll");
    std::string first = German(), second = Dictionary("more.wld", "\"Help\"\n\"Hilfe\"\n");
    struct Fresh {
        Fresh() {
            _DeInitResTranslation(GetModuleHandleA("mfc42.dll"));
            g_Wld.m_Contexts.RemoveAll();
            g_Wld.m_Contexts.destroyed = 0;
            g_Wld.m_bInit = 0;
        }
        ~Fresh() { g_Wld.m_Contexts.RemoveAll(); }
    };
    auto make = [] { return std::make_unique<Fresh>(); };
    auto start = [&](auto&) {
        Supp_Init(first.c_str());
        Supp_AddWld(second.c_str());
    };
    auto isUsable = [&](auto&) {
        EXPECT_EQ(Supp_Init(first.c_str()), 1);
        EXPECT_EQ(Supp_AddWld(second.c_str()), 1);
        EXPECT_EQ(Load(library), "Auf");
        EXPECT_STREQ(Supp_Translate("Help"), "Hilfe");
    };
    // A geometry file that cannot be opened for want of memory counts as missing.
    EXPECT_GT(FailEachAllocation(make, start, isUsable, true), 15u);
}

TEST_F(FacadeTest, TheFontIsTheDictionarysBeforeAndAfterTheStart) {
    IN_A_PROCESS_OF_ITS_OWN();
    HFONT first = Supp_GetFont();
    LOGFONTA font = {};
    ASSERT_EQ(GetObjectA(first, sizeof font, &font), int(sizeof font));
    EXPECT_EQ(first, g_Wld.m_hFont);
    auto path = Dictionary("font.wld",
                           "\"DialogFontName\"\n\"Tahoma\"\n\"DialogFontScript\"\n\"0\"\n"
                           "\"DialogFontSize\"\n\"12\"\n");
    ASSERT_EQ(Supp_Init(path.c_str()), 1);
    EXPECT_EQ(Supp_GetFont(), g_Wld.m_hFont);
    ASSERT_EQ(GetObjectA(Supp_GetFont(), sizeof font, &font), int(sizeof font));
    EXPECT_STREQ(font.lfFaceName, "Tahoma");
    EXPECT_EQ(Supp_GetFontHeigth(), 0);
}

TEST_F(FacadeTest, EachPatchedModuleIsToldToADebugger) {
    if (!GetEnvironmentVariableA(kOwnProcessVariable, nullptr, 0)) {
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, sizeof program);
        SetEnvironmentVariableA(kOwnProcessVariable, "1");
        DebuggedRun run =
            RunDebugged(std::string("\"") + program +
                        "\" --gtest_filter=FacadeTest.EachPatchedModuleIsToldToADebugger");
        SetEnvironmentVariableA(kOwnProcessVariable, nullptr);
        ASSERT_TRUE(run.started);
        EXPECT_NE(run.output.find("-----wld init: " + ModuleFolder() + "other.dll\n"),
                  std::string::npos)
            << run.output;
        return;
    }
    CallerModule module("other.dll");
    _InitResTranslation(module);
}

TEST_F(FacadeTest, PlacingDialogsAndSettingTheirFontDoesNothing) {
    HWND parent = CreateWindowA("STATIC", "", WS_POPUP, 100, 100, 300, 300, nullptr, nullptr,
                                nullptr, nullptr);
    HWND dialog =
        CreateWindowA("STATIC", "", WS_POPUP, 10, 20, 30, 40, parent, nullptr, nullptr, nullptr);
    ASSERT_NE(dialog, nullptr);
    RECT before, after;
    GetWindowRect(dialog, &before);
    for (unsigned flags = 0; flags < 32; ++flags) Supp_SetDialogPos(dialog, parent, flags);
    Supp_SetDialogPos(dialog, nullptr, 1);
    Supp_SetDialogPos(nullptr, nullptr, 0xFFFFFFFF);
    GetWindowRect(dialog, &after);
    EXPECT_TRUE(EqualRect(&before, &after));
    LRESULT font = SendMessageA(dialog, WM_GETFONT, 0, 0);
    Supp_SetDialogFont(dialog);
    Supp_SetDialogFont(nullptr);
    EXPECT_EQ(SendMessageA(dialog, WM_GETFONT, 0, 0), font);
    DestroyWindow(parent);
}

namespace {

constexpr DWORD kReadThroughNull = 77;

// Ends the process with that code when it read the marker of a record at the address null.
LONG WINAPI TellNullRead(EXCEPTION_POINTERS* failure) {
    const EXCEPTION_RECORD& record = *failure->ExceptionRecord;
    bool isNullRead =
        record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.ExceptionInformation[1] == 16;
    TerminateProcess(GetCurrentProcess(), isNullRead ? kReadThroughNull : 1);
    return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

TEST_F(FacadeTest, FreeingANullResourceFaultsInsteadOfReturning) {
    if (!IsOwnProcess(kReadThroughNull)) return;
    CallerModule module("other.dll");
    _InitResTranslation(module);
    SetUnhandledExceptionFilter(TellNullRead);
    CALL(module, FreeResource)(nullptr);
}
