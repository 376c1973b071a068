// Dialog templates as plain values: written and read here without the library, for the tests to
// compare.
#ifndef QXCORE_TESTS_TRANSLATE_RESOURCES_TEMPLATE_MODEL_H
#define QXCORE_TESTS_TRANSLATE_RESOURCES_TEMPLATE_MODEL_H

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

// A menu, class or title: a text, or a number.
struct FieldModel {
    std::wstring text;
    std::optional<uint16_t> number;

    FieldModel() = default;
    FieldModel(const wchar_t* text) : text(text) {}
    FieldModel(std::wstring text) : text(std::move(text)) {}
    static FieldModel Number(uint16_t n) {
        FieldModel field;
        field.number = n;
        return field;
    }
    bool operator==(const FieldModel&) const = default;
};

struct FontModel {
    uint16_t size = 8;
    uint16_t weight = 0;  // extended form only, like italicAndCharset
    uint16_t italicAndCharset = 0;
    std::wstring face = L"MS Shell Dlg";
    bool operator==(const FontModel&) const = default;
};

struct ControlModel {
    uint32_t helpId = 0;  // extended form only
    uint32_t exStyle = 0;
    uint32_t style = 0x50000000;
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    uint32_t id = 0;  // 16 bits in the classic form
    FieldModel windowClass = FieldModel::Number(0x0082);
    FieldModel title;
    std::vector<uint8_t> creation;
    bool operator==(const ControlModel&) const = default;
};

struct DialogModel {
    bool extended = false;
    uint32_t helpId = 0;
    uint32_t exStyle = 0;
    uint32_t style = 0x80000000;  // DS_SETFONT goes with the font
    int16_t x = 0, y = 0, cx = 0, cy = 0;
    FieldModel menu;
    FieldModel windowClass;
    std::wstring caption;
    std::optional<FontModel> font;
    uint16_t count = 0;  // as the template says
    std::vector<ControlModel> controls;
    bool operator==(const DialogModel&) const = default;
};

// Counts the controls that there are, unless `count` is set to another number.
std::vector<uint8_t> WriteTemplate(const DialogModel& dialog);

// Reads as many controls as fit, at most as many as are counted. Nothing when the head is cut off
// or bytes are left behind the last control, unless `left` takes their number.
std::optional<DialogModel> ParseTemplate(const uint8_t* data, size_t size, size_t* left = nullptr);

// What a mismatch shows.
void PrintTo(const DialogModel& dialog, std::ostream* out);

#endif
