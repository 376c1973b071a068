// Ini text such as a program's settings are, the same in every run and on every platform.
#ifndef QXCORE_BENCH_INI_TEXT_H
#define QXCORE_BENCH_INI_TEXT_H

#include <string>

inline constexpr int kIniSections = 160;
inline constexpr int kIniKeys = 100;  // in each section

// Texts and numbers in turn.
inline std::string IniText() {
    std::string text;
    for (int section = 0; section < kIniSections; ++section) {
        text += "[\\section" + std::to_string(section) + "]\r\n";
        for (int key = 0; key < kIniKeys; ++key) {
            std::string n = std::to_string(section * kIniKeys + key);
            text += "key" + std::to_string(key) + (key % 2 ? "=i" + n : "=stext " + n) + "\r\n";
        }
    }
    return text;
}

#endif
