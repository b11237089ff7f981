#include "LibCore/ptrarray/zbptrarray.h"
#include "LibCore/ptrarray/zbptrarrayindex.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tervalon;

namespace {

struct Item {
    int key;
    std::string name;
    bool operator==(const Item& o) const { return key == o.key && name == o.name; }
};

int by_key(const Item& a, const Item& b)
{
    return a.key > b.key ? 1 : 0;
}

std::string names(const ZBPtrArray<Item>& array)
{
    std::string text;
    for (const Item* item : array)
        text += item->name + " ";
    return text;
}

ZBPtrArray<Item> make(std::initializer_list<Item> items)
{
    ZBPtrArray<Item> array;
    for (const Item& item : items)
        array.push_back(new Item(item));
    return array;
}

} // namespace

TEST(PtrArraySort, RunsOfEqualKeysTurnRoundOnEachSort)
{
    ZBPtrArray<Item> array = make({{1, "1a"}, {1, "1b"}, {1, "1c"}});
    array.sort(by_key);
    EXPECT_EQ(names(array), "1c 1b 1a ");
    array.sort(by_key);
    EXPECT_EQ(names(array), "1a 1b 1c ");
}

TEST(PtrArraySort, OrdersMixedKeysAndReversesTiesWithin)
{
    ZBPtrArray<Item> array = make({{3, "3a"}, {1, "1a"}, {2, "2a"}, {1, "1b"}, {3, "3b"}, {0, "0a"}});
    array.sort(by_key);
    EXPECT_EQ(names(array), "0a 1b 1a 2a 3b 3a ");
}

TEST(PtrArraySort, SubRangeLeavesTheRestAlone)
{
    ZBPtrArray<Item> array = make({{9, "9"}, {3, "3"}, {1, "1"}, {2, "2"}, {0, "0"}});
    array.sort(by_key, 1, 3);
    EXPECT_EQ(names(array), "9 1 2 3 0 ");
}

TEST(PtrArraySort, BadArgumentsReportAndLeaveTheArray)
{
    ZBPtrArray<Item> array = make({{2, "2"}, {1, "1"}});
    EXPECT_TRUE(iszberr(array.sort(by_key, 5)));
    EXPECT_TRUE(iszberr(array.sort(nullptr)));
    EXPECT_EQ(names(array), "2 1 ");
    get_zberror().clear_all();
}

TEST(PtrArray, BoundsAreReportedNotThrown)
{
    ZBPtrArray<Item> array = make({{1, "a"}});
    EXPECT_EQ(array.at(-1), nullptr);
    EXPECT_EQ(array[1], nullptr);
    ASSERT_NE(get_zberror().top(), nullptr);
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "Element 1 out of bounds (1 items)");
    get_zberror().clear_all();
}

TEST(PtrArray, UnmanagedArrayDeletesNothing)
{
    Item item{1, "kept"};
    {
        ZBPtrArray<Item> view(false);
        view.push_back(&item);
        view.clear();
        view.push_back(&item);
    }
    EXPECT_EQ(item.name, "kept");
}

TEST(PtrArray, CopyOfManagedArrayIsDeep)
{
    ZBPtrArray<Item> array = make({{1, "a"}});
    ZBPtrArray<Item> copy(array);
    EXPECT_NE(copy[0], array[0]);
    EXPECT_TRUE(copy == array);
    copy[0]->name = "b";
    EXPECT_FALSE(copy == array);
}

TEST(PtrArrayIndex, ReplaceKeepsOrderAndRewritesTheKey)
{
    ZBPtrArrayIndex<Item, int> index;
    index.add(10, new Item{10, "a"});
    index.add(20, new Item{20, "b"});
    index.add(30, new Item{30, "c"});
    index.replace(1, new Item{20, "B"});
    EXPECT_EQ(index.find(20)->name, "B");
    EXPECT_EQ(index[1]->name, "B");
    EXPECT_EQ(index.tag(1), 20);
    Item* taken = index.extract_value(10);
    ASSERT_NE(taken, nullptr);
    delete taken;
    EXPECT_EQ(index.find(10), nullptr);
    EXPECT_EQ(index.size(), 2);
    EXPECT_EQ(index.tag(0), 20);
}
