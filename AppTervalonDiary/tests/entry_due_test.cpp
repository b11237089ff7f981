#include "AppTervalonDiary/tests/plan_fixture.h"

#include <sstream>

using namespace Tervalon;

namespace {
struct EntryDueCalc : public Test::PlanFixture {
};

// Every calculated value of every entry, for comparing two passes.
std::string snapshot(const Diary& diary)
{
    std::ostringstream out;
    for (const DiaryEntry* e : diary.get_display_list())
        out << e->get_id() << ' ' << e->get_start().calc << ' ' << e->get_startafter_id() << ' ' << e->get_due().calc
            << ' ' << e->get_due_id() << ' ' << e->get_duration().calc << ' ' << e->get_priority().calc << ' '
            << e->get_priority_id() << ' ' << e->get_priority_facet().get_displayorder() << ' '
            << e->get_alert_state() << ' ' << e->get_props().get_notifications().size() << ' '
            << e->get_muststart() << '\n';
    return out.str();
}
} // namespace

TEST_F(EntryDueCalc, ParentsNarrowTheirChildrenAndLearnTheirDueFromThem)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    project->edit_due().set_orig(at("10-Mar-2026 17:00"));
    project->edit_start().set_orig(at("3-Mar-2026 09:00"));
    DiaryEntry* late = add(project, "Late");
    late->edit_due().set_orig(at("12-Mar-2026 17:00"));
    late->edit_start().set_orig(at("1-Mar-2026 09:00"));
    DiaryEntry* early = add(project, "Early");
    early->edit_due().set_orig(at("5-Mar-2026 17:00"));
    DiaryEntry* folder = add(nullptr, "Folder", 'O');
    DiaryEntry* dated = add(folder, "Dated");
    dated->edit_due().set_orig(at("7-Mar-2026 12:00"));
    DiaryEntry* open = add(folder, "Open");
    plan();

    // Due only ever earlier, start-after only later.
    EXPECT_EQ(late->get_due().calc, at("10-Mar-2026 17:00"));
    EXPECT_EQ(late->get_due_id(), project->get_id());
    EXPECT_EQ(late->get_start().calc, at("3-Mar-2026 09:00"));
    EXPECT_EQ(early->get_due().calc, at("5-Mar-2026 17:00"));
    EXPECT_EQ(early->get_due_id(), early->get_id());
    // One child without a due leaves the parent without one.
    EXPECT_TRUE(folder->get_due().calc.is_blank());
    open->edit_due().set_orig(at("9-Mar-2026 12:00"));
    plan();
    EXPECT_EQ(folder->get_due().calc, at("9-Mar-2026 12:00"));
    EXPECT_EQ(folder->get_due_id(), open->get_id());
}

TEST_F(EntryDueCalc, DatesRippleAlongDependenciesByTheRemainingTime)
{
    DiaryEntry* first = add(nullptr, "First");
    first->edit_start().set_orig(at("3-Mar-2026 09:00"));
    set_length(first, 4);
    DiaryEntry* second = add(nullptr, "Second");
    set_length(second, 2);
    DiaryEntry* third = add(nullptr, "Third");
    set_length(third, 1);
    third->edit_due().set_orig(at("10-Mar-2026 17:00"));
    second->edit_depend().add_depend(first->get_id());
    third->edit_depend().add_depend(second->get_id());
    plan();

    EXPECT_EQ(second->get_start().calc, at("3-Mar-2026 13:00"));
    EXPECT_EQ(third->get_start().calc, at("3-Mar-2026 15:00"));
    EXPECT_EQ(third->get_startafter_id(), first->get_id());
    EXPECT_EQ(second->get_due().calc, at("10-Mar-2026 16:00"));
    EXPECT_EQ(first->get_due().calc, at("10-Mar-2026 14:00"));
    // The latest start leaves room for the remaining work.
    EXPECT_EQ(first->get_muststart(), at("10-Mar-2026 10:00"));
}

TEST_F(EntryDueCalc, TwoPassesOnAnUnchangedDiaryGiveTheSameResult)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    project->edit_priority().set_orig(20.0);
    DiaryEntry* a = add(project, "A");
    a->edit_due().set_orig(at("4-Mar-2026 17:00"));
    set_length(a, 3);
    DiaryEntry* b = add(project, "B");
    b->edit_depend().add_depend(a->get_id());
    set_length(b, 5);
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 08:05"), at("2-Mar-2026 09:00")));
    DiaryEntry* late = add(nullptr, "Late");
    late->edit_due().set_orig(at("1-Mar-2026 17:00"));
    late->edit_due_facet().set_autoprogress(EntryDue::E_MatchRange);
    plan();
    const std::string once = snapshot(diary);
    plan();
    EXPECT_EQ(snapshot(diary), once);
}

TEST_F(EntryDueCalc, AutocompletionFollowsItsModeAtTheBoundaries)
{
    struct Row {
        int mode;
        int hours;      // length of the work
        int spentHours; // finished sessions before now
        const char* now;
        double percent; // -1: completed by the pass
    } rows[] = {
        {EntryDue::E_MatchSpent, 4, 1, "2-Mar-2026 08:00", 25.0},
        {EntryDue::E_MatchSpent, 4, 0, "2-Mar-2026 08:00", 0.0},
        {EntryDue::E_MatchSpent, 4, 4, "2-Mar-2026 08:00", -1},
        {EntryDue::E_MatchSpent, 0, 1, "2-Mar-2026 08:00", -1},
        {EntryDue::E_MatchSpent, 0, 0, "2-Mar-2026 08:00", 0.0},
        // The range runs 3-Mar 08:00 to 5-Mar 08:00.
        {EntryDue::E_MatchRange, 4, 0, "3-Mar-2026 07:59", 0.0},
        {EntryDue::E_MatchRange, 4, 0, "3-Mar-2026 08:00", 0.0},
        {EntryDue::E_MatchRange, 4, 0, "4-Mar-2026 08:00", 50.0},
        {EntryDue::E_MatchRange, 4, 0, "5-Mar-2026 08:00", -1},
        {EntryDue::E_Manual, 4, 4, "6-Mar-2026 08:00", 0.0},
    };
    for (const Row& row : rows) {
        now("2-Mar-2026 08:00");
        DiaryEntry* task = add(nullptr, "Task");
        set_length(task, row.hours);
        task->edit_due_facet().set_autoprogress(row.mode);
        if (row.mode == EntryDue::E_MatchRange) {
            task->edit_start().set_orig(at("3-Mar-2026 08:00"));
            task->edit_due().set_orig(at("5-Mar-2026 08:00"));
        }
        if (row.spentHours)
            task->edit_spent().add_session(
                ZBDateSlot(at("1-Mar-2026 08:00"), at("1-Mar-2026 08:00") + ZBDuration(row.spentHours * 3600)), 0);
        now(row.now);
        ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
        if (row.percent < 0)
            EXPECT_TRUE(task->is_complete()) << row.mode << " " << row.now;
        else
            EXPECT_NEAR(task->get_duration().orig.get_completion(), row.percent, 1e-6) << row.mode << " " << row.now;
        diary.delete_object(task->get_id(), std::string());
    }
}

TEST_F(EntryDueCalc, SetStartEndByKind)
{
    const ZBDateSlot slot(at("3-Mar-2026 09:00"), at("3-Mar-2026 11:00"));
    struct Row {
        int kind;
        const char* start; // "" blank
        const char* due;
    } rows[] = {
        {0, "3-Mar-2026 09:00", ""},
        {1, "", "3-Mar-2026 10:59"},
        {2, "3-Mar-2026 09:00", "3-Mar-2026 10:59"},
        {3, "", ""},
        {4, "3-Mar-2026 11:00", "3-Mar-2026 12:59"},
        {5, "3-Mar-2026 07:00", "3-Mar-2026 08:59"},
    };
    DiaryEntry* task = add(nullptr, "Task");
    for (const Row& row : rows) {
        task->edit_start().set_orig(at("1-Mar-2026 00:00"));
        task->edit_due().set_orig(at("9-Mar-2026 00:00"));
        task->edit_due_facet().set_start_end(slot, row.kind);
        const ZBDate start = *row.start ? at(row.start) : ZBDate(ZBDate::E_Blank);
        const ZBDate due = *row.due ? at(row.due) : ZBDate(ZBDate::E_Blank);
        EXPECT_EQ(task->get_start().orig, start) << row.kind;
        EXPECT_EQ(task->get_due().orig, due) << row.kind;
        EXPECT_EQ(task->get_start().calc, start) << row.kind;
    }
    // An invalid slot changes nothing.
    task->edit_due_facet().set_start_end(ZBDateSlot(), 3);
    EXPECT_EQ(task->get_due().orig, at("3-Mar-2026 08:59"));
}

TEST_F(EntryDueCalc, BadInputGivesAMessageOrASensibleResult)
{
    DiaryEntry* task = add(nullptr, "Backwards");
    task->edit_start().set_orig(at("9-Mar-2026 09:00"));
    task->edit_due().set_orig(at("4-Mar-2026 09:00"));
    set_length(task, 2);
    task->edit_due_facet().set_autoprogress(EntryDue::E_MatchRange);
    // A completion typed outside 0 to 100 is refused and nothing changes.
    EXPECT_TRUE(iszbwarn(task->edit_due_facet().set_completion_orig(150.0)));
    EXPECT_TRUE(iszbwarn(task->edit_due_facet().set_completion_orig(-1.0)));
    get_zberror().clear_all();
    EXPECT_EQ(task->get_duration().orig.get_completion(), 0.0);
    // A resource that is gone: the entry is booked against the one left.
    Resource* extra = nullptr;
    ASSERT_EQ(diary.add_resource("Extra", &extra), ZBErrC_ok);
    DiaryEntry* orphan = add(nullptr, "Orphan");
    orphan->edit_props().set_resource_orig(extra->get_id());
    diary.delete_object(extra->get_id(), std::string());
    // A loop between two entries.
    DiaryEntry* x = add(nullptr, "X");
    DiaryEntry* y = add(nullptr, "Y");
    x->edit_depend().add_depend(y->get_id());
    y->edit_depend().add_depend(x->get_id());
    plan();
    plan();
    EXPECT_FALSE(task->is_complete());
    EXPECT_EQ(task->get_due().calc, at("4-Mar-2026 09:00"));
    EXPECT_EQ(orphan->get_props().get_resource_calc(), diary.get_default_resource_id());
    EXPECT_FALSE(diary.get_circular_dependencies().empty());
}

TEST_F(EntryDueCalc, ARepeatCountsEveryInstanceInItsTotal)
{
    DiaryEntry* task = add(nullptr, "Daily");
    task->edit_due().set_orig(at("3-Mar-2026 17:00"));
    set_length(task, 2);
    task->edit_duration().orig.set_completion(50.0);
    ASSERT_EQ(task->edit_repeat().from_string("T=2@N=1"), ZBErrC_ok);
    // Without an end the series has no total: the instance stands alone.
    plan();
    EXPECT_EQ(task->get_total_duration().get_duration(), ZBDuration(2 * 3600));
    // The 3rd to the 6th: four instances, only the first partly done.
    task->edit_repeat().set_range_end(at("6-Mar-2026 23:00"), true);
    plan();
    const ZBProgress& total = task->get_total_duration();
    EXPECT_EQ(total.get_duration(), ZBDuration(8 * 3600));
    EXPECT_NEAR(total.get_completion(), 12.5, 1e-9);
}
