#include "tools/qxtranslate/model/resource_texts.h"
#include "tools/qxtranslate/model/unicode.h"

#include <algorithm>

namespace qx {

namespace {

constexpr uint16_t kOrdinal = 0xFFFF;
constexpr uint32_t kSetFont = 0x40;
constexpr unsigned kUnitsPerCharacter = 4;
constexpr unsigned kUnitsPerLine = 8;

// A field that is a number or a text.
struct Field {
    bool isNumber = false;
    uint16_t number = 0;
    std::u16string text;
};

Field ReadField(ByteReader& reader) {
    Field field;
    if (reader.PeekWord() != kOrdinal) {
        field.text = reader.Text();
        return field;
    }
    reader.Word();
    field.isNumber = true;
    field.number = reader.Word();
    return field;
}

struct DialogHead {
    bool isExtended = false;
    uint32_t style = 0;
    unsigned controls = 0;
    int16_t width = 0, height = 0;
    std::u16string caption;
};

DialogHead ReadHead(ByteReader& reader, Bytes dialog) {
    DialogHead head;
    head.isExtended = WordAt(dialog, 2, reader.What()) == 0xFFFF;
    if (head.isExtended) {
        reader.Take(12);
        head.style = reader.Long();
    } else {
        head.style = reader.Long();
        reader.Long();
    }
    head.controls = reader.Word();
    reader.Take(4);  // where it stands
    head.width = static_cast<int16_t>(reader.Word());
    head.height = static_cast<int16_t>(reader.Word());
    ReadField(reader);  // the menu
    ReadField(reader);  // the class
    head.caption = reader.Text();
    if (head.style & kSetFont) {
        reader.Take(head.isExtended ? 6 : 2);
        reader.Text();
    }
    return head;
}

struct Control {
    uint32_t id = 0;
    int16_t width = 0, height = 0;
    Field windowClass;
    Field title;
};

Control ReadControl(ByteReader& reader, bool isExtended) {
    Control control;
    reader.AlignTo4();
    reader.Take(isExtended ? 16 : 12);
    control.width = static_cast<int16_t>(reader.Word());
    control.height = static_cast<int16_t>(reader.Word());
    control.id = isExtended ? reader.Long() : reader.Word();
    control.windowClass = ReadField(reader);
    control.title = ReadField(reader);
    reader.Take(reader.Word());
    return control;
}

constexpr struct {
    uint16_t atom;
    const char* name;
    bool isTranslated;
} kAtoms[] = {
    {0x80, "button", true},    {0x81, "edit field", false}, {0x82, "label", true},
    {0x83, "list box", false}, {0x84, "scroll bar", false}, {0x85, "combo box", false},
};

std::string WhyOutOfReach(const std::u16string& text) {
    bool isWide = std::any_of(text.begin(), text.end(), [](char16_t c) { return c > 0xFF; });
    return isWide ? "a dialog text with characters beyond the western ones is not looked up" : "";
}

// The class in words, and why its texts are out of reach.
void DescribeClass(const Field& windowClass, ResourceText& text) {
    if (!windowClass.isNumber) {
        text.what = "control of the class " + ToUtf8(windowClass.text);
        text.outOfReach = "only labels and buttons of dialogs are translated, and this is a " +
                          ToUtf8(windowClass.text);
        return;
    }
    auto row = std::find_if(std::begin(kAtoms), std::end(kAtoms),
                            [&](auto& a) { return a.atom == windowClass.number; });
    text.what = row == std::end(kAtoms) ? "control" : row->name;
    if (row == std::end(kAtoms) || !row->isTranslated)
        text.outOfReach = "only labels and buttons of dialogs are translated";
}

std::string Room(int width, int height) {
    unsigned characters = static_cast<unsigned>(std::max(width, 0)) / kUnitsPerCharacter;
    unsigned lines = std::max(1u, static_cast<unsigned>(std::max(height, 0)) / kUnitsPerLine);
    std::string room = "about " + std::to_string(characters) + " characters";
    return lines > 1 ? room + " in each of " + std::to_string(lines) + " lines" : room;
}

}  // namespace

std::vector<ResourceText> ReadDialog(Bytes dialog) {
    constexpr unsigned kSeenControls = 256;  // of an extended template the count's low byte counts
    ByteReader reader(dialog, "a dialog");
    DialogHead head = ReadHead(reader, dialog);
    std::vector<ResourceText> texts;
    if (!head.caption.empty()) {
        texts.push_back({"caption", head.caption, 0, "dialog caption", Room(head.width, 0),
                         WhyOutOfReach(head.caption)});
    }
    unsigned seen = head.isExtended ? head.controls % kSeenControls : head.controls;
    for (unsigned i = 0; i < head.controls; ++i) {
        Control control = ReadControl(reader, head.isExtended);
        if (control.title.isNumber || control.title.text.empty()) continue;
        ResourceText text = {std::to_string(i),
                             control.title.text,
                             control.id,
                             "",
                             Room(control.width, control.height),
                             ""};
        DescribeClass(control.windowClass, text);
        if (text.outOfReach.empty()) text.outOfReach = WhyOutOfReach(text.text);
        if (i >= seen) text.outOfReach = "the dialog has too many controls and is cut before it";
        texts.push_back(text);
    }
    return texts;
}

}  // namespace qx
