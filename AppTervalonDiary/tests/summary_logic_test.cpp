#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibMarkup/markup/zbmarkuppage.h"

#include <cmath>

using namespace Tervalon;

namespace {

ZBDuration hours(double h)
{
    return ZBDuration(std::int64_t(h * 3600.0));
}

} // namespace

TEST(SummaryCounts, EachEntryRaisesTheHighestBandItIsStrictlyAbove)
{
    struct Case {
        double priority;
        ZBDSummaryPage::Counts expected;
    };
    auto counts = [](int o, int u, int b, int d) {
        ZBDSummaryPage::Counts c;
        c.m_overdue = o;
        c.m_urgent = u;
        c.m_behind = b;
        c.m_delayed = d;
        return c;
    };
    const Case cases[] = {
        {-200.0, counts(0, 0, 0, 0)},   {50.0, counts(0, 0, 0, 0)},    {100.0, counts(0, 0, 0, 0)},
        {100.001, counts(0, 0, 0, 1)}, {200.0, counts(0, 0, 0, 1)},   {200.5, counts(0, 0, 1, 0)},
        {300.0, counts(0, 0, 1, 0)},   {300.25, counts(0, 1, 0, 0)},  {400.0, counts(0, 1, 0, 0)},
        {400.0 + 1e-6, counts(1, 0, 0, 0)}, {455.0, counts(1, 0, 0, 0)},
    };
    for (const Case& c : cases) {
        ZBDSummaryPage::Counts got;
        got.count(c.priority);
        EXPECT_TRUE(got == c.expected) << "priority " << c.priority;
    }
}

TEST(SummaryScore, FitsWorkHoursFirstThenTheClockAndNeverDividesByZero)
{
    struct Case {
        double need, have, left, score;
    };
    const Case cases[] = {
        {0, 4, 8, 1.0},     // nothing to do
        {2, 4, 8, 0.75},    // half the work hours
        {4, 4, 8, 0.5},     // exactly the work hours
        {6, 4, 8, 0.125},   // past the work hours, within the clock
        {8, 4, 8, 0.0},     // the whole clock
        {9, 4, 8, 0.0},
        {0, 0, 8, 0.5},     // no work hours left: the clock decides
        {2, 0, 8, 0.375},
        {0, 0, 0, 0.0},     // nothing left at all
        {1, 0, 0, 0.0},
    };
    for (const Case& c : cases) {
        const double got = ZBDSummaryPage::score(hours(c.need), hours(c.have), hours(c.left));
        EXPECT_TRUE(std::isfinite(got));
        EXPECT_NEAR(got, c.score, 1e-9) << c.need << " " << c.have << " " << c.left;
    }
}

TEST(SummaryHeadline, FirstMatchingRowGivesMeterHeadlineAndSecondSentence)
{
    struct Case {
        int overdue, urgent, behind, delayed;
        double score, need, have;
        double meter;
        const char* headline;
        const char* second;
    };
    const Case cases[] = {
        {1, 3, 0, 0, 0.5, 2, 4, 5.0, "You have an overdue task.",
         "2:00 to get completely under control. 4.0 work hours left today."},
        {3, 0, 0, 0, 0.0, 9, 0, 0.0, "You have 3 overdue tasks.",
         "9:00 to get completely under control.  No work hours left today."},
        {0, 1, 2, 0, 0.5, 1, 2, 15.0, "You have an urgent task.",
         "1:00 to get completely under control. 2.0 work hours left today."},
        {0, 2, 0, 0, 1.0, 0, 2, 20.0, "You have 2 urgent tasks.",
         "0:00 to get completely under control. 2.0 work hours left today."},
        {0, 0, 1, 5, 0.5, 1, 2, 25.0, "You are 1 tasks behind your plan.",
         "1:00 to get completely under control. 2.0 work hours left today."},
        {0, 0, 0, 4, 0.5, 1, 2, 40.0, "Some delayed tasks...",
         "1:00 to get completely under control. 2.0 work hours left today."},
        {0, 0, 0, 0, 1.0, 0, 8, 100.0, "Well done... Everything under control for today!",
         "0:00 to complete today. 8.0 work hours left today."},
        {0, 0, 0, 0, 0.75, 2, 4, 87.5, "On track! 2:00 to do today.",
         "2:00 to complete today. 4.0 work hours left today."},
        {0, 0, 0, 0, 0.5, 4, 4, 75.0, "On track! 4:00 to do today.",
         "4:00 to complete today. 4.0 work hours left today."},
        {0, 0, 0, 0, 0.25, 6.5, 0, 62.5, "6:30 to do today.", "6:30 to complete today.  No work hours left today."},
    };
    for (const Case& c : cases) {
        ZBDSummaryPage::Counts counts;
        counts.m_overdue = c.overdue;
        counts.m_urgent = c.urgent;
        counts.m_behind = c.behind;
        counts.m_delayed = c.delayed;
        const ZBDSummaryPage::Headline got = ZBDSummaryPage::headline(counts, c.score, hours(c.need), hours(c.have));
        EXPECT_NEAR(got.m_meter, c.meter, 1e-9) << c.headline;
        EXPECT_EQ(got.m_headline, c.headline);
        EXPECT_EQ(got.m_second, c.second);
    }
}

namespace {

// Tasks whose calculated state is set by hand, as a finished pass would leave
// it, on Monday 2 March 2026 at 08:00.
class SummaryPlacement : public Test::PlanFixture {
protected:
    DiaryEntry* task(const std::string& title, int lengthHours = 2)
    {
        DiaryEntry* entry = add(nullptr, title);
        set_length(entry, lengthHours);
        return entry;
    }
    void predict(DiaryEntry* entry, const std::string& from, const std::string& to, const std::string& ideal = "")
    {
        // Booked time carries the resource it was booked from.
        ZBDateSet sessions;
        sessions.add(ZBDateSlot(at(from), at(to)), entry->get_props().get_resource_calc());
        entry->edit_plan().add_predicted(ideal.empty() ? at(from) : at(ideal), ZBDate(ZBDate::E_Blank), sessions,
                                         ZBDate(ZBDate::E_Blank), -1, ZBDate(ZBDate::E_Blank), -1, ZBDuration());
    }
    ZBDSummaryPage::E_Placement placed(const DiaryEntry* entry) const
    {
        const ZBDateSlot today(at("2-Mar-2026 00:00"), at("3-Mar-2026 00:00"));
        const ZBDateSlot tomorrow(at("3-Mar-2026 00:00"), at("4-Mar-2026 00:00"));
        return ZBDSummaryPage::place(*entry, today, tomorrow);
    }
};

} // namespace

TEST_F(SummaryPlacement, EachRuleSendsATaskToItsList)
{
    plan();
    DiaryEntry* urgent = task("Urgent");
    urgent->edit_priority().set_calc(350.0);
    DiaryEntry* mustToday = task("Must start today");
    mustToday->set_derived_muststart(at("2-Mar-2026 23:59"));
    predict(mustToday, "5-Mar-2026 09:00", "5-Mar-2026 10:00");
    DiaryEntry* booked = task("Booked today");
    predict(booked, "2-Mar-2026 10:00", "2-Mar-2026 12:00");
    DiaryEntry* fixed = task("Fixed today");
    fixed->edit_plan().edit_planned().add(ZBDateSlot(at("2-Mar-2026 14:00"), at("2-Mar-2026 15:00")),
                                          fixed->get_props().get_resource_calc());
    DiaryEntry* ideal = task("Ideal today");
    predict(ideal, "4-Mar-2026 09:00", "4-Mar-2026 10:00", "2-Mar-2026 16:00");
    DiaryEntry* tomorrow = task("Tomorrow");
    predict(tomorrow, "3-Mar-2026 09:00", "3-Mar-2026 11:00");
    DiaryEntry* mustTomorrow = task("Must start tomorrow");
    mustTomorrow->set_derived_muststart(at("3-Mar-2026 12:00"));
    DiaryEntry* later = task("Later");
    predict(later, "9-Mar-2026 09:00", "9-Mar-2026 11:00");
    DiaryEntry* unplanned = task("Unplanned");

    EXPECT_EQ(placed(urgent), ZBDSummaryPage::E_PlaceCompleteToday);
    EXPECT_EQ(placed(mustToday), ZBDSummaryPage::E_PlaceCompleteToday);
    EXPECT_EQ(placed(booked), ZBDSummaryPage::E_PlaceToday);
    EXPECT_EQ(placed(fixed), ZBDSummaryPage::E_PlaceToday);
    EXPECT_EQ(placed(ideal), ZBDSummaryPage::E_PlaceUnderControl);
    EXPECT_EQ(placed(tomorrow), ZBDSummaryPage::E_PlaceTomorrow);
    EXPECT_EQ(placed(mustTomorrow), ZBDSummaryPage::E_PlaceTomorrow);
    EXPECT_EQ(placed(later), ZBDSummaryPage::E_PlaceFuture);
    EXPECT_EQ(placed(unplanned), ZBDSummaryPage::E_PlaceFuture);
}

TEST_F(SummaryPlacement, DayPageCountsLeavesOnlyAndAddsPreTimeToTodaysNeed)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* overdue = add(project, "Overdue");
    set_length(overdue, 3);
    DiaryEntry* done = task("Done");
    ASSERT_EQ(done->set_completion(100.0, true), ZBErrC_ok);
    DiaryEntry* booked = task("Booked");
    plan();
    overdue->edit_priority().set_calc(410.0);
    project->edit_priority().set_calc(410.0); // a parent is never counted
    // Only the hour set here is booked today, whatever the pass predicted.
    booked->edit_plan().clear_predicted(true);
    predict(booked, "2-Mar-2026 10:00", "2-Mar-2026 11:00");
    ZBDateSet none;
    booked->edit_plan().add_predicted(ZBDate(ZBDate::E_Blank), ZBDate(ZBDate::E_Blank), none,
                                      ZBDate(ZBDate::E_Blank), -1, ZBDate(ZBDate::E_Blank), -1, ZBDuration(1800));

    DiaryDisplay display(diary);
    ZBDSummaryPage summary;
    ZBMarkupPage page;
    ASSERT_EQ(summary.get_due_today(diary, display, -1, page), ZBErrC_ok);
    EXPECT_EQ(summary.get_counts().m_overdue, 1);
    EXPECT_EQ(summary.get_set(ZBDSummaryPage::E_PlaceCompleteToday).size(), 1);
    EXPECT_EQ(summary.get_set(ZBDSummaryPage::E_PlaceToday).size(), 1);
    EXPECT_EQ(summary.get_set(ZBDSummaryPage::E_PlaceFuture).size(), 0);
    // Three hours overdue, one booked today, half an hour that should have been done earlier.
    EXPECT_EQ(summary.get_need(), ZBDuration(3 * 3600 + 3600 + 1800));
    EXPECT_EQ(summary.get_left(), ZBDuration(16 * 3600));
    EXPECT_EQ(summary.get_headline().m_headline, "You have an overdue task.");
    const std::string text = page.get_raw_text();
    EXPECT_NE(text.find("Complete these today..."), std::string::npos);
    EXPECT_NE(text.find("Overdue: 1  Urgent: 0"), std::string::npos);
    EXPECT_EQ(text.find("Done"), std::string::npos);
}
