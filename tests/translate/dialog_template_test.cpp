// Translation of dialog templates in memory, both forms.
#include "translate/caller.h"
#include "translate/template_model.h"

namespace {

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

Translated Collect(unsigned char* input, unsigned char* output, int size) {
    Translated result;
    result.size = size;
    result.isInput = output == input;
    if (result.isInput || !output) return result;
    result.block.reset(output);
    result.model = ParseTemplate(output, size);
    return result;
}

Translated Translate(std::vector<uint8_t> bytes) {
    int size = -1;
    unsigned char* output = TranslateDlgInternal(bytes.data(), &size);
    return Collect(bytes.data(), output, size);
}

Translated Translate(const DialogModel& dialog) {
    return Translate(WriteTemplate(dialog));
}

Translated TranslatePosition(const DialogModel& dialog, int hash) {
    auto bytes = WriteTemplate(dialog);
    int size = -1;
    unsigned char* output = TranslateDlgInternalPosition(bytes.data(), hash, &size);
    return Collect(bytes.data(), output, size);
}

constexpr uint16_t kButton = 0x0080, kEdit = 0x0081, kStatic = 0x0082, kListBox = 0x0083;

ControlModel Control(uint16_t atom, const wchar_t* title, uint32_t id = 1) {
    ControlModel c;
    c.windowClass = FieldModel::Number(atom);
    c.title = title;
    c.id = id;
    return c;
}

// A dialog in which every field has a value of its own.
DialogModel FullDialog(bool extended) {
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
    d.controls = {Control(kStatic, L"Name:", 10), Control(kEdit, L"Name:", 11), Control(kButton, L"Close", 12)};
    d.controls[0].creation = {1, 2, 3, 4};
    d.controls[1].x = -5;
    d.controls[2].style = 0x50010001;
    if (extended) d.controls[1].helpId = 77, d.controls[1].id = 0xFFFFFFFF;
    return d;
}

// What it becomes with the three texts translated. The edit keeps its title.
DialogModel GermanDialog(bool extended) {
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
INSTANTIATE_TEST_SUITE_P(BothForms, DialogTemplateTest, testing::Bool(),
                         [](const auto& form) { return form.param ? "Extended" : "Classic"; });

}  // namespace

TEST_P(DialogTemplateTest, CaptionButtonsAndStaticsAreTranslatedAndAllElseIsCopied) {
    Translated result = Translate(FullDialog(Extended()));
    EXPECT_EQ(result.model, GermanDialog(Extended()));
}

TEST_P(DialogTemplateTest, TheSizeIsTheLengthOfTheNewTemplate) {
    DialogModel d = Small();
    DialogModel german = d;
    german.caption = L"\u00D6ffnen";
    Translated result = Translate(d);
    EXPECT_EQ(result.size, static_cast<int>(WriteTemplate(german).size()));
}

TEST_P(DialogTemplateTest, AnEmptyDictionaryWithoutAFontGivesTheInputBack) {
    TearDown();
    g_Wld.m_bDialogFont = 0;
    Translated result = Translate(FullDialog(Extended()));
    EXPECT_TRUE(result.isInput);
    EXPECT_EQ(result.size, 0);
    SetUp();
}

TEST_P(DialogTemplateTest, ADictionaryWithoutAMatchStillMakesANewBlock) {
    DialogModel d = Small();
    d.caption = L"Unknown";
    d.controls = {Control(kButton, L"Nobody knows", 3)};
    Translated result = Translate(d);
    d.count = 1;
    EXPECT_FALSE(result.isInput);
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, EveryKindOfMenuAndClassFieldIsCopied) {
    for (const FieldModel& menu : {FieldModel(), FieldModel(L"Open"), FieldModel::Number(7)}) {
        for (const FieldModel& windowClass : {FieldModel(), FieldModel(L"Close"), FieldModel::Number(0x8002)}) {
            DialogModel d = Small();
            d.menu = menu;
            d.windowClass = windowClass;
            Translated result = Translate(d);
            d.caption = L"\u00D6ffnen";
            EXPECT_EQ(result.model, d);
        }
    }
}

TEST_P(DialogTemplateTest, ACaptionWithACharacterAboveFFStaysWhileOtherTextsAreTranslated) {
    Teach("Open\x16", "wrong");
    DialogModel d = Small();
    d.caption = L"Open\u0416";
    d.controls = {Control(kStatic, L"Close")};
    Translated result = Translate(d);
    d.count = 1;
    d.controls[0].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ATitleWithACharacterAboveFFStays) {
    DialogModel d = Small();
    d.controls = {Control(kStatic, L"\u0416lose"), Control(kButton, L"Close")};
    Translated result = Translate(d);
    d.count = 2;
    d.caption = L"\u00D6ffnen";
    d.controls[1].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, CharactersUpToFFAreTheBytesOfTheSourceText) {
    Teach("Caf\xE9", "Kaffee");
    DialogModel d = Small();
    d.caption = L"Caf\u00E9";
    Translated result = Translate(d);
    d.caption = L"Kaffee";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, AnUntranslatedTextPassesThroughTheCodePage) {
    // 0x80 is no letter in wide text, but the euro sign as a byte of code page 1252.
    DialogModel d = Small();
    d.caption = L"\u0080";
    Translated result = Translate(d);
    d.caption = GetACP() == 1252 ? L"\u20AC" : d.caption;
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, EmptyTextsStayEmpty) {
    DialogModel d = Small();
    d.caption = L"";
    d.controls = {Control(kButton, L""), Control(kStatic, L"")};
    Translated result = Translate(d);
    d.count = 2;
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, OnlyButtonsAndStaticsByTheirAtomsAreTranslated) {
    DialogModel d = Small();
    for (uint16_t atom : {kButton, kEdit, kStatic, kListBox, uint16_t(0x0084), uint16_t(0x0085)}) {
        d.controls.push_back(Control(atom, L"Close", atom));
    }
    for (const wchar_t* name : {L"Button", L"Static", L"STATIC", L"SysListView32"}) {
        d.controls.push_back(Control(kButton, L"Close"));
        d.controls.back().windowClass = name;
    }
    Translated result = Translate(d);
    d.count = 10;
    d.caption = L"\u00D6ffnen";
    d.controls[0].title = d.controls[2].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, AnOrdinalTitleIsKeptWhateverTheClass) {
    DialogModel d = Small();
    for (uint16_t atom : {kButton, kStatic, kEdit}) {
        d.controls.push_back(Control(atom, L""));
        d.controls.back().title = FieldModel::Number(101);
    }
    Translated result = Translate(d);
    d.count = 3;
    d.caption = L"\u00D6ffnen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, CreationDataOfEveryLengthIsCopiedAndTheNextControlIsAligned) {
    DialogModel d = Small();
    for (uint8_t length = 0; length < 10; ++length) {
        d.controls.push_back(Control(kButton, L"Close", length));
        for (uint8_t i = 0; i < length; ++i) d.controls.back().creation.push_back(static_cast<uint8_t>(0xF0 + i));
    }
    Translated result = Translate(d);
    d.count = 10;
    d.caption = L"\u00D6ffnen";
    for (ControlModel& c : d.controls) c.title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ATemplateInOddMemoryIsAlignedAsAnAddress) {
    // The input's controls stand where addresses are multiples of 4, which its own bytes do not tell.
    DialogModel d = Small();
    d.controls = {Control(kButton, L"Close"), Control(kStatic, L"Name:")};
    std::vector<uint8_t> sound = WriteTemplate(d);
    size_t head = (d.extended ? 26 : 18) + 4 + 10;  // an empty menu and class, "Open"
    size_t firstControl = (head + 3) / 4 * 4;
    alignas(8) uint8_t memory[256] = {};
    uint8_t* start = memory + 2;
    size_t shifted = (head + 2 + 3) / 4 * 4 - 2;
    memcpy(start, sound.data(), head);
    memcpy(start + shifted, sound.data() + firstControl, sound.size() - firstControl);
    int size = -1;
    unsigned char* output = TranslateDlgInternal(start, &size);
    Translated result = Collect(start, output, size);
    d.count = 2;
    d.caption = L"\u00D6ffnen";
    d.controls[0].title = L"Schlie\u00DFen";
    d.controls[1].title = L"Ihr Name:";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ATranslationOfManyThousandBytesIsWhole) {
    std::string target(20000, 'x');
    Teach("Long", target);
    DialogModel d = Small();
    d.caption = L"Long";
    d.controls = {Control(kButton, L"Long"), Control(kButton, L"Close")};
    Translated result = Translate(d);
    d.count = 2;
    d.caption = std::wstring(20000, L'x');
    d.controls[0].title = d.caption;
    d.controls[1].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ASourceOfManyThousandCharactersIsWhole) {
    Teach(std::string(5000, 'y'), "short");
    DialogModel d = Small();
    d.caption = std::wstring(5000, L'y');
    d.controls = {Control(kButton, std::wstring(4999, L'y').c_str())};
    Translated result = Translate(d);
    d.count = 1;
    d.caption = L"short";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ADialogOf255ControlsIsWhole) {
    DialogModel d = Small();
    for (int i = 0; i < 255; ++i) d.controls.push_back(Control(kButton, L"Close", i));
    Translated result = Translate(d);
    d.count = 255;
    d.caption = L"\u00D6ffnen";
    for (ControlModel& c : d.controls) c.title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, AnExtendedTemplateOf300ControlsKeeps44WhileItStillCounts300) {
    DialogModel d = Small();
    for (int i = 0; i < 300; ++i) d.controls.push_back(Control(kButton, L"Close", i));
    Translated result = Translate(d);
    d.count = 300;
    d.caption = L"\u00D6ffnen";
    if (Extended()) d.controls.resize(44);
    for (ControlModel& c : d.controls) c.title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, AnExtendedTemplateOf256ControlsKeepsNone) {
    DialogModel d = Small();
    for (int i = 0; i < 256; ++i) d.controls.push_back(Control(kButton, L"Close", i));
    Translated result = Translate(d);
    d.count = 256;
    d.caption = L"\u00D6ffnen";
    if (Extended()) d.controls.clear();
    for (ControlModel& c : d.controls) c.title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, TheDictionarysFontReplacesTheTemplates) {
    g_Wld.m_bDialogFont = 1;
    g_Wld.m_nFontSize = 12;
    g_Wld.m_nFontScript = 204;
    strcpy(g_Wld.m_szFontName, "My Font");
    DialogModel d = Small();
    d.font = FontModel{9, 0, 0, L"Tahoma"};
    if (Extended()) d.font->weight = 700, d.font->italicAndCharset = 0x0101;
    Translated result = Translate(d);
    d.style |= 0x40;
    d.caption = L"\u00D6ffnen";
    d.font = FontModel{12, 0, 0, L"My Font"};
    // The size stands once more in the weight's place; italic is 0 and the charset is the script.
    if (Extended()) d.font->weight = 12, d.font->italicAndCharset = 204 << 8;
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, TheFontNameItselfIsLookedUp) {
    g_Wld.m_bDialogFont = 1;
    strcpy(g_Wld.m_szFontName, "My Font");
    Teach("My Font", "Your Font");
    DialogModel d = Small();
    d.font.emplace();
    Translated result = Translate(d);
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->font->face, L"Your Font");
}

TEST_P(DialogTemplateTest, WithoutSetFontThereIsNoFontSection) {
    g_Wld.m_bDialogFont = 1;
    DialogModel d = Small();
    d.controls = {Control(kButton, L"Close")};
    Translated result = Translate(d);
    d.count = 1;
    d.caption = L"\u00D6ffnen";
    d.controls[0].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, AnEmptyDictionaryWithTheFontSetStillRewritesTheFont) {
    TearDown();
    int size = g_Wld.m_nFontSize;
    g_Wld.m_bDialogFont = 1;
    g_Wld.m_nFontSize = 10;
    strcpy(g_Wld.m_szFontName, "My Font");
    DialogModel d = Small();
    d.font.emplace();
    Translated result = Translate(d);
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->caption, L"Open");
    EXPECT_EQ(result.model->font->face, L"My Font");
    EXPECT_EQ(result.model->font->size, 10);
    g_Wld.m_nFontSize = size;
    SetUp();
}

TEST_P(DialogTemplateTest, TheKeyOfTheTranslatorComesBeforeThePlainText) {
    Teach("view.dll#1#130\xFD\xFDOpen", "In this place");
    DialogModel d = Small();
    d.controls = {Control(kButton, L"Close")};
    auto bytes = WriteTemplate(d);
    int size = -1;
    unsigned char* output = g_Wld.TranslateDlg(bytes.data(), &size, "view.dll#1#130\xFD\xFD");
    Translated result = Collect(bytes.data(), output, size);
    d.count = 1;
    d.caption = L"In this place";
    d.controls[0].title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

namespace {

constexpr int kHash = 4711;

class DialogGeometryTest : public DialogTemplateTest {
protected:
    void SetUp() override {
        DialogTemplateTest::SetUp();
        geometry = new QXDlgPos;
        g_Wld.m_DlgPos.SetAt(kHash, geometry);
    }
    void TearDown() override {
        g_Wld.m_DlgPos.RemoveKey(kHash);
        DialogTemplateTest::TearDown();
    }
    DialogModel Positioned() const {
        DialogModel d = FullDialog(Extended());
        d.controls[0].x = 1, d.controls[0].y = 2, d.controls[0].cx = 30, d.controls[0].cy = 40;
        return d;
    }
    DialogModel PositionedGerman() const {
        DialogModel d = GermanDialog(Extended());
        d.controls[0].x = 1, d.controls[0].y = 2, d.controls[0].cx = 30, d.controls[0].cy = 40;
        return d;
    }
    QXDlgPos* geometry = nullptr;
};
INSTANTIATE_TEST_SUITE_P(BothForms, DialogGeometryTest, testing::Bool(),
                         [](const auto& form) { return form.param ? "Extended" : "Classic"; });

}  // namespace

TEST_P(DialogGeometryTest, TheDialogGrowsByItsSizeAndEveryTextIsTranslated) {
    geometry->m_Size = {15, -7};
    Translated result = TranslatePosition(Positioned(), kHash);
    DialogModel d = PositionedGerman();
    d.cx += 15;
    d.cy -= 7;
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogGeometryTest, EachEdgeOfAControlMovesByItsOwnDelta) {
    geometry->m_Rects.SetAt(0, CIRect{5, 6, 10, 20});
    Translated result = TranslatePosition(Positioned(), kHash);
    DialogModel d = PositionedGerman();
    // right = 1 + 30 + 10 = 41, bottom = 2 + 40 + 20 = 62; x = 6, y = 8.
    d.controls[0].x = 6, d.controls[0].y = 8, d.controls[0].cx = 35, d.controls[0].cy = 54;
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogGeometryTest, NegativePositionsAndDeltasKeepTheirSign) {
    geometry->m_Rects.SetAt(1, CIRect{-10, -20, -30, -40});
    DialogModel source = Positioned();
    source.controls[1].x = -5, source.controls[1].y = -6, source.controls[1].cx = 100, source.controls[1].cy = 200;
    Translated result = TranslatePosition(source, kHash);
    ASSERT_TRUE(result.model);
    const ControlModel& c = result.model->controls[1];
    EXPECT_EQ(c.x, -15);
    EXPECT_EQ(c.y, -26);
    EXPECT_EQ(c.cx, 80);   // right was 95, is 65
    EXPECT_EQ(c.cy, 180);  // bottom was 194, is 154
}

TEST_P(DialogGeometryTest, PositionsWrapAt16Bits) {
    geometry->m_Size = {40000, 0};
    geometry->m_Rects.SetAt(0, CIRect{65536, 0, 65536, 1});
    Translated result = TranslatePosition(Positioned(), kHash);
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->cx, static_cast<int16_t>(40200));
    EXPECT_EQ(result.model->controls[0].x, 1);
    EXPECT_EQ(result.model->controls[0].cx, 30);
    EXPECT_EQ(result.model->controls[0].cy, 41);
}

TEST_P(DialogGeometryTest, TheIndexIsTheControlsPlaceAndNotItsId) {
    geometry->m_Rects.SetAt(10, CIRect{1, 1, 1, 1});  // control 0 has the id 10
    Translated result = TranslatePosition(Positioned(), kHash);
    EXPECT_EQ(result.model, PositionedGerman());
}

TEST_P(DialogGeometryTest, AnIndexBeyondTheControlsDoesNothing) {
    geometry->m_Rects.SetAt(3, CIRect{1, 1, 1, 1});
    geometry->m_Rects.SetAt(0xFFFFFFFF, CIRect{1, 1, 1, 1});
    Translated result = TranslatePosition(Positioned(), kHash);
    EXPECT_EQ(result.model, PositionedGerman());
}

TEST_P(DialogGeometryTest, AHashThatIsNotInTheMapActsAsThePlainTranslator) {
    geometry->m_Size = {15, 15};
    Translated result = TranslatePosition(Positioned(), kHash + 1);
    EXPECT_EQ(result.model, PositionedGerman());
}

TEST_P(DialogGeometryTest, AnAdjustedDialogIsANewBlockAlsoWhenNothingIsTranslated) {
    DialogTemplateTest::TearDown();
    geometry->m_Size = {3, 4};
    g_Wld.m_bDialogFont = 0;
    Translated result = TranslatePosition(Positioned(), kHash);
    DialogModel d = Positioned();
    d.style |= 0x40;
    d.count = 3;
    d.cx += 3;
    d.cy += 4;
    EXPECT_FALSE(result.isInput);
    EXPECT_EQ(result.size, static_cast<int>(WriteTemplate(d).size()));
    EXPECT_EQ(result.model, d);
    DialogTemplateTest::SetUp();
}

TEST_P(DialogGeometryTest, AnExtendedTemplateOf300ControlsIsCutOnceAndNotTwice) {
    geometry->m_Rects.SetAt(43, CIRect{1, 0, 1, 0});
    DialogModel d = Small();
    for (int i = 0; i < 300; ++i) d.controls.push_back(Control(kButton, L"Unknown", i));
    Translated result = TranslatePosition(d, kHash);
    d.count = 300;
    d.caption = L"\u00D6ffnen";
    d.controls[43].x += 1;
    if (Extended()) d.controls.resize(44);
    EXPECT_EQ(result.model, d);
}

TEST(DialogTemplateSystemTest, TheSystemRefusesATemplateThatCountsMoreThanItHolds) {
    int font = g_Wld.m_bDialogFont;
    g_Wld.m_bDialogFont = 1;
    DialogModel d;
    d.extended = true;
    d.font.emplace();
    for (int i = 0; i < 300; ++i) d.controls.push_back(Control(kStatic, L"Text", i));
    Translated result = Translate(d);
    ASSERT_TRUE(result.block);
    auto proc = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return 0; };
    EXPECT_EQ(CreateDialogIndirectParamA(nullptr, reinterpret_cast<DLGTEMPLATE*>(result.block.get()), nullptr, proc, 0),
              nullptr);
    g_Wld.m_bDialogFont = font;
}

TEST(DialogTemplateSystemTest, PatchDlgTemplateInternalGivesNull) {
    unsigned char bytes[4] = {1, 2, 3, 4};
    EXPECT_EQ(PatchDlgTemplateInternal(bytes), nullptr);
    EXPECT_EQ(bytes[0], 1);
}
