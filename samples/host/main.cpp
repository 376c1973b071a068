// host.exe [--dictionary FILE] --show    opens the program's window
// host.exe [--dictionary FILE] --dump    prints the texts of its live user interface and shows
// nothing host.exe --document FILE ...           makes, changes or lists a document, as
// document_command.cpp tells
//
// Exit code 0, or 2 when the command line, the dictionary or the document cannot be read.
#include <qxcore/translation.h>

#include <cstdio>
#include <cstring>

#include "document_command.h"
#include "dump.h"
#include "window.h"

namespace {

struct CommandLine {
    const char* dictionary = nullptr;
    bool show = false;
    bool dump = false;

    bool Read(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            if (!std::strcmp(words[i], "--show")) {
                show = true;
            } else if (!std::strcmp(words[i], "--dump")) {
                dump = true;
            } else if (!std::strcmp(words[i], "--dictionary") && i + 1 < count) {
                dictionary = words[++i];
            } else {
                return false;
            }
        }
        return show != dump;
    }
};

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    if (__argc > 1 && !std::strcmp(__argv[1], "--document"))
        return RunDocumentCommand(__argc, __argv);

    CommandLine command;
    if (!command.Read(__argc, __argv)) {
        std::fputs("usage: host [--dictionary FILE] --show | --dump\n", stderr);
        return 2;
    }

    // All that this program knows of translation.
    if (command.dictionary) {
        if (!Supp_Init(command.dictionary)) {
            std::fprintf(stderr, "host: the dictionary cannot be read: %s\n", command.dictionary);
            return 2;
        }
        Supp_InitResTranslation(instance);
    }

    return command.dump ? DumpInterface(instance) : RunWindow(instance);
}
