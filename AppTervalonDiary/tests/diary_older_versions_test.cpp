// Files of older data versions: every field they hold is read into the
// present form and written so at the upgrade; a file holding a field that
// this version cannot read is refused and left as it was.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <functional>

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

std::string golden(const std::string& name)
{
    return Tervalon::Test::read_file(std::string(TERVALON_TEST_DATA) + "/" + name);
}

std::string last_error()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_details(ZBErrAsp_System) : std::string();
}

struct DiaryOlderVersions : public ::testing::Test {
    void SetUp() override { ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00")); }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    // Opens a copy of the golden file, which upgrades it, and checks it as
    // read and as read again from what the upgrade wrote.
    void open_twice(const std::string& name, const std::function<void(Diary&)>& check)
    {
        const std::string file = Tervalon::Test::make_temp_dir("diary_older") + "/" + name;
        Tervalon::Test::write_file(file, golden(name));
        for (int pass = 0; pass < 2; ++pass) {
            SCOPED_TRACE(pass);
            Diary diary;
            ASSERT_EQ(diary.load(file, false), ZBErrC_ok) << last_error();
            check(diary);
            ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
            diary.unload();
        }
        const std::string written = Tervalon::Test::read_file(file);
        EXPECT_NE(written.find("!AFV!15\n"), std::string::npos);
        for (const char* old : {"!ti!", "!de!", "!ts!", "!rp!", "!rs!", "!rd!", "!rr!", "!er!"})
            EXPECT_EQ(written.find(old), std::string::npos) << old;
    }
};

} // namespace

TEST_F(DiaryOlderVersions, Version14RepeatFieldsBecomeTheRule)
{
    ZBDateRepeat exclusions;
    ASSERT_EQ(exclusions.set_exclude("20260316,2026040120260405"), ZBErrC_ok);
    open_twice("diary_v14.zbd", [&](Diary& diary) {
        const DiaryEntry* task = diary.get_entry_id(10);
        ASSERT_NE(task, nullptr);
        const ZBDateRepeat& rule = task->get_repeat();
        EXPECT_EQ(rule.get_type(), ZBDateRepeat::E_Expression);
        // A task's repeat expression gives its due dates; any other entry's
        // are the other way round.
        EXPECT_EQ(rule.get_exp(), "+1 week");
        EXPECT_EQ(rule.get_offset_exp(), "-2 days");
        EXPECT_EQ(rule.get_range_start(), at("1-Jan-2026 00:00"));
        EXPECT_EQ(rule.get_range_end(), at("1-Dec-2026 00:00"));
        EXPECT_EQ(rule.get_exclude_string(), exclusions.get_exclude_string());
        const DiaryEntry* club = diary.get_entry_id(11);
        ASSERT_NE(club, nullptr);
        EXPECT_EQ(club->get_repeat().get_exp(), "+1 month");
        EXPECT_EQ(club->get_repeat().get_offset_exp(), "+2 hours");
        EXPECT_EQ(club->get_time().orig, slot("5-Mar-2026 19:00", "5-Mar-2026 21:00"));
    });
}

TEST_F(DiaryOlderVersions, Versions9And10TitlesAndSlotsBecomeTheRecords)
{
    open_twice("diary_v10.zbd", [&](Diary& diary) {
        ASSERT_NE(diary.get_entry_id(10), nullptr);
        EXPECT_EQ(diary.get_entry_id(10)->get_time().orig, slot("4-Mar-2026 10:00", "4-Mar-2026 11:00"));
        EXPECT_EQ(diary.get_entry_id(10)->get_repeat().get_exp(), "+1 week");
        ASSERT_NE(diary.get_entry_id(11), nullptr);
        EXPECT_EQ(diary.get_entry_id(11)->get_time().orig, slot("1-Mar-2026 18:00", "1-Mar-2026 18:00"));
    });
    open_twice("diary_v9.zbd", [&](Diary& diary) {
        const DiaryEntry* fence = diary.get_entry_id(10);
        ASSERT_NE(fence, nullptr);
        EXPECT_EQ(fence->get_summary(), "Paint the fence");
        EXPECT_EQ(fence->get_text(), "Two coats,\nwhite");
        EXPECT_EQ(fence->get_due().orig, at("7-Mar-2026 17:00"));
        ASSERT_NE(diary.get_entry_id(11), nullptr);
        EXPECT_EQ(diary.get_entry_id(11)->get_summary(), "Garden diary");
        EXPECT_EQ(diary.get_entry_id(11)->get_time().orig.m_start, at("1-Mar-2026 18:00"));
    });
}

// Opening would write the file without a field no version of the entry had,
// so the file is not opened.
TEST_F(DiaryOlderVersions, AFieldThatCannotBeReadStopsTheUpgrade)
{
    std::string text = golden("diary_v14.zbd");
    text.replace(text.find("!Sm!Book club\n"), 0, "!zq!kept safe\n");
    const std::string file = Tervalon::Test::make_temp_dir("diary_older") + "/unknown.zbd";
    Tervalon::Test::write_file(file, text);
    Diary diary;
    EXPECT_TRUE(iszbwarn(diary.load(file, false)));
    EXPECT_NE(last_error().find("the field \"zq\" of the DiaryEntry 11"), std::string::npos) << last_error();
    diary.unload();
    EXPECT_EQ(Tervalon::Test::read_file(file), text);
}
