// Random trees, copied through back ends and forms, against the table of what may be lost.
//
// QXCORE_TREES in the environment multiplies how many trees are taken; QXCORE_TREE_SEED is the seed
// of the first one.
#include "param/back_ends/contract_back_ends.h"
#include "param/back_ends/differential_model.h"
#include "support/build_kind.h"
#include "support/scratch_directory.h"

#include <gtest/gtest.h>
#include <mbctype.h>

#include <algorithm>
#include <cstdlib>

namespace {

unsigned FromEnvironment(const char* name, unsigned usual) {
    const char* text = getenv(name);
    return text ? strtoul(text, nullptr, 10) : usual;
}

// How many children a node near the root has at most.
constexpr unsigned kFew = 2, kSome = 3;

// Calls `check` with a random tree for each seed, and stops at the first failure.
template <class Check>
void ForTrees(unsigned count, unsigned children, Check check) {
    unsigned first = FromEnvironment("QXCORE_TREE_SEED", 1);
    count *= FromEnvironment("QXCORE_TREES", 1);
    bool hasLeadBytes = _ismbblead(0x83) != 0;
    if (hasLeadBytes) count /= 5;  // they change what names are, and nothing else
    if (kHasGuardPages) count /= 10;
    for (unsigned seed = first; seed < first + count; ++seed) {
        Random random(seed);
        SCOPED_TRACE("seed " + std::to_string(seed));
        check(model::RandomTree(random, children), seed);
        if (testing::Test::HasFailure()) return;
    }
}

// A place and what it loses: of a tree whose children come before its values, as copies and streams
// bring them, and of one whose values come first, as in ini text.
struct KnownPlace {
    const char* name;
    model::Losses losses;
    model::Losses valuesFirst;

    const BackEnd& Kind() const {
        auto isOurs = [this](const BackEnd& kind) { return std::string(kind.name) == name; };
        return *std::find_if(BackEnds().begin(), BackEnds().end(), isOurs);
    }
    std::unique_ptr<Place> Make() const { return Kind().make(); }
    // Ends with all nodes released and the place opened again, so that what is read was stored.
    void Settle(Place& place) const {
        if (!Kind().keeps) return;
        place.root.Release();
        place.root = place.Reopen();
    }
};

const std::vector<KnownPlace>& Places() {
    static const std::vector<KnownPlace> places = {
        {"Memory", model::OfMemory(), model::OfMemory()},
        {"IniFile", model::OfIniFile(), model::OfIniFile()},
        {"CurrentUser", model::OfRegistry(), model::OfRegistry()},
        {"Storage", model::OfStorage(), model::OfStorageByValuesFirst()},
    };
    return places;
}

// The forms of a whole tree: written from one node and read into another.
struct Form {
    const char* name;
    model::Losses losses;
    bool valuesFirst;
    // False when the form cannot take the tree at all.
    bool (*carry)(IParam* from, IParam* to);
};

bool CarryText(IParam* from, IParam* to) {
    constexpr int kLongestLine = 8191;
    CXString text;
    EXPECT_EQ(Param_Param2String(from, text), 1);
    if (text.GetSize() > kLongestLine) return false;
    EXPECT_EQ(Param_String2Param(text, to), 1);
    return true;
}

bool CarryFile(IParam* from, IParam* to) {
    static ScratchDirectory directory;
    std::string path = directory.PathOf("carried.ini");
    EXPECT_EQ(Param_Param2IniFile(from, path.c_str()), 1);
    EXPECT_EQ(Param_IniFile2Param(path.c_str(), to), 1);
    return true;
}

bool CarryStream(IParam* from, IParam* to) {
    qx::Reference<IXStream> stream(new_StreamOnMemory());
    EXPECT_EQ(SaveParamToXStream(stream.Get(), from), 1);
    stream->Seek(0, 0);
    EXPECT_EQ(LoadParamFromXStream(stream.Get(), to), 1);
    return true;
}

const std::vector<Form>& Forms() {
    static const std::vector<Form> forms = {
        {"text", model::OfIniText(), true, CarryText},
        {"file", model::OfIniText(), true, CarryFile},
        {"stream", model::OfStream(), false, CarryStream},
    };
    return forms;
}

// What a form does to a tree as it stands in a place: the ini forms leave out what cannot be read,
// the stream writes it as empty.
model::Tree Carried(const model::Tree& tree, const Form& form) {
    return model::Copied(model::Kept(tree, form.losses));
}

void ExpectTree(const model::Tree& expected, IParam* node) {
    EXPECT_EQ(model::Line(model::Read(node)), model::Line(expected));
}

// A copy of the tree in each place.
void ExpectCopies(const model::Tree& tree, IParam* root) {
    for (const KnownPlace& to : Places()) {
        std::unique_ptr<Place> second = to.Make();
        Param_CopyTo(root, second->root.Get());
        to.Settle(*second);
        SCOPED_TRACE(to.name);
        ExpectTree(model::Kept(model::Copied(tree), to.losses), second->root.Get());
    }
}

// Each form of the tree, read into one of the places; over the seeds into each of them.
void ExpectForms(const model::Tree& tree, IParam* root, unsigned seed) {
    for (const Form& form : Forms()) {
        const KnownPlace& to = Places()[seed++ % Places().size()];
        std::unique_ptr<Place> second = to.Make();
        if (!form.carry(root, second->root.Get())) continue;
        to.Settle(*second);
        SCOPED_TRACE(std::string(form.name) + " into " + to.name);
        const model::Losses& losses = form.valuesFirst ? to.valuesFirst : to.losses;
        ExpectTree(model::Kept(Carried(tree, form), losses), second->root.Get());
    }
}

}  // namespace

TEST(DifferentialTest, ModelsDoLoseSomethingAndKeepMost) {
    unsigned losing = 0, count = 0;
    ForTrees(200, kSome, [&](const model::Tree& tree, unsigned) {
        ++count;
        losing += model::Line(model::Kept(tree, model::OfIniFile())) != model::Line(tree);
        EXPECT_EQ(model::Line(model::Kept(tree, model::OfMemory())), model::Line(tree));
    });
    EXPECT_GT(losing, count / 4);
}

TEST(DifferentialTest, TreesComeBackFromMemoryTextAndStream) {
    unsigned carried = 0, count = 0;
    ForTrees(10000, kSome, [&](const model::Tree& tree, unsigned) {
        ParamPtr source(new_MemParam()), copy(new_MemParam());
        model::Write(tree, source.Get());
        ExpectTree(tree, source.Get());
        Param_CopyTo(source.Get(), copy.Get());
        ExpectTree(tree, copy.Get());
        for (const Form& form : Forms()) {
            if (form.carry == CarryFile) continue;
            ParamPtr target(new_MemParam());
            ++count;
            if (!form.carry(source.Get(), target.Get())) continue;
            ++carried;
            SCOPED_TRACE(form.name);
            ExpectTree(Carried(tree, form), target.Get());
        }
    });
    EXPECT_GT(carried, count * 9 / 10);
}

// Places into which a tree came from memory, so these pairs are seen when the places are made.
TEST(DifferentialTest, TreesComeBackThroughEveryPairOfBackEndsAndForms) {
    ForTrees(200, kFew, [](const model::Tree& tree, unsigned seed) {
        ParamPtr source(new_MemParam());
        model::Write(tree, source.Get());
        for (const KnownPlace& from : Places()) {
            std::unique_ptr<Place> first = from.Make();
            Param_CopyTo(source.Get(), first->root.Get());
            from.Settle(*first);
            model::Tree inFirst = model::Kept(tree, from.losses);
            SCOPED_TRACE(from.name);
            ExpectTree(inFirst, first->root.Get());
            bool isMemory = &from == &Places().front();
            if (!isMemory) ExpectCopies(inFirst, first->root.Get());
            ExpectForms(inFirst, first->root.Get(), seed);
            seed += static_cast<unsigned>(Forms().size());
        }
    });
}
