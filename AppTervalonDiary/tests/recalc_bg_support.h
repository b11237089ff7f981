#pragma once

#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <functional>
#include <string>

namespace Tervalon {
namespace Test {

// A diary on disk with the clock fixed, for the tests of the background
// recalculation. The thread is started by the tests that want it.
struct RecalcBgFixture : public QuietErrors {
    void SetUp() override
    {
        QuietErrors::SetUp();
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        file = make_temp_dir("recalcbg") + "/d.zbd";
        ASSERT_EQ(diary.create(file, true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
        QuietErrors::TearDown();
    }
    static ZBDate at(const std::string& text)
    {
        ZBDate date;
        date.from_string(text);
        return date;
    }
    DiaryEntry* add(DiaryEntry* parent, const std::string& title, char type = 'T')
    {
        DiaryEntry* entry = nullptr;
        EXPECT_EQ(diary.create_entry(parent, type, title, &entry), ZBErrC_ok);
        return entry;
    }
    // Waits for the thread to hand results over; false after a minute, so a
    // hang fails the test instead of the run.
    static bool wait_until(const std::function<bool()>& done)
    {
        QElapsedTimer clock;
        clock.start();
        while (!done()) {
            if (clock.elapsed() > 60000)
                return false;
            QThread::msleep(1);
        }
        return true;
    }
    bool wait_finished()
    {
        return wait_until([this] { return diary.get_recalc_mgr().has_finished(); });
    }
    // Asks for a pass that skips the timers, as a reload or a manual refresh does.
    void hurry() { diary.force_recalculate(true, true, false, true); }
    static bool holds(const std::vector<int>& ids, const DiaryEntry* entry)
    {
        return std::find(ids.begin(), ids.end(), entry->get_id()) != ids.end();
    }

    Diary diary;
    std::string file;
};

} // namespace Test
} // namespace Tervalon
