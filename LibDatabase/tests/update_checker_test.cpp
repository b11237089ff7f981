#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbupdatechecker.h"
#include "LibDatabase/db/zbupdatecounter.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

const ZBDate kStart(2026, 0, 5, 9, 0, 0, 0, ZBDate::C_GMT);

class UpdateChecker : public ::testing::Test {
protected:
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(kStart);
        ASSERT_FALSE(iszbwarn(db.load("", false)));
        ASSERT_FALSE(iszbwarn(db.create_object(nullptr, "Object", -1, &object)));
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    ZBDatabase db;
    ZBDBObject* object = nullptr;
};

TEST_F(UpdateChecker, ReadingTheCounterNeverMovesIt)
{
    const long now = ZBUpdateCounter::get_counter(false);
    EXPECT_EQ(ZBUpdateCounter::get_counter(false), now);
    EXPECT_EQ(ZBUpdateCounter::get_counter(true), now + 1);
    ZBDBObject other;
    other.restore_update(now + 100);
    EXPECT_EQ(ZBUpdateCounter::get_counter(false), now + 1);
}

TEST_F(UpdateChecker, TheCountIsSharedByEveryDatabase)
{
    ZBDatabase second;
    ASSERT_FALSE(iszbwarn(second.load("", false)));
    const long seen = db.get_last_db_update();
    ZBDBObject* other = nullptr;
    second.create_object(nullptr, "Object", -1, &other);
    EXPECT_GT(db.get_last_db_update(), seen);
    EXPECT_GT(other->get_last_update(), object->get_last_update());
}

TEST_F(UpdateChecker, AnyUpdateActsOncePerChange)
{
    ZBUpdateChecker checker(&db, ZBUpdateChecker::E_AnyUpdate, 0);
    EXPECT_TRUE(checker.do_action());
    EXPECT_FALSE(checker.action_required());
    object->mark_changed("test", true);
    EXPECT_TRUE(checker.action_required());
    EXPECT_TRUE(checker.do_action());
    EXPECT_FALSE(checker.do_action());
}

TEST_F(UpdateChecker, StructureChangeIgnoresPlainEdits)
{
    ZBUpdateChecker checker(&db, ZBUpdateChecker::E_StructureChange, 0);
    EXPECT_TRUE(checker.do_action());
    object->mark_changed("test", true);
    EXPECT_FALSE(checker.action_required());
    ZBDBObject* child = nullptr;
    db.create_object(object, "Object", -1, &child);
    EXPECT_TRUE(checker.action_required());
}

TEST_F(UpdateChecker, ManualActsOnlyWhenMarked)
{
    ZBUpdateChecker checker(&db, ZBUpdateChecker::E_Manual, 0);
    EXPECT_TRUE(checker.do_action());
    EXPECT_EQ(checker.get_last_seen(), 0);
    object->mark_changed("test", true);
    EXPECT_FALSE(checker.action_required());
    checker.mark_action();
    EXPECT_TRUE(checker.do_action());
    EXPECT_FALSE(checker.action_required());
}

TEST_F(UpdateChecker, MarkActionWakesEveryKind)
{
    for (ZBUpdateChecker::E_Action action : {ZBUpdateChecker::E_AnyUpdate, ZBUpdateChecker::E_StructureChange}) {
        ZBUpdateChecker checker(&db, action, 0);
        checker.do_action();
        ASSERT_FALSE(checker.action_required());
        checker.mark_action();
        EXPECT_TRUE(checker.action_required()) << action;
    }
}

TEST_F(UpdateChecker, TimeoutForcesActionAfterItHasPassed)
{
    ZBUpdateChecker checker(&db, ZBUpdateChecker::E_Manual, 60);
    EXPECT_TRUE(checker.do_action());
    ZBDateUtils::set_fixed_now(kStart + ZBDuration(60));
    EXPECT_FALSE(checker.action_required());
    ZBDateUtils::set_fixed_now(kStart + ZBDuration(61));
    EXPECT_TRUE(checker.do_action());
    EXPECT_FALSE(checker.action_required());
    EXPECT_EQ(ZBUpdateCounter::time_since_update(), 61);
}

TEST_F(UpdateChecker, WithoutADatabaseNothingIsRequired)
{
    ZBUpdateChecker checker(nullptr, ZBUpdateChecker::E_Manual, 1);
    checker.mark_action();
    EXPECT_FALSE(checker.action_required());
    EXPECT_FALSE(checker.do_action());
}

} // namespace
