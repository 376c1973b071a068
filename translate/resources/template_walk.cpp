#include "translate/resources/template_walk.h"

namespace qx {

namespace {

constexpr uint16_t kOrdinal = 0xFFFF;  // begins a field that is a number
constexpr uint16_t kButtonAtom = 0x0080;
constexpr uint16_t kStaticAtom = 0x0082;
constexpr uint16_t kHasFont = 0x40;  // of the style: DS_SETFONT
constexpr size_t kWord = sizeof(uint16_t);

// Takes part after part; past the end nothing more is taken.
class TemplateReader {
public:
    explicit TemplateReader(TemplateBytes dialog) : m_at(dialog.data), m_left(dialog.size) {}

    bool Take(size_t size, TemplatePart* part) {
        if (size > m_left) return false;
        *part = {m_at, size};
        m_at += size;
        m_left -= size;
        return true;
    }
    // A wide text with its terminator.
    bool TakeText(TemplatePart* part) {
        size_t size = 0;
        do {
            size += kWord;
            if (size > m_left) return false;
        } while (WordAt(m_at + size - kWord) != 0);
        return Take(size, part);
    }
    // A text, or the mark of a number with the number.
    bool TakeField(TemplatePart* part) {
        if (m_left >= kWord && WordAt(m_at) == kOrdinal) return Take(2 * kWord, part);
        return TakeText(part);
    }
    bool TakeCreationData(TemplatePart* part) {
        return m_left >= kWord && Take(kWord + WordAt(m_at), part);
    }
    // To the next address that is a multiple of 4.
    bool Align() {
        TemplatePart gap;
        return Take((0 - reinterpret_cast<uintptr_t>(m_at)) % 4, &gap);
    }
    const uint8_t* At() const { return m_at; }

private:
    const uint8_t* m_at;
    size_t m_left;
};

bool IsNumber(TemplatePart field) {
    return WordAt(field.data) == kOrdinal;
}

// Only the two atoms qualify, not a class that is written out.
bool IsTextClass(TemplatePart field) {
    if (!IsNumber(field)) return false;
    uint16_t atom = WordAt(field.data + kWord);
    return atom == kButtonAtom || atom == kStaticAtom;
}

bool TakeControl(TemplateReader& reader, const TemplateForm& form, TemplateControl* control) {
    if (!reader.Align() || !reader.Take(form.controlHead, &control->head)) return false;
    if (!reader.TakeField(&control->windowClass) || !reader.TakeField(&control->title))
        return false;
    if (!reader.TakeCreationData(&control->creation)) return false;
    control->isTranslatable = IsTextClass(control->windowClass) && !IsNumber(control->title);
    return true;
}

bool WalkHead(TemplateReader& reader, const TemplateForm& form, TemplateVisitor& visitor) {
    const uint8_t* start = reader.At();
    TemplatePart head, menu, windowClass, caption, words, face;
    if (!reader.Take(form.head, &head) || !reader.TakeField(&menu) ||
        !reader.TakeField(&windowClass))
        return false;
    visitor.Head({start, static_cast<size_t>(reader.At() - start)});
    if (!reader.TakeText(&caption)) return false;
    visitor.Caption(caption);
    if ((WordAt(start + form.style) & kHasFont) == 0) return true;
    if (!reader.Take(form.fontWords * kWord, &words) || !reader.TakeText(&face)) return false;
    visitor.Font(words, face);
    return true;
}

unsigned ControlCount(TemplateBytes dialog, const TemplateForm& form) {
    const uint8_t* at = dialog.data + form.count;
    return form.countSize == 1 ? *at : WordAt(at);
}

}  // namespace

const TemplateForm& FormOf(TemplateBytes dialog) {
    bool isExtended = dialog.size >= 2 * kWord && WordAt(dialog.data + kWord) == 0xFFFF;
    return isExtended ? kExtendedForm : kClassicForm;
}

TemplateWalk WalkControls(TemplateBytes dialog, unsigned count, TemplateVisitor& visitor) {
    const TemplateForm& form = FormOf(dialog);
    TemplateReader reader(dialog);
    if (!WalkHead(reader, form, visitor)) return {};
    for (unsigned i = 0; i < count; ++i) {
        TemplateControl control;
        if (!TakeControl(reader, form, &control)) return {true, i, false};
        visitor.Control(i, control);
    }
    return {true, count, true};
}

TemplateWalk WalkTemplate(TemplateBytes dialog, TemplateVisitor& visitor) {
    const TemplateForm& form = FormOf(dialog);
    // One that ends before its count ends before its controls in any case.
    unsigned count = dialog.size < form.head ? 0 : ControlCount(dialog, form);
    return WalkControls(dialog, count, visitor);
}

}  // namespace qx
