#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <vector>

using namespace Tervalon;

namespace {

const ZBDate kMade(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT);
const ZBDate kDeleted(2026, 2, 5, 8, 0, 0, 0, ZBDate::C_GMT);

// A class of its own, so that a copy that loses the class shows.
class TestLeaf : public ZBDBObject {
public:
    TestLeaf() { TestLeaf::register_zbobject(); }
    TestLeaf(const TestLeaf& other) : ZBDBObject(other) { TestLeaf::register_zbobject(); }
    void register_zbobject() override { register_objectname("TestLeaf", &TestLeaf::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<TestLeaf>(out, from, "TestLeaf"); }
};
const ZBObjectPreReg g_registerLeaf("TestLeaf", &TestLeaf::create_zbobject);

class DatabaseDelete : public Tervalon::Test::QuietErrors {
protected:
    void SetUp() override
    {
        Tervalon::Test::QuietErrors::SetUp();
        ZBDateUtils::set_fixed_now(kMade);
        ASSERT_FALSE(iszbwarn(db.load("", false)));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        Tervalon::Test::QuietErrors::TearDown();
    }

    ZBDBObject* add(ZBDBObject* parent, ZBDBObject* object = nullptr)
    {
        if (!object)
            object = new ZBDBObject();
        EXPECT_FALSE(iszbwarn(db.add_object(object, parent ? parent : &db, "OB", "", -1, std::string())));
        return object;
    }
    // A project of folders of folders of leaves; the ids of all its objects.
    std::vector<int> add_project(int folders, int subfolders, int leaves)
    {
        ZBDBObject* project = add(nullptr);
        std::vector<int> ids{project->get_id()};
        for (int f = 0; f < folders; ++f) {
            ZBDBObject* folder = add(project);
            ids.push_back(folder->get_id());
            for (int s = 0; s < subfolders; ++s) {
                ZBDBObject* sub = add(folder);
                ids.push_back(sub->get_id());
                for (int l = 0; l < leaves; ++l)
                    ids.push_back(add(sub, new TestLeaf())->get_id());
            }
        }
        return ids;
    }
    static std::vector<int> ids_of(const ZBDBContainerBase* container)
    {
        std::vector<int> out;
        for (int i = 0; container && i < container->get_nobjects(); ++i)
            out.push_back(container->get_object(i)->get_id());
        return out;
    }

    ZBDatabase db;
};

TEST_F(DatabaseDelete, ALargeSubtreeBecomesTombstonesAndTheRestIsUntouched)
{
    const std::vector<int> keep = add_project(3, 4, 5);
    const std::vector<int> gone = add_project(10, 10, 30);
    ASSERT_EQ(gone.size(), 1u + 10 + 100 + 3000);
    const long before = ZBUpdateCounter::get_counter(false);

    ZBDateUtils::set_fixed_now(kDeleted);
    ASSERT_EQ(db.delete_object(gone[0], "Delete"), ZBErrC_ok);

    for (int id : gone) {
        const ZBDBObject* object = db.get_object_by_id(id);
        ASSERT_NE(object, nullptr) << id;
        EXPECT_TRUE(object->is_deleted()) << id;
        EXPECT_EQ(object->get_parent(), nullptr) << id;
        EXPECT_EQ(object->get_modify_time(), kDeleted + ZBDuration(1)) << id;
        EXPECT_FALSE(object->is_locked()) << id;
        // The tombstone still names its parent, so that a merge can place it.
        EXPECT_GE(object->get_parent_id(), 0) << id;
        for (int c = 0; c < object->get_ncontainers(); ++c)
            EXPECT_EQ(object->get_container_no(c)->get_nobjects(), 0) << id;
    }
    for (int id : keep) {
        const ZBDBObject* object = db.get_object_by_id(id);
        EXPECT_FALSE(object->is_deleted()) << id;
        EXPECT_FALSE(object->has_changed_since(before)) << id;
        EXPECT_EQ(object->get_modify_time(), kMade + ZBDuration(1)) << id;
    }
    EXPECT_EQ(ids_of(db.get_container("OB")), std::vector<int>{keep[0]});
    EXPECT_EQ(ids_of(db.get_object_by_id(keep[0])->get_container("OB")).size(), 3u);
    EXPECT_EQ(ids_of(db.get_object_by_id(keep[2])->get_container("OB")).size(), 5u);
    EXPECT_GT(db.get_last_structure_change(), before);

    // Written whole within the week, every tombstone is in the file with its state.
    const std::string file = Tervalon::Test::make_temp_dir("delete") + "/big.zbd";
    ASSERT_FALSE(iszbwarn(db.save_as(file, false)));
    ZBDatabase again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    for (int id : gone) {
        ASSERT_NE(again.get_object_by_id(id), nullptr) << id;
        EXPECT_TRUE(again.get_object_by_id(id)->is_deleted()) << id;
    }
    EXPECT_EQ(ids_of(again.get_container("OB")), std::vector<int>{keep[0]});
}

TEST_F(DatabaseDelete, ALockedDescendantRefusesTheWholeDeletion)
{
    const std::vector<int> ids = add_project(3, 2, 2);
    // The last leaf, so that a deletion that works part by part has done most
    // of the subtree before it meets the lock.
    ZBDBObject* locked = db.get_object_by_id(ids.back());
    ASSERT_FALSE(iszbwarn(locked->edit(4, false)));

    ZBDBObject* copy = nullptr;
    EXPECT_TRUE(iszberr(db.extract_object(ids[0], copy, false)));
    EXPECT_EQ(copy, nullptr);
    EXPECT_TRUE(iszberr(db.delete_object(ids[0], "Delete")));
    for (int id : ids)
        EXPECT_FALSE(db.get_object_by_id(id)->is_deleted()) << id;
    EXPECT_EQ(locked->get_lock_id(), 4);
    EXPECT_TRUE(locked->is_edited());
    ASSERT_FALSE(iszbwarn(locked->commit()));

    ASSERT_EQ(db.delete_object(ids[0], "Delete"), ZBErrC_ok);
    for (int id : ids)
        EXPECT_TRUE(db.get_object_by_id(id)->is_deleted()) << id;
}

TEST_F(DatabaseDelete, ADeepChainIsTakenWhole)
{
    ZBDBObject* top = add(nullptr);
    ZBDBObject* at = top;
    for (int i = 0; i < 20000; ++i)
        at = add(at);
    const int bottom = at->get_id();
    ASSERT_EQ(db.delete_object(top->get_id(), "Delete"), ZBErrC_ok);
    EXPECT_TRUE(db.get_object_by_id(bottom)->is_deleted());
    EXPECT_EQ(db.get_container("OB")->get_nobjects(), 0);
}

TEST_F(DatabaseDelete, TheExtractedCopyKeepsOrderClassesAndAlreadyDeletedChildrenOut)
{
    ZBDBObject* project = add(nullptr);
    ZBDBObject* first = add(project);
    ZBDBObject* dropped = add(project);
    ZBDBObject* second = add(project);
    ZBDBObject* leaf = add(first, new TestLeaf());
    add(dropped);
    ASSERT_EQ(db.delete_object(dropped->get_id(), "Delete"), ZBErrC_ok);

    ZBDBObject* copy = nullptr;
    ASSERT_EQ(db.extract_object(project->get_id(), copy, false), ZBErrC_ok);
    std::unique_ptr<ZBDBObject> owned(copy);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->get_parent_id(), -1);
    ASSERT_EQ(copy->get_nmanaged_children(), 2);

    // A copy of the copy (a clipboard, an undo step) carries the same tree.
    std::unique_ptr<ZBDBObject> again(dynamic_cast<ZBDBObject*>(copy->clone_class()));
    ASSERT_NE(again, nullptr);
    std::vector<int> order;
    while (ZBDBObject* child = again->extract_managed_child()) {
        std::unique_ptr<ZBDBObject> held(child);
        order.push_back(child->get_id());
        EXPECT_EQ(child->get_parent_id(), -1);
        EXPECT_EQ(child->get_obj_container_tag(), "OB");
        if (child->get_id() == first->get_id()) {
            ASSERT_EQ(child->get_nmanaged_children(), 1);
            std::unique_ptr<ZBDBObject> grandchild(child->extract_managed_child());
            EXPECT_EQ(grandchild->get_id(), leaf->get_id());
            EXPECT_EQ(grandchild->get_class_name(), "TestLeaf");
        }
    }
    EXPECT_EQ(order, (std::vector<int>{first->get_id(), second->get_id()}));
}

} // namespace
