// Broken dialog templates of a known size, through both passes: nothing behind them is read, and
// what comes out is a sound template. A sound one comes out as the tests' own parser says it must.
#include "fuzz/fuzz_driver.h"
#include "fuzz/guarded_bytes.h"
#include "translate/resources/dialog_translation.h"
#include "translate/resources/template_model.h"

#include <qxcore.h>

namespace {

constexpr size_t kLongest = 1 << 16;
constexpr int kHash = 5;
constexpr char kLonger[] = "Ein viel l\xE4ngerer Name:";

void Prepare() {
    static bool prepared = false;
    if (prepared) return;
    prepared = true;
    for (auto [source, target] : {std::pair("Open", "Auf"), {"Name:", kLonger}, {"x", ""}}) {
        g_Wld.m_Contexts.SetAt(source, new CContext(source, target));
    }
    g_Wld.SetDialogFont(RUSSIAN_CHARSET, 9, "No Such Font");
    auto geometry = new QXDlgPos;
    geometry->m_Size = {3, -4};
    geometry->m_Rects.SetAt(1, CIRect{1, 2, -30, 40});
    g_Wld.m_DlgPos.SetAt(kHash, geometry);
}

FieldModel AnyField(Random& random) {
    static const wchar_t* const kTexts[] = {L"", L"Open", L"Name:", L"x", L"Op\u0416n", L"Unknown"};
    return random.Below(3) ? FieldModel(kTexts[random.Below(6)])
                           : FieldModel::Number(uint16_t(0x7E + random.Below(8)));
}

DialogModel AnyDialog(Random& random) {
    DialogModel d;
    d.extended = random.Below(2) != 0;
    d.menu = AnyField(random);
    d.windowClass = AnyField(random);
    d.caption = AnyField(random).text;
    if (random.Below(2)) d.font.emplace();
    for (unsigned i = random.Below(6); i > 0; --i) {
        ControlModel c;
        c.windowClass = AnyField(random);
        c.title = AnyField(random);
        c.creation.resize(random.Below(7));
        c.x = static_cast<int16_t>(random.Next());
        d.controls.push_back(c);
    }
    return d;
}

// As the system reads a narrow text, whatever the code page makes of its bytes.
std::wstring Wide(const char* text) {
    DWORD flags = GetACP() == CP_UTF8 ? 0 : MB_PRECOMPOSED;
    wchar_t wide[64];
    return MultiByteToWideChar(CP_ACP, flags, text, -1, wide, 64) ? wide : L"";
}

DialogModel Expected(DialogModel d) {
    auto translate = [](std::wstring& text) {
        if (text == L"Open") text = L"Auf";
        if (text == L"Name:") text = Wide(kLonger);
    };
    if (d.font) d.style |= 0x40;
    if (d.font && g_Wld.m_bDialogFont) {
        d.font = FontModel{9, 0, 0, L"No Such Font"};
        if (d.extended) d.font->weight = 9, d.font->italicAndCharset = RUSSIAN_CHARSET << 8;
    }
    d.count = static_cast<uint16_t>(d.controls.size());
    translate(d.caption);
    for (ControlModel& c : d.controls) {
        auto& atom = c.windowClass.number;
        if (atom && (*atom == 0x80 || *atom == 0x82) && !c.title.number) translate(c.title.text);
    }
    return d;
}

// The dialog 3 wider and 4 lower; in control 1 the left edge 1, the top 2, the right -30 and the
// bottom 40 further.
DialogModel Moved(DialogModel d) {
    d.cx = static_cast<int16_t>(d.cx + 3);
    d.cy = static_cast<int16_t>(d.cy - 4);
    if (d.controls.size() < 2) return d;
    ControlModel& c = d.controls[1];
    c.x = static_cast<int16_t>(c.x + 1);
    c.y = static_cast<int16_t>(c.y + 2);
    c.cx = static_cast<int16_t>(c.cx - 31);
    c.cy = static_cast<int16_t>(c.cy + 38);
    return d;
}

// What may be said of any output.
bool IsSound(const unsigned char* output, int size) {
    auto model = ParseTemplate(output, static_cast<size_t>(size));
    if (!model) return false;
    // An extended template keeps the low byte of its count.
    size_t kept = model->extended ? model->count % 256 : model->count;
    return model->controls.size() == kept;
}

template <class Translate>
bool Try(const std::string& bytes, const std::optional<DialogModel>& expected,
         Translate translate) {
    static GuardedBytes guarded(kLongest);
    uint8_t* input = guarded.Place(bytes);
    int size = -1;
    unsigned char* output = translate(qx::TemplateBytes{input, bytes.size()}, &size);
    if (output == input) return size == 0 && !expected;
    bool holds = output && size > 0;
    // The parser counts from the start of the template, so it knows only those that stand at a
    // multiple of 4.
    if (holds && expected) holds = ParseTemplate(output, static_cast<size_t>(size)) == expected;
    if (holds) holds = IsSound(output, size);
    free(output);
    return holds;
}

bool Round(Random& random) {
    Prepare();
    DialogModel dialog = AnyDialog(random);
    auto written = WriteTemplate(dialog);
    std::string bytes(written.begin(), written.end());
    g_Wld.m_bDialogFont = random.Below(2);
    std::optional<DialogModel> expected, moved;
    if (random.Below(4) == 0) {
        bytes.resize((bytes.size() + 3) / 4 * 4);
        expected = Expected(dialog);
        moved = Moved(*expected);
    } else {
        Mutate(bytes, random);
    }
    if (bytes.size() > kLongest) return true;
    return Try(bytes, expected,
               [](auto b, int* size) {
                   return qx::TranslateTemplate(g_Wld, b, size, {});
               }) &&
           Try(bytes, moved, [](auto b, int* size) {
               return qx::TranslateTemplatePosition(g_Wld, b, kHash, size, {});
           });
}

}  // namespace

int main(int argc, char** argv) {
    return fuzz::Main(argc, argv, 12000, Round);
}
