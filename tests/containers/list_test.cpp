#include "containers/watched.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

template <class List>
std::string Joined(const List& list) {
    std::string all;
    for (auto at = list.GetHeadPosition(); at;) all += *list.GetNext(at);
    return all;
}

}  // namespace

TEST(ListTest, ANewListIsEmpty) {
    CTPList<const char*> list;
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
    EXPECT_EQ(list.destroyed, 0u);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
}

TEST(ListTest, ASingleItemLinksToItself) {
    CTPList<const char*> list;
    list.AddTail("a");
    EXPECT_EQ(list.count, 1u);
    EXPECT_EQ(list.head, list.tail);
    EXPECT_EQ(list.head->next, list.head);
    EXPECT_EQ(list.head->prev, list.head);
}

TEST(ListTest, ItemsAreLinkedInACircle) {
    CTPList<const char*> list;
    for (auto text : {"a", "b", "c"}) list.AddTail(text);
    EXPECT_EQ(list.count, 3u);
    EXPECT_EQ(list.tail->next, list.head);
    EXPECT_EQ(list.head->prev, list.tail);
    EXPECT_EQ(list.head->next, list.tail->prev);
}

TEST(ListTest, TheWalkGoesFromHeadToTailAndEndsInNull) {
    CTPList<const char*> list;
    list.AddTail("a");
    list.AddTail("b");
    auto at = list.GetHeadPosition();
    EXPECT_STREQ(*list.GetNext(at), "a");
    EXPECT_STREQ(*list.GetNext(at), "b");
    EXPECT_EQ(at, nullptr);
}

TEST(ListTest, GetNextGivesTheAddressOfTheStoredValue) {
    int destroyed = 0;
    CTPList<Owned*> list;
    list.AddTail(new Owned(1, &destroyed));
    auto at = list.GetHeadPosition();
    Owned** first = list.GetNext(at);
    at = list.GetHeadPosition();
    EXPECT_EQ(list.GetNext(at), first);
    EXPECT_EQ((*first)->number, 1);
}

TEST(ListTest, TextsAreCopied) {
    char text[] = "abc";
    CTPList<const char*> list;
    CTPList<char*> writable;
    list.AddTail(text);
    writable.AddTail(text);
    strcpy(text, "xyz");
    EXPECT_EQ(Joined(list), "abc");
    EXPECT_EQ(Joined(writable), "abc");
}

TEST(ListTest, RemoveAtTakesAnItemFromAnyPlace) {
    const char* expected[] = {"bc", "ac", "ab"};
    for (int place = 0; place < 3; ++place) {
        CTPList<const char*> list;
        for (auto text : {"a", "b", "c"}) list.AddTail(text);
        auto at = list.GetHeadPosition();
        for (int i = 0; i < place; ++i) list.GetNext(at);
        EXPECT_EQ(list.RemoveAt(at), 1);
        EXPECT_EQ(list.count, 2u);
        EXPECT_EQ(Joined(list), expected[place]);
        EXPECT_EQ(list.tail->next, list.head);
        EXPECT_EQ(list.head->prev, list.tail);
    }
}

TEST(ListTest, RemovingTheOnlyItemEmptiesTheList) {
    CTPList<const char*> list;
    list.AddTail("a");
    EXPECT_EQ(list.RemoveAt(list.GetHeadPosition()), 1);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
    list.AddTail("b");
    EXPECT_EQ(Joined(list), "b");
}

TEST(ListTest, OwnedRecordsAreDeletedWithTheirNode) {
    int removed = 0, cleared = 0, destroyed = 0;
    {
        CTPList<Owned*> list, other;
        list.AddTail(new Owned(1, &removed));
        list.AddTail(new Owned(2, &cleared));
        list.RemoveAt(list.GetHeadPosition());
        EXPECT_EQ(removed, 1);
        EXPECT_EQ(cleared, 0);
        list.RemoveAll();
        EXPECT_EQ(cleared, 1);
        other.AddTail(new Owned(3, &destroyed));
    }
    EXPECT_EQ(removed, 1);
    EXPECT_EQ(cleared, 1);
    EXPECT_EQ(destroyed, 1);
}

TEST(ListTest, AfterTheFinalClearingTheListStaysEmpty) {
    CTPList<const char*> list;
    list.AddTail("a");
    auto at = list.GetHeadPosition();
    list.RemoveAll();
    EXPECT_EQ(list.destroyed, 1u);
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
    list.AddTail("b");
    EXPECT_EQ(list.count, 0u);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.RemoveAt(at), 0);
}

TEST(ListTest, TheFinalClearingOfAnEmptyListIsFinalToo) {
    CTPList<const char*> list;
    list.RemoveAll();
    EXPECT_EQ(list.destroyed, 1u);
    list.AddTail("a");
    EXPECT_EQ(list.count, 0u);
}

TEST(ListTest, ARefusedRecordStaysWithTheCaller) {
    int destroyed = 0;
    Owned record(1, &destroyed);
    {
        CTPList<Owned*> list;
        list.RemoveAll();
        list.AddTail(&record);
    }
    EXPECT_EQ(destroyed, 0);
}

TEST(ListTest, ARemovalPassesOnWhatTheReleaseRaises) {
    int destroyed = 0;
    CTPList<IQXUnknown*> list;
    for (int i = 0; i < 2; ++i) {
        IQXUnknown* object = new Raising(&destroyed);
        list.AddTail(object);
        object->Release();
    }
    EXPECT_THROW(list.RemoveAt(list.GetHeadPosition()), CXException);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(list.count, 1u);
}

TEST(ListTest, TheFinalClearingReleasesAllAndPassesOnTheFirstFailure) {
    int destroyed = 0;
    CTPList<IQXUnknown*> list;
    for (int i = 0; i < 3; ++i) {
        IQXUnknown* object = new Raising(&destroyed);
        list.AddTail(object);
        object->Release();
    }
    EXPECT_THROW(list.RemoveAll(), CXException);
    EXPECT_EQ(destroyed, 3);
    EXPECT_EQ(list.count, 0u);
    list.RemoveAll();
}

TEST(ListTest, TheEndOfAListDropsWhatReleasesRaise) {
    int destroyed = 0;
    {
        CTPList<IQXUnknown*> list;
        for (int i = 0; i < 3; ++i) {
            IQXUnknown* object = new Raising(&destroyed);
            list.AddTail(object);
            object->Release();
        }
    }
    EXPECT_EQ(destroyed, 3);
}
