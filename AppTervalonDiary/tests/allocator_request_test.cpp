#include "AppTervalonDiary/diary/entryplan.h"
#include "AppTervalonDiary/diary/timerequest.h"
#include "AppTervalonDiary/diary/timerequestset.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Tervalon;

namespace {
ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

const ZBDate g_blank(ZBDate::E_Blank);

ZBDuration hours(int n)
{
    return ZBDuration(std::int64_t(n) * 3600);
}

// Monday 2 to Friday 6 March 2026, 09:00-17:00 each day.
ZBDateSet week()
{
    ZBDateSet set;
    for (int day = 2; day <= 6; ++day) {
        const std::string date = std::to_string(day) + "-Mar-2026 ";
        set.add(ZBDateSlot(at(date + "09:00"), at(date + "17:00")), 1);
    }
    return set;
}

TimeRequest make(int id, int lengthHours, const std::string& start = "", const std::string& due = "")
{
    TimeRequest request(id);
    request.m_duration = hours(lengthHours);
    request.m_startAfter = start.empty() ? g_blank : at(start);
    request.m_due = due.empty() ? g_blank : at(due);
    request.update();
    return request;
}

std::string span(const ZBDateSet& set)
{
    if (set.empty())
        return "empty";
    return set.start().to_string("%d %H:%M") + "-" + set.end().to_string("%d %H:%M");
}
} // namespace

// Each row: the window given to allocate and where the request's time lands.
TEST(AllocatorRequest, AllocateTakesFromTheEndsItIsGiven)
{
    struct Row {
        const char* from;
        const char* to;
        int length;
        const char* expected;
    } rows[] = {
        {"", "", 3, "02 09:00-02 12:00"},                                      // front of the set
        {"3-Mar-2026 10:00", "", 3, "03 10:00-03 13:00"},                      // forwards from a start
        {"", "4-Mar-2026 12:00", 5, "03 15:00-04 12:00"},                      // latest first before an end
        {"3-Mar-2026 09:00", "3-Mar-2026 17:00", 2, "03 15:00-03 17:00"},      // latest first in the window
        {"3-Mar-2026 09:00", "3-Mar-2026 12:00", 5, "03 09:00-03 14:00"},      // runs on past the end
    };
    for (const Row& row : rows) {
        ZBDateSet free = week();
        const ZBDuration before = free.duration();
        TimeRequest request = make(0, row.length);
        const ZBDuration got = request.allocate(free, *row.from ? at(row.from) : g_blank,
                                                *row.to ? at(row.to) : g_blank);
        EXPECT_EQ(span(request.m_allocated), row.expected) << row.from << " " << row.to;
        EXPECT_EQ(got, hours(row.length));
        EXPECT_TRUE(request.m_isAllocated);
        EXPECT_EQ(free.duration() + request.m_allocated.duration(), before) << "time is neither made nor lost";
    }
}

TEST(AllocatorRequest, MoreThanTheSetHoldsLeavesTheRequestShortAndNotAllocated)
{
    ZBDateSet free = week();
    TimeRequest request = make(0, 50);
    request.allocate(free, g_blank, g_blank);
    EXPECT_TRUE(free.empty());
    EXPECT_FALSE(request.m_isAllocated);
    EXPECT_EQ(request.get_remaining(), hours(10));
}

TEST(AllocatorRequest, ReturnedTimeGoesBackExceptThePast)
{
    ZBDateSet free = week();
    const ZBDuration total = free.duration();
    TimeRequest request = make(0, 4);
    request.allocate(free, g_blank, g_blank); // 09:00-13:00 on the 2nd
    request.return_time(free, ZBDateSlot(at("1-Mar-2026 00:00"), at("2-Mar-2026 10:00")));
    EXPECT_TRUE(request.m_allocated.empty());
    EXPECT_EQ(free.duration(), total - hours(1));
    EXPECT_EQ(free.start(), at("2-Mar-2026 10:00"));
    EXPECT_FALSE(request.m_isAllocated);
}

TEST(AllocatorRequest, HasTimeNeedsARealOverlap)
{
    const ZBDateSet free = week();
    EXPECT_FALSE(TimeRequest::has_time(free, ZBDateSlot(at("2-Mar-2026 17:00"), at("3-Mar-2026 09:00"))));
    EXPECT_TRUE(TimeRequest::has_time(free, ZBDateSlot(at("2-Mar-2026 16:59"), at("3-Mar-2026 09:00"))));
    EXPECT_FALSE(TimeRequest::has_time(free, ZBDateSlot(at("7-Mar-2026 00:00"), at("9-Mar-2026 00:00"))));
    EXPECT_TRUE(TimeRequest::offers_more_than(free, ZBDateSlot(at("2-Mar-2026 00:00"), at("3-Mar-2026 10:00")),
                                              hours(8)));
    EXPECT_FALSE(TimeRequest::offers_more_than(free, ZBDateSlot(at("2-Mar-2026 00:00"), at("3-Mar-2026 09:00")),
                                               hours(8)));
}

// An optional instance keeps its length only when its window holds time.
TEST(AllocatorRequest, CullDropsOptionalInstancesWithoutTime)
{
    struct Row {
        const char* start;
        const char* due;
        bool mandatory;
        bool keeps;
    } rows[] = {
        {"7-Mar-2026 10:00", "7-Mar-2026 11:00", false, false}, // a Saturday
        {"7-Mar-2026 10:00", "7-Mar-2026 11:00", true, true},   // mandatory ones always keep
        {"3-Mar-2026 10:00", "3-Mar-2026 11:00", false, true},
        {"", "1-Mar-2026 11:00", false, false},                 // due before the set begins
        {"", "2-Mar-2026 11:00", false, true},
        {"6-Mar-2026 17:00", "", false, false},                 // start at the set's end
    };
    for (const Row& row : rows) {
        TimeRequest request = make(0, 1, row.start, row.due);
        request.m_mandatory = row.mandatory;
        request.cull_mandatory(week());
        EXPECT_EQ(ZBDuration() < request.m_duration, row.keeps) << row.start << " " << row.due;
    }
}

TEST(AllocatorRequest, TooLongForItsDueIsOverdueFromTheRangeStart)
{
    ZBDateSet free = week();
    TimeRequest request = make(0, 10, "", "2-Mar-2026 17:00");
    request.allocate(free, g_blank, request.m_due);
    request.record_planned_start(at("1-Jan-2026 00:00"), false, false);
    EXPECT_EQ(request.m_plannedStart, at("1-Jan-2026 00:00"));
    EXPECT_FALSE(request.is_overdue()) << "all of it is still before the due";

    free = week();
    request.set_isallocated(false);
    request.allocate(free, at("2-Mar-2026 09:00"), request.m_due);
    EXPECT_TRUE(request.is_overdue());
    EXPECT_EQ(request.m_allocated.end(), at("3-Mar-2026 11:00"));
    request.record_pretime(at("1-Jan-2027 00:00"), free, at("2-Mar-2026 23:59"));
    EXPECT_EQ(request.m_preTime, hours(2));
}

TEST(AllocatorRequest, PlannedStartMovesOnlyTheWayItIsAllowed)
{
    ZBDateSet free = week();
    TimeRequest request = make(0, 2, "", "6-Mar-2026 17:00");
    request.allocate(free, at("4-Mar-2026 09:00"), g_blank);
    request.m_plannedStart = at("3-Mar-2026 09:00");
    request.record_planned_start(at("1-Jan-2026 00:00"), true, false);
    EXPECT_EQ(request.m_plannedStart, at("3-Mar-2026 09:00")) << "earlier only";
    request.record_planned_start(at("1-Jan-2026 00:00"), false, true);
    EXPECT_EQ(request.m_plannedStart, at("4-Mar-2026 09:00")) << "later only";
    request.m_due = g_blank;
    request.record_planned_start(at("1-Jan-2026 00:00"), false, false);
    EXPECT_FALSE(request.m_plannedStart.is_ok()) << "no due, no ideal start";
}

TEST(AllocatorRequest, SwapPutsThisInFrontAndEachKeepsItsTime)
{
    ZBDateSet free = week();
    TimeRequest low = make(0, 3, "", "6-Mar-2026 17:00");
    TimeRequest high = make(1, 2, "", "6-Mar-2026 17:00");
    low.allocate(free, at("2-Mar-2026 09:00"), g_blank);  // 09:00-12:00
    high.allocate(free, at("2-Mar-2026 12:00"), g_blank); // 12:00-14:00
    const ZBDateSlot window(at("2-Mar-2026 08:00"), at("6-Mar-2026 23:59"));
    EXPECT_FALSE(low.swap(high, window)) << "low does not lie behind high";
    ASSERT_TRUE(high.swap(low, window));
    EXPECT_EQ(span(high.m_allocated), "02 09:00-02 11:00");
    EXPECT_EQ(span(low.m_allocated), "02 11:00-02 14:00");
    EXPECT_EQ(high.m_allocated.duration(), hours(2));
    EXPECT_EQ(low.m_allocated.duration(), hours(3));
}

TEST(AllocatorRequest, SwapNeverPutsARequestBeforeWhatItWaitsFor)
{
    ZBDateSet free = week();
    TimeRequest before = make(0, 3);
    TimeRequest after = make(1, 2);
    after.add_depend(0);
    before.add_rdepend(1);
    before.allocate(free, at("2-Mar-2026 09:00"), g_blank);
    after.allocate(free, at("2-Mar-2026 12:00"), g_blank);
    const ZBDateSlot window(at("2-Mar-2026 08:00"), at("6-Mar-2026 23:59"));
    EXPECT_FALSE(after.swap(before, window));
    EXPECT_EQ(span(before.m_allocated), "02 09:00-02 12:00");
    EXPECT_EQ(span(after.m_allocated), "02 12:00-02 14:00");

    // Also through the set's lookup, with a third request in between.
    std::vector<TimeRequest*> byId;
    TimeRequest a = make(0, 1), b = make(1, 1), c = make(2, 1);
    c.add_depend(1);
    b.add_rdepend(2);
    byId = {&a, &b, &c};
    TimeRequestSet set(-1, "", {}, at("2-Mar-2026 08:00"), window, nullptr, &byId);
    c.set_set(&set);
    free = week();
    a.allocate(free, at("2-Mar-2026 09:00"), g_blank);
    b.allocate(free, at("2-Mar-2026 10:00"), g_blank);
    c.allocate(free, at("2-Mar-2026 11:00"), g_blank);
    EXPECT_FALSE(c.swap(a, window)) << "c would start before b ends";
    EXPECT_EQ(span(c.m_allocated), "02 11:00-02 12:00");
}

TEST(AllocatorRequest, MovingBackAndForwardNeedsFreeTimeOnThatSide)
{
    ZBDateSet free = week();
    TimeRequest request = make(0, 2, "2-Mar-2026 09:00", "2-Mar-2026 17:00");
    request.allocate(free, at("2-Mar-2026 12:00"), g_blank); // 12:00-14:00
    const ZBDateSet all = week();
    EXPECT_TRUE(request.can_move_back(all));
    EXPECT_TRUE(request.can_move_forward(all));
    request.m_mustStart = at("2-Mar-2026 12:00");
    EXPECT_FALSE(request.can_move_back(all)) << "already at its must-start";
    ZBDateSet none;
    EXPECT_FALSE(request.can_move_forward(none));
}

// Equal priorities: later-created first when lowest first, the reverse when
// highest first; the order must not depend on anything else.
TEST(AllocatorRequest, SortsBreakTiesByCreationOrder)
{
    std::vector<std::unique_ptr<TimeRequest>> owned;
    std::vector<TimeRequest*> list;
    const double priorities[] = {5.0, 1.0, 5.0, 3.0, 5.0};
    for (int i = 0; i < 5; ++i) {
        owned.emplace_back(new TimeRequest(i));
        owned.back()->m_priority = priorities[i];
        list.push_back(owned.back().get());
    }
    auto ids = [](const std::vector<TimeRequest*>& l) {
        std::string text;
        for (const TimeRequest* r : l)
            text += std::to_string(r->m_id);
        return text;
    };
    std::vector<TimeRequest*> low = list;
    TimeRequestSet::sort(low, &TimeRequest::compare_priority);
    EXPECT_EQ(ids(low), "13420");
    std::vector<TimeRequest*> high = list;
    TimeRequestSet::sort_highest_first(high, &TimeRequest::compare_priority);
    EXPECT_EQ(ids(high), "02431");
}

// What the planner hands an entry: earliest starts kept, the current
// instance's dates kept, problem dates only where sessions pass a due.
TEST(AllocatorRequest, PredictionsAddUpOnTheEntryPlanAndCopyAcross)
{
    EntryPlan plan;
    EXPECT_TRUE(plan.get_muststart().is_blank()) << "the quick estimate lives on the entry, not here";
    ZBDateSet first;
    first.add(ZBDateSlot(at("2-Mar-2026 09:00"), at("2-Mar-2026 11:00")), 1);
    ZBDateSet late;
    late.add(ZBDateSlot(at("3-Mar-2026 16:00"), at("3-Mar-2026 18:00")), 1);
    plan.add_predicted(at("2-Mar-2026 09:00"), at("2-Mar-2026 15:00"), first, at("2-Mar-2026 08:00"), 7,
                       at("2-Mar-2026 17:00"), 8, ZBDuration());
    plan.add_predicted(at("3-Mar-2026 12:00"), at("2-Mar-2026 14:00"), late, at("3-Mar-2026 08:00"), -1,
                       at("3-Mar-2026 17:00"), -1, hours(1));
    EXPECT_TRUE(plan.is_transferred());
    EXPECT_EQ(plan.get_muststart(), at("2-Mar-2026 14:00"));
    EXPECT_EQ(plan.get_plannedstart(), at("2-Mar-2026 09:00"));
    EXPECT_EQ(plan.get_predstart(), at("2-Mar-2026 08:00"));
    EXPECT_EQ(plan.get_predstart_id(), 7);
    EXPECT_EQ(plan.get_preddue(), at("2-Mar-2026 17:00"));
    EXPECT_EQ(plan.get_preddue_id(), 8);
    EXPECT_EQ(plan.get_pretime(), hours(1));
    EXPECT_EQ(plan.get_total_plan(), hours(4));
    ASSERT_EQ(plan.get_problem_dates().size(), 1u);
    EXPECT_EQ(plan.get_problem_dates()[0], at("3-Mar-2026 17:00"));

    EntryPlan copy;
    copy.load_predicted(&plan);
    EXPECT_EQ(copy.get_predicted(), plan.get_predicted());
    EXPECT_EQ(copy.get_muststart(), plan.get_muststart());
    EXPECT_EQ(copy.get_problem_dates(), plan.get_problem_dates());
    plan.clear_predicted(false);
    EXPECT_FALSE(plan.is_transferred());
    EXPECT_TRUE(plan.get_predicted().empty());
    EXPECT_TRUE(plan.get_muststart().is_blank());
    EXPECT_TRUE(plan.get_problem_dates().empty());
}
