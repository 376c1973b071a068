// The one walk over a dialog template, of either form, that all passes share.
#ifndef QXCORE_TRANSLATE_TEMPLATE_WALK_H
#define QXCORE_TRANSLATE_TEMPLATE_WALK_H

#include "translate/resources/dialog_buffer.h"
#include "translate/resources/dialog_template.h"

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

// What a pass does with the parts; a pass that leaves one out copies it.
class TemplatePass {
public:
    TemplatePass(CDlgBuffer& out, const TemplateForm& form) : out(out), form(form) {}

    virtual void Head(TemplatePart part) { Copy(part); }  // with menu and class
    virtual void Caption(TemplatePart part) { Copy(part); }
    virtual void Font(TemplatePart words, TemplatePart face) { Copy(words), Copy(face); }
    virtual void ControlHead(unsigned, TemplatePart part) { Copy(part); }
    virtual void Title(const TemplateControl& control) { Copy(control.title); }

    CDlgBuffer& out;
    const TemplateForm& form;

protected:
    ~TemplatePass() = default;
    void Copy(TemplatePart part) { out.Append(part.data, part.size); }
};

const TemplateForm& FormOf(TemplateBytes dialog);

// Runs a pass over all controls that the template counts. False, with what was written to be
// forgotten, when the bytes end before the controls; when they end among these, the output holds,
// and counts, those that are whole.
bool WalkTemplate(TemplateBytes dialog, TemplatePass& pass);

#endif
