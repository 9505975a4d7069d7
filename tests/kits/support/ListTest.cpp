// BList: an array of untyped pointers.
#include <List.h>

#include <gtest/gtest.h>

#include <stdint.h>
#include <string.h>

#include <vector>

namespace {

void* item(intptr_t value) {
    return reinterpret_cast<void*>(value);
}

std::vector<intptr_t> contents(const BList& list) {
    std::vector<intptr_t> values;
    for (int32 index = 0; index < list.CountItems(); index++)
        values.push_back(reinterpret_cast<intptr_t>(list.ItemAt(index)));
    return values;
}

BList list_of(std::initializer_list<intptr_t> values) {
    BList list;
    for (intptr_t value : values)
        list.AddItem(item(value));
    return list;
}

int compare_values(const void* a, const void* b) {
    intptr_t first = *static_cast<const intptr_t*>(a);
    intptr_t second = *static_cast<const intptr_t*>(b);
    return first < second ? -1 : first > second ? 1 : 0;
}

} // namespace

TEST(List, NewListIsEmpty) {
    BList list;
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.CountItems(), 0);
    EXPECT_EQ(list.FirstItem(), nullptr);
    EXPECT_EQ(list.LastItem(), nullptr);
    EXPECT_EQ(list.ItemAt(0), nullptr);
}

TEST(List, AddItemAppends) {
    BList list;
    EXPECT_TRUE(list.AddItem(item(1)));
    EXPECT_TRUE(list.AddItem(item(2)));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 2}));
    EXPECT_EQ(list.FirstItem(), item(1));
    EXPECT_EQ(list.LastItem(), item(2));
}

TEST(List, AddItemAtIndexInserts) {
    BList list = list_of({1, 3});
    EXPECT_TRUE(list.AddItem(item(2), 1));
    EXPECT_TRUE(list.AddItem(item(0), 0));
    EXPECT_TRUE(list.AddItem(item(4), 4));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{0, 1, 2, 3, 4}));
}

TEST(List, AddItemOutsideTheListFails) {
    BList list = list_of({1});
    EXPECT_FALSE(list.AddItem(item(9), 2));
    EXPECT_FALSE(list.AddItem(item(9), -1));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1}));
}

TEST(List, GrowsPastItsBlockSize) {
    BList list(3);
    for (intptr_t value = 0; value < 1000; value++)
        ASSERT_TRUE(list.AddItem(item(value)));
    EXPECT_EQ(list.CountItems(), 1000);
    for (intptr_t value = 0; value < 1000; value++)
        ASSERT_EQ(list.ItemAt(value), item(value));
}

TEST(List, AddListAppendsAndInserts) {
    BList list = list_of({1, 4});
    BList middle = list_of({2, 3});
    EXPECT_TRUE(list.AddList(&middle, 1));
    EXPECT_TRUE(list.AddList(&middle));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 2, 3, 4, 2, 3}));
    EXPECT_FALSE(list.AddList(NULL));
    EXPECT_FALSE(list.AddList(&middle, 99));
}

TEST(List, AddListOfItselfDoublesTheItems) {
    BList list = list_of({1, 2, 3});
    EXPECT_TRUE(list.AddList(&list, 1));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 1, 2, 3, 2, 3}));
    BList other = list_of({5, 6});
    EXPECT_TRUE(other.AddList(&other));
    EXPECT_EQ(contents(other), (std::vector<intptr_t>{5, 6, 5, 6}));
}

TEST(List, RemoveItemByValueRemovesTheFirstOccurrence) {
    BList list = list_of({1, 2, 1});
    EXPECT_TRUE(list.RemoveItem(item(1)));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{2, 1}));
    EXPECT_FALSE(list.RemoveItem(item(7)));
}

TEST(List, RemoveItemByIndexReturnsTheItem) {
    BList list = list_of({1, 2, 3});
    EXPECT_EQ(list.RemoveItem((int32)1), item(2));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 3}));
    EXPECT_EQ(list.RemoveItem((int32)5), nullptr);
    EXPECT_EQ(list.RemoveItem((int32)-1), nullptr);
}

TEST(List, RemoveItemsClipsTheCountToTheList) {
    BList list = list_of({1, 2, 3, 4, 5});
    EXPECT_TRUE(list.RemoveItems(1, 2));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 4, 5}));
    EXPECT_TRUE(list.RemoveItems(1, 100));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1}));
    EXPECT_FALSE(list.RemoveItems(1, 1));
    EXPECT_FALSE(list.RemoveItems(-1, 1));
}

TEST(List, ReplaceItemChangesOneSlot) {
    BList list = list_of({1, 2});
    EXPECT_TRUE(list.ReplaceItem(1, item(5)));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 5}));
    EXPECT_FALSE(list.ReplaceItem(2, item(6)));
}

TEST(List, MakeEmptyLeavesNothing) {
    BList list = list_of({1, 2, 3});
    list.MakeEmpty();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_TRUE(list.AddItem(item(4)));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{4}));
}

TEST(List, ShrinksWhenItemsGoAndStaysUsable) {
    BList list(2);
    for (intptr_t value = 0; value < 500; value++)
        ASSERT_TRUE(list.AddItem(item(value)));
    ASSERT_TRUE(list.RemoveItems(3, 495));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{0, 1, 2, 498, 499}));
    for (intptr_t value = 0; value < 100; value++)
        ASSERT_TRUE(list.AddItem(item(value), 0));
    EXPECT_EQ(list.CountItems(), 105);
}

TEST(List, SortItemsPassesPointersToTheSlots) {
    BList list = list_of({3, 1, 2});
    list.SortItems(compare_values);
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 2, 3}));
}

TEST(List, SwapItemsExchangesTwoSlots) {
    BList list = list_of({1, 2, 3});
    EXPECT_TRUE(list.SwapItems(0, 2));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{3, 2, 1}));
    EXPECT_FALSE(list.SwapItems(0, 3));
}

TEST(List, MoveItemShiftsTheItemsBetween) {
    BList list = list_of({0, 1, 2, 3});
    EXPECT_TRUE(list.MoveItem(0, 2));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{1, 2, 0, 3}));
    EXPECT_TRUE(list.MoveItem(3, 0));
    EXPECT_EQ(contents(list), (std::vector<intptr_t>{3, 1, 2, 0}));
    EXPECT_FALSE(list.MoveItem(0, 4));
    EXPECT_FALSE(list.MoveItem(-1, 0));
}

TEST(List, ItemsIsTheArrayItself) {
    BList list = list_of({7, 8});
    void** items = static_cast<void**>(list.Items());
    EXPECT_EQ(items[0], item(7));
    EXPECT_EQ(items[1], item(8));
    EXPECT_EQ(list.ItemAtFast(1), item(8));
}

TEST(List, HasItemAndIndexOfFindItems) {
    BList list = list_of({4, 5});
    EXPECT_TRUE(list.HasItem(item(5)));
    EXPECT_TRUE(list.HasItem(static_cast<const void*>(item(4))));
    EXPECT_FALSE(list.HasItem(item(6)));
    EXPECT_EQ(list.IndexOf(item(5)), 1);
    EXPECT_EQ(list.IndexOf(static_cast<const void*>(item(6))), -1);
}

TEST(List, DoForEachStopsWhenTheFunctionSaysSo) {
    BList list = list_of({1, 2, 3, 4});
    static std::vector<intptr_t> sSeen;
    sSeen.clear();
    list.DoForEach([](void* value) {
        sSeen.push_back(reinterpret_cast<intptr_t>(value));
        return reinterpret_cast<intptr_t>(value) == 2;
    });
    EXPECT_EQ(sSeen, (std::vector<intptr_t>{1, 2}));
}

TEST(List, DoForEachPassesTheExtraArgument) {
    BList list = list_of({1, 2, 3});
    intptr_t sum = 0;
    list.DoForEach(
        [](void* value, void* total) {
            *static_cast<intptr_t*>(total) += reinterpret_cast<intptr_t>(value);
            return false;
        },
        &sum);
    EXPECT_EQ(sum, 6);
}

TEST(List, CopiesAreIndependentAndEqual) {
    BList list = list_of({1, 2});
    BList copy(list);
    EXPECT_TRUE(copy == list);
    copy.AddItem(item(3));
    EXPECT_TRUE(copy != list);
    EXPECT_EQ(list.CountItems(), 2);

    BList assigned;
    assigned = copy;
    EXPECT_EQ(contents(assigned), (std::vector<intptr_t>{1, 2, 3}));
    BList& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned.CountItems(), 3);
}

TEST(List, DeletingTheListLeavesTheItemsAlone) {
    int value = 5;
    {
        BList* list = new BList;
        list->AddItem(&value);
        delete list;
    }
    EXPECT_EQ(value, 5);
}
