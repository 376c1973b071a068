// A dictionary that shows on every text that it was there: made of the texts that a test finds, and
// predicted by it.
#ifndef QXCORE_TESTS_TRANSLATE_INTERCEPTION_PSEUDO_DICTIONARY_H
#define QXCORE_TESTS_TRANSLATE_INTERCEPTION_PSEUDO_DICTIONARY_H

#include <qxcore.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

// Fills the process's dictionary; what it put there goes with it. Every eighth text has no entry
// and every eighth an empty one, so that both stay as they are.
class PseudoDictionary {
public:
    PseudoDictionary() = default;
    PseudoDictionary(const PseudoDictionary&) = delete;
    PseudoDictionary& operator=(const PseudoDictionary&) = delete;
    ~PseudoDictionary() {
        g_Wld.m_Contexts.RemoveAll();
        g_Wld.m_Contexts.destroyed = 0;
    }

    void Add(const std::string& text) {
        if (text.empty() || !targets.emplace(Hash(text), "").second) return;
        unsigned kind = Hash(text) % 8;
        if (kind == 0) return;
        std::string target = kind == 1 ? "" : Target(text);
        targets[Hash(text)] = target;
        g_Wld.m_Contexts.SetAt(text.c_str(), new CContext(text.c_str(), target.c_str()));
    }
    // The text that must be seen. Entries are told apart by their hash alone, here as there.
    std::string Translate(const std::string& text) const {
        auto found = targets.find(Hash(text));
        return found == targets.end() || found->second.empty() ? text : found->second;
    }
    size_t Size() const { return targets.size(); }

private:
    static uint32_t Hash(const std::string& text) {
        uint32_t hash = 0;
        for (char c : text) hash = hash * 257 + static_cast<uint32_t>(static_cast<signed char>(c));
        return hash;
    }
    // Longer, with letters beyond ASCII, and without the backslashes that would begin an escape.
    static std::string Target(std::string text) {
        for (char& c : text) c = c == '\\' ? '/' : c;
        return "[\xE5" + text + "\xF6\xDF]";
    }
    std::map<uint32_t, std::string> targets;
};

// The system's own conversions, which the expectations rest on.
inline std::wstring Wide(const std::string& text) {
    std::wstring wide(text.size(), 0);
    auto length = static_cast<int>(text.size());
    wide.resize(MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), length));
    return wide;
}

#endif
