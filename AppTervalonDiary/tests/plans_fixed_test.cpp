#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibDate/calendar/zbcalendar.h"

#include <sstream>

using namespace Tervalon;

namespace {

class Plans : public Test::PlanFixture {
protected:
    // Hours of Tuesday 3 March 2026 as a slot.
    static ZBDateSlot hours(int from, int to)
    {
        const ZBDate day = at("3-Mar-2026 00:00");
        return ZBDateSlot(day + ZBDuration(std::int64_t(from) * 3600), day + ZBDuration(std::int64_t(to) * 3600));
    }
    // A set as "from-to" hours of 3 March, for whole-set comparisons.
    static std::string text(const ZBDateSet& set)
    {
        const ZBDate day = at("3-Mar-2026 00:00");
        std::ostringstream out;
        for (int i = 0; i < set.size(); ++i)
            out << (i ? " " : "") << (set[i]->m_start - day).get_as_seconds() / 3600 << "-"
                << (set[i]->m_end - day).get_as_seconds() / 3600;
        return out.str();
    }
    int resource() const { return diary.get_default_resource_id(); }
    void plan_hours(DiaryEntry* entry, int from, int to)
    {
        entry->edit_plan().edit_planned().add(hours(from, to), resource());
    }
    // Predictions are set by hand here, so only the entry phases run: the
    // planner would replace them.
    void plan()
    {
        ASSERT_EQ(diary.calculate_dependencies(), ZBErrC_ok);
        ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    }
    void predict_hours(DiaryEntry* entry, int from, int to)
    {
        entry->edit_plan().edit_predicted().add(hours(from, to), 0);
    }
};

} // namespace

TEST_F(Plans, LockMovesPredictionsThatMeetTheSlotAndAZeroLengthSlotTakesAll)
{
    DiaryEntry* task = add(nullptr, "Write");
    plan();
    predict_hours(task, 9, 10);
    predict_hours(task, 12, 13);
    predict_hours(task, 15, 16);
    const ZBDate before = task->get_modify_time();
    now("2-Mar-2026 09:00");
    int count = 0;
    // Touching the slot's ends does not count: only the noon session meets it.
    ASSERT_EQ(task->edit_plan().lock_plans(hours(10, 15), &count), ZBErrC_ok);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(text(task->get_plan().get_planned()), "12-13");
    EXPECT_EQ(text(task->get_plan().get_predicted()), "9-10 15-16");
    EXPECT_EQ(task->get_plan().get_planned()[0]->m_type, resource());
    EXPECT_TRUE(before < task->get_modify_time()); // a stored field changed

    ASSERT_EQ(task->edit_plan().lock_plans(ZBDateSlot(hours(11, 11)), &count), ZBErrC_ok);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(text(task->get_plan().get_planned()), "9-10 12-13 15-16");
    EXPECT_TRUE(task->get_plan().get_predicted().empty());
}

TEST_F(Plans, LockingOneSessionNeedsAPredictedSequence)
{
    DiaryEntry* task = add(nullptr, "Write");
    plan();
    predict_hours(task, 9, 10);
    predict_hours(task, 12, 13);
    EXPECT_TRUE(iszbwarn(task->edit_plan().lock_plan(DiaryEntry::get_sequence('p', 0))));
    EXPECT_TRUE(iszbwarn(task->edit_plan().lock_plan(DiaryEntry::get_sequence('r', 2))));
    get_zberror().clear_all();
    ASSERT_EQ(task->edit_plan().lock_plan(DiaryEntry::get_sequence('r', 1)), ZBErrC_ok);
    EXPECT_EQ(text(task->get_plan().get_planned()), "12-13");
    EXPECT_EQ(text(task->get_plan().get_predicted()), "9-10");
}

TEST_F(Plans, DiaryWideLockAndClearReachEveryLevel)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* child = add(project, "Child");
    DiaryEntry* top = add(nullptr, "Top");
    plan();
    predict_hours(child, 9, 10);
    predict_hours(top, 11, 12);
    int count = 0;
    ASSERT_EQ(diary.lock_plans(hours(0, 24), &count), ZBErrC_ok);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(text(child->get_plan().get_planned()), "9-10");
    EXPECT_TRUE(EntryPlan::has_plans(*project));
    EXPECT_EQ(diary.get_planned_time(hours(0, 24), resource()), ZBDuration(2 * 3600));
    EXPECT_EQ(diary.get_planned_time(hours(0, 24), resource() + 100), ZBDuration());

    count = 0;
    ASSERT_EQ(diary.clear_plans(hours(9, 10), &count), ZBErrC_ok);
    EXPECT_EQ(count, 1);
    EXPECT_FALSE(EntryPlan::has_plans(*project));
    EXPECT_EQ(text(top->get_plan().get_planned()), "11-12");
}

TEST_F(Plans, RemovePlansTakesOnlyWholeSessionsThatAreOver)
{
    DiaryEntry* task = add(nullptr, "Write");
    plan_hours(task, 9, 10);
    plan_hours(task, 11, 13);
    plan_hours(task, 14, 15);
    task->edit_plan().remove_plans(hours(12, 12).m_start);
    EXPECT_EQ(text(task->get_plan().get_planned()), "11-13 14-15");
    task->edit_plan().remove_plans(hours(13, 13).m_start);
    EXPECT_EQ(text(task->get_plan().get_planned()), "14-15");
    task->edit_plan().remove_plans(ZBDate(ZBDate::E_Blank));
    EXPECT_TRUE(task->get_plan().get_planned().empty());
}

TEST_F(Plans, RationaliseDropsWholeSessionsFromTheFrontOnly)
{
    struct Row {
        int length;                                // hours still to do
        std::vector<std::pair<int, int>> sessions; // planned hours
        const char* left;
    } rows[] = {
        {3, {{9, 11}, {13, 14}, {15, 17}}, "13-14 15-17"}, // 2h surplus: the first goes
        {2, {{9, 12}, {13, 14}}, "9-12 13-14"},            // the first is bigger than the surplus: all stay
        {1, {{9, 10}, {11, 12}, {13, 14}}, "13-14"},       // two whole sessions fit the surplus
        {4, {{9, 11}, {13, 14}}, "9-11 13-14"},            // no surplus
    };
    for (const Row& row : rows) {
        DiaryEntry* task = add(nullptr, "Write");
        set_length(task, row.length);
        task->edit_due().set_orig(at("4-Mar-2026 17:00"));
        plan();
        for (const auto& session : row.sessions)
            plan_hours(task, session.first, session.second);
        task->edit_plan().rationalise_plans(resource());
        EXPECT_EQ(text(task->get_plan().get_planned()), row.left) << "length " << row.length;
    }
}

TEST_F(Plans, MovePlanSwapsNeighboursAndEachKeepsItsLength)
{
    struct Row {
        std::pair<int, int> a, b; // plan of A, plan of B
        bool moveBUp;
        const char* aAfter;
        const char* bAfter;
    } rows[] = {
        {{9, 10}, {10, 13}, true, "12-13", "9-12"},  // abutting, lengths differ
        {{9, 10}, {11, 13}, true, "12-13", "9-11"},  // a gap stays between them
        {{9, 12}, {14, 15}, true, "12-15", "9-10"},  // the longer moves behind
        {{14, 15}, {9, 12}, false, "9-10", "12-15"}, // moving down from the earlier one
    };
    for (const Row& row : rows) {
        diary.clear_plans(ZBDateSlot());
        DiaryEntry* a = add(nullptr, "A");
        DiaryEntry* b = add(nullptr, "B");
        plan();
        plan_hours(a, row.a.first, row.a.second);
        plan_hours(b, row.b.first, row.b.second);
        ASSERT_EQ(diary.move_plan(b->get_id(), DiaryEntry::get_sequence('p', 0), row.moveBUp, nullptr), ZBErrC_ok);
        EXPECT_EQ(text(a->get_plan().get_planned()), row.aAfter);
        EXPECT_EQ(text(b->get_plan().get_planned()), row.bAfter);
        diary.delete_object(a->get_id(), "Delete Entry");
        diary.delete_object(b->get_id(), "Delete Entry");
    }
}

TEST_F(Plans, MovePlanRefusesWhatIsNotAPlanOrHasNoNeighbour)
{
    DiaryEntry* a = add(nullptr, "A");
    plan();
    plan_hours(a, 9, 10);
    predict_hours(a, 11, 12);
    EXPECT_TRUE(iszbwarn(diary.move_plan(a->get_id(), DiaryEntry::get_sequence('r', 0), true, nullptr)));
    EXPECT_TRUE(iszbwarn(diary.move_plan(a->get_id(), DiaryEntry::get_sequence('p', 0), true, nullptr)));
    EXPECT_TRUE(iszbwarn(diary.move_plan(9999, DiaryEntry::get_sequence('p', 0), true, nullptr)));
    get_zberror().clear_all();
    EXPECT_EQ(text(a->get_plan().get_planned()), "9-10");
}

TEST_F(Plans, ClashesComeFromPlansAndBlockingAppointmentsOnly)
{
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(hours(10, 12));
    meeting->edit_props().set_timetype_orig(TimeType::C_BlockingTimeTypeId);
    DiaryEntry* walk = add(nullptr, "Walk", 'A');
    walk->edit_time().set_orig(hours(9, 17));
    walk->edit_props().set_timetype_orig(TimeType::C_FreeTimeTypeId);
    DiaryEntry* report = add(nullptr, "Report");
    DiaryEntry* letters = add(nullptr, "Letters");
    DiaryEntry* predicted = add(nullptr, "Predicted");
    plan();
    plan_hours(report, 9, 13);   // covers the meeting and the letters
    plan_hours(letters, 12, 14); // touches the meeting's end only
    predict_hours(predicted, 10, 11);
    ASSERT_EQ(diary.check_clashing(), ZBErrC_ok);
    EXPECT_EQ(report->get_plan().get_clashing(), (std::vector<std::string>{"Meeting", "Letters"}));
    EXPECT_TRUE(meeting->get_plan().get_clashing().empty());
    EXPECT_TRUE(letters->get_plan().get_clashing().empty());
    EXPECT_TRUE(walk->get_plan().get_clashing().empty());
    EXPECT_TRUE(predicted->get_plan().get_clashing().empty());

    // Gone when the plan moves away.
    report->edit_plan().clear_plans(ZBDateSlot());
    ASSERT_EQ(diary.check_clashing(), ZBErrC_ok);
    EXPECT_TRUE(report->get_plan().get_clashing().empty());
}

TEST_F(Plans, PlannedStateFollowsTheFixedTimeBeforeTheDue)
{
    struct Row {
        int length;
        std::pair<int, int> session;
        const char* due;
        bool planned;
    } rows[] = {
        {2, {9, 11}, "3-Mar-2026 17:00", true},
        {3, {9, 11}, "3-Mar-2026 17:00", false}, // not enough
        {2, {9, 11}, "3-Mar-2026 10:00", false}, // only one hour before the due
        {2, {9, 11}, "", true},                  // no due: all of it counts
    };
    for (const Row& row : rows) {
        DiaryEntry* task = add(nullptr, "Task");
        set_length(task, row.length);
        if (*row.due)
            task->edit_due().set_orig(at(row.due));
        plan_hours(task, row.session.first, row.session.second);
        plan();
        EXPECT_EQ(task->is_planned(), row.planned) << row.length << " " << row.due;
    }
    DiaryEntry* parent = add(nullptr, "Parent", 'O');
    DiaryEntry* done = add(parent, "Done");
    DiaryEntry* open = add(parent, "Open");
    set_length(open, 1);
    plan();
    EXPECT_TRUE(done->is_planned());
    EXPECT_FALSE(open->is_planned());
    EXPECT_FALSE(parent->is_planned());
}

TEST_F(Plans, OverrunAndShouldStartReadTheRightSessions)
{
    DiaryEntry* late = add(nullptr, "Late");
    set_length(late, 2);
    late->edit_due().set_orig(at("3-Mar-2026 10:00"));
    predict_hours(late, 9, 11);
    DiaryEntry* parent = add(nullptr, "Parent", 'O');
    DiaryEntry* child = add(parent, "Child");
    set_length(child, 1);
    child->edit_due().set_orig(at("3-Mar-2026 10:00"));
    predict_hours(child, 12, 13);
    plan();
    EXPECT_TRUE(late->get_plan().could_overrun());
    EXPECT_TRUE(parent->get_plan().could_overrun());
    EXPECT_TRUE(late->get_plan().range_overrun(hours(0, 24)));
    EXPECT_FALSE(late->get_plan().range_overrun(hours(11, 24)));

    // Only a fixed plan that has begun says start now; a prediction does not.
    now("3-Mar-2026 09:30");
    EXPECT_FALSE(late->get_plan().should_start());
    plan_hours(late, 9, 10);
    EXPECT_TRUE(late->get_plan().should_start());
    late->edit_spent().start_session(at("3-Mar-2026 09:00"), resource());
    EXPECT_FALSE(late->get_plan().should_start());
}

TEST_F(Plans, UnplannedTimeIsWhatThePlansLeave)
{
    DiaryEntry* task = add(nullptr, "Task");
    set_length(task, 3);
    task->edit_due().set_orig(at("4-Mar-2026 17:00"));
    plan_hours(task, 9, 10);
    plan();
    EXPECT_EQ(task->get_plan().get_unplanned_time(at("3-Mar-2026 08:00")), ZBDuration(2 * 3600));
    plan_hours(task, 11, 15);
    EXPECT_EQ(task->get_plan().get_unplanned_time(at("3-Mar-2026 08:00")), ZBDuration());
}

TEST_F(Plans, RemoveFixedTakesPlansSessionsAndRealAppointments)
{
    DiaryEntry* task = add(nullptr, "Task");
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(hours(14, 15));
    plan();
    meeting->edit_props().set_timetype_orig(diary.get_timetype_by_index(0)->get_id());
    plan();
    plan_hours(task, 9, 10);
    task->edit_spent().add_session(hours(11, 12), resource());
    ZBDateSet free;
    free.add(hours(8, 18), 0);
    diary.remove_fixed(free, hours(0, 24), resource(), false);
    EXPECT_EQ(text(free), "8-9 10-14 15-18");
    diary.remove_fixed(free, hours(0, 24), -1, true);
    EXPECT_EQ(text(free), "8-9 10-11 12-14 15-18");
    ZBDateSet other;
    other.add(hours(8, 18), 0);
    diary.remove_fixed(other, hours(0, 24), resource() + 100, true);
    EXPECT_EQ(text(other), "8-18");
}
