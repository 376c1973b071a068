#include "translate/resources/template_walk.h"

#include "translate/resources/word_at.h"

#include <qxcore/platform.h>

namespace {

constexpr uint16_t kOrdinal = 0xFFFF;  // begins a field that is a number
constexpr uint16_t kButtonAtom = 0x0080;
constexpr uint16_t kStaticAtom = 0x0082;
constexpr size_t kWord = sizeof(uint16_t);

// Takes part after part; past the end nothing more is taken.
class TemplateReader {
public:
    explicit TemplateReader(TemplateBytes dialog) : at(dialog.data), left(dialog.size) {}

    bool Take(size_t size, TemplatePart* part) {
        if (size > left) return false;
        *part = {at, size};
        at += size;
        left -= size;
        return true;
    }
    // A wide text with its terminator.
    bool TakeText(TemplatePart* part) {
        size_t size = 0;
        do {
            size += kWord;
            if (size > left) return false;
        } while (WordAt(at + size - kWord) != 0);
        return Take(size, part);
    }
    // A text, or the mark of a number with the number.
    bool TakeField(TemplatePart* part) {
        if (left >= kWord && WordAt(at) == kOrdinal) return Take(2 * kWord, part);
        return TakeText(part);
    }
    bool TakeCreationData(TemplatePart* part) {
        return left >= kWord && Take(kWord + WordAt(at), part);
    }
    // To the next address that is a multiple of 4.
    bool Align() {
        TemplatePart gap;
        return Take((0 - reinterpret_cast<uintptr_t>(at)) % 4, &gap);
    }
    const uint8_t* At() const { return at; }

private:
    const uint8_t* at;
    size_t left;
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

bool WalkHead(TemplateReader& reader, TemplatePass& pass) {
    const uint8_t* start = reader.At();
    TemplatePart head, menu, windowClass, caption, words, face;
    if (!reader.Take(pass.form.head, &head) || !reader.TakeField(&menu) ||
        !reader.TakeField(&windowClass))
        return false;
    pass.Head({start, static_cast<size_t>(reader.At() - start)});
    if (!reader.TakeText(&caption)) return false;
    pass.Caption(caption);
    if ((WordAt(start + pass.form.style) & DS_SETFONT) == 0) return true;
    if (!reader.Take(pass.form.fontWords * kWord, &words) || !reader.TakeText(&face)) return false;
    pass.Font(words, face);
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

bool WalkTemplate(TemplateBytes dialog, TemplatePass& pass) {
    TemplateReader reader(dialog);
    if (!WalkHead(reader, pass)) return false;
    unsigned count = ControlCount(dialog, pass.form);
    for (unsigned i = 0; i < count; ++i) {
        TemplateControl control;
        if (!TakeControl(reader, pass.form, &control)) {
            SetWordAt(pass.out.Data() + pass.form.count, static_cast<uint16_t>(i));
            break;
        }
        pass.out.Align();
        pass.ControlHead(i, control.head);
        pass.out.Append(control.windowClass.data, control.windowClass.size);
        pass.Title(control);
        pass.out.Append(control.creation.data, control.creation.size);
    }
    return true;
}
