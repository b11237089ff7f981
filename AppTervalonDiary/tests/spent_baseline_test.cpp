// Baselines: the budget and time grades at their boundaries, the automatic
// kinds, and a parent's baseline from its children.
#include "AppTervalonDiary/tests/plan_fixture.h"

using namespace Tervalon;

namespace {
struct Baselines : public Test::PlanFixture {
    static ZBDuration hm(int hours, int minutes = 0) { return ZBDuration(std::int64_t(hours) * 3600 + minutes * 60); }
    static ZBDateSlot slot(const char* from, const char* to) { return ZBDateSlot(at(from), at(to)); }
};
const ZBDate C_None(ZBDate::E_Blank);
} // namespace

TEST_F(Baselines, BudgetStateAndTextAtTheBoundaries)
{
    const struct {
        int budget;       // hours frozen (0: none, the calculated one is used)
        int calculated;   // hours worked out for the entry
        ZBDuration completed;
        ZBDuration remaining;
        int state;
        const char* text;
    } rows[] = {
        {10, 0, hm(10), hm(0), 1, "On budget."},
        {10, 0, hm(10, 1), hm(0), 4, "Poor. 00:01 over budget."},
        {10, 0, hm(11), hm(0), 4, "Poor. 01:00 over budget."},
        {10, 0, hm(6), hm(4), 1, "On budget."},
        {10, 0, hm(6), hm(4, 30), 3, "Marginal. 00:30 over budget."},
        {10, 0, hm(4), hm(2), 1, "04:00 under budget."},
        {0, 5, hm(4), hm(2), 3, "Marginal. 01:00 over budget."},
        {0, 0, hm(4), hm(2), 0, ""},
    };
    for (const auto& row : rows) {
        EntryBaseline baseline;
        baseline.set_duration(hm(row.budget));
        baseline.update_calcs(row.completed, row.remaining, C_None, hm(row.calculated), ZBDateSlot());
        EXPECT_EQ(baseline.get_state(), row.state) << row.text;
        EXPECT_EQ(baseline.get_text(), row.text);
        EXPECT_EQ(baseline.get_time_state(), 0) << row.text;
    }
}

TEST_F(Baselines, AProgressiveBaselineGrowsItsTargetWithTheDays)
{
    // Ten hours over ten days: half way the target is five hours.
    const struct {
        const char* now;
        ZBDuration completed;
        int target;
        int state;
        const char* text;
    } rows[] = {
        {"7-Mar-2026 00:00", hm(5), 5, 1, "On budget."},
        {"7-Mar-2026 00:00", hm(5, 1), 5, 2, "Over Progress. 00:01 over budget."},
        {"1-Mar-2026 00:00", hm(0, 1), 0, 2, "Over Progress. 00:01 over budget."},
        {"1-Mar-2026 00:00", hm(0), 0, 1, "On budget."},
        {"20-Mar-2026 00:00", hm(9), 10, 1, "On budget."},
    };
    for (const auto& row : rows) {
        now(row.now);
        EntryBaseline baseline;
        baseline.set_duration(hm(10));
        baseline.set_startend(slot("2-Mar-2026 00:00", "12-Mar-2026 00:00"));
        baseline.set_progressive(true);
        baseline.update_calcs(row.completed, hm(10) - row.completed, C_None, ZBDuration(), ZBDateSlot());
        EXPECT_EQ(baseline.get_progress_target(), hm(row.target)) << row.now;
        EXPECT_EQ(baseline.get_state(), row.state) << row.now;
        EXPECT_EQ(baseline.get_text(), row.text) << row.now;
    }
    EXPECT_EQ(EntryBaseline().get_prog_text(), "Progress Target 00:00");
}

TEST_F(Baselines, TimeStateAndTextAtTheBoundaries)
{
    const struct {
        const char* now;
        const char* end; // the predicted end; empty for none
        ZBDuration remaining;
        int state;
        const char* text;
    } rows[] = {
        {"9-Mar-2026 09:00", "10-Mar-2026 16:00", hm(2), 1, "Good. 01:00 ahead of schedule."},
        {"9-Mar-2026 09:00", "10-Mar-2026 17:00", hm(2), 1, "Good. On schedule."},
        {"9-Mar-2026 09:00", "10-Mar-2026 18:00", hm(2), 3, "Marginal. Predicted 01:00 behind schedule."},
        {"9-Mar-2026 09:00", "", hm(2), 1, "Good. On schedule."},
        {"10-Mar-2026 16:59", "", hm(2), 1, "Good. On schedule."},
        {"10-Mar-2026 17:00", "", hm(2), 4, "Poor. Predicted 00:00 behind schedule."},
        {"10-Mar-2026 19:00", "", hm(2), 4, "Poor. Predicted 02:00 behind schedule."},
        {"10-Mar-2026 19:00", "11-Mar-2026 10:00", hm(2), 4, "Poor. Predicted 17:00 behind schedule."},
        // Finished in time: the date passing does not make it late.
        {"12-Mar-2026 09:00", "10-Mar-2026 12:00", hm(0), 1, "Good. 05:00 ahead of schedule."},
        {"12-Mar-2026 09:00", "11-Mar-2026 12:00", hm(0), 4, "Poor. Predicted 19:00 behind schedule."},
    };
    for (const auto& row : rows) {
        now(row.now);
        EntryBaseline baseline;
        baseline.set_startend(slot("2-Mar-2026 09:00", "10-Mar-2026 17:00"));
        const ZBDate end = *row.end ? at(row.end) : C_None;
        baseline.update_calcs(hm(3), row.remaining, end, ZBDuration(), ZBDateSlot());
        EXPECT_EQ(baseline.get_time_state(), row.state) << row.now << " " << row.end;
        EXPECT_EQ(baseline.get_time_text(), row.text) << row.now << " " << row.end;
    }
    // Without an end there is nothing to grade.
    EntryBaseline none;
    none.update_calcs(hm(1), hm(1), at("3-Mar-2026 09:00"), ZBDuration(), ZBDateSlot());
    EXPECT_EQ(none.get_time_state(), 0);
    EXPECT_EQ(none.get_time_text(), "");
    EXPECT_EQ(none.get_combined_state(), 0);
}

TEST_F(Baselines, TheAutomaticKindsFreezeWhatTheyShould)
{
    const ZBDateSlot plan = slot("3-Mar-2026 09:00", "5-Mar-2026 12:00");
    const ZBDateSlot old = slot("1-Mar-2026 09:00", "2-Mar-2026 12:00");
    const ZBDateSlot zero(ZBDate(ZBDate::E_Zero), ZBDate(ZBDate::E_Zero));
    const struct {
        const char* kind;
        int origHours;
        ZBDateSlot origSlot;
        int hours;
        ZBDateSlot slot;
        bool handled;
        int wantHours;
        ZBDateSlot wantSlot;
    } rows[] = {
        {"None", 0, ZBDateSlot(), 3, plan, false, 0, ZBDateSlot()},
        {"Hours", 0, ZBDateSlot(), 3, plan, true, 3, ZBDateSlot()},
        {"Hours", 2, ZBDateSlot(), 3, plan, false, 2, ZBDateSlot()},
        {"1", 0, ZBDateSlot(), 0, plan, false, 0, ZBDateSlot()},
        {"HoursDate", 0, ZBDateSlot(), 3, plan, true, 3, plan},
        {"HoursDate", 2, old, 3, plan, false, 2, old},
        {"HoursDate", 2, ZBDateSlot(), 3, ZBDateSlot(), false, 2, ZBDateSlot()},
        {"FollowHours", 2, old, 3, plan, true, 3, old},
        {"FollowHours", 3, old, 3, plan, false, 3, old},
        {"FollowHoursDate", 2, old, 3, plan, true, 3, plan},
        {"FollowHoursDate", 2, old, 3, ZBDateSlot(), true, 3, zero},
        {"FollowHoursDate", 3, old, 3, plan, false, 3, old},
    };
    for (const auto& row : rows) {
        EntryBaseline baseline;
        baseline.set_autobaseline(EntryBaseline::string_to_btype(row.kind));
        baseline.set_duration(hm(row.origHours));
        baseline.set_startend(row.origSlot);
        EXPECT_EQ(baseline.auto_save(hm(row.hours), row.slot) == ZBErrC_okHandled, row.handled) << row.kind;
        EXPECT_EQ(baseline.get_orig_duration(), hm(row.wantHours)) << row.kind;
        EXPECT_EQ(baseline.get_orig_startend(), row.wantSlot) << row.kind;
    }
    EXPECT_EQ(EntryBaseline::btype_to_string(4), "FollowHoursDate");
    EXPECT_FALSE(EntryBaseline::is_btype("Daily"));
    EXPECT_TRUE(EntryBaseline::is_btype("None"));
}

TEST_F(Baselines, AParentHoldsABaselineOnlyWhenEveryChildHasOne)
{
    DiaryEntry* folder = add(nullptr, "Project", 'O');
    DiaryEntry* first = add(folder, "First");
    DiaryEntry* second = add(folder, "Second");
    first->edit_baseline().set_duration(hm(2));
    first->edit_baseline().set_startend(slot("3-Mar-2026 09:00", "4-Mar-2026 17:00"));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_TRUE(folder->get_baseline().get_calc_duration().is_zero());
    EXPECT_FALSE(folder->get_baseline().get_calc_startend().m_start.is_ok());

    second->edit_baseline().set_duration(hm(3));
    second->edit_baseline().set_startend(slot("2-Mar-2026 09:00", "6-Mar-2026 17:00"));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(folder->get_baseline().get_calc_duration(), hm(5));
    EXPECT_EQ(folder->get_baseline().get_calc_startend(), slot("2-Mar-2026 09:00", "6-Mar-2026 17:00"));
    // What the user froze on the parent stands.
    folder->edit_baseline().set_duration(hm(8));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(folder->get_baseline().get_calc_duration(), hm(8));
}

TEST_F(Baselines, FollowHoursDateTakesTheDatesAgainWhenTheLengthChanges)
{
    DiaryEntry* task = add(nullptr, "Essay");
    set_length(task, 2);
    task->edit_plan().edit_predicted().add(slot("3-Mar-2026 09:00", "3-Mar-2026 11:00"), 0);
    task->edit_baseline().set_autobaseline(EntryBaseline::E_FollowHoursDate);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(task->get_baseline().get_orig_duration(), hm(2));
    EXPECT_EQ(task->get_baseline().get_orig_startend(), slot("3-Mar-2026 09:00", "3-Mar-2026 11:00"));

    set_length(task, 3);
    task->edit_plan().edit_predicted().clear();
    task->edit_plan().edit_predicted().add(slot("4-Mar-2026 09:00", "4-Mar-2026 12:00"), 0);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(task->get_baseline().get_orig_duration(), hm(3));
    EXPECT_EQ(task->get_baseline().get_orig_startend(), slot("4-Mar-2026 09:00", "4-Mar-2026 12:00"));
}

TEST_F(Baselines, TheBaselineValuesOfAnEntryAreReadAndCheckedByName)
{
    DiaryEntry* task = add(nullptr, "Essay");
    ASSERT_EQ(task->set_sysvalue(ZBDEntry::C_SysBaselineAuto, "FollowHours"), ZBErrC_ok);
    ASSERT_EQ(task->set_sysvalue(ZBDEntry::C_SysBaselineDuration, "2h30m"), ZBErrC_ok);
    EXPECT_TRUE(iszbwarn(task->set_sysvalue(ZBDEntry::C_SysBaselineAuto, "Daily")));
    EXPECT_TRUE(iszbwarn(task->set_sysvalue(ZBDEntry::C_SysBaselineProgress, "yes")));
    get_zberror().clear_all();
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysBaselineAuto), "FollowHours");
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysBaselineProgress), "0");
    EXPECT_EQ(task->get_baseline().get_orig_duration(), hm(2, 30));
}
