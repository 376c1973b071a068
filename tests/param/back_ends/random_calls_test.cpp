// Calls in random order, over each back end and over a plain model of a tree.
#include "fuzz/fuzz_driver.h"
#include "param/back_ends/contract_back_ends.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace {

// Names are told from each other without regard to case, and keep their first spelling.
struct Model {
    std::map<std::string, int> values;
    std::map<std::string, Model> children;

    // Without its values; below a registry key the subkeys stay.
    void Empty(bool subkeysStay) {
        values.clear();
        if (!subkeysStay) children.clear();
        for (auto& [name, child] : children) child.Empty(true);
    }
    std::string Text() const {
        std::string text;
        auto add = [&](const std::string& part) { text += (text.empty() ? "" : " ") + part; };
        for (auto& [name, value] : values) add(name + "=5:" + std::to_string(value));
        for (auto& [name, child] : children) add(name + "{" + child.Text() + "}");
        return text;
    }
};

constexpr const char* kValues[] = {"value", "vb", "vc d"};
constexpr const char* kChildren[] = {"child", "cb", "cc.d"};

class RandomCallsTest : public testing::TestWithParam<BackEnd> {
protected:
    Random random{7};
    bool subkeysStay = strcmp(GetParam().createOfExisting, "aa{bb{}}") == 0;

    template <size_t n>
    std::string Pick(const char* const (&names)[n]) {
        return names[random.Below(n)];
    }
    std::string InAnyCase(std::string name) {
        for (char& c : name) {
            if (random.Below(2)) c = static_cast<char>(toupper(c));
        }
        return name;
    }
    void Step(IParam* node, Model& model, int depth);
};

INSTANTIATE_TEST_SUITE_P(BackEnds, RandomCallsTest, testing::ValuesIn(BackEnds()),
                         [](const auto& info) { return std::string(info.param.name); });

// One call on the node, or on one of those below it.
void RandomCallsTest::Step(IParam* node, Model& model, int depth) {
    std::string value = Pick(kValues), child = Pick(kChildren);
    if (depth < 4 && random.Below(2)) {
        // As it is spelled: an ini file keeps another spelling in the names of what is made below.
        ParamPtr below(node->OpenSubParam(child.c_str(), 0));
        auto found = model.children.find(child);
        ASSERT_EQ(bool(below), found != model.children.end());
        if (below) return Step(below.Get(), found->second, depth + 1);
    }
    switch (random.Below(14)) {
        case 0:
            node->DeleteValue(InAnyCase(value).c_str());
            model.values.erase(value);
            break;
        case 1:
        case 2:
        case 3:
            ASSERT_TRUE(ParamPtr(node->CreateSubParam(child.c_str())));
            model.children[child].Empty(subkeysStay);
            break;
        case 4:
        case 5:
        case 6:
            ASSERT_TRUE(ParamPtr(node->OpenSubParam(child.c_str(), 1)));
            model.children[child];
            break;
        case 7:
            node->DeleteSubParam(InAnyCase(child).c_str());
            model.children.erase(child);
            break;
        case 8:
            if (random.Below(4)) break;
            node->DeleteAllSubParams();
            model.children.clear();
            break;
        case 9:
            node->DeleteAllValues();
            model.values.clear();
            break;
        default:
            int number = static_cast<int>(random.Below(1000));
            SetInt(node, value.c_str(), number);
            model.values[value] = number;
            EXPECT_EQ(GetInt(node, InAnyCase(value).c_str()), number);
    }
}

}  // namespace

TEST_P(RandomCallsTest, AnyOrderOfCallsLeavesWhatAPlainTreeHolds) {
    std::unique_ptr<Place> place = GetParam().make();
    Model model;
    for (int i = 0; i < 200; ++i) {
        Step(place->root.Get(), model, 0);
        if (HasFatalFailure()) return;
        if (i % 5) continue;
        if (GetParam().keeps && i % 50 == 0) {
            place->root.Release();
            place->root = place->Reopen();
        }
        ASSERT_EQ(SortedTree(place->root.Get()), model.Text()) << "step " << i;
    }
}
