#include <gtest/gtest.h>
#include <qxcore.h>

#include <memory>
#include <string>
#include <thread>
#include <type_traits>

struct IMissing;
QX_DECLARE_TYPEID(IMissing, ".?AUIMissing@@");

TEST(ExceptionTest, EachClassHasItsCode) {
    EXPECT_EQ(CXMemException().GetCode(), 2);
    EXPECT_EQ(CXEofException().GetCode(), 4);
    EXPECT_EQ(CXIFaceException(qx_typeid<IMissing>()).GetCode(), 10);
    EXPECT_EQ(CXException(34).GetCode(), 34);
    EXPECT_EQ(CXFileException(6, "name", 0).GetCode(), 6);
}

TEST(ExceptionTest, TheModuleIsTheLibrarysOwn) {
    EXPECT_EQ(CXException(1).module, GetModuleHandleA("qxcore.dll"));
    EXPECT_EQ(CXFileException(1, "x", 0).module, GetModuleHandleA("qxcore.dll"));
}

TEST(ExceptionTest, AnInterfaceExceptionNamesTheMissingInterface) {
    EXPECT_EQ(CXIFaceException(qx_typeid<IMissing>()).type, &qx_typeid<IMissing>());
}

TEST(ExceptionTest, ReportChangesNothing) {
    CXFileException e(6, "name", 3);
    e.Report();
    EXPECT_EQ(e.GetCode(), 6);
    EXPECT_STREQ(e.name, "name");
    EXPECT_EQ(e.operation, 3);
}

TEST(ExceptionTest, EveryClassDerivesDirectlyFromTheRoot) {
    EXPECT_TRUE((std::is_base_of_v<CXException, CXMemException>));
    EXPECT_TRUE((std::is_base_of_v<CXException, CXEofException>));
    EXPECT_TRUE((std::is_base_of_v<CXException, CXFileException>));
    EXPECT_TRUE((std::is_base_of_v<CXException, CXIFaceException>));
    EXPECT_FALSE((std::is_base_of_v<IQXUnknown, CXException>));
}

TEST(ExceptionTest, ACatchOfTheRootCatchesTheFamilyThrownByTheLibrary) {
    int code = 0;
    try {
        Mem_DefaultHeap(0)->Alloc(size_t(1) << 60);
    } catch (CXException& e) {
        code = e.GetCode();
    }
    EXPECT_EQ(code, 2);
}

TEST(FileExceptionTest, KeepsCodeNameAndOperation) {
    CXFileException e(7, "c:\\missing.txt", 8);
    EXPECT_EQ(e.code, 7);
    EXPECT_STREQ(e.name, "c:\\missing.txt");
    EXPECT_EQ(e.operation, 8);
}

TEST(FileExceptionTest, ANullNameGivesAnEmptyNameAndNotANullPointer) {
    CXFileException e(7, nullptr, 0);
    ASSERT_NE(e.name, nullptr);
    EXPECT_STREQ(e.name, "");
}

TEST(FileExceptionTest, ANullNameLeavesItsBufferUnmarked) {
    CXFileException unnamed(7, nullptr, 0);
    CXFileException named(7, "a", 0);
    EXPECT_EQ(unnamed.name, named.name);
}

TEST(FileExceptionTest, TheFifthAtOnceOverwritesTheFirstOnesName) {
    CXFileException first(1, "first", 0), second(1, "second", 0), third(1, "third", 0),
        fourth(1, "fourth", 0);
    EXPECT_STREQ(first.name, "first");
    CXFileException fifth(1, "fifth", 0);
    EXPECT_EQ(fifth.name, first.name);
    EXPECT_STREQ(first.name, "fifth");
    EXPECT_STREQ(second.name, "second");
    EXPECT_STREQ(third.name, "third");
    EXPECT_STREQ(fourth.name, "fourth");
}

TEST(FileExceptionTest, ANullNameWithAllBuffersBusyEmptiesTheFirst) {
    CXFileException first(1, "first", 0), second(1, "second", 0), third(1, "third", 0),
        fourth(1, "fourth", 0);
    CXFileException fifth(1, nullptr, 0);
    EXPECT_EQ(fifth.name, first.name);
    EXPECT_STREQ(fifth.name, "");
}

TEST(FileExceptionTest, TheDestructorFreesTheBufferForTheNext) {
    CXFileException first(1, "first", 0);
    char* freed;
    {
        CXFileException second(1, "second", 0);
        freed = second.name;
        EXPECT_NE(freed, first.name);
    }
    EXPECT_EQ(freed[0], 0);
    CXFileException third(1, "third", 0);
    EXPECT_EQ(third.name, freed);
}

TEST(FileExceptionTest, ACopySharesTheBufferAndFreesItForBoth) {
    CXFileException original(1, "shared", 0);
    {
        CXFileException copy(original);
        EXPECT_EQ(copy.name, original.name);
        EXPECT_STREQ(copy.name, "shared");
    }
    EXPECT_STREQ(original.name, "");
}

TEST(FileExceptionTest, AThrownTemporaryArrivesWithItsName) {
    try {
        throw CXFileException(6, "thrown.txt", 12);
    } catch (CXFileException& e) {
        EXPECT_STREQ(e.name, "thrown.txt");
        EXPECT_EQ(e.operation, 12);
    }
}

TEST(FileExceptionTest, ANameOver511BytesIsCut) {
    std::string name(600, 'n');
    CXFileException e(1, name.c_str(), 0);
    EXPECT_EQ(std::string(e.name), std::string(511, 'n'));
    CXFileException next(1, "next", 0);
    EXPECT_STREQ(next.name, "next");
    EXPECT_EQ(std::string(e.name), std::string(511, 'n'));
}

TEST(FileExceptionTest, ANameThatLiesInTheBufferItIsCopiedToStays) {
    CXFileException first(1, "first", 0), second(1, "second", 0), third(1, "third", 0),
        fourth(1, "fourth", 0);
    CXFileException again(2, first.name, 0);  // takes the first buffer, as all are in use
    EXPECT_EQ(again.name, first.name);
    EXPECT_STREQ(again.name, "first");
}

TEST(FileExceptionTest, TheEndOfANameCanBeCopiedOverItsStart) {
    CXFileException first(1, "c:\\folder\\first", 0), second(1, "second", 0), third(1, "third", 0),
        fourth(1, "fourth", 0);
    CXFileException again(2, first.name + 3, 0);
    EXPECT_STREQ(again.name, "folder\\first");
}

TEST(FileExceptionTest, ThreadsThatRaiseAtOnceWriteBehindNoBuffer) {
    // With the other three in use both threads take the same buffer. A name that were put behind
    // the end of what the other thread wrote would reach into a neighbour.
    CXFileException first(1, "first", 0), second(1, "second", 0), third(1, "third", 0),
        fourth(1, "fourth", 0);
    auto raise = [](char letter) {
        std::string name(511, letter);
        for (int i = 0; i < 200000; ++i) {
            CXFileException raised(1, name.c_str(), 0);
            raised.name[0] = letter;  // the destructor of the other thread's may have cleared it
        }
    };
    std::thread one(raise, 'a'), other(raise, 'b');
    one.join();
    other.join();
    EXPECT_STREQ(second.name, "second");
    EXPECT_STREQ(third.name, "third");
    EXPECT_STREQ(fourth.name, "fourth");
}
