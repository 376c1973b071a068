#include "tools/qxtranslate/model/program/audit.h"

#include "tests/tools/pe/image_builder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Data = std::vector<uint8_t>;

bool Says(const qx::Audit& audit, const std::string& part) {
    return std::any_of(audit.sentences.begin(), audit.sentences.end(),
                       [&](auto& s) { return s.find(part) != std::string::npos; });
}

const std::vector<BuiltResource> kResources = {
    {4, 100, u"", 0x409, {1, 2, 3}},
    {6, 7, u"", 0x409, {}},
    {5, 0, u"SETTINGS", 0x409, {6}},
};

TEST(AuditTest, EachWayOfCallingIsTold) {
    Data file = BuildImage({kResources,
                            {{"USER32.dll", {"LoadStringW", "#12", "MessageBoxW"}},
                             {"user32.dll", {"LoadMenuA"}, true}},
                            std::string("DialogBoxParamW\0", 16)});
    qx::Audit audit = qx::AuditModule(file);
    ASSERT_EQ(audit.functions.size(), 4u);
    EXPECT_EQ(audit.functions[0].function + " " + audit.functions[0].way, "LoadStringW directly");
    EXPECT_EQ(audit.functions[1].function + " " + audit.functions[1].way, "LoadMenuA delay-loaded");
    EXPECT_EQ(audit.functions[2].function + " " + audit.functions[2].way,
              "DialogBoxParamW only by GetProcAddress");
    EXPECT_EQ(audit.functions[3].way, "by ordinal");
    EXPECT_TRUE(Says(audit, "Delay-loaded: LoadMenuA. A slot"));
    EXPECT_TRUE(Says(audit, "Looked up by name while it runs: DialogBoxParamW. Such calls"));
    EXPECT_TRUE(Says(audit, "It calls MessageBoxW"));
    EXPECT_FALSE(Says(audit, "It has dialogs and imports none"));
}

TEST(AuditTest, ResourcesThatNothingOpensAreTold) {
    qx::Audit audit = qx::AuditModule(BuildImage({kResources, {}, ""}));
    EXPECT_TRUE(audit.functions.empty());
    EXPECT_TRUE(Says(audit, "It has dialogs and imports none"));
}

TEST(AuditTest, NamesWithoutATableAreDelayLoadedWhereTheSystemResolvesThem) {
    Data file = BuildImage(
        {{}, {{"kernel32.dll", {"ResolveDelayLoadedAPI"}}}, std::string("LoadStringW\0", 12)});
    qx::Audit audit = qx::AuditModule(file);
    ASSERT_EQ(audit.functions.size(), 1u);
    EXPECT_EQ(audit.functions[0].way, "delay-loaded");
}

TEST(AuditTest, LibrariesThatAProgramNamesAreTold) {
    std::u16string texts(u"\0Wizard.dll\0user32.dll\0a *.dll\0", 31);
    Data file =
        BuildImage({{},
                    {},
                    std::string(reinterpret_cast<const char*>(texts.data()), 2 * texts.size()) +
                        std::string("fonts.CPL\0plain.dll\0", 20)});
    qx::Audit audit = qx::AuditModule(file);
    EXPECT_TRUE(Says(audit, "It names fonts.cpl: "));
    EXPECT_FALSE(Says(audit, "plain.dll"));
    EXPECT_TRUE(Says(audit, "It names wizard.dll: "));
    EXPECT_FALSE(Says(audit, "user32.dll"));
    EXPECT_FALSE(Says(audit, "*.dll"));
}

TEST(AuditTest, AProgramWithoutTextsNamesTheLibrariesThatItCalls) {
    std::vector<BuiltImport> imports = {
        {"kernel32.dll", {"ExitProcess"}}, {"Frame.dll", {"#101"}}, {"api-ms-win-x.dll", {"f"}}};
    qx::Audit audit = qx::AuditModule(BuildImage({{}, imports, ""}));
    EXPECT_TRUE(Says(audit, "It has no texts of its own and calls frame.dll: "));
    EXPECT_FALSE(Says(audit, "calls kernel32.dll"));
    EXPECT_FALSE(Says(audit, "api-ms-win-x.dll"));
    EXPECT_FALSE(Says(qx::AuditModule(BuildImage({kResources, imports, ""})), "frame.dll"));
}

TEST(AuditTest, BoxesOfTheSystemNameTheLibraryToHarvest) {
    Data file = BuildImage({{}, {{"comdlg32.dll", {"FindTextW", "PrintDlgW"}}}, ""});
    EXPECT_TRUE(Says(qx::AuditModule(file),
                     "It calls FindTextW, PrintDlgW: boxes of comdlg32.dll belong to that library: "
                     "harvest comdlg32.dll together with the program"));
    file = BuildImage({{}, {{"shell32.dll", {"ShellAboutW"}, true}}, ""});
    EXPECT_TRUE(Says(qx::AuditModule(file), "--module shell32.dll"));
}

TEST(AuditTest, ABoxThatIsReachedByANumberOrByItsNameIsTold) {
    Data numbered = BuildImage({{}, {{"SHELL32.dll", {"#61"}}}, ""});
    EXPECT_TRUE(Says(qx::AuditModule(numbered), "It calls RunFileDlg"));
    Data other = BuildImage({{}, {{"SHELL32.dll", {"#60"}}, {"other.dll", {"#61"}}}, ""});
    EXPECT_FALSE(Says(qx::AuditModule(other), "RunFileDlg"));
    Data named = BuildImage({{}, {}, std::string("PropertySheetA\0", 15)});
    EXPECT_TRUE(Says(qx::AuditModule(named), "It calls PropertySheetA"));
}

TEST(AuditTest, WhatTheSystemWritesItselfIsTold) {
    Data file = BuildImage(
        {{}, {{"user32.dll", {"DefMDIChildProcA"}}, {"shlwapi.dll", {"StrFormatByteSizeW"}}}, ""});
    qx::Audit audit = qx::AuditModule(file);
    EXPECT_TRUE(Says(audit, "It calls DefMDIChildProcA: the window menu"));
    EXPECT_TRUE(Says(audit, "It calls StrFormatByteSizeW: numbers"));
}

TEST(AuditTest, A32BitProgramIsTold) {
    Data file = BuildImage({{}, {}, "", false});
    EXPECT_TRUE(Says(qx::AuditModule(file), "32-bit"));
}

}  // namespace
