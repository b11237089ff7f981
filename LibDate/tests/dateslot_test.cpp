#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbprogress.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace Tervalon;

namespace {

// Hours of Monday 9 March 2026, GMT.
ZBDate h(int hour)
{
    return ZBDate(2026, 2, 8, hour, 0, 0, 0, ZBDate::C_GMT);
}

ZBDateSlot s(int from, int to)
{
    return ZBDateSlot(h(from), h(to));
}

} // namespace

TEST(DateSlot, SubtractCases)
{
    struct {
        const char* name;
        ZBDateSlot b;
        bool result;
        ZBDateSlot a, overlap, rest;
    } rows[] = {
        {"inside", s(12, 15), true, s(10, 12), s(12, 15), s(15, 20)},
        {"over the start", s(5, 12), true, s(12, 20), s(10, 12), s(20, 20)},
        {"over the end", s(15, 25), true, s(10, 15), s(15, 20), s(20, 20)},
        {"same end", s(15, 20), true, s(10, 15), s(15, 20), s(20, 20)},
        {"covers", s(5, 25), true, s(10, 10), s(10, 20), s(20, 20)},
        {"exactly", s(10, 20), true, s(10, 10), s(10, 20), s(20, 20)},
        {"touches after", s(20, 25), false, s(10, 20), s(20, 20), s(20, 20)},
        {"before", s(1, 3), false, s(10, 20), s(1, 1), s(20, 20)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSlot a = s(10, 20);
        ZBDateSlot overlap;
        ZBDateSlot rest;
        EXPECT_EQ(row.result, ZBDateSlot::subtract(a, row.b, overlap, rest));
        EXPECT_EQ(row.a, a);
        EXPECT_EQ(row.overlap, overlap);
        EXPECT_EQ(row.rest, rest);
    }
}

TEST(DateSlot, MergeCases)
{
    struct {
        const char* name;
        ZBDateSlot a, b;
        bool keep;
        bool result;
        ZBDateSlot outA, outB;
    } rows[] = {
        {"overlap", s(10, 14), s(12, 16), false, true, s(10, 16), s(16, 16)},
        {"touch", s(10, 12), s(12, 16), false, true, s(10, 16), s(16, 16)},
        {"b first", s(12, 16), s(10, 12), false, true, s(10, 16), s(16, 16)},
        {"inside", s(10, 16), s(11, 12), false, true, s(10, 16), s(16, 16)},
        {"apart", s(10, 11), s(12, 16), false, false, s(10, 11), s(12, 16)},
        {"keep duration", s(10, 14), s(12, 16), true, true, s(10, 18), s(18, 18)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSlot a = row.a;
        ZBDateSlot b = row.b;
        EXPECT_EQ(row.result, ZBDateSlot::merge(a, b, row.keep));
        EXPECT_EQ(row.outA, a);
        EXPECT_EQ(row.outB, b);
    }
}

TEST(DateSlot, IntersectionWithinAndOpenEnds)
{
    EXPECT_TRUE(ZBDateSlot::intersects(s(10, 12), s(11, 13)));
    EXPECT_FALSE(ZBDateSlot::intersects(s(10, 12), s(12, 13)));
    ZBDateSlot out;
    EXPECT_TRUE(ZBDateSlot::intersection(s(10, 14), s(12, 20), out));
    EXPECT_EQ(s(12, 14), out);
    EXPECT_FALSE(ZBDateSlot::intersection(s(10, 12), s(13, 14), out));
    EXPECT_TRUE(s(10, 12).within(h(10)));
    EXPECT_TRUE(s(10, 12).within(h(12)));
    EXPECT_FALSE(s(10, 12).within(h(13)));
    // An end that is not ok is open.
    ZBDateSlot open(h(10), ZBDate(ZBDate::E_Blank));
    EXPECT_TRUE(open.within(h(23)));
    EXPECT_FALSE(open.within(h(9)));
    // A blank end sorts last, so an open slot intersects everything after its start.
    EXPECT_TRUE(ZBDateSlot::intersects(open, s(20, 21)));
    EXPECT_FALSE(open.is_ok());
    EXPECT_TRUE(ZBDateSlot(ZBDate(ZBDate::E_Zero), h(3)).is_ok());
    EXPECT_TRUE(open.correct());
    EXPECT_EQ(s(10, 10), open);
    ZBDateSlot blank;
    EXPECT_FALSE(blank.correct());
}

TEST(DateSlot, ExpandExtendAndSort)
{
    EXPECT_EQ(s(8, 20), ZBDateSlot::expand(s(10, 12), s(8, 20)));
    EXPECT_EQ(s(10, 12), ZBDateSlot::expand(s(10, 12), s(11, 11)));
    EXPECT_EQ(s(10, 12), ZBDateSlot::expand(ZBDateSlot(), s(10, 12)));
    ZBDateSlot slot;
    slot.extend(h(14));
    slot.extend(h(9));
    slot.extend(ZBDate());
    EXPECT_EQ(s(9, 14), slot);
    EXPECT_EQ(s(9, 14), ZBDateSlot(h(14), h(9), true));
    EXPECT_EQ(h(14), ZBDateSlot(h(14), h(9), false).m_start);
    EXPECT_TRUE(compare_zbdateslots(s(9, 10), s(9, 11)));
    EXPECT_TRUE(compare_zbdateslots(s(9, 12), s(10, 11)));
    EXPECT_FALSE(compare_zbdateslots(s(9, 11), s(9, 11)));
    EXPECT_DOUBLE_EQ(0.25, ZBDateSlot::withinRange(h(11), s(10, 14)));
    EXPECT_DOUBLE_EQ(0.0, ZBDateSlot::withinRange(h(11), s(10, 10)));
}

TEST(DateSlot, SeriesCoverWholePeriods)
{
    ZBDate from(2026, 0, 14, 15, 0, 0, 0, ZBDate::C_GMT); // 15 January
    ZBDate to(2026, 2, 1, 9, 0, 0, 0, ZBDate::C_GMT);     // 2 March
    std::vector<ZBDateSlot> months = ZBDateSlot::slot_series(from, to, ZBDateSlot::E_Months);
    ASSERT_EQ(3u, months.size());
    EXPECT_EQ("2026-01-01 00:00:00", months[0].m_start.to_string("%Y-%m-%d %H:%M:%S"));
    EXPECT_EQ("2026-01-31 23:59:59", months[0].m_end.to_string("%Y-%m-%d %H:%M:%S"));
    EXPECT_EQ("2026-02-28 23:59:59", months[1].m_end.to_string("%Y-%m-%d %H:%M:%S"));
    for (size_t i = 0; i + 1 < months.size(); ++i)
        EXPECT_EQ(ZBDuration(1), months[i + 1].m_start - months[i].m_end);
    std::vector<ZBDateSlot> weeks = ZBDateSlot::slot_series(from, to, ZBDateSlot::E_Weeks);
    ASSERT_EQ(8u, weeks.size());
    EXPECT_EQ("Mon 12", weeks[0].m_start.to_string("%a %d"));
    EXPECT_EQ("Sun 08", weeks.back().m_end.to_string("%a %d"));
    EXPECT_EQ(47u, ZBDateSlot::slot_series(from, to, ZBDateSlot::E_Days).size());
    EXPECT_TRUE(ZBDateSlot::slot_series(ZBDate(), to, ZBDateSlot::E_Days).empty());
}

TEST(DateSlot, CompactText)
{
    EXPECT_EQ("20260309", s(10, 12).to_compact_string());
    ZBDateSlot twoDays(h(10), h(10) + ZBDuration(2, 0, 0));
    EXPECT_EQ("2026030920260311", twoDays.to_compact_string());
    EXPECT_EQ("20260309", ZBDateSlot(ZBDate(), h(3)).to_compact_string());
    EXPECT_EQ("", ZBDateSlot().to_compact_string());
    ZBDateSlot read;
    EXPECT_TRUE(read.from_compact_string("2026030920260311"));
    EXPECT_EQ(ZBDateSlot(h(0), ZBDate(2026, 2, 10, 23, 59, 59, 0, ZBDate::C_GMT)), read);
    EXPECT_TRUE(read.from_compact_string("20260309"));
    EXPECT_EQ(ZBDateSlot(h(0), h(23) + ZBDuration(3599)), read);
    EXPECT_FALSE(read.from_compact_string("2026031"));
    // Text that would read as another day than it names is refused.
    for (const char* text : {"20260300", "20261301", "20260230", "00000000", "202603092026031", "00000000000000000000000390323052"})
        EXPECT_FALSE(read.from_compact_string(text)) << text;
    EXPECT_TRUE(read.from_compact_string("20240229"));
}

TEST(DateSlot, StoredLengthBeyondAnyStorableYearIsRefused)
{
    struct Row { const char* text; bool reads; };
    const Row rows[] = {
        {"0000+3600", true},
        {"0000+-3600", true},
        {"0000+9010202026000000", false},
        {"0000+-9010202026000000", false},
        {"0000+3155760000000", false}, // 100000 years on from 1970
    };
    for (const Row& row : rows) {
        std::istringstream in(row.text);
        ZBDateSlot slot;
        in >> slot;
        EXPECT_EQ(row.reads, !in.fail()) << row.text;
        if (row.reads)
            EXPECT_EQ(3600, slot.get_duration().get_as_seconds()) << row.text;
    }
}

TEST(Progress, CompletionIsHeldAsTheDurationCanHoldIt)
{
    ZBProgress p;
    p.set_duration(ZBDuration(3));
    p.set_completion(50);
    EXPECT_EQ(ZBDuration(1, 0, 0) * 0.0 + ZBDuration(0, 1, 500000), p.get_completed());
    EXPECT_DOUBLE_EQ(50.0, p.get_completion());
    p.set_duration(ZBDuration(0, 0, 3));
    EXPECT_NEAR(66.666666, p.get_completion(), 1e-4); // 2 of 3 microseconds
    EXPECT_EQ(ZBDuration(0, 0, 1), p.get_remaining());
}

TEST(Progress, ComponentsAddDurationsOrAveragePercentages)
{
    ZBProgress a;
    a.set_duration(ZBDuration(3600));
    a.set_completion(100);
    ZBProgress b;
    b.set_duration(ZBDuration(3 * 3600));
    b.set_completion(0);
    ZBProgress sum;
    sum.add_component(a);
    sum.add_component(b);
    EXPECT_DOUBLE_EQ(25.0, sum.get_completion());
    EXPECT_EQ(ZBDuration(4 * 3600), sum.get_duration());

    ZBProgress x;
    x.set_completion(30);
    ZBProgress y;
    y.set_completion(60);
    ZBProgress mean;
    mean.add_component(x);
    mean.add_component(y);
    mean.add_component(y);
    EXPECT_DOUBLE_EQ(50.0, mean.get_completion());
    EXPECT_EQ(3, mean.get_add_count());

    ZBProgress nearlyDone;
    nearlyDone.set_duration(ZBDuration(3600));
    nearlyDone.set_completion(99.99999999999);
    ZBProgress whole;
    whole.add_component(nearlyDone);
    EXPECT_DOUBLE_EQ(100.0, whole.get_completion());
}
