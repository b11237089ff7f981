#include "AppTervalonDiary/tests/plan_fixture.h"

using namespace Tervalon;

namespace {
struct EntryPriorityCalc : public Test::PlanFixture {
    // The priority without the tie-breaker of the entry itself.
    static double own(const DiaryEntry* entry)
    {
        return entry->get_priority_facet().get_non_due_priority() - entry->get_priority_facet().get_priorityorder();
    }
};
} // namespace

TEST_F(EntryPriorityCalc, EachStepBackAlongAChainIsSlightlyMoreUrgent)
{
    DiaryEntry* first = add(nullptr, "First");
    DiaryEntry* second = add(nullptr, "Second");
    DiaryEntry* third = add(nullptr, "Third");
    for (DiaryEntry* entry : {first, second, third})
        entry->edit_priority().set_orig(10.0);
    second->edit_depend().add_depend(first->get_id());
    third->edit_depend().add_depend(second->get_id());
    plan();
    // Entries that wait take no tie-breaker, so the step shows alone.
    EXPECT_EQ(third->get_priority_facet().get_priorityorder(), 0.0);
    EXPECT_EQ(second->get_priority_facet().get_priorityorder(), 0.0);
    EXPECT_NEAR(own(third), 10.0, 1e-12);
    EXPECT_NEAR(own(second), 10.0 + 1e-6, 1e-12);
    EXPECT_EQ(second->get_priority_id(), third->get_id());
    // The open head of the chain ranks above all that waits on it.
    EXPECT_GT(first->get_priority_facet().get_non_due_priority(), second->get_priority_facet().get_non_due_priority());
    // Waiting on something that is still open makes an entry inactive.
    EXPECT_FALSE(third->is_active());
    EXPECT_TRUE(first->is_active());
}

TEST_F(EntryPriorityCalc, ParentsLiftChildrenAndChildrenLiftParents)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    project->edit_priority().set_orig(50.0);
    DiaryEntry* plain = add(project, "Plain");
    DiaryEntry* keen = add(project, "Keen");
    keen->edit_priority().set_orig(80.0);
    DiaryEntry* done = add(project, "Done");
    done->edit_priority().set_orig(500.0);
    done->edit_duration().orig.set_completion(100.0);
    plan();
    EXPECT_NEAR(own(plain), 50.0, 1e-9);
    EXPECT_EQ(plain->get_priority_id(), project->get_id());
    EXPECT_NEAR(own(keen), 80.0, 1e-9);
    // A finished child never lifts its parent.
    EXPECT_EQ(done->get_priority().calc, EntryPriority::C_PriorityComplete);
    EXPECT_EQ(project->get_priority().calc, keen->get_priority().calc);
    EXPECT_EQ(project->get_priority_id(), keen->get_id());

    // A lower parent value never lowers a leaf below its own.
    project->edit_priority().set_orig(10.0);
    plan();
    EXPECT_NEAR(own(keen), 80.0, 1e-9);
    EXPECT_NEAR(own(plain), 10.0, 1e-9);
}

TEST_F(EntryPriorityCalc, StateOffsetsRankOverdueUrgentAndInactive)
{
    DiaryEntry* overdue = add(nullptr, "Overdue");
    overdue->edit_due().set_orig(at("1-Mar-2026 17:00"));
    DiaryEntry* blocker = add(nullptr, "Blocker");
    blocker->edit_due().set_orig(at("20-Mar-2026 17:00"));
    DiaryEntry* waiting = add(nullptr, "Waiting overdue");
    waiting->edit_due().set_orig(at("1-Mar-2026 17:00"));
    waiting->edit_depend().add_depend(blocker->get_id());
    DiaryEntry* urgent = add(nullptr, "Urgent");
    urgent->edit_due().set_orig(at("2-Mar-2026 10:00"));
    set_length(urgent, 4);
    urgent->edit_plan().set_is_planned(false);
    DiaryEntry* later = add(nullptr, "Later");
    later->edit_start().set_orig(at("9-Mar-2026 09:00"));
    DiaryEntry* note = add(nullptr, "Note", 'P');
    DiaryEntry* held = add(nullptr, "Held");
    held->edit_due().set_orig(at("2-Mar-2026 09:00"));
    plan();
    EXPECT_NEAR(overdue->get_priority().calc - overdue->get_priority_facet().get_non_due_priority(), 400.0, 1e-9);
    // Overdue and inactive: the due offset less five, and no inactive offset.
    EXPECT_NEAR(waiting->get_priority().calc - waiting->get_priority_facet().get_non_due_priority(), 395.0, 1e-9);
    EXPECT_NEAR(urgent->get_priority().calc - urgent->get_priority_facet().get_non_due_priority(), 300.0, 1e-9);
    EXPECT_NEAR(later->get_priority().calc - later->get_priority_facet().get_non_due_priority(), -100.0, 1e-9);
    // Not a task: its own value and a tie-breaker, no state offset.
    EXPECT_NEAR(note->get_priority().calc, 0.0, 0.1);
    // What an overdue task waits for is due by then as well.
    EXPECT_EQ(blocker->get_due().calc, at("1-Mar-2026 17:00"));
    EXPECT_NEAR(blocker->get_priority().calc - blocker->get_priority_facet().get_non_due_priority(), 400.0, 1e-9);
    // A task due within what the late tasks of its resource hold up is delayed.
    EXPECT_NEAR(held->get_priority().calc - held->get_priority_facet().get_non_due_priority(), 100.0, 1e-9);
    const int resource = held->get_props().get_resource_calc();
    EXPECT_TRUE(diary.is_delayed_range(resource, at("2-Mar-2026 10:00")));
    EXPECT_FALSE(diary.is_delayed_range(resource, at("2-Mar-2026 10:01")));
    EXPECT_FALSE(diary.is_delayed_range(resource, ZBDate(ZBDate::E_Blank)));
}

TEST_F(EntryPriorityCalc, TieBreakerStepShrinksWithTheObjectCount)
{
    struct Row {
        int entries;
        double step;
    } rows[] = {{2, 0.001}, {245, 0.0001}};
    for (const Row& row : rows) {
        diary.unload();
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("tie") + "/t.zbd", true), ZBErrC_ok);
        const int base = diary.get_nobjects();
        DiaryEntry* a = add(nullptr, "A");
        DiaryEntry* b = add(nullptr, "B");
        for (int i = 2; i < row.entries; ++i)
            add(nullptr, "More");
        ASSERT_EQ(diary.get_nobjects(), base + row.entries);
        plan();
        const double pa = a->get_priority_facet().get_priorityorder();
        const double pb = b->get_priority_facet().get_priorityorder();
        // Equal priorities: the lower id sorts first and takes the larger value.
        EXPECT_NEAR(pa - pb, row.step, 1e-12) << row.entries;
        EXPECT_LT(pa, 0.1);
    }
}

TEST_F(EntryPriorityCalc, DisplayOrderNumbersTheTreeDepthFirst)
{
    DiaryEntry* one = add(nullptr, "One", 'O');
    DiaryEntry* child = add(one, "Child");
    DiaryEntry* two = add(nullptr, "Two", 'O');
    plan();
    const std::vector<DiaryEntry*> list = diary.get_display_list();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0], one);
    EXPECT_EQ(list[1], child);
    EXPECT_EQ(list[2], two);
}
