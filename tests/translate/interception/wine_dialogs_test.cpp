// The real world on the screen: each dialog of the modules in the system's folder, in every
// language, that the system creates from the original is created from the translated template too.
// Nothing of it is shown.
#include "support/build_kind.h"
#include "translate/interception/system_resources_fixture.h"

#include <cstdio>
#include <string_view>
#include <unordered_set>

namespace {

// The dialogs are made in portions, which processes can share; a slow build checks some of them
// only.
constexpr unsigned kPortions = 16;
const unsigned kChecked = kIsSlowBuild ? 2 : kPortions;

INT_PTR CALLBACK Silent(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

// How many controls a dialog has, or nothing when the system refuses it.
std::optional<int> CreateHidden(const uint8_t* data, size_t size, HWND parent) {
    std::vector<uint8_t> copy(data, data + size);
    bool extended = copy[2] == 0xFF && copy[3] == 0xFF;
    uint32_t style;
    memcpy(&style, copy.data() + (extended ? 12 : 0), 4);
    style &= ~uint32_t(WS_VISIBLE);
    memcpy(copy.data() + (extended ? 12 : 0), &style, 4);
    HWND dialog = CreateDialogIndirectParamA(nullptr, reinterpret_cast<DLGTEMPLATE*>(copy.data()),
                                             parent, Silent, 0);
    if (!dialog) return std::nullopt;
    int controls = 0;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        ++controls;
    DestroyWindow(dialog);
    return controls;
}

class WineDialogsTest : public SystemResourcesTest, public testing::WithParamInterface<unsigned> {
protected:
    static void SetUpTestSuite() {
        SystemResourcesTest::SetUpTestSuite();
        // They register the classes of the controls.
        LoadLibraryA("comctl32.dll");
        LoadLibraryA("riched20.dll");
    }
    void SetUp() override {
        parent =
            CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    }
    void TearDown() override { DestroyWindow(parent); }
    HWND parent = nullptr;
};
INSTANTIATE_TEST_SUITE_P(Portions, WineDialogsTest, testing::Range(0u, kChecked));

}  // namespace

TEST_P(WineDialogsTest, EveryDialogThatTheSystemCreatesIsCreatedAfterTranslation) {
    std::unordered_set<std::string_view> templates;  // the same one stands in several modules
    unsigned created = 0, refused = 0;
    ForEach(kDialogs, [&](const Resource& r) {
        bool isNew = templates.emplace(reinterpret_cast<const char*>(r.data), r.size).second;
        if (!isNew || templates.size() % kPortions != GetParam()) return;
        size_t rest;
        auto original = ParseTemplate(r.data, r.size, &rest);
        auto [data, size] = LoadThroughLayer(r);
        auto controls = CreateHidden(data, size, parent);
        if (controls) {
            EXPECT_EQ(*controls, original->count) << r.Text();
            ++created;
        } else {
            EXPECT_FALSE(CreateHidden(r.data, r.size, parent)) << r.Text();
            ++refused;
        }
    });
    printf(
        "portion %u of %u of %u different dialogs: %u created after translation, %u refused before "
        "as after\n",
        GetParam() + 1, kPortions, unsigned(templates.size()), created, refused);
    EXPECT_GT(created, 200u);
}
