// The real world as input: every dialog, menu and string table, in every language, of the modules in the system's
// folder goes through the layer, and each result is checked against the original by a parser of the tests' own.
#include "translate/caller.h"
#include "translate/pseudo_dictionary.h"
#include "translate/template_model.h"

#include <algorithm>
#include <cstdio>
#include <set>

namespace {

constexpr uint16_t kButton = 0x0080, kStatic = 0x0082;

#if defined(QXCORE_TESTS_FEW_BLOCKS)
// The guard-page heap takes pages for each block, so that only one language fits.
constexpr bool kEnglishOnly = true;
#else
constexpr bool kEnglishOnly = false;
#endif
constexpr int kLeast = kEnglishOnly ? 100 : 1000;

struct Resource {
    HMODULE module;
    std::string file;
    std::string name;  // empty for a number
    uint16_t id = 0;
    uint16_t type = 0;
    WORD language = 0;
    const uint8_t* data = nullptr;
    DWORD size = 0;

    const char* Name() const { return name.empty() ? MAKEINTRESOURCEA(id) : name.c_str(); }
    const char* Type() const { return MAKEINTRESOURCEA(type); }
    std::string Text() const {
        return file + " type " + std::to_string(type) + " " + (name.empty() ? std::to_string(id) : name) +
               " language " + std::to_string(language);
    }
};

BOOL CALLBACK TakeLanguage(HMODULE module, const char* type, const char* name, WORD language, LONG_PTR state) {
    if (kEnglishOnly && PRIMARYLANGID(language) != LANG_ENGLISH) return TRUE;
    auto& all = *reinterpret_cast<std::vector<Resource>*>(state);
    Resource r = {};
    r.module = module;
    r.type = static_cast<uint16_t>(reinterpret_cast<uintptr_t>(type));
    if (IS_INTRESOURCE(name)) {
        r.id = static_cast<uint16_t>(reinterpret_cast<uintptr_t>(name));
    } else {
        r.name = name;
    }
    r.language = language;
    HRSRC found = FindResourceExA(module, type, name, language);
    r.data = static_cast<const uint8_t*>(LockResource(LoadResource(module, found)));
    r.size = SizeofResource(module, found);
    if (r.data) all.push_back(std::move(r));
    return TRUE;
}

BOOL CALLBACK TakeName(HMODULE module, const char* type, char* name, LONG_PTR state) {
    EnumResourceLanguagesA(module, type, name, TakeLanguage, state);
    return TRUE;
}

// All modules of the system's folder, mapped as data for the whole run.
class SystemResources {
public:
    SystemResources() {
        char folder[MAX_PATH];
        GetSystemDirectoryA(folder, MAX_PATH);
        WIN32_FIND_DATAA file;
        HANDLE search = FindFirstFileA((std::string(folder) + "\\*").c_str(), &file);
        do {
            if (!(file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) Take(std::string(folder) + "\\" + file.cFileName);
        } while (FindNextFileA(search, &file));
        FindClose(search);
    }
    std::vector<Resource> all;
    int modules = 0;

private:
    void Take(const std::string& path) {
        HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        if (!module) return;
        size_t before = all.size();
        for (int type : {4, 5, 6}) {
            EnumResourceNamesA(module, MAKEINTRESOURCEA(type), TakeName, reinterpret_cast<LONG_PTR>(&all));
        }
        for (size_t i = before; i < all.size(); ++i) all[i].file = path.substr(path.rfind('\\') + 1);
        modules += all.size() > before;
    }
};

bool IsWide(const std::wstring& text) {
    return std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0xFF; });
}

std::string LowBytes(const std::wstring& text) {
    return std::string(text.begin(), text.end());
}

bool IsTranslated(const ControlModel& c) {
    return c.windowClass.number && (*c.windowClass.number == kButton || *c.windowClass.number == kStatic) &&
           !c.title.number;
}

// The entries of a string table block, empty ones included.
std::vector<std::wstring> Entries(const uint8_t* data, size_t size) {
    std::vector<std::wstring> entries;
    auto words = reinterpret_cast<const wchar_t*>(data);
    for (size_t at = 0, count = size / 2; at < count; at += words[at] + 1) {
        size_t length = std::min<size_t>(words[at], count - at - 1);
        entries.emplace_back(words + at + 1, length);
    }
    return entries;
}

// An entry as the dictionary sees it; nothing when it stays as it is.
std::optional<std::string> NarrowEntry(const std::wstring& entry) {
    auto length = static_cast<int>(entry.size());
    if (length == 0 || length > 1024) return std::nullopt;
    std::string narrow(length, 0);
    int bytes = WideCharToMultiByte(CP_ACP, 0, entry.data(), length, narrow.data(), length, nullptr, nullptr);
    narrow = narrow.substr(0, bytes).c_str();
    return narrow.empty() ? std::nullopt : std::optional(narrow);
}

struct Menu {
    HMENU handle;
    ~Menu() { DestroyMenu(handle); }
};

std::string MenuText(HMENU menu, int position) {
    char text[256] = "";
    int length = GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
    return std::string(text, std::min<size_t>(length, strnlen(text, sizeof text - 1)));
}

template <class Visit>
void ForEachItem(HMENU menu, Visit visit) {
    for (int i = 0, n = GetMenuItemCount(menu); i < n; ++i) {
        visit(menu, i);
        if (HMENU sub = GetSubMenu(menu, i)) ForEachItem(sub, visit);
    }
}

class WineModulesTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        resources = new SystemResources;
        dictionary = new PseudoDictionary;
        caller = new CallerModule;
        _InitResTranslation(*caller);
        for (const Resource& r : resources->all) Teach(r);
        printf("%d modules, %u resources, %u texts\n", resources->modules, unsigned(resources->all.size()),
               unsigned(dictionary->Size()));
        strcpy(g_Wld.m_szFontName, "Pseudo Font");
        g_Wld.m_nFontSize = 9;
        g_Wld.m_nFontScript = RUSSIAN_CHARSET;
        g_Wld.m_bDialogFont = 1;
    }
    static void TearDownTestSuite() {
        delete caller;
        delete dictionary;
        delete resources;
    }

    static void Teach(const Resource& r) {
        if (r.type == 5) TeachDialog(r);
        if (r.type == 6) {
            for (const auto& entry : Entries(r.data, r.size)) dictionary->Add(NarrowEntry(entry).value_or(""));
        }
        if (r.type == 4) {
            Menu menu{LoadMenuIndirectA(r.data)};
            ForEachItem(menu.handle, [](HMENU m, int i) { dictionary->Add(MenuText(m, i)); });
        }
    }
    static void TeachDialog(const Resource& r) {
        size_t left;
        auto dialog = ParseTemplate(r.data, r.size, &left);
        if (!dialog) return;
        if (!IsWide(dialog->caption)) dictionary->Add(LowBytes(dialog->caption));
        for (const ControlModel& c : dialog->controls) {
            if (IsTranslated(c) && !IsWide(c.title.text)) dictionary->Add(LowBytes(c.title.text));
        }
    }

    // What the layer must make of an original.
    static std::wstring Expected(const std::wstring& text) {
        return IsWide(text) ? text : Wide(dictionary->Translate(LowBytes(text)));
    }
    static DialogModel Expected(DialogModel dialog) {
        dialog.caption = Expected(dialog.caption);
        if (dialog.font) {
            dialog.font->size = 9;
            if (dialog.extended) dialog.font->weight = 9, dialog.font->italicAndCharset = RUSSIAN_CHARSET << 8;
            dialog.font->face = L"Pseudo Font";
        }
        for (ControlModel& c : dialog.controls) {
            if (IsTranslated(c)) c.title.text = Expected(c.title.text);
        }
        return dialog;
    }
    static std::wstring ExpectedEntry(const std::wstring& entry) {
        auto narrow = NarrowEntry(entry);
        return narrow ? Wide(dictionary->Translate(*narrow)) : entry;
    }

    // The block that a patched module gets, through its own calls.
    static std::pair<const uint8_t*, DWORD> LoadThroughLayer(const Resource& r) {
        HRSRC found = CALL(*caller, FindResourceExA)(r.module, r.Type(), r.Name(), r.language);
        HGLOBAL block = CALL(*caller, LoadResource)(r.module, found);
        return {static_cast<const uint8_t*>(CALL(*caller, LockResource)(block)),
                CALL(*caller, SizeofResource)(r.module, found)};
    }

    static inline SystemResources* resources = nullptr;
    static inline PseudoDictionary* dictionary = nullptr;
    static inline CallerModule* caller = nullptr;
};

}  // namespace

TEST_F(WineModulesTest, EveryDialogIsTranslatedFieldByField) {
    int dialogs = 0, controls = 0, extended = 0;
    for (const Resource& r : resources->all) {
        if (r.type != 5) continue;
        size_t left = 0;
        auto original = ParseTemplate(r.data, r.size, &left);
        ASSERT_TRUE(original) << r.Text();
        EXPECT_LT(left, 4u) << r.Text();
        ASSERT_EQ(original->controls.size(), original->count) << r.Text();
        auto [data, size] = LoadThroughLayer(r);
        ASSERT_NE(data, nullptr) << r.Text();
        EXPECT_EQ(ParseTemplate(data, size), Expected(*original)) << r.Text();
        ++dialogs;
        extended += original->extended;
        controls += original->count;
    }
    printf("checked %d dialogs, %d of them extended, with %d controls\n", dialogs, extended, controls);
    EXPECT_GT(dialogs, kLeast);
}

TEST_F(WineModulesTest, EveryStringTableIsTranslatedEntryByEntry) {
    int tables = 0, entries = 0;
    for (const Resource& r : resources->all) {
        if (r.type != 6) continue;
        std::vector<std::wstring> expected;
        bool any = false;
        for (const auto& entry : Entries(r.data, r.size)) {
            expected.push_back(ExpectedEntry(entry));
            any = any || !entry.empty();
        }
        auto [data, size] = LoadThroughLayer(r);
        ASSERT_NE(data, nullptr) << r.Text();
        EXPECT_EQ(data == r.data, !any) << r.Text();
        EXPECT_EQ(Entries(data, size), expected) << r.Text();
        ++tables;
        entries +=
            static_cast<int>(std::count_if(expected.begin(), expected.end(), [](auto& e) { return !e.empty(); }));
    }
    printf("checked %d string tables with %d texts\n", tables, entries);
    EXPECT_GT(tables, kLeast);
}

namespace {

struct Item {
    std::string text;
    UINT state;
    UINT id;
    bool hasSubMenu;
    bool isReached;  // no untitled popup stands above it
};

void TakeItems(HMENU menu, bool isReached, std::vector<Item>& items) {
    for (int i = 0, n = GetMenuItemCount(menu); i < n; ++i) {
        HMENU sub = GetSubMenu(menu, i);
        // The state of a popup holds the number of its items in the high byte.
        UINT state = GetMenuState(menu, i, MF_BYPOSITION) & 0xFF;
        items.push_back({MenuText(menu, i), state, sub ? 0 : GetMenuItemID(menu, i), sub != nullptr, isReached});
        if (sub) TakeItems(sub, isReached && !MenuText(menu, i).empty(), items);
    }
}

std::vector<Item> ItemsOf(HMENU menu) {
    std::vector<Item> items;
    TakeItems(menu, true, items);
    return items;
}

// An item after translation: what is rewritten keeps grayed and checked only.
Item Rewritten(Item item, const PseudoDictionary& dictionary) {
    if (!item.isReached || item.text.empty() || (!item.hasSubMenu && item.id == 0)) return item;
    item.text = dictionary.Translate(item.text);
    item.state = (item.state & (MF_GRAYED | MF_CHECKED)) | (item.hasSubMenu ? MF_POPUP : 0);
    return item;
}

}  // namespace

TEST_F(WineModulesTest, EveryMenuIsTranslatedItemByItem) {
    int menus = 0, items = 0;
    for (const Resource& r : resources->all) {
        if (r.type != 4) continue;
        Menu before{LoadMenuIndirectA(r.data)};
        if (!before.handle) continue;
        Menu after{CALL(*caller, LoadMenuIndirectA)(r.data)};
        auto expected = ItemsOf(before.handle);
        for (Item& item : expected) item = Rewritten(item, *dictionary);
        auto actual = ItemsOf(after.handle);
        ASSERT_EQ(actual.size(), expected.size()) << r.Text();
        for (size_t i = 0; i < actual.size(); ++i) {
            EXPECT_EQ(actual[i].text, expected[i].text) << r.Text() << " item " << i;
            EXPECT_EQ(actual[i].state, expected[i].state) << r.Text() << " item " << i;
            EXPECT_EQ(actual[i].id, expected[i].id) << r.Text() << " item " << i;
        }
        ++menus;
        items += static_cast<int>(actual.size());
    }
    printf("checked %d menus with %d items\n", menus, items);
    EXPECT_GT(menus, kLeast / 10);
}

namespace {

INT_PTR CALLBACK Silent(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

BOOL CALLBACK CountChild(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

// How many windows a dialog has, or nothing when the system refuses it. It is never shown.
std::optional<int> CreateHidden(const uint8_t* data, size_t size, HWND parent) {
    std::vector<uint8_t> copy(data, data + size);
    bool extended = copy[2] == 0xFF && copy[3] == 0xFF;
    uint32_t style;
    memcpy(&style, copy.data() + (extended ? 12 : 0), 4);
    style &= ~uint32_t(WS_VISIBLE);
    memcpy(copy.data() + (extended ? 12 : 0), &style, 4);
    HWND dialog = CreateDialogIndirectParamA(nullptr, reinterpret_cast<DLGTEMPLATE*>(copy.data()), parent, Silent, 0);
    if (!dialog) return std::nullopt;
    int windows = 1;
    EnumChildWindows(dialog, CountChild, reinterpret_cast<LPARAM>(&windows));
    DestroyWindow(dialog);
    return windows;
}

}  // namespace

TEST_F(WineModulesTest, EveryDialogThatTheSystemCreatesIsCreatedAfterTranslation) {
    // In one language each, since making windows takes its time.
    LoadLibraryA("comctl32.dll");
    LoadLibraryA("riched20.dll");
    HWND parent = CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    std::set<std::tuple<HMODULE, std::string, uint16_t>> seen;
    int created = 0, refused = 0;
    for (const Resource& r : resources->all) {
        if (r.type != 5 || !seen.emplace(r.module, r.name, r.id).second) continue;
        auto before = CreateHidden(r.data, r.size, parent);
        if (!before) {
            ++refused;
            continue;
        }
        auto [data, size] = LoadThroughLayer(r);
        EXPECT_EQ(CreateHidden(data, size, parent), before) << r.Text();
        ++created;
    }
    printf("created %d dialogs before and after; %d the system refuses in any case\n", created, refused);
    EXPECT_GT(created, kLeast / 10);
    DestroyWindow(parent);
}
