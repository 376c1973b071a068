#include "tools/qxtranslate/model/translation/geometry_checks.h"

#include "tests/tools/po/entries.h"

#include <gtest/gtest.h>

namespace {

TEST(GeometryChecksTest, ADialogWithoutAnyTextOfTheTranslationsIsAFinding) {
    qx::Geometry geometry = qx::ReadGeometry(
        "[\\host.exe\\Dialogs\\#130]\r\n0=t0,0,30,0\r\n"
        "[\\view.dll\\Dialogs\\SETTINGS]\r\n1=t1,2,3,4\r\n");
    qx::PoFile po =
        PoOf({Entry("Open", "", {"Host.exe/dialog/130/0", "view.dll/menu/SETTINGS/0"})});
    auto findings = qx::CheckGeometry(geometry, po, nullptr);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].line, 3u);
    EXPECT_EQ(findings[0].source, "view.dll/dialog/settings");
}

}  // namespace
