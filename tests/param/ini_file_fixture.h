// An ini file of one test's own, seen as a tree, as lines and through the platform's calls.
#ifndef QXCORE_TESTS_PARAM_INI_FILE_FIXTURE_H
#define QXCORE_TESTS_PARAM_INI_FILE_FIXTURE_H

#include "param/small_stack.h"
#include "param/tree_text.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>

inline std::string ContentOfFile(const std::string& path) {
    std::string content;
    FILE* file = fopen(path.c_str(), "rb");
    if (!file) return "(no file)";
    for (char part[4096]; size_t size = fread(part, 1, sizeof part, file);)
        content.append(part, size);
    fclose(file);
    return content;
}

class IniFileTest : public testing::Test {
protected:
    ScratchDirectory directory;
    std::string file = directory.PathOf("settings.ini");

    ParamPtr Root() const { return ParamPtr(new_IParamIniFile(file.c_str())); }
    void Write(const std::string& text) const {
        // The platform keeps what it has read until the file's time is another one.
        WritePrivateProfileStringA(nullptr, nullptr, nullptr, file.c_str());
        DeleteFileA(file.c_str());
        directory.Write("settings.ini", text);
    }
    std::string Content() const { return ContentOfFile(file); }
    // The lines that are not empty, with "|" between them: rewriting drops or makes empty ones.
    std::string Lines() const {
        std::string lines, content = Content();
        for (size_t at = 0; at < content.size();) {
            size_t end = content.find("\r\n", at);
            if (end == std::string::npos) end = content.size();
            if (end > at) lines += (lines.empty() ? "" : "|") + content.substr(at, end - at);
            at = end + 2;
        }
        return lines;
    }
    std::string Raw(const char* section, const char* key) const {
        char text[256];
        GetPrivateProfileStringA(section, key, "", text, sizeof text, file.c_str());
        return text;
    }
};

#endif
