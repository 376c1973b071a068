// Translation of dialog templates in memory, both forms.
#include "translate/resources/dialog_template_fixture.h"

namespace {

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
        for (const FieldModel& windowClass :
             {FieldModel(), FieldModel(L"Close"), FieldModel::Number(0x8002)}) {
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
        for (uint8_t i = 0; i < length; ++i)
            d.controls.back().creation.push_back(static_cast<uint8_t>(0xF0 + i));
    }
    Translated result = Translate(d);
    d.count = 10;
    d.caption = L"\u00D6ffnen";
    for (ControlModel& c : d.controls) c.title = L"Schlie\u00DFen";
    EXPECT_EQ(result.model, d);
}

TEST_P(DialogTemplateTest, ATemplateInOddMemoryIsAlignedAsAnAddress) {
    // The input's controls stand where addresses are multiples of 4, which its own bytes do not
    // tell.
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

TEST_P(DialogTemplateTest, AHostsOwnDictionaryGivesItsFontAndTheProcesssTexts) {
    CWld own;
    own.SetDialogFont(0, 11, "Own Font");
    own.m_Contexts.SetAt("Open", new CContext("Open", "never seen"));
    DialogModel d = Small();
    d.font.emplace();
    auto bytes = WriteTemplate(d);
    int size = -1;
    unsigned char* output = own.TranslateDlg(bytes.data(), &size, nullptr);
    Translated result = Collect(bytes.data(), output, size);
    ASSERT_TRUE(result.model);
    EXPECT_EQ(result.model->caption, L"\u00D6ffnen");
    EXPECT_EQ(result.model->font->face, L"Own Font");
    EXPECT_EQ(result.model->font->size, 11);
}

TEST_P(DialogTemplateTest, AHostsOwnDictionaryWithNothingInItGivesTheInputBack) {
    CWld own;
    own.SetDialogFont(0, 11, nullptr);
    auto bytes = WriteTemplate(Small());
    int size = -1;
    EXPECT_EQ(own.TranslateDlg(bytes.data(), &size, nullptr), bytes.data());
    EXPECT_EQ(size, 0);
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
    EXPECT_EQ(CreateDialogIndirectParamA(
                  nullptr, reinterpret_cast<DLGTEMPLATE*>(result.block.get()), nullptr, proc, 0),
              nullptr);
    g_Wld.m_bDialogFont = font;
}

TEST(DialogTemplateSystemTest, PatchDlgTemplateInternalGivesNull) {
    unsigned char bytes[4] = {1, 2, 3, 4};
    EXPECT_EQ(PatchDlgTemplateInternal(bytes), nullptr);
    EXPECT_EQ(bytes[0], 1);
}
