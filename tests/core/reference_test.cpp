// A reference that ends with its scope.
#include <qxcore/exception.h>
#include <qxcore/heap.h>
#include <qxcore/reference.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

struct IFigure : IQXUnknown {
    virtual int Corners() = 0;
};

}  // namespace

QX_DECLARE_TYPEID(IFigure, ".?AUIFigure@@");

namespace {

int g_figures = 0;

class Figure : public CQXUnknownImpl<IFigure> {
public:
    explicit Figure(int corners) : m_corners(corners) { ++g_figures; }
    ~Figure() override { --g_figures; }
    int Corners() override { return m_corners; }

private:
    int m_corners;
};

// Its last release fails the way that closing a file does.
class Unclosable : public Figure {
public:
    Unclosable() : Figure(0) {}
    unsigned Release() override {
        if (Figure::Release() == 0) throw CXException(2);
        return 1;
    }
};

class ReferenceTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(g_figures, 0); }
};

unsigned CountOf(IQXUnknown* object) {
    object->AddRef();
    return object->Release();
}

TEST_F(ReferenceTest, IsAsLargeAsAPointer) {
    EXPECT_EQ(sizeof(qx::Reference<IFigure>), sizeof(IFigure*));
}

TEST_F(ReferenceTest, TakesOverWhatACreatorGives) {
    qx::Reference<IFigure> figure(new Figure(3));
    EXPECT_EQ(CountOf(figure.Get()), 1u);
    EXPECT_EQ(figure->Corners(), 3);
}

TEST_F(ReferenceTest, HoldTakesAFurtherReferenceOnWhatIsBorrowed) {
    qx::Reference<Figure> figure = qx::Make<Figure>(4);
    {
        auto held = qx::Hold<IFigure>(figure.Get());
        EXPECT_EQ(CountOf(figure.Get()), 2u);
        EXPECT_EQ(held.Get(), figure.Get());
    }
    EXPECT_EQ(CountOf(figure.Get()), 1u);
}

TEST_F(ReferenceTest, NullIsNoObjectInEveryPlace) {
    qx::Reference<IFigure> none, alsoNone(nullptr), copy = none;
    EXPECT_FALSE(none || alsoNone || copy);
    EXPECT_EQ(none.Get(), nullptr);
    EXPECT_EQ(none.Share(), nullptr);
    EXPECT_EQ(none.Detach(), nullptr);
    EXPECT_FALSE(qx::Hold<IFigure>(nullptr));
    EXPECT_FALSE(qx::Ask<IFigure>(nullptr));
    none.Release();
    none = alsoNone;
}

TEST_F(ReferenceTest, ACopyIsAFurtherReference) {
    auto first = qx::Make<Figure>(3);
    qx::Reference<IFigure> second = first, third;
    third = second;
    EXPECT_EQ(CountOf(first.Get()), 3u);
}

TEST_F(ReferenceTest, AMoveLeavesTheSourceWithoutAnObject) {
    auto first = qx::Make<Figure>(3);
    qx::Reference<IFigure> second = std::move(first), third;
    third = std::move(second);
    EXPECT_FALSE(first || second);
    EXPECT_EQ(CountOf(third.Get()), 1u);
}

TEST_F(ReferenceTest, AssignedToItselfKeepsItsObject) {
    auto figure = qx::Make<Figure>(3);
    auto& same = figure;
    figure = same;
    figure = std::move(same);
    ASSERT_TRUE(figure);
    EXPECT_EQ(CountOf(figure.Get()), 1u);
}

TEST_F(ReferenceTest, AnAssignmentLetsTheOldObjectGo) {
    auto figure = qx::Make<Figure>(3);
    figure = qx::Make<Figure>(4);
    EXPECT_EQ(g_figures, 1);
    figure = nullptr;
    EXPECT_EQ(g_figures, 0);
}

TEST_F(ReferenceTest, DetachHandsOutTheReferenceItself) {
    auto figure = qx::Make<Figure>(3);
    IFigure* raw = figure.Detach();
    EXPECT_FALSE(figure);
    EXPECT_EQ(raw->Release(), 0u);
}

TEST_F(ReferenceTest, ShareHandsOutAFurtherReference) {
    auto figure = qx::Make<Figure>(3);
    EXPECT_EQ(figure.Share()->Release(), 1u);
}

TEST_F(ReferenceTest, SwapExchangesTheObjectsAndCountsNothing) {
    auto triangle = qx::Make<Figure>(3), square = qx::Make<Figure>(4);
    triangle.Swap(square);
    EXPECT_EQ(triangle->Corners(), 4);
    EXPECT_EQ(square->Corners(), 3);
    EXPECT_EQ(CountOf(square.Get()), 1u);
}

TEST_F(ReferenceTest, ReceiveTakesWhatAnOutParameterGivesAndLetsTheOldObjectGo) {
    auto give = [](IFigure** out) { *out = new Figure(5); };
    qx::Reference<IFigure> figure(new Figure(3));
    give(figure.Receive());
    EXPECT_EQ(figure->Corners(), 5);
    EXPECT_EQ(g_figures, 1);
}

TEST_F(ReferenceTest, AskTakesTheReferenceThatTheQueryGives) {
    auto figure = qx::Make<Figure>(3);
    {
        auto asked = qx::Ask<IFigure>(figure.Get());
        EXPECT_EQ(asked.Get(), figure.Get());
        EXPECT_EQ(CountOf(figure.Get()), 2u);
    }
    EXPECT_FALSE(qx::Ask<IHeap>(figure.Get()));
    EXPECT_EQ(CountOf(figure.Get()), 1u);
}

TEST_F(ReferenceTest, ReleasePassesOnWhatTheObjectRaisesAndHoldsNothingAfterwards) {
    qx::Reference<IFigure> figure(new Unclosable);
    try {
        figure.Release();
        ADD_FAILURE() << "the failure was swallowed";
    } catch (CXException& failure) {
        EXPECT_EQ(failure.GetCode(), 2);
    }
    EXPECT_FALSE(figure);
}

TEST_F(ReferenceTest, TheEndOfTheScopeDropsWhatTheObjectRaises) {
    { qx::Reference<IFigure> figure(new Unclosable); }
    EXPECT_EQ(g_figures, 0);
}

TEST_F(ReferenceTest, AFailureOnItsWayReachesTheCallerPastAReleaseThatRaisesToo) {
    try {
        qx::Reference<IFigure> figure(new Unclosable);
        throw CXException(7);
    } catch (CXException& failure) {
        EXPECT_EQ(failure.GetCode(), 7);
    }
    EXPECT_EQ(g_figures, 0);
}

TEST_F(ReferenceTest, AnAssignmentDropsWhatTheOldObjectRaises) {
    qx::Reference<IFigure> figure(new Unclosable);
    figure = qx::Make<Figure>(4);
    EXPECT_EQ(figure->Corners(), 4);
}

TEST_F(ReferenceTest, ReceivePassesOnWhatTheOldObjectRaises) {
    qx::Reference<IFigure> figure(new Unclosable);
    EXPECT_THROW(figure.Receive(), CXException);
    EXPECT_FALSE(figure);
}

}  // namespace
