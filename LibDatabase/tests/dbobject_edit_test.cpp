#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zblockable.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

const ZBDate kNoon(2026, 2, 9, 12, 0, 0, 0, ZBDate::C_GMT);

class DBObjectEdit : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(kNoon);
        object.set_id(7, kNoon, true);
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    std::string last_error() const
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }
    int last_code() const
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_code() : -1;
    }

    ZBDBObject object;
};

TEST_F(DBObjectEdit, CommitRecordsTheChangeOneSecondAfterTheClock)
{
    ASSERT_FALSE(iszbwarn(object.edit(3, true)));
    EXPECT_TRUE(object.is_locked());
    EXPECT_EQ(object.get_lock_id(), 3);
    EXPECT_TRUE(object.is_edited());
    EXPECT_TRUE(object.get_created());
    object.add_link(12, "dep");
    const long before = ZBUpdateCounter::get_counter(false);

    ASSERT_FALSE(iszbwarn(object.commit()));
    EXPECT_FALSE(object.is_locked());
    EXPECT_FALSE(object.is_edited());
    EXPECT_FALSE(object.get_created());
    EXPECT_EQ(object.get_links("dep"), std::vector<int>{12});
    EXPECT_EQ(object.get_modify_time(), kNoon + ZBDuration(1));
    EXPECT_GT(object.get_last_update(), before);
    EXPECT_TRUE(object.has_changed_since(before));
}

TEST_F(DBObjectEdit, RevertPutsTheBackupBackAndKeepsTheId)
{
    object.add_link(1, "a");
    object.set_specid(4);
    const ZBDate modified = object.get_modify_time();
    ASSERT_FALSE(iszbwarn(object.edit(-1, false)));
    object.add_link(2, "b");
    object.set_specid(9);
    object.remove_link(1, "a", true);

    ASSERT_FALSE(iszbwarn(object.revert()));
    EXPECT_EQ(object.get_id(), 7);
    EXPECT_EQ(object.get_specid(), 4);
    EXPECT_EQ(object.get_links("a"), std::vector<int>{1});
    EXPECT_TRUE(object.get_links("b").empty());
    EXPECT_EQ(object.get_modify_time(), modified);
    EXPECT_FALSE(object.is_locked());
    EXPECT_FALSE(object.is_edited());
    // Free again: a new edit succeeds.
    EXPECT_FALSE(iszbwarn(object.edit(1, false)));
}

TEST_F(DBObjectEdit, CommitOrRevertWithoutALockIsRefusedAndChangesNothing)
{
    object.add_link(5, "x");
    const ZBDate modified = object.get_modify_time();
    const long update = object.get_last_update();

    int result = object.commit();
    EXPECT_TRUE(iszberr(result));
    EXPECT_EQ(last_code(), ZBLockable::ZBErrC_ObjectNotLocked);
    EXPECT_EQ(last_error(), "The object 7 was not locked.");
    EXPECT_EQ(object.get_modify_time(), modified);
    EXPECT_EQ(object.get_last_update(), update);

    get_zberror().clear_all();
    EXPECT_TRUE(iszberr(object.revert()));
    EXPECT_EQ(last_error(), "The object 7 was not locked.");
    EXPECT_EQ(object.get_links("x"), std::vector<int>{5});
}

TEST_F(DBObjectEdit, SecondLockIsRefusedAndTheFirstHolderKeepsIt)
{
    ASSERT_FALSE(iszbwarn(object.edit(1, false)));
    object.add_link(3, "kept");

    int result = object.edit(2, true);
    EXPECT_TRUE(iszberr(result));
    EXPECT_EQ(last_code(), ZBLockable::ZBErrC_ObjectLocked);
    EXPECT_EQ(last_error(), "Could not lock for ID 2");
    EXPECT_EQ(object.get_lock_id(), 1);
    EXPECT_FALSE(object.get_created());
    // The first edit's backup is untouched, so revert undoes the first holder's change.
    ASSERT_FALSE(iszbwarn(object.revert()));
    EXPECT_TRUE(object.get_links("kept").empty());
}

TEST_F(DBObjectEdit, UnlockOfAFreeLockReports)
{
    ZBLockable lock;
    EXPECT_TRUE(iszberr(lock.unlock()));
    EXPECT_EQ(last_error(), "Object already unlocked.");
    EXPECT_EQ(ZBError::get_code(ZBLockable::ZBErrC_ObjectLocked).m_description, "The specified record is locked elsewhere.");
    EXPECT_EQ(ZBError::get_code(ZBLockable::ZBErrC_ObjectNotLocked).m_description,
              "Attempting to edit a record that is not locked.");
}

TEST_F(DBObjectEdit, ACopyOfALockedObjectIsFreeAndHasNoBackup)
{
    ASSERT_FALSE(iszbwarn(object.edit(1, false)));
    ZBDBObject copy(object);
    EXPECT_FALSE(copy.is_locked());
    EXPECT_FALSE(copy.is_edited());
    ZBDBObject assigned;
    ASSERT_FALSE(iszbwarn(assigned.edit(4, false)));
    assigned = object;
    // Assignment copies stored state, not the lock.
    EXPECT_EQ(assigned.get_lock_id(), 4);
    EXPECT_TRUE(assigned.is_edited());
    object.commit();
    assigned.commit();
}

TEST_F(DBObjectEdit, SystemChangeSkipsExactlyOneMark)
{
    ZBDateUtils::set_fixed_now(kNoon + ZBDuration(100));
    object.set_systemchange();
    object.mark_changed("here", true);
    EXPECT_EQ(object.get_modify_time(), kNoon + ZBDuration(1));
    EXPECT_NE(object.get_change_loc(), "here");
    object.mark_changed("there", true);
    EXPECT_EQ(object.get_modify_time(), kNoon + ZBDuration(101));
    EXPECT_EQ(object.get_change_loc(), "there");
}

TEST_F(DBObjectEdit, MarkWithoutTimeKeepsTheModifyTimeAndAnObjectWithoutIdIsNotCounted)
{
    ZBDateUtils::set_fixed_now(kNoon + ZBDuration(50));
    const long update = object.get_last_update();
    object.mark_changed("x", false);
    EXPECT_EQ(object.get_modify_time(), kNoon + ZBDuration(1));
    EXPECT_GT(object.get_last_update(), update);

    ZBDBObject loose;
    loose.mark_changed("y", true);
    EXPECT_EQ(loose.get_last_update(), -1);
    EXPECT_EQ(loose.get_modify_time(), kNoon + ZBDuration(51));
}

TEST_F(DBObjectEdit, RenumberingKeepsTheFirstIdAsCreateId)
{
    object.set_id(20, kNoon, false);
    EXPECT_EQ(object.get_create_id(), 7);
    object.set_id(30, kNoon, false);
    EXPECT_EQ(object.get_create_id(), 7);
    const long update = object.get_last_update();
    object.set_id(30, kNoon, false);
    EXPECT_EQ(object.get_last_update(), update);
    object.set_id(31, kNoon, true);
    EXPECT_EQ(object.get_create_id(), -1);
}

TEST_F(DBObjectEdit, RevertInADatabaseRestoresTheStoredFields)
{
    ZBDatabase db;
    ASSERT_FALSE(iszbwarn(db.load("", false)));
    ZBDBObject* child = nullptr;
    ASSERT_FALSE(iszbwarn(db.create_object(nullptr, "Object", -1, &child)));
    child->add_link(4, "ref");
    ASSERT_FALSE(iszbwarn(child->edit(9, false)));
    child->set_state(ZBDBObject::E_Deleted);
    child->add_link(5, "ref");
    ASSERT_FALSE(iszbwarn(child->revert()));
    EXPECT_FALSE(child->is_deleted());
    EXPECT_EQ(child->get_links("ref"), std::vector<int>{4});
    EXPECT_EQ(child->get_parent(), &db);
}

TEST_F(DBObjectEdit, LinksByTypeAndPosition)
{
    object.add_link(1, "a");
    object.add_link(2, "b");
    object.add_link(3, "a");
    object.add_link(1, "a");
    EXPECT_EQ(object.get_nassoc("a"), 2);
    EXPECT_EQ(object.get_assoc_by_index("a", 1), 3);
    EXPECT_EQ(object.get_assoc_by_index("a", 2), -1);
    object.remove_link(1, "a", false);
    EXPECT_EQ(object.get_assoc_by_index("a", 0), 3);
}

} // namespace
