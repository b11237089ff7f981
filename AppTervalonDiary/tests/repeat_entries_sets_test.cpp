// Display groups: which date and time a line shows, and how a group's total
// is judged against the time available.
#include "AppTervalonDiary/diary/entryset.h"
#include "AppTervalonDiary/tests/plan_fixture.h"

using namespace Tervalon;

namespace {
using RepeatSets = Test::PlanFixture;
} // namespace

TEST_F(RepeatSets, ALineShowsTheInstanceOfASeriesThatFallsInTheSpan)
{
    DiaryEntry* task = add(nullptr, "Daily");
    task->edit_due().set_orig(at("3-Mar-2026 09:00"));
    task->edit_repeat().from_string("T=2@N=1");
    set_length(task, 2);
    DiaryEntry* once = add(nullptr, "Once");
    once->edit_due().set_orig(at("4-Mar-2026 17:00"));
    set_length(once, 3);
    once->edit_plan().edit_planned().add(ZBDateSlot(at("6-Mar-2026 09:00"), at("6-Mar-2026 10:00")), diary.get_default_resource_id());
    plan();

    EntrySet set("Friday");
    const ZBDateSlot friday(at("6-Mar-2026 00:00"), at("6-Mar-2026 23:59"));
    set.add(*task, ZBDateSlot(), at("5-Mar-2026 12:00"), 0);
    set.add(*once, friday, ZBDate(ZBDate::E_Blank), 0);
    set.add(*once, ZBDateSlot(), ZBDate(ZBDate::E_Blank), EntrySet::C_AddNoTotal);
    ASSERT_EQ(set.size(), 3);
    // The series' first instance due after the bound.
    EXPECT_EQ(set.get_line(0).get_date(), at("6-Mar-2026 09:00"));
    EXPECT_EQ(set.get_line(0).get_duration(), ZBDuration(2 * 3600));
    EXPECT_EQ(set.get_line(0).get_text(), "Daily");
    EXPECT_TRUE(set.get_line(0).is_active());
    // With a span, the time planned within it.
    EXPECT_EQ(set.get_line(1).get_date(), at("4-Mar-2026 17:00"));
    EXPECT_EQ(set.get_line(1).get_duration(), ZBDuration(3600));
    EXPECT_EQ(set.get_line(2).get_duration(), ZBDuration(3 * 3600));
    EXPECT_EQ(set.get_duration(), ZBDuration(3 * 3600));
}

TEST_F(RepeatSets, AGroupsColourComparesItsTotalWithTheTimeAvailable)
{
    struct Row {
        int totalHours;
        int availableHours;
        int colour;
    } rows[] = {
        {4, 8, EntrySet::C_ColourAvailable},
        {8, 8, EntrySet::C_ColourBorderline},
        {75, 80, EntrySet::C_ColourBorderline},
        {71, 80, EntrySet::C_ColourAvailable},
        {9, 8, EntrySet::C_ColourOver},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.totalHours) + " of " + std::to_string(row.availableHours));
        EXPECT_EQ(EntrySet::colour_for(ZBDuration(row.totalHours * 3600), ZBDuration(row.availableHours * 3600)),
                  row.colour);
    }

    DiaryEntry* task = add(nullptr, "Task");
    set_length(task, 5);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    EntrySet day("Monday");
    day.add(*task, ZBDateSlot(), ZBDate(ZBDate::E_Blank), 0);
    EntrySet week("Week");
    week.add_set(day, ZBDuration(4 * 3600), true);
    week.add_set(day, ZBDuration(8 * 3600), false);
    ASSERT_EQ(week.get_nsubsets(), 2);
    EXPECT_EQ(week.get_subset(0)->get_durcolour(), EntrySet::C_ColourOver);
    EXPECT_EQ(week.get_subset(1)->get_durcolour(), EntrySet::C_ColourAvailable);
    EXPECT_EQ(week.get_subset(2), nullptr);
    EXPECT_EQ(week.get_duration(), ZBDuration(5 * 3600));
    // A copy owns its own groups.
    EntrySet copy = week;
    EXPECT_EQ(copy.get_subset(0)->get_title(), "Monday");
    EXPECT_NE(copy.get_subset(0), week.get_subset(0));
}
