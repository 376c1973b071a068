#include "document_command.h"

#include <qxcore/exception.h>
#include <qxcore/registry.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "document.h"

namespace {

struct DocumentCommand {
    const char* file = nullptr;
    const char* plugin = nullptr;
    const char* title = nullptr;
    int notes = 3;
    bool create = false;
    bool list = false;

    bool Read(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            const char* word = words[i];
            if (!std::strcmp(word, "--create")) {
                create = true;
            } else if (!std::strcmp(word, "--list")) {
                list = true;
            } else if (++i == count) {
                return false;
            } else if (!std::strcmp(word, "--document")) {
                file = words[i];
            } else if (!std::strcmp(word, "--plugin")) {
                plugin = words[i];
            } else if (!std::strcmp(word, "--retitle")) {
                title = words[i];
            } else if (!std::strcmp(word, "--notes")) {
                notes = std::atoi(words[i]);
            } else {
                return false;
            }
        }
        return file && create + list + (title != nullptr) == 1;
    }
};

int Fail(const char* what, const char* file) {
    std::fprintf(stderr, "host: %s: %s\n", what, file);
    return 2;
}

int Create(const char* file, int notes) {
    constexpr const char* kTexts[] = {"Call back on Monday", "Water the plants", "Send the report"};
    Document document;
    document.title = "Plans for the week";
    for (int i = 0; i < notes; ++i) {
        if (!document.AddNote(("note " + std::to_string(i + 1)).c_str(), kTexts[i % 3]))
            return Fail("nobody makes the notes of the new document", file);
    }
    document.SaveAs(file);
    return 0;
}

// The document is read and written as a whole, so whatever this program does not know passes
// through it.
int Retitle(const char* file, const char* title) {
    Document document;
    document.Load(file);
    document.title = title;
    document.Save(file);
    return 0;
}

int List(const char* file) {
    Document document;
    document.Load(file);
    document.Print();
    return 0;
}

}  // namespace

int RunDocumentCommand(int count, char** words) {
    DocumentCommand command;
    if (!command.Read(count, words)) {
        std::fputs(
            "usage: host --document FILE [--plugin FILE] --create [--notes COUNT] | --retitle TEXT "
            "| "
            "--list\n",
            stderr);
        return 2;
    }

    // All that this program knows of plug-ins: who makes the class.
    if (command.plugin && !RegisterObject("SampleNote", command.plugin)) {
        return Fail("the plug-in cannot be found", command.plugin);
    }

    try {
        if (command.create) return Create(command.file, command.notes);
        return command.title ? Retitle(command.file, command.title) : List(command.file);
    } catch (CXException& failure) {
        std::fprintf(stderr, "host: error %d with the document: %s\n", failure.GetCode(),
                     command.file);
        return 2;
    }
}
