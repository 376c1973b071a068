#include "document_command.h"

#include <qxcore/exception.h>
#include <qxcore/registry.h>

#include <cstdio>
#include <cstring>

#include "document.h"

namespace {

struct DocumentCommand {
    const char* file = nullptr;
    const char* plugin = nullptr;
    const char* title = nullptr;
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

int Create(const char* file) {
    Document document;
    document.title = "Plans for the week";
    bool made = document.AddNote("note 1", "Call back on Monday") &&
                document.AddNote("note 2", "Water the plants") &&
                document.AddNote("note 3", "Send the report");
    if (!made) return Fail("nobody makes the notes of the new document", file);
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
            "usage: host --document FILE [--plugin FILE] --create | --retitle TEXT | --list\n",
            stderr);
        return 2;
    }

    // All that this program knows of plug-ins: who makes the class.
    if (command.plugin && !RegisterObject("SampleNote", command.plugin)) {
        return Fail("the plug-in cannot be found", command.plugin);
    }

    try {
        if (command.create) return Create(command.file);
        return command.title ? Retitle(command.file, command.title) : List(command.file);
    } catch (CXException& failure) {
        std::fprintf(stderr, "host: error %d with the document: %s\n", failure.GetCode(),
                     command.file);
        return 2;
    }
}
