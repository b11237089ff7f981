#include "LibCore/error/zberror.h"
#include "LibDate/dateset/zbdateset.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>
#include <vector>

using namespace Tervalon;

namespace {

// Minutes of Monday 9 March 2026, GMT.
ZBDate at(int hour, int minute = 0)
{
    return ZBDate(2026, 2, 8, 0, 0, 0, 0, ZBDate::C_GMT) + ZBDuration(std::int64_t(hour * 60 + minute) * 60);
}

ZBDate minute(int m) { return at(0, m); }
ZBDuration minutes(int m) { return ZBDuration(std::int64_t(m) * 60); }

std::string clock(const ZBDate& date)
{
    std::int64_t m = (date - at(0)).get_as_seconds() / 60;
    std::ostringstream out;
    out << m / 60 << ":" << (m % 60 < 10 ? "0" : "") << m % 60;
    return out.str();
}

// The set as "h:mm-h:mm:type" in order.
std::string text(const ZBDateSet& set)
{
    std::ostringstream out;
    for (int i = 0; i < set.size(); ++i)
        out << (i ? " " : "") << clock(set[i]->m_start) << "-" << clock(set[i]->m_end) << ":" << set[i]->m_type;
    return out.str();
}

ZBDateSlot span(int h1, int m1, int h2, int m2) { return ZBDateSlot(at(h1, m1), at(h2, m2)); }

// A working day with a long span of type 1 under short spans of type 0.
ZBDateSet day()
{
    ZBDateSet set;
    set.add(span(8, 0, 8, 30), 0);
    set.add(span(8, 15, 18, 0), 1);
    set.add(span(9, 0, 9, 30), 0);
    set.add(span(10, 0, 11, 0), 0);
    set.add(span(12, 0, 13, 0), 0);
    return set;
}

const char* const C_Day = "8:00-8:30:0 8:15-18:00:1 9:00-9:30:0 10:00-11:00:0 12:00-13:00:0";

} // namespace

TEST(DateSetOverlap, SubtractReachesEveryTypeUnderTheSlot)
{
    struct {
        const char* name;
        ZBDateSlot slot;
        int type;
        const char* expected;
    } rows[] = {
        {"long span only", span(12, 30, 13, 30), 1,
         "8:00-8:30:0 8:15-12:30:1 9:00-9:30:0 10:00-11:00:0 12:00-13:00:0 13:30-18:00:1"},
        {"both types", span(12, 30, 13, 30), -1,
         "8:00-8:30:0 8:15-12:30:1 9:00-9:30:0 10:00-11:00:0 12:00-12:30:0 13:30-18:00:1"},
        {"past the last entry's end", span(14, 0, 15, 0), 1,
         "8:00-8:30:0 8:15-14:00:1 9:00-9:30:0 10:00-11:00:0 12:00-13:00:0 15:00-18:00:1"},
        {"across the first three", span(8, 20, 9, 10), -1,
         "8:00-8:20:0 8:15-8:20:1 9:10-9:30:0 9:10-18:00:1 10:00-11:00:0 12:00-13:00:0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSet set = day();
        ASSERT_EQ(C_Day, text(set));
        set.subtract(row.slot, row.type);
        EXPECT_EQ(row.expected, text(set));
    }
    ZBDateSet set = day();
    ZBDateSet appointments;
    appointments.add(span(8, 10, 8, 20), 7);
    appointments.add(span(12, 45, 14, 0), 7);
    set.subtract(appointments);
    EXPECT_EQ("8:00-8:10:0 8:20-8:30:0 8:20-12:45:1 9:00-9:30:0 10:00-11:00:0 12:00-12:45:0 14:00-18:00:1", text(set));
}

TEST(DateSetOverlap, QueriesSeeTheLongSpan)
{
    const ZBDateSet set = day();
    struct {
        const char* name;
        ZBDateSlot slot;
        int type;
        int queried;
        bool has;
    } ranges[] = {
        {"long span in the last entry's hour", span(12, 30, 13, 30), 1, 60, true},
        {"any type", span(12, 30, 13, 30), -1, 90, true},
        {"after every short span", span(14, 0, 15, 0), 1, 60, true},
        {"no short span after one", span(14, 0, 15, 0), 0, 0, false},
        {"between short spans", span(11, 15, 11, 45), 0, 0, false},
        {"touching a short span", span(11, 0, 11, 45), 0, 0, true},
    };
    for (const auto& row : ranges) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(minutes(row.queried), set.query_range(row.slot, row.type));
        EXPECT_EQ(row.has, set.has_range(row.slot, row.type));
    }
    struct {
        int hour;
        int minute;
        bool match;
        int find;
    } moments[] = {
        {7, 59, false, 0}, {8, 10, true, 0}, {8, 40, true, 1}, {11, 30, true, 1},
        {13, 30, true, 1}, {18, 0, true, 5}, {18, 1, false, 5},
    };
    for (const auto& row : moments) {
        SCOPED_TRACE(clock(at(row.hour, row.minute)));
        EXPECT_EQ(row.match, set.match(at(row.hour, row.minute)));
        EXPECT_EQ(row.find, set.safe_find(at(row.hour, row.minute), 0, true));
        EXPECT_EQ(row.find, set.safe_find(at(row.hour, row.minute), 0, false));
    }
    // A hint past the answer still gives the first entry from the hint on.
    EXPECT_EQ(4, set.safe_find(at(12, 30), 4, true));
    EXPECT_EQ(4, set.safe_find(at(11, 30), 3, true));
    EXPECT_EQ(at(18, 0), set.end());
    ZBDateSet part;
    set.query_range(span(10, 30, 12, 30), part);
    EXPECT_EQ("10:30-11:00:0 10:30-12:30:1 12:00-12:30:0", text(part));
}

TEST(DateSetOverlap, TimeCountsOverlapsOnce)
{
    struct {
        const char* name;
        const ZBDateSet set;
        ZBDate date;
        int minutes;
        bool backwards;
        ZBDate expected;
    } rows[] = {
        {"inside the long span", day(), at(11, 30), 30, false, at(12, 0)},
        {"before the day", day(), at(7, 0), 60, false, at(9, 0)},
        {"back over the long span", day(), at(13, 0), 120, true, at(11, 0)},
        {"back from its end", day(), at(19, 0), 90, true, at(16, 30)},
        {"back, runs out", day(), at(8, 10), 20, true, at(8, 10)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDate got = row.backwards ? row.set.time_before(row.date, minutes(row.minutes))
                                   : row.set.time_after(row.date, minutes(row.minutes));
        EXPECT_EQ(clock(row.expected), clock(got));
    }
    EXPECT_EQ(clock(at(9, 0)), clock(day().time_after(minutes(60))));
}

TEST(DateSetOverlap, AllocateTakesEarliestOrLatestTimeOfAnyType)
{
    struct {
        const char* name;
        int minutes;
        ZBDate earliest;
        ZBDate latest;
        bool backwards;
        int moved;
        const char* taken;
    } rows[] = {
        {"2 h from inside the long span", 120, at(12, 30), ZBDate(), false, 120, "12:30-14:30:1"},
        {"forwards, bounded", 120, at(12, 30), at(13, 0), false, 60, "12:30-13:00:0 12:30-13:00:1"},
        {"from the start", 45, ZBDate(), ZBDate(), false, 45, "8:00-8:30:0 8:15-8:30:1"},
        {"backwards from inside the long span", 60, ZBDate(), at(17, 0), true, 60, "16:00-17:00:1"},
        {"backwards past short spans", 30, ZBDate(), at(11, 50), true, 30, "11:20-11:50:1"},
        {"backwards, both types end at latest", 30, ZBDate(), at(12, 10), true, 30, "11:50-12:10:1 12:00-12:10:0"},
        {"backwards to earliest", 600, at(12, 0), at(13, 0), true, 120, "12:00-13:00:0 12:00-13:00:1"},
        {"more than the set holds", 6000, ZBDate(), ZBDate(), false, 765, C_Day},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ZBDateSet set = day();
        ZBDateSet taken;
        ZBDuration moved = set.allocate(taken, minutes(row.minutes), row.earliest, row.latest, row.backwards);
        EXPECT_EQ(minutes(row.moved), moved);
        EXPECT_EQ(row.taken, text(taken));
        EXPECT_EQ(day().duration(), set.duration() + taken.duration());
        // Giving it all back restores the day.
        set.add_return(taken);
        EXPECT_EQ(C_Day, text(set));
    }
}

TEST(DateSetOverlap, OneTypeMergesAcrossAnother)
{
    ZBDateSet one;
    ZBDateSet bulk;
    const struct {
        ZBDateSlot slot;
        int type;
    } adds[] = {
        {span(8, 0, 8, 30), 0}, {span(8, 15, 18, 0), 1}, {span(8, 20, 9, 0), 0}, {span(17, 0, 19, 0), 1},
        {span(9, 0, 9, 10), 0},
    };
    for (const auto& add : adds) {
        one.add(add.slot, add.type);
        bulk.bulk_add(add.slot, add.type);
    }
    bulk.finish_bulk_add();
    EXPECT_EQ("8:00-9:10:0 8:15-19:00:1", text(one));
    EXPECT_EQ(text(one), text(bulk));
    // Lengths are kept when asked, even when another type stands between.
    ZBDateSet kept;
    kept.set_keepduration(true);
    kept.add(span(8, 0, 9, 0), 0);
    kept.add(span(8, 10, 8, 20), 1);
    kept.add(span(8, 30, 9, 30), 0);
    EXPECT_EQ("8:00-10:00:0 8:10-8:20:1", text(kept));
}

TEST(DateSetOverlap, BulkAddDropsOpenSpansAndKeepsTheRest)
{
    ZBDateSet set;
    set.bulk_add(ZBDateSlot(at(9), ZBDate(ZBDate::E_Blank)), 0);
    set.bulk_add(ZBDateSlot(ZBDate(ZBDate::E_Invalid), at(9)), 0);
    set.bulk_add(span(10, 0, 11, 0), 0);
    set.bulk_add(ZBDateSlot(at(13), at(12)), 1);
    EXPECT_FALSE(iszbwarn(set.finish_bulk_add()));
    EXPECT_EQ("10:00-11:00:0 12:00-13:00:1", text(set));
    EXPECT_EQ(minutes(120), set.duration());

    get_zberror().clear_all();
    set.bulk_add(span(14, 0, 15, 0), 0);
    set.bulk_add(nullptr);
    set.bulk_add(span(16, 0, 17, 0), 0);
    EXPECT_TRUE(iszberr(set.finish_bulk_add()));
    ASSERT_NE(nullptr, get_zberror().top());
    EXPECT_EQ("Assertion Failed: nentry != nullptr", get_zberror().top()->get_details(ZBErrAsp_System));
    get_zberror().clear_all();
    EXPECT_EQ("10:00-11:00:0 12:00-13:00:1 14:00-15:00:0 16:00-17:00:0", text(set));
    EXPECT_EQ(0, set.bulk_size());
}

TEST(DateSetOverlap, NoTimeBetweenMarkerDates)
{
    EXPECT_TRUE((ZBDate(ZBDate::E_Blank) - at(9)).is_zero());
    EXPECT_TRUE((at(9) - ZBDate(ZBDate::E_Invalid)).is_zero());
    EXPECT_TRUE((ZBDate(ZBDate::E_Blank) - ZBDate(ZBDate::E_Invalid)).is_zero());
}

// Random adds, subtracts and allocations of three overlapping types against a
// plain model: one flag per minute and type.
TEST(DateSetOverlap, AgreesWithAMinuteModel)
{
    const int C_Minutes = 600;
    const int C_Types = 3;
    std::mt19937 random(7);
    auto pick = [&random](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        ZBDateSet set;
        std::vector<std::vector<bool>> model(C_Types, std::vector<bool>(C_Minutes, false));
        for (int step = 0; step < 30; ++step) {
            int type = pick(0, C_Types - 1);
            int from = pick(0, C_Minutes - 1);
            int to = std::min(C_Minutes, from + pick(1, type == 2 ? 300 : 40));
            int what = pick(0, 3);
            if (what <= 1) {
                set.add(ZBDateSlot(minute(from), minute(to)), type);
                for (int m = from; m < to; ++m)
                    model[size_t(type)][size_t(m)] = true;
            } else if (what == 2) {
                int anyType = pick(0, 1) ? -1 : type;
                set.subtract(ZBDateSlot(minute(from), minute(to)), anyType);
                for (int t = 0; t < C_Types; ++t)
                    if (anyType < 0 || t == anyType)
                        for (int m = from; m < to; ++m)
                            model[size_t(t)][size_t(m)] = false;
            } else {
                ZBDateSet taken;
                ZBDuration before = set.duration();
                int want = pick(1, 120);
                ZBDuration moved =
                    pick(0, 1) ? set.allocate(taken, minutes(want), minute(from), ZBDate(), false)
                               : set.allocate(taken, minutes(want), ZBDate(), minute(to), true);
                EXPECT_EQ(before, set.duration() + taken.duration());
                EXPECT_EQ(moved, taken.duration());
                EXPECT_FALSE(minutes(want) < moved);
                for (int i = 0; i < taken.size(); ++i)
                    for (int m = int((taken[i]->m_start - minute(0)).get_as_seconds() / 60);
                         minute(m) < taken[i]->m_end; ++m) {
                        EXPECT_TRUE(model[size_t(taken[i]->m_type)][size_t(m)]);
                        model[size_t(taken[i]->m_type)][size_t(m)] = false;
                    }
            }
            // Order, and no two entries of one type overlapping or touching.
            std::map<int, ZBDate> lastEnd;
            for (int i = 0; i < set.size(); ++i) {
                if (i > 0) {
                    ASSERT_TRUE(zbdatesetentry_less(*set[i - 1], *set[i])) << text(set);
                }
                auto last = lastEnd.find(set[i]->m_type);
                if (last != lastEnd.end()) {
                    ASSERT_TRUE(last->second < set[i]->m_start) << text(set);
                }
                lastEnd[set[i]->m_type] = set[i]->m_end;
            }
            // Every minute of every type as the model says.
            std::vector<std::vector<bool>> seen(C_Types, std::vector<bool>(C_Minutes, false));
            for (int i = 0; i < set.size(); ++i)
                for (ZBDate m = set[i]->m_start; m < set[i]->m_end; m += minutes(1))
                    seen[size_t(set[i]->m_type)][size_t((m - minute(0)).get_as_seconds() / 60)] = true;
            ASSERT_EQ(model, seen) << text(set);
        }
        // The searches against the model.
        auto any = [&](int m) {
            for (int t = 0; t < C_Types; ++t)
                if (m >= 0 && m < C_Minutes && model[size_t(t)][size_t(m)])
                    return true;
            return false;
        };
        for (int probe = 0; probe < 30; ++probe) {
            int from = pick(0, C_Minutes - 1);
            int to = std::min(C_Minutes, from + pick(1, 90));
            int type = pick(-1, C_Types - 1);
            int inRange = 0;
            bool touches = false;
            for (int t = 0; t < C_Types; ++t)
                if (type < 0 || t == type)
                    for (int m = std::max(0, from - 1); m <= std::min(C_Minutes - 1, to); ++m)
                        if (model[size_t(t)][size_t(m)]) {
                            inRange += (m >= from && m < to) ? 1 : 0;
                            touches = true;
                        }
            EXPECT_EQ(minutes(inRange), set.query_range(ZBDateSlot(minute(from), minute(to)), type));
            EXPECT_EQ(touches, set.has_range(ZBDateSlot(minute(from), minute(to)), type));
            EXPECT_EQ(any(from) || any(from - 1), set.match(minute(from)));
            // Walk the union minute by minute, both ways.
            int need = pick(1, 60);
            int after = -1;
            for (int m = from, count = 0; m < C_Minutes && after < 0; ++m)
                if (any(m) && ++count == need)
                    after = m + 1;
            int before = -1;
            for (int m = to - 1, count = 0; m >= 0 && before < 0; --m)
                if (any(m) && ++count == need)
                    before = m;
            EXPECT_EQ(clock(after < 0 ? minute(from) : minute(after)),
                      clock(set.time_after(minute(from), minutes(need))));
            EXPECT_EQ(clock(before < 0 ? minute(to) : minute(before)),
                      clock(set.time_before(minute(to), minutes(need))));
        }
    }
}
