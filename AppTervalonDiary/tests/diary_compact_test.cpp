// Folding the finished children of a finished entry into it.
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

struct DiaryCompact : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("diary_compact") + "/c.zbd", true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
    }
    DiaryEntry* add(DiaryEntry* parent, char type, const std::string& title)
    {
        DiaryEntry* entry = nullptr;
        EXPECT_EQ(diary.create_entry(parent, type, title, &entry), ZBErrC_ok);
        return entry;
    }
    // A finished task with one hour of work on a day of March.
    DiaryEntry* done_child(DiaryEntry* parent, const std::string& title, int day)
    {
        DiaryEntry* child = add(parent, 'T', title);
        const std::string date = std::to_string(day) + "-Mar-2026 ";
        child->edit_spent().add_session(ZBDateSlot(at(date + "09:00"), at(date + "10:00")), 1);
        child->set_text("notes of " + title);
        child->mark_complete(at(date + "10:00"));
        return child;
    }
    Diary diary;
};

} // namespace

TEST_F(DiaryCompact, FinishedTaskTakesInItsChildrenSessionsAndDetails)
{
    DiaryEntry* parent = add(nullptr, 'T', "Parent");
    parent->set_text("parent notes");
    parent->edit_due().set_orig(at("10-Mar-2026 17:00"));
    parent->edit_start().set_orig(at("2-Mar-2026 09:00"));
    parent->edit_priority().set_orig(60.0);
    DiaryEntry* one = done_child(parent, "one", 3);
    DiaryEntry* two = done_child(parent, "two", 5);
    const int oneId = one->get_id();
    const int twoId = two->get_id();
    parent->edit_depend().set_depend_ids({oneId});
    parent->edit_depend().set_depend_titles({"one"});
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    parent->mark_complete(at("6-Mar-2026 12:00"));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);

    ASSERT_EQ(parent->compact(&diary, false), ZBErrC_ok);
    EXPECT_EQ(parent->get_nchildren(), 0);
    EXPECT_EQ(diary.get_entry_id(oneId), nullptr);
    EXPECT_EQ(diary.get_entry_id(twoId), nullptr);
    EXPECT_EQ(parent->get_text(), "parent notes\n---\nnotes of one\n---\nnotes of two");
    const ZBDateSet& sessions = parent->get_spent().get_sessions();
    ASSERT_EQ(sessions.size(), 2);
    EXPECT_EQ(sessions.start(), at("3-Mar-2026 09:00"));
    EXPECT_EQ(sessions.end(), at("5-Mar-2026 10:00"));
    EXPECT_TRUE(sessions.get_keepduration());
    EXPECT_TRUE(parent->get_depend().get_depend_ids().empty());
    EXPECT_TRUE(parent->get_depend().get_depend_titles().empty());
    // What the children gave stays as the entry's own values.
    EXPECT_TRUE(parent->is_complete());
    EXPECT_EQ(parent->get_due().orig, at("10-Mar-2026 17:00"));
    EXPECT_EQ(parent->get_start().orig, at("2-Mar-2026 09:00"));
    EXPECT_EQ(parent->get_priority().orig, 60.0);

    // The fold survives the file.
    ASSERT_EQ(diary.complete_operation("Compact"), ZBErrC_ok);
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    Diary again;
    ASSERT_EQ(again.read(diary.get_filename()), ZBErrC_ok);
    EXPECT_EQ(again.get_nentries(), 1);
    EXPECT_EQ(again.get_entry_id(oneId), nullptr);
    EXPECT_EQ(again.get_entry_index(0)->get_spent().get_sessions().size(), 2);
    again.unload();
}

TEST_F(DiaryCompact, AppointmentKeepsTheSpanOfItsChildren)
{
    DiaryEntry* trip = add(nullptr, 'A', "Trip");
    DiaryEntry* leg1 = add(trip, 'A', "Out");
    leg1->edit_time().set_orig(ZBDateSlot(at("3-Mar-2026 08:00"), at("3-Mar-2026 12:00")));
    DiaryEntry* leg2 = add(trip, 'A', "Back");
    leg2->edit_time().set_orig(ZBDateSlot(at("4-Mar-2026 15:00"), at("4-Mar-2026 19:00")));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    ZBProgress progress = trip->get_duration().orig;
    progress.set_completion(100.0);
    trip->edit_duration().set_orig(progress);
    ASSERT_EQ(trip->compact(&diary, false), ZBErrC_ok);
    EXPECT_EQ(trip->get_nchildren(), 0);
    EXPECT_EQ(trip->get_time().orig, ZBDateSlot(at("3-Mar-2026 08:00"), at("4-Mar-2026 19:00")));
}

TEST_F(DiaryCompact, WhatStopsTheFold)
{
    struct Row {
        const char* what;
        std::function<void(DiaryEntry* parent, Diary& diary)> setup;
        int childrenLeft;
    };
    auto child = [](DiaryEntry* parent, Diary& diary, char type, const char* title) {
        DiaryEntry* entry = nullptr;
        diary.create_entry(parent, type, title, &entry);
        return entry;
    };
    const Row rows[] = {
        {"an open parent",
         [&](DiaryEntry* p, Diary& d) {
             child(p, d, 'T', "one");
             p->set_completion(50.0, true);
         },
         1},
        {"a preserved child",
         [&](DiaryEntry* p, Diary& d) {
             child(p, d, 'T', "one");
             child(p, d, 'T', "kept")->set_preserve(true);
         },
         2},
        {"a child that is a note",
         [&](DiaryEntry* p, Diary& d) {
             child(p, d, 'T', "one");
             child(p, d, 'J', "note");
         },
         2},
        {"a preserved grandchild",
         [&](DiaryEntry* p, Diary& d) {
             DiaryEntry* middle = child(p, d, 'T', "middle");
             child(middle, d, 'T', "kept")->set_preserve(true);
             middle->mark_complete(at("5-Mar-2026 12:00"));
         },
         1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        DiaryEntry* parent = add(nullptr, 'T', row.what);
        parent->mark_complete(at("6-Mar-2026 12:00"));
        row.setup(parent, diary);
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        ASSERT_EQ(parent->compact(&diary, false), ZBErrC_ok);
        EXPECT_EQ(parent->get_nchildren(), row.childrenLeft);
    }
}

TEST_F(DiaryCompact, GrandchildrenAreFoldedAllTheWayUp)
{
    DiaryEntry* parent = add(nullptr, 'T', "Parent");
    parent->set_text("parent");
    DiaryEntry* middle = add(parent, 'T', "Middle");
    middle->set_text("middle");
    const int middleId = middle->get_id();
    done_child(middle, "deep one", 3);
    const int deepId = done_child(middle, "deep two", 4)->get_id();
    middle->mark_complete(at("5-Mar-2026 12:00"));
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    // An open top leaves itself alone but still folds what below it is finished.
    ASSERT_EQ(parent->compact(&diary, false), ZBErrC_ok);
    ASSERT_EQ(parent->get_nchildren(), 1);
    EXPECT_EQ(middle->get_nchildren(), 0);
    EXPECT_EQ(diary.get_entry_id(deepId), nullptr);
    EXPECT_EQ(middle->get_text(), "middle\n---\nnotes of deep one\n---\nnotes of deep two");

    parent->mark_complete(at("6-Mar-2026 12:00"));
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    ASSERT_EQ(parent->compact(&diary, false), ZBErrC_ok);
    EXPECT_EQ(parent->get_nchildren(), 0);
    EXPECT_EQ(diary.get_entry_id(middleId), nullptr);
    EXPECT_EQ(parent->get_spent().get_sessions().size(), 2);
    EXPECT_EQ(parent->get_text(), "parent\n---\nmiddle\n---\nnotes of deep one\n---\nnotes of deep two");
}

// A child the parent's spec requires stays unless the fold is forced; a
// preserved one stays even then.
TEST_F(DiaryCompact, RequiredChildrenStopTheFoldUnlessForced)
{
    int specId = -1;
    ASSERT_FALSE(iszbwarn(diary.add_objectspec("Project", "$[Step] = ${Default};\n$[Extra] = ${Default}[];\n", &specId)));
    struct Row {
        const char* member;
        bool preserve;
        bool force;
        int childrenLeft;
    };
    const Row rows[] = {{"Step", false, false, 1}, {"Step", false, true, 0}, {"Extra", false, false, 0}, {"Extra", true, true, 1}};
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.member) + (row.preserve ? " preserved" : "") + (row.force ? " forced" : ""));
        DiaryEntry* parent = add(nullptr, 'T', "Project");
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
