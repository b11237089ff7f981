#include "AppTervalonDiary/tests/recalc_bg_support.h"

#include <map>
#include <random>

using namespace Tervalon;
using Tervalon::Test::RecalcBgFixture;

namespace {

// The main thread edits while background passes come and go. What the user
// set (the orig due) must never be lost, and what a pass loads (the calc due)
// must never be older than the entry's last edit: for these plain tasks the
// planner's due is the user's due, so any difference after a load is a stale
// result loaded over a newer edit.
struct RecalcBgStress : public RecalcBgFixture {
    ZBDate due_for(int hours) const { return base + ZBDuration(0, hours * 3600, 0); }

    void check_all(const char* when)
    {
        for (const auto& kept : expected) {
            const DiaryEntry* entry = diary.get_entry_id(kept.first);
            ASSERT_NE(nullptr, entry) << when;
            ASSERT_EQ(kept.second, entry->get_due().orig) << when << ": edit lost on " << kept.first;
            ASSERT_EQ(entry->get_due().orig, entry->get_due().calc) << when << ": stale due on " << kept.first;
        }
    }

    ZBDate base = at("9-Mar-2026 17:00");
    std::map<int, ZBDate> expected;
    std::vector<DiaryEntry*> tasks;
};

} // namespace

TEST_F(RecalcBgStress, EditsDuringBackgroundPassesAreNeverLostNorOverwritten)
{
    std::mt19937 random(20260302);
    for (int i = 0; i < 150; ++i) {
        DiaryEntry* task = add(nullptr, "Task " + std::to_string(i));
        task->edit_due().set_orig(due_for(i));
        task->mark_changed(ZBLOC, true);
        expected[task->get_id()] = due_for(i);
        tasks.push_back(task);
    }
    ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick));
    check_all("before the thread");
    ASSERT_EQ(ZBErrC_ok, diary.start_recalc_thread());

    RecalculateMgr& mgr = diary.edit_recalc_mgr();
    const int countBefore = diary.get_recalc_count();
    int loads = 0;
    auto edit_one = [&]() {
        DiaryEntry* task = tasks[random() % tasks.size()];
        const ZBDate due = due_for(int(random() % 2000));
        task->edit_due().set_orig(due);
        task->mark_changed(ZBLOC, true);
        expected[task->get_id()] = due;
    };
    for (int step = 0; step < 3000; ++step) {
        const int what = int(random() % 100);
        if (step % 250 == 125) {
            // However the timings fall, some passes are loaded while edits go on.
            hurry();
            ASSERT_EQ(ZBErrC_ok, mgr.schedule_recalculate(diary)) << "step " << step;
            ASSERT_TRUE(wait_until([&]() {
                edit_one();
                QThread::usleep(random() % 500);
                return mgr.has_finished();
            }));
            const int before = diary.get_recalc_count();
            ASSERT_EQ(ZBErrC_ok, mgr.load_background(diary)) << "step " << step;
            loads += diary.get_recalc_count() - before;
            check_all("after a load while editing");
        } else if (what < 80) {
            edit_one();
        } else if (what < 81) {
            // A new entry is a change of structure: a pass running drops its results.
            DiaryEntry* task = add(nullptr, "New " + std::to_string(step));
            task->edit_due().set_orig(due_for(step));
            task->mark_changed(ZBLOC, true);
            expected[task->get_id()] = due_for(step);
            tasks.push_back(task);
        } else if (what < 84) {
            hurry();
            ASSERT_EQ(ZBErrC_ok, mgr.schedule_recalculate(diary)) << "step " << step;
        } else if (what < 97) {
            const int before = diary.get_recalc_count();
            ASSERT_EQ(ZBErrC_ok, mgr.load_background(diary)) << "step " << step;
            loads += diary.get_recalc_count() - before;
            check_all("after a load");
        } else {
            // The whole cheap pass, which loads and schedules in its own order.
            ASSERT_EQ(ZBErrC_ok, diary.recalculate(ZBDatabase::E_RecalcQuick)) << "step " << step;
        }
        if (random() % 4 == 0)
            QThread::usleep(random() % 2000);
    }
    // Let the last pass end and load it: the plan has caught up with every edit.
    for (DiaryEntry* task : tasks)
        task->edit_due().set_calc(ZBDate::C_Blank);
    hurry();
    ASSERT_EQ(ZBErrC_ok, mgr.schedule_recalculate(diary));
    ASSERT_TRUE(wait_until([&mgr] { return mgr.get_state() != RecalculateMgr::E_Busy && !mgr.has_pending(); }));
    ASSERT_TRUE(wait_finished()) << "last pass: " << mgr.get_background_result();
    ASSERT_EQ(ZBErrC_ok, mgr.load_background(diary));
    check_all("at the end");
    EXPECT_GT(loads, 0);
    EXPECT_GT(diary.get_recalc_count(), countBefore);
    diary.stop_recalc_thread();
    EXPECT_FALSE(diary.is_running());
}
