// The one walk over a dialog template, of either published form. It reads and translates nothing
// and asks nothing of the system, so programs for other systems use it as it is.
#ifndef QXCORE_TRANSLATE_RESOURCES_TEMPLATE_WALK_H
#define QXCORE_TRANSLATE_RESOURCES_TEMPLATE_WALK_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qx {

// A 16-bit word at any address: parts of templates and resources need not be aligned.
inline uint16_t WordAt(const void* at) {
    uint16_t word;
    memcpy(&word, at, sizeof word);
    return word;
}
inline void SetWordAt(void* at, uint16_t word) {
    memcpy(at, &word, sizeof word);
}

// A template with the bytes that may be read of it. One whose length nobody knows is taken as
// sound.
struct TemplateBytes {
    const uint8_t* data;
    size_t size;

    static constexpr size_t kUnknownSize = SIZE_MAX / 2;
};

// Where the two published forms differ; offsets in bytes.
struct TemplateForm {
    size_t style;
    size_t count;
    size_t countSize;  // of an extended template only the low byte counts
    size_t extent;     // cx, then cy
    size_t head;       // what stands before the menu field
    size_t fontWords;  // words before the typeface
    size_t controlHead;
    size_t controlRect;  // x, y, cx, cy within it
};
inline constexpr TemplateForm kClassicForm = {0, 8, 2, 14, 18, 1, 18, 8};
inline constexpr TemplateForm kExtendedForm = {12, 16, 1, 22, 26, 3, 24, 12};

const TemplateForm& FormOf(TemplateBytes dialog);

// A part of the template, as it stands there.
struct TemplatePart {
    const uint8_t* data;
    size_t size;
};

struct TemplateControl {
    TemplatePart head;
    TemplatePart windowClass;
    TemplatePart title;
    TemplatePart creation;  // the length word and the data
    bool isTranslatable;    // a button or static by its atom, with a title that is a text
};

// What is told of the parts, in their order.
class TemplateVisitor {
public:
    virtual void Head(TemplatePart part) = 0;  // with the menu and class fields
    virtual void Caption(TemplatePart text) = 0;
    virtual void Font(TemplatePart words, TemplatePart face) = 0;  // of a dialog that asks for one
    virtual void Control(unsigned index, const TemplateControl& control) = 0;

protected:
    ~TemplateVisitor() = default;
};

// How far a walk came.
struct TemplateWalk {
    bool hasHead;       // all before the controls is there
    unsigned controls;  // those that are whole
    bool isWhole;       // all controls that the template counts are
};

// Nothing behind the bytes is read: a template that ends too early ends the walk.
TemplateWalk WalkTemplate(TemplateBytes dialog, TemplateVisitor& visitor);
// The same over so many controls, whatever number the template counts.
TemplateWalk WalkControls(TemplateBytes dialog, unsigned count, TemplateVisitor& visitor);

}  // namespace qx

#endif
