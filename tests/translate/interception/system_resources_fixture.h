// The resources of the system's modules, seen through the layer with a dictionary made of their own
// texts.
#ifndef QXCORE_TESTS_TRANSLATE_INTERCEPTION_SYSTEM_RESOURCES_FIXTURE_H
#define QXCORE_TESTS_TRANSLATE_INTERCEPTION_SYSTEM_RESOURCES_FIXTURE_H

#include "support/build_kind.h"
#include "translate/interception/caller.h"
#include "translate/interception/pseudo_dictionary.h"
#include "translate/interception/system_resources.h"
#include "translate/resources/template_model.h"

#include <algorithm>
#include <map>

inline bool IsWide(const std::wstring& text) {
    return std::any_of(text.begin(), text.end(), [](wchar_t c) { return c > 0xFF; });
}

inline std::string LowBytes(const std::wstring& text) {
    return std::string(text.begin(), text.end());
}

inline bool IsTranslated(const ControlModel& c) {
    constexpr uint16_t kButton = 0x0080, kStatic = 0x0082;
    return c.windowClass.number &&
           (*c.windowClass.number == kButton || *c.windowClass.number == kStatic) &&
           !c.title.number;
}

// The entries of a string table block, empty ones included.
inline std::vector<std::wstring> Entries(const uint8_t* data, size_t size) {
    std::vector<std::wstring> entries;
    auto words = reinterpret_cast<const wchar_t*>(data);
    for (size_t at = 0, count = size / 2; at < count; at += words[at] + 1) {
        size_t length = std::min<size_t>(words[at], count - at - 1);
        entries.emplace_back(words + at + 1, length);
    }
    return entries;
}

// An entry as the dictionary sees it; nothing when it stays as it is.
inline std::optional<std::string> NarrowEntry(const std::wstring& entry) {
    auto length = static_cast<int>(entry.size());
    if (length == 0 || length > 1024) return std::nullopt;
    std::string narrow(length, 0);
    int bytes = WideCharToMultiByte(CP_ACP, 0, entry.data(), length, narrow.data(), length, nullptr,
                                    nullptr);
    narrow = narrow.substr(0, bytes).c_str();
    return narrow.empty() ? std::nullopt : std::optional(narrow);
}

struct Menu {
    HMENU handle;
    ~Menu() { DestroyMenu(handle); }
};

inline std::string MenuText(HMENU menu, int position) {
    char text[256] = "";
    int length = GetMenuStringA(menu, position, text, sizeof text, MF_BYPOSITION);
    return std::string(text, std::min<size_t>(length, strnlen(text, sizeof text - 1)));
}

class SystemResourcesTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        resources = new SystemResources;
        caller = new CallerModule;
        _InitResTranslation(*caller);
        for (Resource& r : resources->all) groups[{r.type, GroupOf(r.language)}].push_back(&r);
        strcpy(g_Wld.m_szFontName, "Pseudo Font");
        g_Wld.m_nFontSize = 9;
        g_Wld.m_nFontScript = RUSSIAN_CHARSET;
        g_Wld.m_bDialogFont = 1;
        printf("%d modules of the system's folder\n", resources->modules);
    }
    static void TearDownTestSuite() {
        Forget();
        groups.clear();
        delete caller;
        delete resources;
    }

    // Calls check(resource) for all resources of a type, while the dictionary holds their texts.
    template <class Check>
    static void ForEach(ResourceType type, Check check) {
        for (auto& [key, group] : groups) {
            if (key.first != type) continue;
            Teach(group);
            for (const Resource* r : group) ASSERT_NO_FATAL_FAILURE(check(*r));
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
            if (dialog.extended)
                dialog.font->weight = 9, dialog.font->italicAndCharset = RUSSIAN_CHARSET << 8;
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

private:
    using Group = std::vector<const Resource*>;

    // The guard-page heap takes pages for each block, so that a dictionary holds the texts of one
    // language only.
    static WORD GroupOf(WORD language) { return kHasGuardPages ? PRIMARYLANGID(language) : 0; }

    static void Teach(const Group& group) {
        if (taught == &group) return;
        Forget();
        dictionary = new PseudoDictionary;
        for (const Resource* r : group) TeachTexts(*r);
        taught = &group;
    }
    static void Forget() {
        delete dictionary;
        dictionary = nullptr;
        taught = nullptr;
    }
    static void TeachTexts(const Resource& r) {
        switch (r.type) {
            case kDialogs:
                return TeachDialog(r);
            case kMenus:
                return TeachMenu(Menu{LoadMenuIndirectA(r.data)}.handle);
            default:
                for (const auto& entry : Entries(r.data, r.size))
                    dictionary->Add(NarrowEntry(entry).value_or(""));
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
    static void TeachMenu(HMENU menu) {
        for (int i = 0, n = GetMenuItemCount(menu); i < n; ++i) {
            dictionary->Add(MenuText(menu, i));
            if (HMENU sub = GetSubMenu(menu, i)) TeachMenu(sub);
        }
    }

    // By type and group of languages.
    static inline std::map<std::pair<uint16_t, WORD>, Group> groups;
    static inline const Group* taught = nullptr;
};

#endif
