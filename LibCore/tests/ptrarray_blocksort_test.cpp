#include "LibCore/ptrarray/zbptrarray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

using namespace Tervalon;

namespace {

struct Item {
    int key;
    int serial;
    bool operator==(const Item& o) const { return key == o.key && serial == o.serial; }
};

int by_key(const Item& a, const Item& b)
{
    return a.key > b.key;
}

// Not an ordering at all: the answer depends on the pair by a hash. The result
// of the sort then depends on which elements it probes, so only a probe-for-probe
// copy of the short-range loop gives the same order.
int by_hash(const Item& a, const Item& b)
{
    std::uint32_t h = std::uint32_t(a.serial) * 2654435761u ^ std::uint32_t(b.serial) * 40503u;
    return (h >> 7) & 1;
}

// The short-range loop, as the sort runs it below its block threshold.
std::vector<int> reference(std::vector<Item> items, int (*compare)(const Item&, const Item&))
{
    std::vector<Item*> data;
    for (Item& item : items)
        data.push_back(&item);
    const int last = int(data.size()) - 1;
    for (int i = last - 1; i >= 0; --i) {
        Item* e = data[size_t(i)];
        int lo = i + 1, hi = last + 1, mid = lo;
        bool place = false;
        for (;;) {
            mid = (lo + hi) / 2;
            if (compare(*data[size_t(mid)], *e)) {
                if (lo >= mid)
                    break;
                hi = mid;
            } else {
                if (hi - mid < 2) {
                    place = true;
                    break;
                }
                lo = mid;
            }
        }
        if (place) {
            std::move(data.begin() + i + 1, data.begin() + mid + 1, data.begin() + i);
            data[size_t(mid)] = e;
        }
    }
    std::vector<int> serials;
    for (Item* item : data)
        serials.push_back(item->serial);
    return serials;
}

std::vector<Item> make_items(int n, int keys)
{
    std::vector<Item> items;
    std::uint32_t state = 12345;
    for (int i = 0; i < n; ++i) {
        state = state * 1103515245u + 12345u;
        items.push_back({int((state >> 8) % std::uint32_t(keys)), i});
    }
    return items;
}

std::vector<int> sorted_serials(const std::vector<Item>& items, int (*compare)(const Item&, const Item&), int first = 0,
                                int last = -1)
{
    ZBPtrArray<Item> array;
    for (const Item& item : items)
        array.push_back(new Item(item));
    EXPECT_FALSE(iszbwarn(array.sort(compare, first, last)));
    std::vector<int> serials;
    for (const Item* item : array)
        serials.push_back(item->serial);
    return serials;
}

TEST(PtrArrayBlockSort, LongRangeGivesTheSameOrderAsTheShortRangeLoop)
{
    const int n = 3 * ZBPtrArray<Item>::C_BlockSortMin + 17;
    std::vector<Item> items = make_items(n, 50);
    EXPECT_EQ(sorted_serials(items, by_key), reference(items, by_key));
}

TEST(PtrArrayBlockSort, LongRangeMatchesEvenForACompareThatIsNoOrdering)
{
    std::vector<Item> items = make_items(2 * ZBPtrArray<Item>::C_BlockSortMin + 5, 10);
    EXPECT_EQ(sorted_serials(items, by_hash), reference(items, by_hash));
}

TEST(PtrArrayBlockSort, RunsOfEqualsComeOutTurnedRound)
{
    // For a true ordering the result is the stable order of the reversed input.
    std::vector<Item> items = make_items(5000, 7);
    std::vector<Item> expected(items.rbegin(), items.rend());
    std::stable_sort(expected.begin(), expected.end(), [](const Item& a, const Item& b) { return a.key < b.key; });
    std::vector<int> serials;
    for (const Item& item : expected)
        serials.push_back(item.serial);
    EXPECT_EQ(sorted_serials(items, by_key), serials);
}

TEST(PtrArrayBlockSort, LongSubRangeLeavesTheEndsAlone)
{
    std::vector<Item> items = make_items(4000, 100);
    std::vector<int> got = sorted_serials(items, by_key, 10, 3989);
    std::vector<Item> middle(items.begin() + 10, items.begin() + 3990);
    std::vector<int> expected;
    for (int i = 0; i < 10; ++i)
        expected.push_back(i);
    for (int serial : reference(middle, by_key))
        expected.push_back(serial);
    for (int i = 3990; i < 4000; ++i)
        expected.push_back(i);
    EXPECT_EQ(got, expected);
}

} // namespace
