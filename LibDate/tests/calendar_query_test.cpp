#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/calendar/zbcalendarquery.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Tervalon;

namespace {

// Hours from midnight starting Monday 9 March 2026, GMT.
ZBDate h(int hour)
{
    return ZBDate(2026, 2, 8, 0, 0, 0, 0, ZBDate::C_GMT) + ZBDuration(std::int64_t(hour) * 3600);
}

ZBCalendarEntry* entry(int id, int from, int to, const std::string& title = std::string())
{
    return new ZBCalendarEntry(ZBId(id), ZBDateSlot(h(from), h(to)), title.empty() ? std::to_string(id) : title);
}

std::vector<int> ids(const ZBCalendarQuery& query)
{
    std::vector<int> result;
    for (int i = 0; i < query.get_nresults(); ++i)
        result.push_back(query.get_result_no(i)->get_id().m_id);
    return result;
}

// Counts the reports it is asked for and adds one entry for the slot.
class CountingReporter : public ZBCalendarReporter {
public:
    int generate_report(const ZBDateSlot& slot, ZBCalendar& calendar) override
    {
        ++m_calls;
        return calendar.add_entry(new ZBCalendarEntry(ZBId(99), slot, "report"));
    }
    int m_calls = 0;
};

} // namespace

TEST(CalendarQuery, FindsIntersectingEntriesInStartOrder)
{
    ZBCalendar calendar;
    calendar.add_entry(entry(3, 30, 31));
    calendar.add_entry(entry(1, 10, 12));
    calendar.add_entry(entry(2, 11, 40)); // overlaps the window's start
    calendar.add_entry(entry(4, 48, 50)); // touches the window's end
    calendar.add_entry(entry(5, 2, 10));  // ends where the window begins
    ZBCalendarQuery query(calendar);
    query.set_range(ZBDateSlot(h(10), h(48)), false);
    ASSERT_FALSE(iszbwarn(query.do_query()));
    EXPECT_EQ(ids(query), (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(calendar.is_sorted());
}

TEST(CalendarQuery, IsNotRecomputedWhileTheCalendarIsUnchanged)
{
    ZBCalendar calendar;
    calendar.add_entry(entry(1, 1, 2));
    ZBCalendarQuery query(calendar);
    query.set_range(ZBDateSlot(h(0), h(24)), false);
    query.do_query();
    ASSERT_EQ(query.get_nresults(), 1);
    // Moving an entry behind the calendar's back raises no count: the query
    // keeps what it found.
    calendar.get_entry_no(0)->set_time(ZBDateSlot(h(30), h(31)));
    query.do_query();
    EXPECT_EQ(query.get_nresults(), 1);
    // An equal range is no change either.
    query.set_range(ZBDateSlot(h(0), h(24)), false);
    query.do_query();
    EXPECT_EQ(query.get_nresults(), 1);
    // A real change is seen.
    calendar.add_entry(entry(2, 3, 4));
    query.do_query();
    EXPECT_EQ(ids(query), (std::vector<int>{2}));
}

TEST(CalendarQuery, SubQueriesSplitTheRangeIntoDays)
{
    ZBCalendar calendar;
    calendar.add_entry(entry(1, 22, 26)); // across the first midnight
    calendar.add_entry(entry(2, 40, 48)); // ends exactly as day three begins
    calendar.add_entry(entry(3, 48, 49));
    ZBCalendarQuery query(calendar);
    query.set_range(ZBDateSlot(h(0), h(72)), true);
    ASSERT_EQ(query.get_nsubqueries(), 3);
    EXPECT_EQ(query.get_subquery_no(1)->get_range(), ZBDateSlot(h(24), h(48) - ZBDuration(1)));
    query.do_query();
    EXPECT_EQ(ids(query), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(ids(*query.get_subquery_no(0)), (std::vector<int>{1}));
    EXPECT_EQ(ids(*query.get_subquery_no(1)), (std::vector<int>{1, 2}));
    EXPECT_EQ(ids(*query.get_subquery_no(2)), (std::vector<int>{3}));
    // A new range drops the old days.
    query.set_range(ZBDateSlot(h(24), h(30)), false);
    EXPECT_EQ(query.get_nsubqueries(), 0);
    query.do_query();
    EXPECT_EQ(ids(query), (std::vector<int>{1}));
}

TEST(CalendarQuery, ResultsSortByGroupAndPriority)
{
    ZBCalendar calendar;
    const int groups[] = {2, 1, 2, 0};
    const double priorities[] = {1.0, 5.0, 3.0, 2.0};
    for (int i = 0; i < 4; ++i) {
        ZBCalendarEntry* e = entry(i, i, i + 1);
        e->set_group(groups[i]);
        e->set_priority(priorities[i]);
        calendar.add_entry(e);
    }
    ZBCalendarQuery query(calendar);
    query.set_range(ZBDateSlot(h(0), h(10)), false);
    query.do_query();
    query.sort_group();
    EXPECT_EQ(ids(query), (std::vector<int>{3, 1, 0, 2}));
    query.sort_priority();
    EXPECT_EQ(ids(query), (std::vector<int>{1, 2, 3, 0}));
}

TEST(Calendar, MarkHighlightsOnlyListedIdsAndCountsChanges)
{
    ZBCalendar calendar;
    calendar.add_entry(new ZBCalendarEntry(ZBId(1, 5), ZBDateSlot(h(0), h(1)), "a"));
    calendar.add_entry(new ZBCalendarEntry(ZBId(1, 6), ZBDateSlot(h(1), h(2)), "b"));
    calendar.add_entry(new ZBCalendarEntry(ZBId(2), ZBDateSlot(h(2), h(3)), "c"));
    calendar.get_entry_no(2)->set_highlighted(true);
    ZBIdList list;
    list.add(ZBId(1, 6));
    const int before = calendar.get_updatecount();
    calendar.mark_entries(list);
    EXPECT_FALSE(calendar.get_entry_no(0)->is_highlighted());
    EXPECT_TRUE(calendar.get_entry_no(1)->is_highlighted());
    EXPECT_FALSE(calendar.get_entry_no(2)->is_highlighted());
    EXPECT_GT(calendar.get_updatecount(), before);
    // The same marks again change nothing.
    const int after = calendar.get_updatecount();
    calendar.mark_entries(list);
    EXPECT_EQ(calendar.get_updatecount(), after);
}

TEST(Calendar, ReportersRefillTheListAndCopiesLeaveThemBehind)
{
    ZBCalendar calendar;
    CountingReporter* reporter = new CountingReporter;
    calendar.add_reporter(reporter);
    calendar.add_entry(entry(1, 0, 1));
    ASSERT_FALSE(iszbwarn(calendar.generate_reports(ZBDateSlot(h(5), h(6)))));
    EXPECT_EQ(reporter->m_calls, 1);
    ASSERT_EQ(calendar.get_nentries(), 1);
    EXPECT_EQ(calendar.get_entry_no(0)->get_id().m_id, 99);
    ZBCalendar copy(calendar);
    EXPECT_EQ(copy.get_nentries(), 1);
    EXPECT_EQ(copy.get_nreporters(), 0);
}

TEST(Calendar, EntriesRoundTripThroughTheStream)
{
    ZBCalendar calendar;
    ZBCalendarEntry* e = entry(7, 1, 3, "Dentist");
    e->set_details("bring card");
    e->set_group(4);
    e->set_priority(2.5);
    calendar.add_entry(e);
    std::string text;
    ASSERT_FALSE(iszbwarn(calendar.object_to_string(text, 0)));
    ZBCalendar back;
    ASSERT_FALSE(iszbwarn(back.object_from_string(text, 0)));
    ASSERT_EQ(back.get_nentries(), 1);
    const ZBCalendarEntry* read = back.get_entry_no(0);
    EXPECT_EQ(read->get_id().m_id, 7);
    EXPECT_EQ(read->get_time(), ZBDateSlot(h(1), h(3)));
    EXPECT_EQ(read->get_summary(), "Dentist");
    EXPECT_EQ(read->get_details(), "bring card");
    EXPECT_EQ(read->get_group(), 4);
    EXPECT_DOUBLE_EQ(read->get_priority(), 2.5);
}
