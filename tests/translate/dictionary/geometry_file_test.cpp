#include "param/small_stack.h"
#include "support/allocation_failure.h"
#include "support/build_kind.h"
#include "translate/dictionary/dictionary_fixture.h"
#include "translate/places/module_copy.h"

#include <memory>

namespace {

// A dictionary with a geometry file beside it.
class Geometry {
public:
    int Init(const std::string& dlg) { return Add(dlg); }
    int Add(const std::string& dlg) {
        std::string name = "g" + std::to_string(m_files++);
        m_directory.Write(name + ".dlg", dlg);
        return dictionary.Add(m_directory.Write(name + ".wld", "\"Open\"\n\"Auf\"\n").c_str());
    }

    QXDlgPos* Of(const char* key) {
        QXDlgPos** found =
            dictionary.m_DlgPos.Find(HashResourceKey((std::string(key) + kKeyEnd).c_str()));
        return found ? *found : nullptr;
    }
    // "left,top,right,bottom" of a control, "" when there is none.
    std::string Edges(const char* key, unsigned control) {
        QXDlgPos* geometry = Of(key);
        CIRect* edges = geometry ? geometry->m_Rects.Find(control) : nullptr;
        if (!edges) return "";
        return std::to_string(edges->left) + "," + std::to_string(edges->top) + "," +
               std::to_string(edges->right) + "," + std::to_string(edges->bottom);
    }

    CWld dictionary;

private:
    ScratchDirectory m_directory;
    int m_files = 0;
};

}  // namespace

TEST(GeometryFileTest, DialogsByNumberAndByNameHaveTheirContextKeys) {
    Geometry g;
    EXPECT_EQ(1,
              g.Init("[\\view.dll\\Dialogs\\#130]\r\nDialog Size=z10,20\r\n0=t1,2,3,4\r\n"
                     "[\\view.dll\\Dialogs\\SETTINGS]\r\nDialog Size=z-5,0\r\n7=t-1,-2,-3,-4\r\n"));
    EXPECT_EQ(2u, g.dictionary.m_DlgPos.count);
    ASSERT_NE(nullptr, g.Of("view.dll#1#130"));
    EXPECT_EQ(10, g.Of("view.dll#1#130")->m_Size.cx);
    EXPECT_EQ(20, g.Of("view.dll#1#130")->m_Size.cy);
    EXPECT_EQ("1,2,3,4", g.Edges("view.dll#1#130", 0));
    ASSERT_NE(nullptr, g.Of("view.dll#1#SETTINGS"));
    EXPECT_EQ(-5, g.Of("view.dll#1#SETTINGS")->m_Size.cx);
    EXPECT_EQ("-1,-2,-3,-4", g.Edges("view.dll#1#SETTINGS", 7));
}

TEST(GeometryFileTest, KeysAreThoseOfMakeResourceKey) {
    ModuleCopy module("VIEW.dll");
    Geometry g;
    g.Init(
        "[\\view.DLL\\Dialogs\\#130]\r\n5=t1,1,1,1\r\n[\\View.dll\\Dialogs\\settings]\r\n6=t1,1,1,"
        "1\r\n");
    char key[300] = "";
    MakeResourceKey(module.Handle(), UINT_PTR(130), key, QXKEY_DIALOG);
    QXDlgPos** number = g.dictionary.m_DlgPos.Find(HashResourceKey(key));
    ASSERT_NE(nullptr, number) << "case does not count";
    EXPECT_NE(nullptr, (*number)->m_Rects.Find(5));
    MakeResourceKey(module.Handle(), "SETTINGS", key, QXKEY_DIALOG);
    EXPECT_NE(nullptr, g.dictionary.m_DlgPos.Find(HashResourceKey(key)));
}

TEST(GeometryFileTest, DialogSizeAloneIsARecordWithAnEmptyControlMap) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#1]\r\nDialog Size=z3,4\r\n");
    ASSERT_NE(nullptr, g.Of("view.dll#1#1"));
    EXPECT_EQ(3, g.Of("view.dll#1#1")->m_Size.cx);
    EXPECT_EQ(0u, g.Of("view.dll#1#1")->m_Rects.count);
}

TEST(GeometryFileTest, MissingDialogSizeIsNone) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#1]\r\n2=t1,2,3,4\r\n");
    ASSERT_NE(nullptr, g.Of("view.dll#1#1"));
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cx);
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cy);
}

TEST(GeometryFileTest, ValuesOfOtherTypesArePassedOver) {
    Geometry g;
    g.Init(
        "[\\view.dll\\Dialogs\\#1]\r\nDialog "
        "Size=p3,4\r\n1=z1,2\r\n2=i5\r\n3=s1,2,3,4\r\n4=T1,2,3,4\r\n"
        "5=t1,2,3,4\r\nbare\r\n");
    ASSERT_NE(nullptr, g.Of("view.dll#1#1"));
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cx) << "a point is no size";
    EXPECT_EQ(1u, g.Of("view.dll#1#1")->m_Rects.count);
    EXPECT_EQ("1,2,3,4", g.Edges("view.dll#1#1", 5));
}

TEST(GeometryFileTest, DialogSizeThatIsARectangleIsControlZero) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#1]\r\nDialog Size=t1,2,3,4\r\n");
    ASSERT_NE(nullptr, g.Of("view.dll#1#1"));
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cx);
    EXPECT_EQ("1,2,3,4", g.Edges("view.dll#1#1", 0));
}

TEST(GeometryFileTest, DialogWithoutValuesIsARecordWithoutDeltas) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#1]\r\n");
    ASSERT_NE(nullptr, g.Of("view.dll#1#1"));
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cx);
    EXPECT_EQ(0u, g.Of("view.dll#1#1")->m_Rects.count);
}

TEST(GeometryFileTest, NumberOfADialogIsTakenAsItIsWritten) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#0130]\r\n0=t1,2,3,4\r\n");
    EXPECT_EQ(nullptr, g.Of("view.dll#1#130"));
    EXPECT_NE(nullptr, g.Of("view.dll#1#0130"));
}

TEST(GeometryFileTest, NameThatIsNoNumberCountsAsControlZeroAndTheLaterValueStands) {
    Geometry g;
    g.Init(
        "[\\view.dll\\Dialogs\\#1]\r\n0=t1,1,1,1\r\nOK button=t2,2,2,2\r\n12 apples=t3,3,3,3\r\n");
    EXPECT_EQ("2,2,2,2", g.Edges("view.dll#1#1", 0));
    EXPECT_EQ("3,3,3,3", g.Edges("view.dll#1#1", 12));
}

TEST(GeometryFileTest, ModulesWithoutDialogsAreSkipped) {
    Geometry g;
    EXPECT_EQ(1, g.Init("[\\other.dll\\Menus\\#1]\r\n0=t1,1,1,1\r\n[\\plain.dll]\r\nx=i5\r\n"
                        "[\\view.dll\\Dialogs\\#1]\r\n0=t1,2,3,4\r\n"));
    EXPECT_EQ(1u, g.dictionary.m_DlgPos.count);
    EXPECT_EQ("1,2,3,4", g.Edges("view.dll#1#1", 0));
}

TEST(GeometryFileTest, OfTwoGeometriesOfOneDialogTheSecondStands) {
    Geometry g;
    g.Init("[\\view.dll\\Dialogs\\#1]\r\nDialog Size=z1,1\r\n0=t1,1,1,1\r\n1=t1,1,1,1\r\n");
    EXPECT_EQ(1, g.Add("[\\view.dll\\Dialogs\\#1]\r\n0=t2,2,2,2\r\n"));
    EXPECT_EQ(1u, g.dictionary.m_DlgPos.count);
    EXPECT_EQ("2,2,2,2", g.Edges("view.dll#1#1", 0));
    EXPECT_EQ("", g.Edges("view.dll#1#1", 1)) << "the record is replaced, not merged";
    EXPECT_EQ(0, g.Of("view.dll#1#1")->m_Size.cx);
}

TEST(GeometryFileTest, MissingGeometryFileChangesNothing) {
    ScratchDirectory directory;
    CWld d;
    EXPECT_EQ(1, d.Init(directory.Write("alone.wld", "\"Open\"\n\"Auf\"\n").c_str()));
    EXPECT_EQ(0u, d.m_DlgPos.count);
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
}

TEST(GeometryFileTest, GeometryIsLookedForUnderTheDictionarysOwnName) {
    ScratchDirectory directory;
    directory.Write("german.dlg", "[\\view.dll\\Dialogs\\#1]\r\n0=t1,2,3,4\r\n");
    CWld d;
    EXPECT_EQ(1, d.Init(directory.Write("german", "").c_str()))
        << "also where the dictionary has no extension";
    EXPECT_EQ(1u, d.m_DlgPos.count);
    CWld other;
    EXPECT_EQ(1, other.Init(directory.Write("german.txt", "").c_str()));
    EXPECT_EQ(1u, other.m_DlgPos.count);
}

TEST(GeometryFileTest, FileThatIncludesAMissingOneIsUnreadableAsAWhole) {
    Geometry g;
    EXPECT_EQ(1, g.Init("[\\view.dll\\Dialogs\\#1]\r\n0=t1,2,3,4\r\n#include missing.ini\r\n"));
    EXPECT_EQ(0u, g.dictionary.m_DlgPos.count);
    EXPECT_EQ(1, g.dictionary.m_bInit);
}

TEST(GeometryFileTest, LineOfNulsPassesItsExceptionThrough) {
    ScratchDirectory directory;
    directory.Write("a.dlg",
                    std::string("[\\view.dll\\Dialogs\\#1]\r\n\0\0\r\n0=t1,2,3,4\r\n", 41));
    CWld d;
    try {
        d.Init(directory.Write("a.wld", "\"Open\"\n\"Auf\"\n").c_str());
        ADD_FAILURE() << "nothing was thrown";
    } catch (CXException& failure) {
        EXPECT_EQ(QXERR_INI_LINE, failure.GetCode());
    }
    EXPECT_EQ(0, d.m_bInit);
    EXPECT_STREQ("Auf", d.Translate("Open", 1));
    EXPECT_EQ(0u, d.m_DlgPos.count);
}

TEST(GeometryFileTest, MissingDictionaryLeavesItsGeometryUnread) {
    ScratchDirectory directory;
    directory.Write("a.dlg", "[\\view.dll\\Dialogs\\#1]\r\n0=t1,2,3,4\r\n");
    CWld d;
    EXPECT_EQ(0, d.Init(directory.PathOf("a.wld").c_str()));
    EXPECT_EQ(0u, d.m_DlgPos.count);
}

TEST(GeometryFileTest, ReadingSurvivesEveryFailingAllocation) {
    ScratchDirectory directory;
    directory.Write(
        "a.dlg", "[\\view.dll\\Dialogs\\#1]\r\nDialog Size=z1,1\r\n0=t1,2,3,4\r\n1=t1,1,1,1\r\n");
    std::string path = directory.Write("a.wld", "");
    auto make = [] { return std::make_unique<CWld>(); };
    auto read = [&](auto& d) { d->Init(path.c_str()); };
    auto isUsable = [&](auto& d) {
        EXPECT_EQ(1, d->Add(path.c_str()));
        EXPECT_EQ(1u, d->m_DlgPos.count);
    };
    // A geometry file that cannot be opened for want of memory counts as missing.
    EXPECT_GT(FailEachAllocation(make, read, isUsable, true), 10u);
}

TEST(GeometryFileTest, HeadingsNestedToAnyDepthAreReadOnASmallStack) {
    const size_t kLevels = kHasGuardPages ? 300 : 4000;
    std::string deep = "[" + std::string(kLevels, '\\');
    std::string dlg = deep + "]\r\n" + deep + "k=t1,2,3,4\r\n[\\view.dll\\Dialogs\\#130" +
                      deep.substr(1) + "]\r\n0=t5,6,7,8\r\n[\\view.dll\\Dialogs\\#131]\r\n" +
                      "0=t1,2,3,4\r\n";
    OnSmallStack([&] {
        Geometry g;
        EXPECT_EQ(1, g.Init(dlg));
        EXPECT_EQ("1,2,3,4", g.Edges("view.dll#1#131", 0));
    });
}
