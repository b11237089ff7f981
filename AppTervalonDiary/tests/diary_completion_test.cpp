// Finishing entries: where a repeating entry goes next, what a completion of
// 100 or more does, and what keeps a finished entry's children from folding.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbobjectspec.h"
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

struct DiaryCompletion : public ::testing::Test {
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("diary_completion") + "/c.zbd", true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    DiaryEntry* add(DiaryEntry* parent, char type, const std::string& title)
    {
        DiaryEntry* entry = nullptr;
        EXPECT_EQ(diary.create_entry(parent, type, title, &entry), ZBErrC_ok);
        return entry;
    }
    Diary diary;
};

} // namespace

// The next instance is the first one after the day the work was done, not
// the next one after the instance's own date.
TEST_F(DiaryCompletion, ARepeatGoesOnFromTheCompletionDate)
{
    struct Row {
        const char* what;
        const char* done;
        const char* nextDue;
    };
    const Row rows[] = {
        {"on its due date", "6-Mar-2026 09:00", "13-Mar-2026 09:00"},
        {"four days late", "10-Mar-2026 15:00", "17-Mar-2026 15:00"},
        {"two weeks late", "20-Mar-2026 09:00", "27-Mar-2026 09:00"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DiaryEntry* task = add(nullptr, 'T', "Weekly");
        task->edit_due().set_orig(at("6-Mar-2026 09:00"));
        task->edit_repeat().from_string("T=3@N=1");
        ASSERT_EQ(task->mark_complete(at(row.done)), ZBErrC_ok);
        EXPECT_FALSE(task->is_complete());
        EXPECT_EQ(task->get_due().orig, at(row.nextDue));
    }
}

// 100 or more finishes the entry the way marking it complete does; only a
// value below nothing is refused.
TEST_F(DiaryCompletion, ACompletionOfAHundredOrMoreFinishesTheEntry)
{
    for (double percent : {100.0, 120.0}) {
        SCOPED_TRACE(percent);
        DiaryEntry* task = add(nullptr, 'T', "Task");
        task->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 09:00"), at("3-Mar-2026 10:00")), 1);
        ASSERT_EQ(task->set_completion(percent, false), ZBErrC_ok);
        EXPECT_TRUE(task->is_complete());
        EXPECT_EQ(task->get_duration().orig.get_completion(), 100.0);
        EXPECT_TRUE(task->get_plan().get_planned().empty());
        EXPECT_EQ(task->get_spent().get_closed(), at("2-Mar-2026 08:00"));
    }
    DiaryEntry* task = add(nullptr, 'T', "Task");
    EXPECT_TRUE(iszbwarn(task->set_completion(-1.0, false)));
    get_zberror().clear_all();
    EXPECT_FALSE(task->is_complete());
}

// A child the parent's spec requires stays unless the fold is forced; a
// preserved child stays even then.
TEST_F(DiaryCompletion, MandatoryChildrenStopTheFoldUnlessForced)
{
    int specId = -1;
    ASSERT_FALSE(iszbwarn(diary.add_objectspec("Project", "$[Step] = ${Default};\n$[Extra] = ${Default}[];\n", &specId)));
    struct Row {
        const char* what;
        const char* member;
        bool preserve;
        bool force;
        int childrenLeft;
    };
    const Row rows[] = {
        {"a required child", "Step", false, false, 1},
        {"a required child, forced", "Step", false, true, 0},
        {"an optional child", "Extra", false, false, 0},
        {"a preserved child, forced", "Extra", true, true, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DiaryEntry* parent = add(nullptr, 'T', row.what);
        ASSERT_FALSE(iszbwarn(diary.apply_objectspec_to_db(*parent, specId, true)));
        DiaryEntry* child = new DiaryEntry();
        child->set_entrytype('T');
        ASSERT_FALSE(iszbwarn(diary.add_object(child, parent, DiaryEntry::C_EntryTag, row.member, -1, "")));
        child->set_preserve(row.preserve);
        child->mark_complete(at("4-Mar-2026 10:00"));
        parent->mark_complete(at("5-Mar-2026 10:00"));
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        ASSERT_EQ(parent->compact(&diary, row.force), ZBErrC_ok);
        EXPECT_EQ(parent->get_nchildren(), row.childrenLeft);
    }
}
