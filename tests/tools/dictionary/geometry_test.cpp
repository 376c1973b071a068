#include "tools/qxtranslate/model/dictionary/geometry.h"

#include <gtest/gtest.h>

namespace {

using qx::Geometry;
using qx::ReadGeometry;

constexpr const char* kFile =
    "; The dialog grows.\r\n"
    "\r\n"
    "[\\host.exe\\Dialogs\\#130]\r\n"
    "Dialog Size=z30,0 ; wider\r\n"
    "0=t0,0,30,0|4=t30,0,30,-5\r\n"
    "[\\view.dll\\Dialogs\\SETTINGS]\r\n"
    "1=t1,2,3,4\r\n";

TEST(GeometryTest, SizesAndEdgesAreReadByDialogAndControl) {
    Geometry geometry = ReadGeometry(kFile);
    ASSERT_EQ(geometry.dialogs.size(), 2u);
    EXPECT_TRUE(geometry.problems.empty());
    EXPECT_EQ(geometry.dialogs[0].module, "host.exe");
    EXPECT_EQ(geometry.dialogs[0].resource, "130");
    EXPECT_EQ(geometry.dialogs[0].size, (qx::SizeChange{30, 0}));
    EXPECT_EQ(geometry.dialogs[0].controls.at(4), (qx::EdgeChange{30, 0, 30, -5}));
    EXPECT_EQ(geometry.dialogs[1].resource, "SETTINGS");
    EXPECT_EQ(geometry.dialogs[1].line, 6u);
}

TEST(GeometryTest, WhatIsWrittenIsReadAgain) {
    Geometry geometry = ReadGeometry(kFile);
    EXPECT_EQ(ReadGeometry(WriteGeometry(geometry.dialogs)).dialogs, geometry.dialogs);
}

TEST(GeometryTest, ABareEmptyLineEndsTheFile) {
    EXPECT_EQ(ReadGeometry("[\\a\\Dialogs\\B]\n\n[\\a\\Dialogs\\C]\n").dialogs.size(), 1u);
}

TEST(GeometryTest, ALineThatChangesNothingIsToldWithItsNumber) {
    const char* kLines[] = {
        "0=t1,2,3",     "0=30",        "x=t1,2,3,4",          "Dialog Size=t1,2,3,4",
        "0=t1,2,3,4,5", "-1=t1,2,3,4", "0=t1,2,3,99999999999"};
    for (const char* line : kLines) {
        Geometry geometry = ReadGeometry("[\\a\\Dialogs\\B]\r\n" + std::string(line));
        ASSERT_EQ(geometry.problems.size(), 1u) << line;
        EXPECT_EQ(geometry.problems[0].line, 2u);
        EXPECT_TRUE(geometry.dialogs[0].controls.empty());
    }
    EXPECT_EQ(ReadGeometry("[\\a\\Menus\\B]\r\n0=t1,2,3,4").problems.size(), 2u);
}

TEST(GeometryTest, AFileCutAtAnyByteIsRead) {
    std::string whole = kFile;
    for (size_t size = 0; size <= whole.size(); ++size)
        EXPECT_LE(ReadGeometry(whole.substr(0, size)).dialogs.size(), 2u);
}

}  // namespace
