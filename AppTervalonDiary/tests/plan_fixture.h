#pragma once

#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <string>

namespace Tervalon {
namespace Test {

// A fresh diary on disk with the clock fixed at 2-Mar-2026 08:00, and short
// ways to make entries and dates for the planning tests.
struct PlanFixture : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        file = make_temp_dir("plan") + "/d.zbd";
        ASSERT_EQ(diary.create(file, true), ZBErrC_ok);
        // These tests drive each pass themselves: planning off keeps
        // recalculate to the cheap pass.
        diary.edit_settings().set_lookahead("");
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
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
    static void set_length(DiaryEntry* entry, int hours)
    {
        ZBProgress progress = entry->get_duration().orig;
        progress.set_duration(ZBDuration(std::int64_t(hours) * 3600));
        entry->edit_duration().set_orig(progress);
    }
    void now(const std::string& text) { ZBDateUtils::set_fixed_now(at(text)); }
    // Dependencies resolved, then the cheap pass, as the plan command does.
    void plan() { ASSERT_EQ(diary.full_recalculate(), ZBErrC_ok); }

    Diary diary;
    std::string file;
};

} // namespace Test
} // namespace Tervalon
