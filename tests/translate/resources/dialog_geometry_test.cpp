// The geometry that a dictionary holds for dialogs, both forms.
#include "translate/resources/dialog_template_fixture.h"

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
    source.controls[1].x = -5, source.controls[1].y = -6, source.controls[1].cx = 100,
    source.controls[1].cy = 200;
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
