#include "tools/qxtranslate/model/places/resource_texts.h"
#include "tools/qxtranslate/model/text/unicode.h"
#include "translate/resources/template_walk.h"

#include <algorithm>

namespace qx {

namespace {

constexpr uint16_t kOrdinal = 0xFFFF;
constexpr unsigned kUnitsPerCharacter = 4;
constexpr unsigned kUnitsPerLine = 8;

bool IsNumber(TemplatePart field) {
    return WordAt(field.data) == kOrdinal;
}

// A wide text without its terminator.
std::u16string TextOf(TemplatePart part) {
    std::u16string text;
    for (size_t at = 0; at + 2 < part.size; at += 2)
        text += static_cast<char16_t>(WordAt(part.data + at));
    return text;
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
void DescribeClass(TemplatePart windowClass, ResourceText& text) {
    if (!IsNumber(windowClass)) {
        std::string name = ToUtf8(TextOf(windowClass));
        text.what = "control of the class " + name;
        text.outOfReach =
            "only labels and buttons of dialogs are translated, and this is a " + name;
        return;
    }
    uint16_t atom = WordAt(windowClass.data + 2);
    auto row =
        std::find_if(std::begin(kAtoms), std::end(kAtoms), [&](auto& a) { return a.atom == atom; });
    text.what = row == std::end(kAtoms) ? "control" : row->name;
    if (row == std::end(kAtoms) || !row->isTranslated)
        text.outOfReach = "only labels and buttons of dialogs are translated";
}

std::string Room(int16_t width, int16_t height) {
    unsigned characters = static_cast<unsigned>(std::max<int>(width, 0)) / kUnitsPerCharacter;
    unsigned lines = std::max(1u, static_cast<unsigned>(std::max<int>(height, 0)) / kUnitsPerLine);
    std::string room = "about " + std::to_string(characters) + " characters";
    return lines > 1 ? room + " in each of " + std::to_string(lines) + " lines" : room;
}

int16_t CoordinateAt(const uint8_t* at) {
    return static_cast<int16_t>(WordAt(at));
}

class TextCollector final : public TemplateVisitor {
public:
    // The program sees the first `seen` controls.
    TextCollector(const TemplateForm& form, unsigned seen) : m_form(form), m_seen(seen) {}

    void Head(TemplatePart part) override { m_width = CoordinateAt(part.data + m_form.extent); }
    void Caption(TemplatePart part) override {
        std::u16string caption = TextOf(part);
        if (caption.empty()) return;
        texts.push_back(
            {"caption", caption, 0, "dialog caption", Room(m_width, 0), WhyOutOfReach(caption)});
    }
    void Font(TemplatePart, TemplatePart) override {}
    void Control(unsigned index, const TemplateControl& control) override {
        if (IsNumber(control.title) || TextOf(control.title).empty()) return;
        const uint8_t* extent = control.head.data + m_form.controlRect + 4;
        ResourceText text = {std::to_string(index),
                             TextOf(control.title),
                             IdOf(control.head),
                             "",
                             Room(CoordinateAt(extent), CoordinateAt(extent + 2)),
                             ""};
        DescribeClass(control.windowClass, text);
        if (text.outOfReach.empty()) text.outOfReach = WhyOutOfReach(text.text);
        if (index >= m_seen)
            text.outOfReach = "the dialog has too many controls and is cut before it";
        texts.push_back(text);
    }

    std::vector<ResourceText> texts;

private:
    // The last field of the head: a word, of an extended template two.
    uint32_t IdOf(TemplatePart head) const {
        const uint8_t* id = head.data + m_form.controlRect + 8;
        if (&m_form == &kClassicForm) return WordAt(id);
        return WordAt(id) | static_cast<uint32_t>(WordAt(id + 2)) << 16;
    }

    const TemplateForm& m_form;
    unsigned m_seen;
    int16_t m_width = 0;
};

}  // namespace

std::vector<ResourceText> ReadDialog(Bytes dialog) {
    constexpr const char* kWhat = "a dialog";
    // In memory of its own it stands at an address that is a multiple of 4, as in the program.
    std::vector<uint8_t> aligned(dialog.begin(), dialog.end());
    const TemplateBytes bytes = {aligned.data(), aligned.size()};
    const TemplateForm& form = FormOf(bytes);
    unsigned count = WordAt(dialog, form.count, kWhat);
    TextCollector collector(form, form.countSize == 1 ? count % 256 : count);
    if (!WalkControls(bytes, count, collector).isWhole)
        throw BadInput(std::string(kWhat) + " reaches beyond the end");
    return std::move(collector.texts);
}

}  // namespace qx
