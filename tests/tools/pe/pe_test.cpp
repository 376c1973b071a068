#include "tests/tools/pe/image_builder.h"
#include "tools/qxtranslate/model/pe/imports.h"
#include "tools/qxtranslate/model/pe/resources.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Data = std::vector<uint8_t>;

Data Copy(qx::Bytes bytes) {
    return Data(bytes.begin(), bytes.end());
}

const std::vector<BuiltResource> kResources = {
    {4, 100, u"", 0x409, {1, 2, 3}},
    {4, 100, u"", 0x407, {4, 5}},
    {6, 7, u"", 0x409, {}},
    {5, 0, u"SETTINGS", 0x409, {6}},
};

TEST(PeResourcesTest, EveryResourceIsReadWithItsNamesAndBytes) {
    for (bool is64 : {true, false}) {
        Data file = BuildImage({kResources, {}, "", is64});
        qx::PeImage image(file);
        EXPECT_EQ(image.Is64Bit(), is64);
        auto resources = qx::ReadResources(image);
        ASSERT_EQ(resources.size(), 4u);
        EXPECT_EQ(resources[0].language, 0x407);
        EXPECT_EQ(Copy(resources[0].data), (Data{4, 5}));
        EXPECT_EQ(Copy(resources[1].data), (Data{1, 2, 3}));
        EXPECT_TRUE(resources[2].Is(qx::kTypeDialog));
        EXPECT_EQ(resources[2].name.text, u"SETTINGS");
        EXPECT_EQ(resources[3].name.number, 7u);
        EXPECT_TRUE(resources[3].data.empty());
    }
}

TEST(PeResourcesTest, AProgramWithoutResourcesHasNone) {
    Data file = BuildImage({});
    EXPECT_TRUE(qx::ReadResources(qx::PeImage(file)).empty());
}

TEST(PeResourcesTest, OtherFilesAreRefused) {
    for (const char* text :
         {"", "MZ", "a text that is long enough to hold the header of a program file"}) {
        std::string bytes(text);
        EXPECT_THROW(qx::PeImage(Data(bytes.begin(), bytes.end())), qx::BadInput);
    }
}

TEST(PeResourcesTest, ATreeThatLoopsIsRefused) {
    Data file = BuildImage({kResources, {}, ""});
    // The first type's table becomes the root again, which is one level too deep for a leaf.
    ByteWriter writer;
    writer.bytes = file;
    writer.PutLong(0x400 + 16 + 4, 0x80000000);
    EXPECT_THROW(qx::ReadResources(qx::PeImage(writer.bytes)), qx::BadInput);
}

TEST(PeResourcesTest, AResourceThatLiesAboutItsSizeIsRefused) {
    Data file = BuildImage({{{4, 1, u"", 0x409, {1, 2, 3, 4}}}, {}, ""});
    ByteWriter writer;
    writer.bytes = file;
    // Three tables of one entry each stand before the leaf.
    writer.PutLong(0x400 + 3 * 24 + 4, 0x7FFFFFFF);
    EXPECT_THROW(qx::ReadResources(qx::PeImage(writer.bytes)), qx::BadInput);
}

TEST(PeResourcesTest, AFileCutAnywhereIsRefusedOrRead) {
    Data file = BuildImage({kResources, {{"user32.dll", {"LoadStringW"}}}, ""});
    for (size_t size = 0; size < file.size(); ++size) {
        Data part(file.begin(), file.begin() + static_cast<long>(size));
        try {
            qx::PeImage image(part);
            qx::ReadResources(image);
            qx::ReadImports(image);
        } catch (const qx::BadInput&) {
        }
    }
}

const qx::Resource* Choose(const std::vector<unsigned>& languages, uint16_t wanted) {
    static std::vector<qx::Resource> all;
    all.clear();
    for (unsigned l : languages) all.push_back({{4, {}}, {1, {}}, static_cast<uint16_t>(l), {}});
    std::vector<const qx::Resource*> candidates;
    for (auto& r : all) candidates.push_back(&r);
    return qx::ChooseLanguage(candidates, wanted);
}

TEST(PeResourcesTest, AMissingLanguageFallsBack) {
    EXPECT_EQ(Choose({0, 9, 0x809, 0x409}, 0x409)->language, 0x409);
    EXPECT_EQ(Choose({0, 0x809, 9}, 0x409)->language, 9);
    EXPECT_EQ(Choose({0x809, 0}, 0x409)->language, 0);
    EXPECT_EQ(Choose({0x407, 0x809, 0x1009}, 0x409)->language, 0x809);
    EXPECT_EQ(Choose({0x407, 0x40C}, 0x409), nullptr);
}

TEST(PeImportsTest, DirectDelayedAndOrdinalImportsAreRead) {
    for (bool is64 : {true, false}) {
        Data file = BuildImage(
            {{},
             {{"USER32.dll", {"LoadStringW", "#12"}}, {"kernel32.dll", {"LoadResource"}, true}},
             "",
             is64});
        auto imports = qx::ReadImports(qx::PeImage(file));
        ASSERT_EQ(imports.size(), 3u);
        EXPECT_EQ(imports[0].library, "USER32.dll");
        EXPECT_EQ(imports[0].function, "LoadStringW");
        EXPECT_EQ(imports[1].ordinal, 12u);
        EXPECT_TRUE(imports[1].function.empty());
        EXPECT_EQ(imports[2].function, "LoadResource");
        EXPECT_TRUE(imports[2].isDelayed);
    }
}

}  // namespace
