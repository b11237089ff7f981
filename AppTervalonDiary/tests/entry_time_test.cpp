// How an entry's calculated date slot comes from what was entered, its
// sessions, its plans and its children, and how a later end is pushed up.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

ZBDateSlot slot(const std::string& start, const std::string& end)
{
    return ZBDateSlot(at(start), at(end));
}

struct EntryTimeCalc : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("entry_time") + "/t.zbd", true), ZBErrC_ok);
        // The cheap pass alone: planning off.
        diary.edit_settings().set_lookahead("");
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
    }
    DiaryEntry* add(DiaryEntry* parent, char type)
    {
        DiaryEntry* entry = nullptr;
        EXPECT_EQ(diary.create_entry(parent, type, std::string(1, type), &entry), ZBErrC_ok);
        return entry;
    }
    Diary diary;
};

} // namespace

TEST_F(EntryTimeCalc, LeafSlotFromSessionsPredictionsAndPlans)
{
    // Sessions of an open task with predictions run on to the last prediction.
    DiaryEntry* working = add(nullptr, 'T');
    working->edit_spent().add_session(slot("3-Mar-2026 09:00", "3-Mar-2026 10:00"), 1);
    working->edit_plan().edit_predicted().add(slot("5-Mar-2026 09:00", "5-Mar-2026 11:00"), 1);
    working->edit_etime().recalculate_date();
    EXPECT_EQ(working->get_time().calc, slot("3-Mar-2026 09:00", "5-Mar-2026 11:00"));

    // Finished, the predictions no longer count.
    working->mark_complete(at("4-Mar-2026 12:00"));
    working->edit_plan().edit_predicted().add(slot("5-Mar-2026 09:00", "5-Mar-2026 11:00"), 1);
    working->edit_etime().recalculate_date();
    EXPECT_EQ(working->get_time().calc, slot("3-Mar-2026 09:00", "3-Mar-2026 10:00"));

    // A note with sessions spans them, whatever was entered.
    DiaryEntry* note = add(nullptr, 'J');
    note->edit_time().set_orig(slot("1-Mar-2026 21:00", "1-Mar-2026 21:00"));
    note->edit_spent().add_session(slot("2-Mar-2026 09:00", "2-Mar-2026 09:30"), 1);
    note->edit_etime().recalculate_date();
    EXPECT_EQ(note->get_time().calc, slot("2-Mar-2026 09:00", "2-Mar-2026 09:30"));

    // An appointment is where it was put, sessions or not.
    DiaryEntry* meeting = add(nullptr, 'A');
    meeting->edit_time().set_orig(slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
    meeting->edit_spent().add_session(slot("4-Mar-2026 10:05", "4-Mar-2026 11:30"), 1);
    meeting->edit_etime().recalculate_date();
    EXPECT_EQ(meeting->get_time().calc, slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));

    // A task's slot is its predictions, widened by its fixed plans, and the
    // task is the source of its own end.
    DiaryEntry* planned = add(nullptr, 'T');
    // (Editing the plans asks for new predictions, so they come first.)
    planned->edit_plan().edit_planned().add(slot("4-Mar-2026 14:00", "4-Mar-2026 15:00"), 1);
    planned->edit_plan().edit_planned().add(slot("6-Mar-2026 14:00", "6-Mar-2026 15:00"), 1);
    planned->edit_plan().edit_predicted().add(slot("5-Mar-2026 09:00", "5-Mar-2026 11:00"), 1);
    planned->edit_etime().recalculate_date();
    EXPECT_EQ(planned->get_time().calc, slot("4-Mar-2026 14:00", "6-Mar-2026 15:00"));
    EXPECT_EQ(planned->get_etime().get_end_id(), planned->get_id());

    // Without predictions an open task has no slot, even one entered.
    DiaryEntry* idle = add(nullptr, 'T');
    idle->edit_time().set_orig(slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
    idle->edit_etime().recalculate_date();
    EXPECT_EQ(idle->get_time().calc, ZBDateSlot());
    EXPECT_EQ(idle->get_time().orig, slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
}

TEST_F(EntryTimeCalc, ParentSpansItsChildrenAndItsOwnSessions)
{
    DiaryEntry* folder = add(nullptr, 'O');
    DiaryEntry* a = add(folder, 'A');
    DiaryEntry* j = add(folder, 'J');
    DiaryEntry* t = add(folder, 'T'); // no predictions: blank on both sides
    a->edit_time().set_orig(slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
    j->edit_time().set_orig(slot("3-Mar-2026 21:00", "3-Mar-2026 21:00"));
    (void)t;
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(folder->get_time().calc, slot("3-Mar-2026 21:00", "4-Mar-2026 11:00"));

    // A blank first child takes the other children's sides.
    DiaryEntry* second = add(nullptr, 'O');
    add(second, 'T');
    DiaryEntry* later = add(second, 'A');
    later->edit_time().set_orig(slot("9-Mar-2026 10:00", "9-Mar-2026 12:00"));
    // The folder's own sessions widen it.
    second->edit_spent().add_session(slot("12-Mar-2026 09:00", "12-Mar-2026 10:00"), 1);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(second->get_time().calc, slot("9-Mar-2026 10:00", "12-Mar-2026 10:00"));

    // An appointment that holds others does not stretch over its own sessions.
    DiaryEntry* trip = add(nullptr, 'A');
    DiaryEntry* leg = add(trip, 'A');
    leg->edit_time().set_orig(slot("10-Mar-2026 08:00", "10-Mar-2026 12:00"));
    trip->edit_spent().add_session(slot("11-Mar-2026 09:00", "11-Mar-2026 10:00"), 1);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(trip->get_time().calc, slot("10-Mar-2026 08:00", "10-Mar-2026 12:00"));

    // The values are worked out again from the start each time, not widened.
    later->edit_time().set_orig(slot("9-Mar-2026 10:00", "9-Mar-2026 11:00"));
    second->edit_spent().edit_sessions().clear();
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(second->get_time().calc, slot("9-Mar-2026 10:00", "9-Mar-2026 11:00"));
}

TEST_F(EntryTimeCalc, UpgradeDatePushesTaskEndsUpAndAlong)
{
    DiaryEntry* folder = add(nullptr, 'O');
    DiaryEntry* task = add(folder, 'T');
    DiaryEntry* follower = add(nullptr, 'T');
    DiaryEntry* meeting = add(nullptr, 'A');
    task->edit_depend().edit_depend_on_this() = {follower->get_id(), meeting->get_id()};
    meeting->edit_time().set_orig(slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
    task->edit_plan().edit_predicted().add(slot("3-Mar-2026 09:00", "3-Mar-2026 12:00"), 1);
    follower->edit_plan().edit_predicted().add(slot("6-Mar-2026 09:00", "6-Mar-2026 12:00"), 1);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    ASSERT_EQ(folder->get_derived_entrytype(), 'T');

    task->edit_etime().upgrade_date(at("5-Mar-2026 17:00"), false, 77);
    EXPECT_EQ(task->get_time().calc, slot("3-Mar-2026 09:00", "5-Mar-2026 17:00"));
    EXPECT_EQ(task->get_etime().get_end_id(), 77);
    // The folder plans as a task and learns the end from the task.
    EXPECT_EQ(folder->get_time().calc.m_end, at("5-Mar-2026 17:00"));
    EXPECT_EQ(folder->get_etime().get_end_id(), task->get_id());
    // A follower that already ends later keeps its end; an appointment never moves.
    EXPECT_EQ(follower->get_time().calc, slot("6-Mar-2026 09:00", "6-Mar-2026 12:00"));
    EXPECT_EQ(meeting->get_time().calc, slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));

    // An earlier date moves nothing unless forced; forced, an end before the
    // start swaps the two.
    task->edit_etime().upgrade_date(at("4-Mar-2026 09:00"), false, 78);
    EXPECT_EQ(task->get_time().calc.m_end, at("5-Mar-2026 17:00"));
    EXPECT_EQ(task->get_etime().get_end_id(), 77);
    task->edit_etime().upgrade_date(at("2-Mar-2026 09:00"), true, 79);
    EXPECT_EQ(task->get_time().calc, slot("2-Mar-2026 09:00", "3-Mar-2026 09:00"));
    EXPECT_EQ(task->get_etime().get_end_id(), 79);

    // A later end reaches the follower, which names the task as its source.
    task->edit_etime().upgrade_date(at("9-Mar-2026 17:00"), false, 80);
    EXPECT_EQ(follower->get_time().calc.m_end, at("9-Mar-2026 17:00"));
    EXPECT_EQ(follower->get_etime().get_end_id(), task->get_id());

    // Invalid dates and finished tasks are left alone.
    task->edit_etime().upgrade_date(ZBDate::C_Blank, true, 81);
    EXPECT_EQ(task->get_etime().get_end_id(), 80);
    task->mark_complete(at("4-Mar-2026 12:00"));
    const ZBDateSlot finished = task->get_time().calc;
    task->edit_etime().upgrade_date(at("20-Mar-2026 17:00"), true, 82);
    EXPECT_EQ(task->get_time().calc, finished);
}

// A damaged file can make tasks wait on each other in a ring: a later end
// goes round it once and stops. Along a chain it reaches the last task.
TEST_F(EntryTimeCalc, UpgradeDateComesToRestOnACycle)
{
    DiaryEntry* first = add(nullptr, 'T');
    DiaryEntry* second = add(nullptr, 'T');
    DiaryEntry* third = add(nullptr, 'T');
    first->edit_depend().edit_depend_on_this() = {second->get_id()};
    second->edit_depend().edit_depend_on_this() = {third->get_id()};
    third->edit_depend().edit_depend_on_this() = {first->get_id()};
    for (DiaryEntry* task : {first, second, third})
        task->edit_plan().edit_predicted().add(slot("3-Mar-2026 09:00", "3-Mar-2026 12:00"), 1);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);

    first->edit_etime().upgrade_date(at("9-Mar-2026 17:00"), false, 90);
    for (DiaryEntry* task : {first, second, third})
        EXPECT_EQ(task->get_time().calc.m_end, at("9-Mar-2026 17:00"));
    EXPECT_EQ(first->get_etime().get_end_id(), 90);
    EXPECT_EQ(second->get_etime().get_end_id(), first->get_id());
    EXPECT_EQ(third->get_etime().get_end_id(), second->get_id());

    // Forced, the first end moves back; the others, already later, stay.
    first->edit_etime().upgrade_date(at("4-Mar-2026 17:00"), true, 91);
    EXPECT_EQ(first->get_time().calc.m_end, at("4-Mar-2026 17:00"));
    EXPECT_EQ(third->get_time().calc.m_end, at("9-Mar-2026 17:00"));
}
