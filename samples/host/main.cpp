// host.exe [--dictionary FILE] [--plugin FILE] [--settings PLACE] --show    opens the window
// host.exe [--dictionary FILE] --dump    prints the texts of its live user interface
// host.exe --document FILE ...           makes, changes or lists a document; document_command.cpp
// host.exe --settings... ...             lists, copies or compares settings; settings_command.h
//
// A plug-in makes the notes of the documents that the window opens; --dump shows no window.
// Exit code 0, or 2 when the command line, the dictionary or the document cannot be read.
#include <qxcore/exception.h>
#include <qxcore/registry.h>
#include <qxcore/translation.h>

#include <cstdio>
#include <cstring>

#include "document_command.h"
#include "dump.h"
#include "settings.h"
#include "settings_command.h"
#include "settings_place.h"
#include "window.h"

namespace {

struct CommandLine {
    const char* dictionary = nullptr;
    const char* plugin = nullptr;
    const char* settings = nullptr;
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
            } else if (!std::strcmp(words[i], "--plugin") && i + 1 < count) {
                plugin = words[++i];
            } else if (!std::strcmp(words[i], "--settings") && i + 1 < count) {
                settings = words[++i];
            } else {
                return false;
            }
        }
        return show != dump && !(dump && settings);
    }
};

// The window with what it remembered, if it has a place for that.
int Show(HINSTANCE instance, const char* where) {
    Settings settings;
    if (!where) return RunWindow(instance, settings);
    try {
        std::unique_ptr<SettingsPlace> place = SettingsPlace::Open(where);
        if (place) {
            settings.Read(place->Tree());
            if (int failed = RunWindow(instance, settings)) return failed;
            settings.Write(place->Tree());
            place->Keep();
            return 0;
        }
        std::fprintf(stderr, "host: no such kind of place for settings: %s\n", where);
    } catch (CXException& failure) {
        std::fprintf(stderr, "host: error %d with the settings\n", failure.GetCode());
    }
    return 2;
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    if (__argc > 1 && !std::strcmp(__argv[1], "--document"))
        return RunDocumentCommand(__argc, __argv);
    if (IsSettingsCommand(__argc, __argv)) return RunSettingsCommand(__argc, __argv);

    CommandLine command;
    if (!command.Read(__argc, __argv)) {
        std::fputs(
            "usage: host [--dictionary FILE] [--plugin FILE] [--settings PLACE] --show | --dump\n",
            stderr);
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

    if (command.plugin && !RegisterObject("SampleNote", command.plugin)) {
        std::fprintf(stderr, "host: the plug-in cannot be found: %s\n", command.plugin);
        return 2;
    }

    return command.dump ? DumpInterface(instance) : Show(instance, command.settings);
}
