// What an entry keeps only when it needs it: the container of its children,
// the due and plan facets that a recalculation would otherwise make, and the
// latest start that the due pass works out.
#include "AppTervalonDiary/tests/plan_fixture.h"

using namespace Tervalon;

namespace {
struct EntryStorage : public Test::PlanFixture {
    // The cheap pass only: what it keeps is what every entry carries.
    void plan()
    {
        ASSERT_EQ(diary.calculate_dependencies(), ZBErrC_ok);
        ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    }
    // An entry that never made a facet answers with the one shared default.
    static bool shares_plan(const DiaryEntry& entry) { return &entry.get_plan() == &DiaryEntry().get_plan(); }
    static bool shares_due(const DiaryEntry& entry) { return &entry.get_due_facet() == &DiaryEntry().get_due_facet(); }
};
} // namespace

TEST_F(EntryStorage, TheLatestStartFollowsTheDueAndThePlannersOwnStandsOverIt)
{
    DiaryEntry* task = add(nullptr, "Task");
    task->edit_due().set_orig(at("10-Mar-2026 17:00"));
    set_length(task, 3);
    plan();
    EXPECT_EQ(task->get_muststart(), at("10-Mar-2026 14:00"));
    // Work left and no fixed plans: the entry holds that it is not planned.
    EXPECT_FALSE(task->is_planned());
    EXPECT_TRUE(shares_plan(*task)) << "and that takes no plan facet";
    EXPECT_TRUE(shares_due(*task));
    DiaryEntry copy(*task);
    EXPECT_EQ(copy.get_muststart(), at("10-Mar-2026 14:00"));

    // Worked out again on every pass, and gone with the due.
    task->edit_due().set_orig(at("11-Mar-2026 17:00"));
    plan();
    EXPECT_EQ(task->get_muststart(), at("11-Mar-2026 14:00"));
    task->edit_due().set_orig(ZBDate(ZBDate::E_Blank));
    plan();
    EXPECT_TRUE(task->get_muststart().is_blank());

    task->edit_due().set_orig(at("10-Mar-2026 17:00"));
    task->edit_plan().set_muststart(at("9-Mar-2026 09:00"));
    plan();
    EXPECT_EQ(task->get_muststart(), at("9-Mar-2026 09:00"));
    task->edit_plan().set_muststart(ZBDate(ZBDate::E_Blank));
    plan();
    EXPECT_EQ(task->get_muststart(), at("10-Mar-2026 14:00"));
}

TEST_F(EntryStorage, OnlyASeriesWithAnEndKeepsADueFacetAndItsTotalReachesTheParent)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* daily = add(project, "Daily");
    daily->edit_due().set_orig(at("3-Mar-2026 17:00"));
    set_length(daily, 2);
    ASSERT_EQ(daily->edit_repeat().from_string("T=2@N=1"), ZBErrC_ok);
    DiaryEntry* once = add(project, "Once");
    set_length(once, 1);
    plan();
    // Without an end the instance stands alone: nothing to keep.
    EXPECT_TRUE(shares_due(*daily));
    EXPECT_TRUE(shares_due(*project));
    EXPECT_EQ(daily->get_total_duration().get_duration(), ZBDuration(2 * 3600));
    EXPECT_EQ(project->get_total_duration().get_duration(), ZBDuration(3 * 3600));

    daily->edit_repeat().set_range_end(at("6-Mar-2026 23:00"), true);
    plan();
    EXPECT_FALSE(shares_due(*daily));
    EXPECT_TRUE(shares_due(*once));
    EXPECT_EQ(daily->get_total_duration().get_duration(), ZBDuration(8 * 3600));
    EXPECT_EQ(project->get_total_duration().get_duration(), ZBDuration(9 * 3600));
    EXPECT_EQ(project->get_duration().calc.get_duration(), ZBDuration(3 * 3600)) << "one instance each";

    // A progress rule is the entry's own setting: the pass keeps it.
    once->edit_due_facet().set_autoprogress(EntryDue::E_MatchRange);
    plan();
    EXPECT_EQ(once->get_due_facet().get_autoprogress(), EntryDue::E_MatchRange);
}

TEST_F(EntryStorage, ALeafHasNoChildContainerUntilItsFirstChildAndTheTreeReadsBack)
{
    DiaryEntry* parent = add(nullptr, "Parent", 'O');
    DiaryEntry* leaf = add(parent, "Leaf");
    EXPECT_EQ(leaf->get_container(DiaryEntry::C_EntryTag), nullptr);
    EXPECT_EQ(leaf->get_nchildren(), 0);
    EXPECT_EQ(leaf->get_children().begin(), leaf->get_children().end());

    DiaryEntry* child = add(leaf, "Child");
    ASSERT_EQ(leaf->get_nchildren(), 1);
    EXPECT_EQ(leaf->get_child_no(0), child);
    EXPECT_EQ(leaf->get_container(DiaryEntry::C_EntryTag),
              static_cast<const ZBDBContainerBase*>(&leaf->get_children()));
    EXPECT_EQ(child->get_parent_entry(), leaf);
    // A copy stands outside the tree, with no children.
    DiaryEntry copy(*leaf);
    EXPECT_EQ(copy.get_nchildren(), 0);
    EXPECT_EQ(copy.get_container(DiaryEntry::C_EntryTag), nullptr);

    const int leafId = leaf->get_id();
    const int childId = child->get_id();
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    diary.unload();
    Diary back;
    ASSERT_EQ(back.load(file, false), ZBErrC_ok);
    DiaryEntry* leafBack = back.lookup_entry(leafId);
    ASSERT_NE(leafBack, nullptr);
    ASSERT_EQ(leafBack->get_nchildren(), 1);
    EXPECT_EQ(leafBack->get_child_no(0)->get_id(), childId);
    EXPECT_EQ(leafBack->get_child_no(0)->get_summary(), "Child");
    EXPECT_EQ(back.lookup_entry(childId)->get_nchildren(), 0);
    back.unload();
}

TEST_F(EntryStorage, CopiesCarryTheAlertLevel)
{
    DiaryEntry* task = add(nullptr, "Task");
    task->set_alert_state(4);
    DiaryEntry copy(*task);
    EXPECT_EQ(copy.get_alert_state(), 4);
    DiaryEntry assigned;
    assigned = *task;
    EXPECT_EQ(assigned.get_alert_state(), 4);
    assigned = DiaryEntry();
    EXPECT_EQ(assigned.get_alert_state(), 0);
}

TEST_F(EntryStorage, NotesAndAcknowledgementReadBackAndAReadWithoutThemClearsThem)
{
    DiaryEntry* task = add(nullptr, "Task");
    DiaryEntry* other = add(nullptr, "Other");
    const auto text_of = [](const DiaryEntry& entry) {
        std::string text;
        EXPECT_FALSE(iszbwarn(entry.object_to_string(text, 0)));
        return text;
    };
    const std::string plain = text_of(*task);
    task->set_text("first line\nsecond line");
    task->set_ack_time(at("3-Mar-2026 10:00"));
    ASSERT_EQ(task->add_tag(diary, other->get_id()), ZBErrC_ok);
    const std::string full = text_of(*task);

    DiaryEntry read;
    ASSERT_FALSE(iszbwarn(read.object_from_string(full, 0)));
    EXPECT_EQ(read.get_text(), "first line\nsecond line");
    EXPECT_EQ(read.get_ack_time(), at("3-Mar-2026 10:00"));
    EXPECT_EQ(read.get_tags(), std::vector<int>{other->get_id()});
    EXPECT_EQ(text_of(read), full);
    EXPECT_EQ(other->get_rtags(), std::vector<int>{task->get_id()});

    // Read over a live entry, a text without them leaves none behind, and an
    // entry read next does not inherit them.
    ASSERT_FALSE(iszbwarn(read.object_from_string(plain, 0)));
    EXPECT_EQ(read.get_text(), "");
    EXPECT_TRUE(read.get_ack_time().is_blank());
    EXPECT_TRUE(read.get_tags().empty());
    DiaryEntry next;
    ASSERT_FALSE(iszbwarn(next.object_from_string(plain, 0)));
    EXPECT_EQ(text_of(next), plain);

    DiaryEntry copy(*task);
    EXPECT_EQ(text_of(copy), full);
    copy = *other;
    EXPECT_EQ(copy.get_text(), "");
    EXPECT_TRUE(copy.get_tags().empty());
    EXPECT_EQ(copy.get_rtags(), std::vector<int>{task->get_id()});
}
