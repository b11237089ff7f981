#include "LibDate/dateset/zbdateset.h"
#include "LibDate/dateset/zbdatesetgroup.h"
#include "LibDate/dateset/zbdatetable.h"
#include "LibDate/dateset/zbtimeseries.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

// Hours of Monday 9 March 2026, GMT.
ZBDate h(int hour)
{
    return ZBDate(2026, 2, 8, 0, 0, 0, 0, ZBDate::C_GMT) + ZBDuration(std::int64_t(hour) * 3600);
}

ZBDateSlot s(int from, int to)
{
    return ZBDateSlot(h(from), h(to));
}

// The set as "from-to:type" in hours, for whole-set comparisons.
std::string text(const ZBDateSet& set)
{
    std::ostringstream out;
    for (int i = 0; i < set.size(); ++i) {
        const ZBDateSetEntry* e = set[i];
        out << (i ? " " : "") << (e->m_start - h(0)).get_as_seconds() / 3600 << "-"
            << (e->m_end - h(0)).get_as_seconds() / 3600 << ":" << e->m_type;
    }
    return out.str();
}

ZBDateSet make(std::initializer_list<std::tuple<int, int, int>> entries)
{
    ZBDateSet set;
    for (const auto& e : entries)
        set.add(s(std::get<0>(e), std::get<1>(e)), std::get<2>(e));
    return set;
}

} // namespace

TEST(DateSet, AddMergesOnlyEqualTypes)
{
    struct {
        const char* name;
        std::vector<std::tuple<int, int, int>> adds;
        const char* expected;
    } rows[] = {
        {"zero length", {{1, 1, 0}}, ""},
        {"touching, equal type", {{1, 3, 0}, {3, 5, 0}}, "1-5:0"},
        {"touching, other type", {{1, 3, 0}, {3, 5, 1}}, "1-3:0 3-5:1"},
        {"overlapping, equal type", {{1, 4, 0}, {2, 6, 0}}, "1-6:0"},
        {"out of order", {{8, 9, 0}, {1, 2, 0}, {4, 5, 0}}, "1-2:0 4-5:0 8-9:0"},
        {"one bridges three", {{1, 2, 0}, {4, 5, 0}, {7, 8, 0}, {2, 7, 0}}, "1-8:0"},
        {"bridge of another type", {{1, 2, 0}, {4, 5, 0}, {2, 4, 1}}, "1-2:0 2-4:1 4-5:0"},
        {"reversed slot", {{5, 3, 0}}, "3-5:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSet one;
        ZBDateSet bulk;
        for (const auto& e : row.adds) {
            one.add(s(std::get<0>(e), std::get<1>(e)), std::get<2>(e));
            bulk.bulk_add(ZBDateSlot(h(std::get<0>(e)), h(std::get<1>(e)), true), std::get<2>(e));
        }
        bulk.finish_bulk_add();
        EXPECT_EQ(row.expected, text(one));
        EXPECT_EQ(row.expected, text(bulk));
    }
}

TEST(DateSet, KeepDurationAddsTheLengths)
{
    ZBDateSet set;
    set.set_keepduration(true);
    set.add(s(1, 2), 0);
    set.add(s(1, 2), 0);
    EXPECT_EQ("1-3:0", text(set));
}

TEST(DateSet, SubtractSplitsAndRespectsType)
{
    struct {
        const char* name;
        ZBDateSlot slot;
        int type;
        const char* expected;
    } rows[] = {
        {"middle", s(3, 4), -1, "1-3:0 4-6:0 8-10:1"},
        {"covers first", s(0, 7), -1, "8-10:1"},
        {"other type untouched", s(3, 4), 1, "1-6:0 8-10:1"},
        {"across two", s(5, 9), -1, "1-5:0 9-10:1"},
        {"outside", s(11, 12), -1, "1-6:0 8-10:1"},
        {"touching only", s(6, 8), -1, "1-6:0 8-10:1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSet set = make({{1, 6, 0}, {8, 10, 1}});
        set.subtract(row.slot, row.type);
        EXPECT_EQ(row.expected, text(set));
    }
    ZBDateSet set = make({{1, 6, 0}, {8, 10, 1}});
    set.subtract(make({{2, 3, 5}, {9, 12, 5}}));
    EXPECT_EQ("1-2:0 3-6:0 8-9:1", text(set));
}

TEST(DateSet, AddSetsAndAddReturn)
{
    ZBDateSet a = make({{1, 2, 0}, {5, 6, 0}});
    ZBDateSet b = make({{2, 3, 0}, {4, 5, 1}, {9, 10, 0}});
    a.add(b);
    EXPECT_EQ("1-3:0 4-5:1 5-6:0 9-10:0", text(a));
    ZBDateSet c;
    c.add_return(b);
    EXPECT_TRUE(b.empty());
    EXPECT_EQ("2-3:0 4-5:1 9-10:0", text(c));
}

TEST(DateSet, FindAndQueries)
{
    ZBDateSet set = make({{1, 3, 0}, {5, 7, 1}, {9, 11, 0}});
    struct {
        int hour;
        int from;
        int find;
        int rfind;
        bool match;
    } rows[] = {
        {0, 0, 0, -1, false}, {2, 0, 0, 0, true}, {3, 0, 0, 0, true}, {4, 0, 1, 0, false},
        {6, 2, 2, 1, true},   {8, 0, 2, 1, false}, {11, 0, 3, 2, true}, {12, 0, 3, 2, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.hour);
        EXPECT_EQ(row.find, set.safe_find(h(row.hour), row.from, true));
        EXPECT_EQ(row.find, set.safe_find(h(row.hour), row.from, false));
        EXPECT_EQ(row.rfind, set.safe_rfind(h(row.hour), -1, true));
        EXPECT_EQ(row.match, set.match(h(row.hour)));
    }
    EXPECT_EQ(h(1), set.start());
    EXPECT_EQ(h(11), set.end());
    EXPECT_EQ(ZBDuration(6 * 3600), set.duration());
    EXPECT_EQ(ZBDuration(4 * 3600), set.query_range(s(2, 10), -1));
    EXPECT_EQ(ZBDuration(2 * 3600), set.query_range(s(2, 10), 0));
    EXPECT_EQ(ZBDuration(4 * 3600), set.query_range(ZBDateSlot(), 0));
    EXPECT_TRUE(set.has_range(s(6, 8), 1));
    EXPECT_FALSE(set.has_range(s(6, 8), 0));
    ZBDateSet part;
    set.query_range(s(2, 10), part);
    EXPECT_EQ("2-3:0 5-7:1 9-10:0", text(part));
    // Time counts only inside entries.
    EXPECT_EQ(h(6), set.time_after(ZBDuration(3 * 3600)));
    EXPECT_EQ(h(10), set.time_after(h(2), ZBDuration(4 * 3600)));
    EXPECT_EQ(h(2), set.time_after(h(2), ZBDuration(40 * 3600)));
    EXPECT_EQ(h(2), set.time_before(h(10), ZBDuration(4 * 3600)));
    EXPECT_FALSE(ZBDateSet().time_after(ZBDuration(60)).is_ok());
    EXPECT_TRUE(ZBDateSet().start().is_blank());
}

TEST(DateSet, AllocateAcrossGaps)
{
    struct {
        const char* name;
        int hours;
        int earliest;
        int latest;
        bool backwards;
        int moved;
        const char* left;
        const char* taken;
    } rows[] = {
        {"from the start", 3, -1, -1, false, 3, "6-7:1 9-11:0", "1-3:0 5-6:1"},
        {"from earliest", 2, 2, -1, false, 2, "1-2:0 6-7:1 9-11:0", "2-3:0 5-6:1"},
        {"up to latest", 5, 2, 6, false, 2, "1-2:0 6-7:1 9-11:0", "2-3:0 5-6:1"},
        {"backwards from latest", 3, -1, 10, true, 3, "1-3:0 10-11:0", "5-7:1 9-10:0"},
        {"backwards, part of an entry", 2, -1, 10, true, 2, "1-3:0 5-6:1 10-11:0", "6-7:1 9-10:0"},
        {"backwards to earliest", 9, 2, 10, true, 4, "1-2:0 10-11:0", "2-3:0 5-7:1 9-10:0"},
        {"more than the set holds", 20, -1, -1, false, 6, "", "1-3:0 5-7:1 9-11:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSet set = make({{1, 3, 0}, {5, 7, 1}, {9, 11, 0}});
        ZBDateSet taken;
        ZBDuration moved = set.allocate(taken, ZBDuration(std::int64_t(row.hours) * 3600),
                                        row.earliest < 0 ? ZBDate() : h(row.earliest),
                                        row.latest < 0 ? ZBDate() : h(row.latest), row.backwards);
        EXPECT_EQ(ZBDuration(std::int64_t(row.moved) * 3600), moved);
        EXPECT_EQ(row.left, text(set));
        EXPECT_EQ(row.taken, text(taken));
        EXPECT_EQ(ZBDuration(6 * 3600), set.duration() + taken.duration());
    }
}

TEST(DateSet, StoredFormRoundTrips)
{
    ZBDateSet set = make({{1, 3, 0}, {5, 7, -4}, {9, 11, 2}});
    set.set_keepduration(true);
    std::string stored;
    ASSERT_FALSE(iszbwarn(set.object_to_string(stored, 0)));
    EXPECT_EQ("{ZBDateSet\n"
              "!S!000001080202026000000=000003080202026000000;0\n"
              "!S!000005080202026000000=000007080202026000000;-4\n"
              "!S!000009080202026000000=000011080202026000000;2\n"
              "!K!1\n"
              "}\n",
              stored);
    ZBDateSet back;
    ASSERT_FALSE(iszbwarn(back.object_from_string(stored, 0)));
    EXPECT_EQ(set, back);
    EXPECT_EQ("{ZBDateSet\n}\n", [] {
        std::string t;
        ZBDateSet().object_to_string(t, 0);
        return t;
    }());
    // A mended file with entries out of order reads back in order, merged.
    std::string mended = "{ZBDateSet\n!S!000009080202026000000=000011080202026000000;0\n"
                         "!S!000001080202026000000=000004080202026000000;0\n"
                         "!S!000003080202026000000=000005080202026000000;0\n}\n";
    ZBDateSet read;
    ASSERT_FALSE(iszbwarn(read.object_from_string(mended, 0)));
    EXPECT_EQ("1-5:0 9-11:0", text(read));
}

TEST(DateSetGroup, CombinesAndSubtracts)
{
    ZBDateSetGroup group;
    group.add_dateset("work")->add(s(1, 3), 0);
    group.add_dateset("study")->add(s(5, 8), 1);
    EXPECT_EQ(2, group.get_ndatesets());
    EXPECT_EQ("study", group.get_dateset_name_by_index(1));
    EXPECT_EQ(h(1), group.get_start());
    EXPECT_EQ(h(8), group.get_end());
    group.subtract(s(2, 6));
    ZBDateSet all;
    group.get_combined(all);
    EXPECT_EQ("1-2:0 6-8:1", text(all));
    EXPECT_EQ(nullptr, group.get_dateset_by_index(2));
    get_zberror().clear_all();
    EXPECT_TRUE(ZBDateSetGroup().get_start().is_blank());
}

TEST(DateTable, ColumnsByDate)
{
    ZBDate first(2026, 0, 0, 0, 0, 0, 0, 0);
    std::vector<ZBDateSlot> months = ZBDateSlot::slot_series(first, ZBDate(2026, 11, 30, 0, 0, 0, 0, 0), 2);
    ASSERT_EQ(12u, months.size());
    ZBDateTable table;
    table.initialise(months, {7, 9});
    const ZBDate lastSecond = months.back().m_end;
    struct {
        ZBDate date;
        int column;
    } rows[] = {
        {first, 0},
        {ZBDate(2026, 1, 27, 23, 59, 59, 0, 0), 1},
        {ZBDate(2026, 6, 15, 0, 0, 0, 0, 0), 6},
        {lastSecond, 11},
        {lastSecond + ZBDuration(1), -1},
        {first - ZBDuration(1), -1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.column, table.date_index(row.date)) << row.date.to_iso();
    table.add(ZBDate(2026, 6, 15, 0, 0, 0, 0, 0), 1, 2.5);
    table.add(ZBDate(2026, 6, 16, 0, 0, 0, 0, 0), 1, 1.0);
    table.set_for_id(ZBDate(2026, 2, 1, 0, 0, 0, 0, 0), 7, 4.0);
    table.add(ZBDate(), 0, 100.0);
    EXPECT_DOUBLE_EQ(3.5, table.get_value(6, 1));
    EXPECT_DOUBLE_EQ(4.0, table.get_value(2, 0));
    EXPECT_EQ(-1, table.get_row_for_id(8));
    EXPECT_EQ(1, table.get_row_for_id(9));
    EXPECT_EQ(1, table.get_row_for_id(9));
    EXPECT_NEAR(0.5, table.period_weighting(ZBDate(2026, 3, 15, 12, 0, 0, 0, 0)), 0.02);
    EXPECT_EQ(-1, ZBDateTable().date_index(first));
}

TEST(TimeSeries, SortsByDate)
{
    ZBTimeSeries series;
    series.add_point(h(5), 1.0, ZBId(1), false, false);
    series.add_point(h(1), 2.0, ZBId(2), false, false);
    series.add_point(h(3), 3.0, ZBId(3), true, true);
    ASSERT_EQ(3, series.size());
    EXPECT_EQ(2, series[0].m_id.m_id);
    EXPECT_EQ(3, series[1].m_id.m_id);
    EXPECT_EQ(1, series.rbegin()->m_id.m_id);
}
