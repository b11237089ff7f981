// Files of older data versions: every field they hold is read into the
// present form and written so at the upgrade; a file holding a field that
// this version cannot read is refused and left as it was.
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

struct DiaryOlderVersions : public ::testing::Test {
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        dir = Tervalon::Test::make_temp_dir("diary_older");
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    // A copy of a file of tests/data, to be opened and upgraded.
    std::string copy_of(const std::string& name, const std::string& text = std::string())
    {
        const std::string file = dir + "/" + name;
        Tervalon::Test::write_file(
            file, text.empty() ? Tervalon::Test::read_file(std::string(TERVALON_TEST_DATA) + "/" + name) : text);
        return file;
    }
    static std::string last_error()
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }
    // Opens the file, which upgrades it, then checks it as read and as read
    // again from what the upgrade wrote.
    template <class Check>
    void open_twice(const std::string& file, Check check)
    {
        {
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
        Diary again;
        ASSERT_EQ(again.load(file, false), ZBErrC_ok) << last_error();
        check(again);
        again.unload();
    }
    std::string dir;
};

} // namespace

TEST_F(DiaryOlderVersions, Version14RepeatFieldsBecomeTheRule)
{
    ZBDateRepeat exclusions;
    ASSERT_EQ(exclusions.set_exclude("20260316,2026040120260405"), ZBErrC_ok);
    open_twice(copy_of("diary_v14.zbd"), [&](Diary& diary) {
        const DiaryEntry* task = diary.get_entry_id(10);
        ASSERT_NE(task, nullptr);
        EXPECT_EQ(task->get_summary(), "Water the plants");
        const ZBDateRepeat& rule = task->get_repeat();
        EXPECT_EQ(rule.get_type(), ZBDateRepeat::E_Expression);
        // A task's repeat expression gives its due dates.
        EXPECT_EQ(rule.get_exp(), "+1 week");
        EXPECT_EQ(rule.get_offset_exp(), "-2 days");
        EXPECT_EQ(rule.get_range_start(), at("1-Jan-2026 00:00"));
        EXPECT_EQ(rule.get_range_end(), at("1-Dec-2026 00:00"));
        EXPECT_EQ(rule.get_exclude_string(), exclusions.get_exclude_string());

        // Any other entry's are the other way round.
        const DiaryEntry* club = diary.get_entry_id(11);
        ASSERT_NE(club, nullptr);
        EXPECT_EQ(club->get_repeat().get_exp(), "+1 month");
        EXPECT_EQ(club->get_repeat().get_offset_exp(), "+2 hours");
        EXPECT_EQ(club->get_time().orig, ZBDateSlot(at("5-Mar-2026 19:00"), at("5-Mar-2026 21:00")));
    });
}

TEST_F(DiaryOlderVersions, Version10SlotsComeFromTheEntryTimeField)
{
    open_twice(copy_of("diary_v10.zbd"), [&](Diary& diary) {
        const DiaryEntry* dentist = diary.get_entry_id(10);
        ASSERT_NE(dentist, nullptr);
        EXPECT_EQ(dentist->get_time().orig, ZBDateSlot(at("4-Mar-2026 10:00"), at("4-Mar-2026 11:00")));
        EXPECT_EQ(dentist->get_repeat().get_exp(), "+1 week");
        const DiaryEntry* note = diary.get_entry_id(11);
        ASSERT_NE(note, nullptr);
        EXPECT_EQ(note->get_time().orig, ZBDateSlot(at("1-Mar-2026 18:00"), at("1-Mar-2026 18:00")));
        EXPECT_EQ(note->get_text(), "Seeds in");
    });
}

TEST_F(DiaryOlderVersions, Version9TitlesBecomeTheRecordsTitleAndDetails)
{
    open_twice(copy_of("diary_v9.zbd"), [&](Diary& diary) {
        const DiaryEntry* fence = diary.get_entry_id(10);
        ASSERT_NE(fence, nullptr);
        EXPECT_EQ(fence->get_summary(), "Paint the fence");
        EXPECT_EQ(fence->get_text(), "Two coats,\nwhite");
        EXPECT_EQ(fence->get_due().orig, at("7-Mar-2026 17:00"));
        const DiaryEntry* note = diary.get_entry_id(11);
        ASSERT_NE(note, nullptr);
        EXPECT_EQ(note->get_summary(), "Garden diary");
        EXPECT_EQ(note->get_time().orig.m_start, at("1-Mar-2026 18:00"));
    });
}

// An older file with a field no version of the entry ever had: opening it
// would write the file without it, so it is not opened.
TEST_F(DiaryOlderVersions, AFieldThatCannotBeReadStopsTheUpgrade)
{
    std::string text = Tervalon::Test::read_file(std::string(TERVALON_TEST_DATA) + "/diary_v14.zbd");
    text.replace(text.find("!Sm!Book club\n"), 0, "!zq!kept safe\n");
    const std::string file = copy_of("diary_v14_unknown.zbd", text);
    Diary diary;
    EXPECT_TRUE(iszbwarn(diary.load(file, false)));
    EXPECT_NE(last_error().find("zq"), std::string::npos) << last_error();
    EXPECT_NE(last_error().find("not changed"), std::string::npos) << last_error();
    diary.unload();
    EXPECT_EQ(Tervalon::Test::read_file(file), text);
}
