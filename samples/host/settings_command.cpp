#include "settings_command.h"

#include <qxcore/exception.h>
#include <qxcore/persist.h>
#include <qxcore/registry.h>
#include <qxcore/variant.h>

#include <cstdio>
#include <cstring>

#include "plugin/note.h"
#include "settings.h"
#include "settings_place.h"

namespace {

struct SettingsCommand {
    std::string verb;  // "remember", "list", "copy", "compare"
    std::vector<std::string> places;
    const char* plugin = nullptr;

    bool Read(int count, char** words) {
        for (int i = 1; i < count; ++i) {
            std::string word = words[i];
            if (word == "--plugin" && i + 1 < count) {
                plugin = words[++i];
            } else if (word == "--settings-copy" || word == "--settings-compare") {
                verb += word.substr(sizeof "--settings-" - 1);
            } else if (word == "--remember" || word == "--list") {
                verb += word.substr(2);
            } else if (word.compare(0, 2, "--") != 0) {
                places.push_back(word);
            } else if (word != "--settings") {
                return false;
            }
        }
        bool two = verb == "copy" || verb == "compare", one = verb == "remember" || verb == "list";
        return (one && places.size() == 1) || (two && places.size() == 2);
    }
};

int Fail(std::string const& what) {
    std::fprintf(stderr, "host: %s\n", what.c_str());
    return 2;
}

std::string ObjectText(IQXUnknown* object) {
    auto note = qx::Ask<IPersistXStream>(object);
    return note ? std::string("an object of the class ") + note->GetClassName() : "no object";
}

std::string Text(CQXVariant const& value) {
    if (value.type == QXVT_BLOB) return std::to_string(value.value.blob.size) + " bytes";
    if (value.type == QXVT_UNKNOWN) return ObjectText(value.value.unknown);
    if (value.type == QXVT_RECT) {
        const RECT& r = value.value.rect;
        return std::to_string(r.left) + "," + std::to_string(r.top) + "," +
               std::to_string(r.right) + "," + std::to_string(r.bottom);
    }
    CQXVariant text;
    QXVariantChangeType(&text, &value, QXVT_STRING);
    return text.type == QXVT_STRING ? text.value.string : "?";
}

void Print(IParam* tree, const char* child) {
    qx::Reference<IParam> node(tree->OpenSubParam(child, 0));
    if (!node) return;
    qx::Reference<CTEnum<const char*>> names(node->EnumValues());
    const char* name;
    while (names->Next(1, &name, nullptr)) {
        CQXVariant value;
        bool found = node->GetValue(name, &value) != 0;
        // An ini file marks its sections by an empty value.
        if (found && value.type != QXVT_EMPTY)
            std::printf("%s\\%s  %s\n", child, name, Text(value).c_str());
    }
}

int List(SettingsPlace& place) {
    for (const char* child : {"window", "list", "recent", "pinned"}) Print(place.Tree(), child);
    return 0;
}

int Remember(SettingsPlace& place) {
    Settings settings;
    settings.place = {40, 30, 520, 290};
    settings.Remember("C:\\lists\\office.document");
    settings.Remember("ftp://server/lists/household.document");
    IQXUnknown* object = nullptr;
    if (CreateObject("SampleNote", nullptr, qx_typeid<INote>(), &object)) {
        qx::Reference<INote> note(static_cast<INote*>(object));
        note->SetText("Pinned to the list");
        settings.note = note;
    }
    settings.Write(place.Tree());
    place.Keep();
    return 0;
}

// What is lost is known from the tree and the place, before anything is written.
int Copy(SettingsPlace& from, SettingsPlace& to) {
    for (std::string const& trouble : to.CannotHold(from.Tree()))
        std::printf("not held there: %s\n", trouble.c_str());
    std::fflush(stdout);
    Param_CopyTo(from.Tree(), to.Tree());
    to.Keep();
    return 0;
}

int Compare(SettingsPlace& a, SettingsPlace& b) {
    const char* answers[] = {"no", "yes"};
    std::printf("the second has all of the first: %s\n", answers[Param_Cmp(a.Tree(), b.Tree())]);
    std::printf("the first has all of the second: %s\n", answers[Param_Cmp(b.Tree(), a.Tree())]);
    return 0;
}

int Run(SettingsCommand const& command) {
    std::vector<std::unique_ptr<SettingsPlace>> places;
    for (std::string const& text : command.places) {
        places.push_back(SettingsPlace::Open(text));
        if (!places.back()) return Fail("no such kind of place for settings: " + text);
    }
    if (command.verb == "remember") return Remember(*places[0]);
    if (command.verb == "list") return List(*places[0]);
    return command.verb == "copy" ? Copy(*places[0], *places[1]) : Compare(*places[0], *places[1]);
}

}  // namespace

bool IsSettingsCommand(int count, char** words) {
    bool settings = false, window = false;
    for (int i = 1; i < count; ++i) {
        settings |= std::strncmp(words[i], "--settings", std::strlen("--settings")) == 0;
        window |= std::strcmp(words[i], "--show") == 0;
    }
    return settings && !window;
}

int RunSettingsCommand(int count, char** words) {
    SettingsCommand command;
    if (!command.Read(count, words)) {
        return Fail(
            "usage: host --settings PLACE [--plugin FILE] --remember | --list, or "
            "host [--plugin FILE] --settings-copy FROM TO | --settings-compare A B");
    }
    if (command.plugin && !RegisterObject("SampleNote", command.plugin))
        return Fail(std::string("the plug-in cannot be found: ") + command.plugin);
    try {
        return Run(command);
    } catch (CXException& failure) {
        return Fail("error " + std::to_string(failure.GetCode()) + " with the settings");
    }
}
