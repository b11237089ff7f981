#include "AppTervalonDiary/tests/recalc_bg_support.h"

#include <memory>

using namespace Tervalon;
using Tervalon::Test::RecalcBgFixture;

namespace {

struct RecalcBg : public RecalcBgFixture {};

int circular_on(const Diary& diary, const DiaryEntry* entry)
{
    int count = 0;
    for (const ZBDBCheckItem* item : diary.get_circular_dependencies())
        count += item->get_id() == entry->get_id();
    return count;
}

} // namespace

TEST_F(RecalcBg, ANewFilePlansAYearAheadAndTheFirstRecalculateRunsTheFullPassInline)
{
    EXPECT_EQ(std::string(Diary::C_DefaultLookahead), diary.get_settings().get_lookahead());
    DiaryEntry* waiter = add(nullptr, "Waiter");
    DiaryEntry* first = add(nullptr, "First");
    waiter->edit_depend().add_depend(first->get_id());
    const int before = diary.get_recalc_count();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    // No thread runs: the dependencies were resolved here and now.
    EXPECT_EQ(before + 1, diary.get_recalc_count());
    EXPECT_TRUE(holds(waiter->get_depend().get_full_depends(), first));
    EXPECT_TRUE(diary.edit_recalc_mgr().needs_calendar());
    EXPECT_FALSE(diary.edit_recalc_mgr().needs_calendar());
    // Settled: another recalculate waits for a change or the timers.
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before + 1, diary.get_recalc_count());
    EXPECT_EQ(RecalculateMgr::E_Idle, diary.get_recalc_state());
    // A change marks the idle checker, but a full pass also waits for the
    // structure to change or the activity time to pass.
    waiter->clear_predicted(true);
    EXPECT_EQ(RecalculateMgr::E_Due, diary.get_recalc_state());
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before + 1, diary.get_recalc_count());
    add(nullptr, "Another");
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before + 2, diary.get_recalc_count());
}

TEST_F(RecalcBg, AnEmptyLookaheadTurnsPlanningOff)
{
    diary.edit_settings().set_lookahead("");
    DiaryEntry* waiter = add(nullptr, "Waiter");
    DiaryEntry* first = add(nullptr, "First");
    waiter->edit_depend().add_depend(first->get_id());
    const int before = diary.get_recalc_count();
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before, diary.get_recalc_count());
    EXPECT_TRUE(waiter->get_depend().get_full_depends().empty());
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_FALSE(diary.get_recalc_mgr().has_pending());
}

TEST_F(RecalcBg, APassOnTheThreadIsLoadedIntoTheLiveEntries)
{
    DiaryEntry* waiter = add(nullptr, "Waiter");
    DiaryEntry* first = add(nullptr, "First");
    DiaryEntry* loopA = add(nullptr, "Loop A");
    DiaryEntry* loopB = add(nullptr, "Loop B");
    waiter->edit_depend().add_depend(first->get_id());
    loopA->edit_depend().add_depend(loopB->get_id());
    loopB->edit_depend().add_depend(loopA->get_id());
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    const int before = diary.get_recalc_count();
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    // The live diary did only the cheap pass.
    EXPECT_TRUE(waiter->get_depend().get_full_depends().empty());
    ASSERT_TRUE(wait_finished());
    EXPECT_TRUE(diary.recalc_complete());
    EXPECT_EQ(before, diary.get_recalc_count());
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before + 1, diary.get_recalc_count());
    EXPECT_TRUE(holds(waiter->get_depend().get_full_depends(), first));
    EXPECT_TRUE(waiter->get_plan().is_transferred());
    // The copy's findings are now the live ones.
    EXPECT_EQ(1, circular_on(diary, loopA));
    EXPECT_EQ(1, circular_on(diary, loopB));
    EXPECT_TRUE(diary.edit_recalc_mgr().needs_calendar());
}

TEST_F(RecalcBg, AnEntryChangedAfterTheCopyWasTakenKeepsItsOwnState)
{
    DiaryEntry* first = add(nullptr, "First");
    DiaryEntry* kept = add(nullptr, "Kept");
    DiaryEntry* loaded = add(nullptr, "Loaded");
    kept->edit_depend().add_depend(first->get_id());
    loaded->edit_depend().add_depend(first->get_id());
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    ASSERT_TRUE(wait_finished());
    kept->mark_changed(ZBLOC, true);
    ASSERT_EQ(ZBErrC_ok, diary.edit_recalc_mgr().load_background(diary));
    EXPECT_TRUE(kept->get_depend().get_full_depends().empty());
    EXPECT_FALSE(kept->get_plan().is_transferred());
    EXPECT_TRUE(holds(loaded->get_depend().get_full_depends(), first));
}

TEST_F(RecalcBg, AnEntryAddedDuringAPassDropsItsResultsAndBringsANewPass)
{
    DiaryEntry* waiter = add(nullptr, "Waiter");
    DiaryEntry* first = add(nullptr, "First");
    waiter->edit_depend().add_depend(first->get_id());
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    ASSERT_TRUE(wait_finished());
    add(nullptr, "Late");
    const int before = diary.get_recalc_count();
    ASSERT_EQ(ZBErrC_ok, diary.edit_recalc_mgr().load_background(diary));
    EXPECT_EQ(before, diary.get_recalc_count());
    EXPECT_TRUE(waiter->get_depend().get_full_depends().empty());
    EXPECT_FALSE(diary.get_recalc_mgr().has_finished());
    // The next recalculate sends a new copy without being told to hurry.
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    ASSERT_TRUE(wait_finished());
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_EQ(before + 1, diary.get_recalc_count());
    EXPECT_TRUE(holds(waiter->get_depend().get_full_depends(), first));
}

TEST_F(RecalcBg, ResultsOfAFileThatWasUnloadedNeverReachTheNextLoad)
{
    DiaryEntry* waiter = add(nullptr, "Waiter");
    DiaryEntry* first = add(nullptr, "First");
    waiter->edit_depend().add_depend(first->get_id());
    const int waiterId = waiter->get_id();
    ASSERT_EQ(ZBErrC_ok, diary.save(false, false, false));
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    ASSERT_TRUE(wait_finished());
    ASSERT_EQ(ZBErrC_ok, diary.unload());
    EXPECT_FALSE(diary.is_running());
    ASSERT_EQ(ZBErrC_ok, diary.load(file, false));
    EXPECT_FALSE(diary.get_recalc_mgr().has_finished());
    ASSERT_EQ(ZBErrC_ok, diary.edit_recalc_mgr().load_background(diary));
    EXPECT_TRUE(diary.get_entry_id(waiterId)->get_depend().get_full_depends().empty());
}

TEST_F(RecalcBg, ADiaryDestroyedOrUnloadedMidPassTakesItsThreadWithIt)
{
    for (int round = 0; round < 4; ++round) {
        std::unique_ptr<Diary> doomed(new Diary());
        const std::string name = Tervalon::Test::make_temp_dir("doomed") + "/d.zbd";
        ASSERT_EQ(ZBErrC_ok, doomed->create(name, true));
        for (int i = 0; i < 200; ++i)
            doomed->create_entry(nullptr, 'T', "Task " + std::to_string(i), nullptr);
        ASSERT_EQ(ZBErrC_ok, doomed->start_recalc_thread());
        doomed->force_recalculate(true, true, false, true);
        ASSERT_EQ(ZBErrC_ok, doomed->recalculate(ZBDatabase::E_RecalcQuick));
        // Give the thread a different head start each round.
        QThread::msleep(round * 3);
        if (round % 2)
            ASSERT_EQ(ZBErrC_ok, doomed->unload());
        doomed.reset();
    }
}

TEST_F(RecalcBg, APausedThreadLeavesThePendingCopyUntilResumed)
{
    add(nullptr, "Task");
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());
    diary.pause_background(true);
    hurry();
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    EXPECT_TRUE(diary.get_recalc_mgr().has_pending());
    diary.signal_recalc_thread();
    QThread::msleep(20);
    EXPECT_TRUE(diary.get_recalc_mgr().has_pending());
    // A save in between leaves the caller's pause as it was.
    ASSERT_EQ(ZBErrC_ok, diary.save(false, false, false));
    EXPECT_TRUE(diary.is_background_paused());
    diary.pause_background(false);
    ASSERT_TRUE(wait_finished());
    EXPECT_FALSE(diary.get_recalc_mgr().has_pending());
}

TEST_F(RecalcBg, OnlyTheEntriesThatNeedItAreRefreshedInFull)
{
    DiaryEntry* open = add(nullptr, "Open");
    DiaryEntry* done = add(nullptr, "Done");
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    DiaryEntry* folder = add(nullptr, "Folder", 'O');
    DiaryEntry* openChild = add(folder, "Open child");
    DiaryEntry* doneFolder = add(nullptr, "Done folder", 'O');
    DiaryEntry* doneChild = add(doneFolder, "Done child");
    ASSERT_EQ(ZBErrC_ok, done->set_completion(100.0, true));
    ASSERT_EQ(ZBErrC_ok, doneChild->set_completion(100.0, true));
    // A folder of tasks plans as a task: it is settled only once finished itself.
    ASSERT_EQ(ZBErrC_ok, doneFolder->set_completion(100.0, true));
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    ASSERT_NE(nullptr, openChild);

    struct Row {
        DiaryEntry* entry;
        bool touched;
        bool needOffCycle;
    };
    const Row rows[] = {
        {open, false, true},         // an open task always
        {done, false, false},        // a finished task is settled
        {done, true, true},          // unless it changed since its last pass
        {meeting, false, false},     // an appointment that does not repeat is settled
        {folder, false, true},       // a parent of an open task follows its child
        {doneFolder, false, false},  // a parent of settled children is settled
    };
    for (const Row& row : rows) {
        ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
        // A cycle that is nobody's turn here for the ten-cycle refresh.
        int cycle = row.entry->get_id() + 1;
        auto anyones_turn = [&row](int c) {
            if (row.entry->get_id() % 10 == c % 10)
                return true;
            for (int i = 0; i < row.entry->get_nchildren(); ++i)
                if (row.entry->get_child_no(i)->get_id() % 10 == c % 10)
                    return true;
            return false;
        };
        while (anyones_turn(cycle))
            ++cycle;
        // The children are settled first, as in a pass.
        for (int i = 0; i < row.entry->get_nchildren(); ++i)
            row.entry->get_child_no(i)->recalculate_recalculate(cycle);
        if (row.touched)
            row.entry->mark_changed(ZBLOC, true);
        ASSERT_FALSE(row.entry->get_need_recalculate()) << row.entry->get_summary();
        row.entry->recalculate_recalculate(cycle);
        EXPECT_EQ(row.needOffCycle, row.entry->get_need_recalculate()) << row.entry->get_summary();
        // Once in ten cycles every entry is refreshed.
        row.entry->recalculate_recalculate(row.entry->get_id());
        EXPECT_TRUE(row.entry->get_need_recalculate()) << row.entry->get_summary();
    }
}
