// Dialogs of both forms, and what the library makes of them in memory.
#ifndef QXCORE_TESTS_TRANSLATE_RESOURCES_DIALOG_TEMPLATE_FIXTURE_H
#define QXCORE_TESTS_TRANSLATE_RESOURCES_DIALOG_TEMPLATE_FIXTURE_H

#include "translate/interception/caller.h"
#include "translate/resources/template_model.h"

#include <memory>

struct FreeBlock {
    void operator()(unsigned char* block) const { free(block); }
};

// What the translator made of a template: nothing when the input came back.
struct Translated {
    bool isInput = false;
    int size = -1;
    std::unique_ptr<unsigned char, FreeBlock> block;
    std::optional<DialogModel> model;
};

inline Translated Collect(unsigned char* input, unsigned char* output, int size) {
    Translated result;
    result.size = size;
    result.isInput = output == input;
    if (result.isInput || !output) return result;
    result.block.reset(output);
    result.model = ParseTemplate(output, size);
    return result;
}

inline Translated Translate(std::vector<uint8_t> bytes) {
    int size = -1;
    unsigned char* output = TranslateDlgInternal(bytes.data(), &size);
    return Collect(bytes.data(), output, size);
}

inline Translated Translate(const DialogModel& dialog) {
    return Translate(WriteTemplate(dialog));
}

inline Translated TranslatePosition(const DialogModel& dialog, int hash) {
    auto bytes = WriteTemplate(dialog);
    int size = -1;
    unsigned char* output = TranslateDlgInternalPosition(bytes.data(), hash, &size);
    return Collect(bytes.data(), output, size);
}

inline constexpr uint16_t kButton = 0x0080, kEdit = 0x0081, kStatic = 0x0082, kListBox = 0x0083;

inline ControlModel Control(uint16_t atom, const wchar_t* title, uint32_t id = 1) {
    ControlModel c;
    c.windowClass = FieldModel::Number(atom);
    c.title = title;
    c.id = id;
    return c;
}

// A dialog in which every field has a value of its own.
inline DialogModel FullDialog(bool extended) {
    DialogModel d;
    d.extended = extended;
    d.helpId = extended ? 0x01020304 : 0;
    d.exStyle = 0x00000080;
    d.style = 0x80C80000;
    d.x = -3;
    d.y = 20;
    d.cx = 200;
    d.cy = 101;
    d.menu = FieldModel::Number(0x1234);
    d.windowClass = L"MyDialogClass";
    d.caption = L"Open";
    d.font = FontModel{9, 0, 0, L"Tahoma"};
    if (extended) d.font->weight = 700, d.font->italicAndCharset = 0x0101;
    d.controls = {Control(kStatic, L"Name:", 10), Control(kEdit, L"Name:", 11),
                  Control(kButton, L"Close", 12)};
    d.controls[0].creation = {1, 2, 3, 4};
    d.controls[1].x = -5;
    d.controls[2].style = 0x50010001;
    if (extended) d.controls[1].helpId = 77, d.controls[1].id = 0xFFFFFFFF;
    return d;
}

// What it becomes with the three texts translated. The edit keeps its title.
inline DialogModel GermanDialog(bool extended) {
    DialogModel d = FullDialog(extended);
    d.style |= 0x40;
    d.count = 3;
    d.caption = L"\u00D6ffnen";
    d.controls[0].title = L"Ihr Name:";
    d.controls[2].title = L"Schlie\u00DFen";
    return d;
}

class DialogTemplateTest : public DictionaryTest, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override {
        DictionaryTest::SetUp();
        Teach("Open",
              "\xD6"
              "ffnen");
        Teach("Name:", "Ihr Name:");
        Teach("Close",
              "Schlie\xDF"
              "en");
    }
    bool Extended() const { return GetParam(); }
    DialogModel Small() const {
        DialogModel d;
        d.extended = Extended();
        d.caption = L"Open";
        return d;
    }
};

#endif
