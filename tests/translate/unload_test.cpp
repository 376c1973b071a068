// The library unloaded by hosts that do not link it, before and after the modules that it patched.
#include "translate/interception/caller.h"
#include "translate/own_process.h"
#include "support/scratch_directory.h"

namespace {

class UnloadTest : public testing::Test {
protected:
    // The number of the line that went wrong, or 0.
    DWORD Run(const std::string& scenario) {
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, sizeof program);
        std::string folder = program;
        folder.resize(folder.find_last_of("\\/") + 1);
        return RunToEnd(
            "\"" + folder + "unload_host.exe\" " + scenario + " \"" + ModuleFolder() + "\\\" \"" +
            directory.Write("de.wld", "\"Open\"\n\"Auf\"\n\"Close\"\n\"Zumachen und weg\"\n") +
            "\"");
    }
    ScratchDirectory directory;
};

}  // namespace

TEST_F(UnloadTest, ClassLibrariesGetTheirImportsBackWhenTheLibraryGoes) {
    EXPECT_EQ(Run("ClassLibrariesOutliveTheLibrary"), 0u);
}

TEST_F(UnloadTest, TranslatedBlocksStayWhenTheLibraryGoes) {
    EXPECT_EQ(Run("BlocksOutliveTheLibrary"), 0u);
}

TEST_F(UnloadTest, WithoutADictionaryAClassLibraryStaysPatched) {
    EXPECT_EQ(Run("ClassLibraryPatchedWithoutADictionary"), 0u);
}

TEST_F(UnloadTest, AModuleThatTheHostNamedIsRestoredByTheHost) {
    EXPECT_EQ(Run("HostsModuleOutlivesTheLibrary"), 0u);
}

TEST_F(UnloadTest, WithoutADictionaryEveryPatchedModuleIsTheHosts) {
    EXPECT_EQ(Run("PatchedWithoutADictionary"), 0u);
}

TEST_F(UnloadTest, PatchedModulesMayGoBeforeTheLibrary) {
    EXPECT_EQ(Run("ModulesGoBeforeTheLibrary"), 0u);
}

TEST_F(UnloadTest, TheLibraryStartsAnewEachTimeItIsLoaded) {
    EXPECT_EQ(Run("TheLibraryComesBack"), 0u);
}

TEST_F(UnloadTest, AProcessEndsWithEverythingStillPatched) {
    EXPECT_EQ(Run("TheProcessEndsPatched"), 0u);
}
