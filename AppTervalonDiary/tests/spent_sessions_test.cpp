// Sessions of work: the one running session of a diary, recorded past work,
// and the time spent summed up the tree.
#include "AppTervalonDiary/tests/plan_fixture.h"

using namespace Tervalon;

namespace {
struct Sessions : public Test::PlanFixture {
    int resource() const { return diary.get_default_resource_id(); }
    ZBDateSlot slot(const std::string& from, const std::string& to) const { return ZBDateSlot(at(from), at(to)); }
    static ZBDuration hours(double count) { return ZBDuration(std::int64_t(count * 3600)); }
};
} // namespace

TEST_F(Sessions, StartingOnAnotherEntryStopsTheRunningOneAndKeepsItsTime)
{
    DiaryEntry* a = add(nullptr, "A");
    DiaryEntry* b = add(nullptr, "B");
    now("2-Mar-2026 09:00");
    ASSERT_EQ(diary.start_session(a->get_id(), -1), ZBErrC_ok);
    EXPECT_EQ(diary.get_session_id(), a->get_id());
    now("2-Mar-2026 10:30");
    ASSERT_EQ(diary.start_session(b->get_id(), -1), ZBErrC_ok);

    EXPECT_EQ(diary.get_session_id(), b->get_id());
    EXPECT_FALSE(a->get_spent().has_running_session());
    ASSERT_EQ(a->get_spent().get_session().size(), 1);
    EXPECT_EQ(a->get_spent().get_session()[0]->slot(), slot("2-Mar-2026 09:00", "2-Mar-2026 10:30"));
    EXPECT_EQ(a->get_spent().get_session()[0]->m_type, resource());
    EXPECT_TRUE(b->get_spent().has_running_session());
    EXPECT_EQ(b->get_spent().get_current_session().m_start, at("2-Mar-2026 10:30"));

    // A start on an entry that is gone still stops the running one.
    now("2-Mar-2026 11:00");
    ASSERT_EQ(diary.start_session(99999, -1), ZBErrC_ok);
    EXPECT_EQ(diary.get_session_id(), -1);
    EXPECT_EQ(b->get_spent().get_spent(ZBDateSlot(), -1), hours(0.5));
    // A stop with nothing running changes nothing.
    diary.stop_session();
    EXPECT_EQ(b->get_spent().get_session().size(), 1);
}

TEST_F(Sessions, TheRunningSessionIsInTheFileAtEverySaveAndRunsOnAfterReading)
{
    DiaryEntry* a = add(nullptr, "A");
    set_length(a, 4);
    const int id = a->get_id();
    now("2-Mar-2026 09:00");
    ASSERT_EQ(diary.start_session(id, -1), ZBErrC_ok);
    now("2-Mar-2026 11:00");
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    // Counted once: the finished part and the running part are the same time.
    EXPECT_EQ(a->get_spent().get_time_spent(), hours(2));
    EXPECT_EQ(EntryDue::total_spent(*a, ZBDate(ZBDate::E_Blank)), hours(2));
    ASSERT_EQ(diary.complete_operation("Sessions"), ZBErrC_ok);
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);

    now("2-Mar-2026 12:00");
    Diary again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    EXPECT_EQ(again.get_session_id(), id);
    DiaryEntry* read = again.get_entry_id(id);
    ASSERT_TRUE(read && read->get_spent().has_running_session());
    EXPECT_EQ(read->get_spent().get_current_session().m_start, at("2-Mar-2026 09:00"));
    ASSERT_EQ(again.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(read->get_spent().get_time_spent(), hours(3));
    again.stop_session();
    EXPECT_EQ(again.get_session_id(), -1);
    ASSERT_EQ(read->get_spent().get_session().size(), 1);
    EXPECT_EQ(read->get_spent().get_session()[0]->slot(), slot("2-Mar-2026 09:00", "2-Mar-2026 12:00"));
    again.unload();
}

TEST_F(Sessions, AFileWithTwoRunningSessionsKeepsTheLatestRunning)
{
    DiaryEntry* a = add(nullptr, "A");
    DiaryEntry* b = add(nullptr, "B");
    const int idA = a->get_id();
    const int idB = b->get_id();
    // As a merge of two copies could leave it.
    a->edit_spent().start_session(at("2-Mar-2026 07:00"), resource());
    a->edit_spent().update_session();
    b->edit_spent().start_session(at("2-Mar-2026 07:30"), resource());
    b->edit_spent().update_session();
    ASSERT_EQ(diary.complete_operation("Sessions"), ZBErrC_ok);
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    Diary again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    EXPECT_EQ(again.get_session_id(), idB);
    EXPECT_FALSE(again.get_entry_id(idA)->get_spent().has_running_session());
    // Its time up to the last record stays.
    EXPECT_EQ(again.get_entry_id(idA)->get_spent().get_spent(ZBDateSlot(), -1), hours(1));
    again.unload();
}

TEST_F(Sessions, StoppingKeepsTheTimeAndDropsPlansBeyondWhatIsLeft)
{
    DiaryEntry* task = add(nullptr, "Essay");
    set_length(task, 2);
    for (const char* day : {"3", "4", "5"})
        task->edit_plan().edit_planned().add(
            slot(std::string(day) + "-Mar-2026 09:00", std::string(day) + "-Mar-2026 10:00"), resource());
    now("2-Mar-2026 09:00");
    ASSERT_EQ(diary.start_session(task->get_id(), -1), ZBErrC_ok);
    now("2-Mar-2026 09:45");
    diary.stop_session();
    EXPECT_EQ(diary.get_session_id(), -1);
    EXPECT_EQ(task->get_spent().get_spent(ZBDateSlot(), -1), hours(0.75));
    // Three hours of plans for two hours of work: the first plan goes.
    ASSERT_EQ(task->get_plan().get_planned().size(), 2);
    EXPECT_EQ(task->get_plan().get_planned().start(), at("4-Mar-2026 09:00"));
}

TEST_F(Sessions, CompletingStopsTheSessionAtTheCompletion)
{
    DiaryEntry* task = add(nullptr, "Essay");
    set_length(task, 2);
    now("2-Mar-2026 09:00");
    ASSERT_EQ(diary.start_session(task->get_id(), -1), ZBErrC_ok);
    now("2-Mar-2026 11:00");
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    // Done at ten, told at eleven: the hour after the completion is not work.
    ASSERT_EQ(task->mark_complete(at("2-Mar-2026 10:00")), ZBErrC_ok);
    EXPECT_EQ(diary.get_session_id(), -1);
    EXPECT_FALSE(task->get_spent().has_running_session());
    EXPECT_EQ(task->get_spent().get_spent(ZBDateSlot(), -1), hours(1));
    EXPECT_EQ(task->get_spent().get_closed(), at("2-Mar-2026 10:00"));
}

TEST_F(Sessions, RecordedSessionsAreRefusedWhenTheyRunBackwardsOrOverlap)
{
    DiaryEntry* task = add(nullptr, "Essay");
    EntrySpent& spent = task->edit_spent();
    ASSERT_EQ(spent.add_session(slot("2-Mar-2026 09:00", "2-Mar-2026 10:00"), 0), ZBErrC_ok);
    const struct {
        const char* from;
        double hours;
        int resource;
        bool ok;
        int sessions;
    } rows[] = {
        {"2-Mar-2026 09:30", 1.0, 0, false, 1},  // overlaps the first of the same resource
        {"2-Mar-2026 08:00", 1.5, 0, false, 1},  // reaches into it
        {"2-Mar-2026 11:00", -0.5, 0, false, 1}, // ends before it starts
        {"2-Mar-2026 11:00", 0.0, 0, false, 1},  // no length
        {"2-Mar-2026 09:30", 1.0, 1, true, 2},   // another resource's work may overlap
        {"2-Mar-2026 10:00", 1.0, 0, true, 2},   // touching joins the first
        {"2-Mar-2026 07:00", 1.0, 0, true, 3},
    };
    for (const auto& row : rows) {
        const int result = spent.add_session(at(row.from), hours(row.hours), row.resource);
        EXPECT_EQ(!iszbwarn(result), row.ok) << row.from << " " << row.hours;
        get_zberror().clear_all();
        EXPECT_EQ(spent.get_session().size(), row.sessions) << row.from << " " << row.hours;
    }
    EXPECT_EQ(spent.get_spent(ZBDateSlot(), 0), hours(3));
    EXPECT_EQ(spent.get_spent(slot("2-Mar-2026 09:30", "2-Mar-2026 10:30"), -1), hours(2));
}

TEST_F(Sessions, TimeSpentAddsUpTheTreeAndANoteCountsItsOwnLength)
{
    DiaryEntry* folder = add(nullptr, "Project", 'O');
    DiaryEntry* first = add(folder, "First");
    DiaryEntry* second = add(folder, "Second");
    DiaryEntry* note = add(nullptr, "Call", 'J');
    ASSERT_EQ(first->edit_spent().add_session(slot("2-Mar-2026 09:00", "2-Mar-2026 10:00"), 0), ZBErrC_ok);
    ASSERT_EQ(second->edit_spent().add_session(slot("2-Mar-2026 10:00", "2-Mar-2026 12:30"), 0), ZBErrC_ok);
    ASSERT_EQ(folder->edit_spent().add_session(slot("1-Mar-2026 09:00", "1-Mar-2026 09:30"), 0), ZBErrC_ok);
    note->edit_time().set_orig(slot("1-Mar-2026 14:00", "1-Mar-2026 14:20"));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(folder->get_spent().get_time_spent(), hours(4));
    EXPECT_EQ(note->get_spent().get_time_spent(), ZBDuration(20 * 60));
}
