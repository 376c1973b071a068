// Texts such as a user interface has, the same in every run and on every platform.
#ifndef QXCORE_BENCH_UI_TEXTS_H
#define QXCORE_BENCH_UI_TEXTS_H

#include <random>
#include <string>
#include <vector>

// About 30 characters each, no two alike.
inline std::vector<std::string> UiTexts(unsigned count) {
    static const char* const kWords[] = {
        "Open",   "the",    "file",   "Save",  "all",    "drawing", "in",      "layer",
        "Select", "colour", "of",     "line",  "Cannot", "find",    "printer", "page",
        "window", "print",  "object", "style", "Edit",   "text",    "at",      "point",
        "Insert", "block",  "size",   "new",   "Close",  "view",    "to",      "scale"};
    std::mt19937 random(1);
    std::vector<std::string> texts;
    texts.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        std::string text;
        while (text.size() < 24) text += std::string(kWords[random() % std::size(kWords)]) + ' ';
        for (int letter = 0; letter < 5; ++letter) text += static_cast<char>('a' + random() % 26);
        texts.push_back(text);
    }
    return texts;
}

inline std::string UiTranslation(const std::string& text) {
    return "[" + text + "]";
}

#endif
