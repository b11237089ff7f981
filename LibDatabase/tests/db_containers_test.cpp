#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibDatabase/db/zbdbobjectchild.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

class DBContainers : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ASSERT_FALSE(iszbwarn(db.load("", false)));
    }
    void TearDown() override { get_zberror().clear_all(); }

    ZBDBObject* add(ZBDBObject* parent, const std::string& tag, const std::string& member)
    {
        ZBDBObject* object = new ZBDBObject();
        EXPECT_FALSE(iszbwarn(db.add_object(object, parent ? parent : &db, tag, member, -1, std::string())));
        return object;
    }
    static std::vector<int> ids(const ZBDBContainerBase* container)
    {
        std::vector<int> out;
        for (int i = 0; container && i < container->get_nobjects(); ++i)
            out.push_back(container->get_object(i)->get_id());
        return out;
    }
    std::string last_error() const
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }

    ZBDatabase db;
};

TEST_F(DBContainers, ChildrenAppearByContainerAndMemberTagInOrderOfAddition)
{
    ZBDBObject* folder = add(nullptr, "Object", "folder");
    ZBDBObject* a = add(folder, "Task", "step");
    ZBDBObject* b = add(folder, "Note", "");
    ZBDBObject* c = add(folder, "Task", "step");
    db.resolve_containers();

    EXPECT_EQ(ids(folder->get_container("Task")), (std::vector<int>{a->get_id(), c->get_id()}));
    EXPECT_EQ(ids(folder->get_container("Note")), std::vector<int>{b->get_id()});
    EXPECT_EQ(folder->get_num_member_tag("step"), 2);
    EXPECT_EQ(folder->get_child_by_mtag("step"), a);
    EXPECT_EQ(folder->get_container("Task")->find_member_tag("step"), a);
    EXPECT_EQ(folder->get_container("Task")->get_num_member_tag("step"), 2);
    ZBPtrArray<ZBDBObject> steps(false);
    folder->get_children_by_mtag("step", steps);
    EXPECT_EQ(steps.size(), 2);
    EXPECT_EQ(a->get_parent(), folder);
    EXPECT_EQ(db.get_object_container(b->get_id()), folder->get_container("Note"));
}

TEST_F(DBContainers, DeletingTakesTheSubtreeOutOfEveryContainer)
{
    ZBDBObject* folder = add(nullptr, "Object", "");
    ZBDBObject* a = add(folder, "Object", "");
    ZBDBObject* a1 = add(a, "Object", "");
    ZBDBObject* b = add(folder, "Object", "");
    const int a1Id = a1->get_id();

    ZBDBObject* copy = nullptr;
    ASSERT_FALSE(iszbwarn(db.extract_object(a->get_id(), copy, false)));
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(ids(folder->get_container("Object")), std::vector<int>{b->get_id()});
    EXPECT_TRUE(a->is_deleted());
    EXPECT_TRUE(db.get_object_by_id(a1Id)->is_deleted());
    EXPECT_FALSE(a->is_locked());
    // The copy is detached and carries its child.
    EXPECT_EQ(copy->get_parent_id(), -1);
    EXPECT_EQ(copy->get_nmanaged_children(), 1);
    EXPECT_FALSE(copy->is_deleted());

    // Put back as a new object, the child comes with it.
    const int before = db.get_nobjects();
    ASSERT_FALSE(iszbwarn(db.add_object(copy, folder, "Object", "", -1, std::string())));
    EXPECT_EQ(db.get_nobjects(), before + 2);
    db.resolve_containers();
    EXPECT_EQ(folder->get_container("Object")->get_nobjects(), 2);
    EXPECT_EQ(ids(copy->get_container("Object")).size(), 1u);
}

TEST_F(DBContainers, ALockedObjectCannotBeDeletedAndStaysAsItWas)
{
    ZBDBObject* a = add(nullptr, "Object", "");
    ASSERT_FALSE(iszbwarn(a->edit(5, false)));
    ZBDBObject* copy = nullptr;
    EXPECT_TRUE(iszberr(db.extract_object(a->get_id(), copy, false)));
    EXPECT_EQ(copy, nullptr);
    EXPECT_FALSE(a->is_deleted());
    EXPECT_EQ(a->get_lock_id(), 5);
    EXPECT_EQ(ids(db.get_container("Object")), std::vector<int>{a->get_id()});
    a->commit();
}

TEST_F(DBContainers, UnknownIdAndBadParentsAreReported)
{
    ZBDBObject* copy = nullptr;
    EXPECT_TRUE(iszberr(db.extract_object(999, copy, false)));
    EXPECT_EQ(last_error(), "Could not delete - Object ID 999 not found.");
    EXPECT_TRUE(iszberr(db.add_object(nullptr, &db, "Object", "", -1, std::string())));
    EXPECT_EQ(last_error(), "The supplied object was nullptr.");
    ZBDBObject loose;
    ZBDBObject* object = new ZBDBObject();
    EXPECT_TRUE(iszberr(db.add_object(object, &loose, "Object", "", -1, std::string())));
    EXPECT_EQ(last_error(), "The parent object of -1 does not have a valid ID set (-1).");
    delete object;
}

TEST_F(DBContainers, AnOrphanBecomesDeletedWhenContainersAreResolved)
{
    ZBDBObject* a = add(nullptr, "Object", "");
    ZBDBObject* b = add(a, "Object", "");
    // A parent that vanished (as in a damaged file) leaves b without a place in the tree.
    a->set_systemchange();
    a->set_state(ZBDBObject::E_Deleted);
    db.resolve_containers();
    EXPECT_TRUE(b->is_deleted());
    EXPECT_EQ(b->get_parent(), nullptr);
}

TEST_F(DBContainers, SpecsQueriesAndNotesHaveTheirOwnContainers)
{
    ZBObjectSpec* spec = new ZBObjectSpec("Thing");
    EXPECT_FALSE(iszbwarn(db.add_object(spec, &db, ZBDatabase::C_SpecTag, "", -1, std::string())));
    ZBDBObject* note = add(nullptr, ZBDatabase::C_NoteTag, "");
    db.resolve_containers();
    EXPECT_EQ(db.get_objectspecs().size(), 1);
    EXPECT_EQ(db.get_objectspecs().find_id(spec->get_id()), spec);
    EXPECT_EQ(db.get_notes().get(0), note);
    EXPECT_EQ(db.get_queries().size(), 0);
}

TEST_F(DBContainers, IndexOutOfRangeIsReportedAndGivesNull)
{
    add(nullptr, "Object", "");
    db.resolve_containers();
    const ZBDBContainerBase* container = db.get_container("Object");
    ASSERT_NE(container, nullptr);
    get_zberror().clear_all();
    EXPECT_EQ(container->get_object(1), nullptr);
    EXPECT_EQ(last_error(), "Element 1 out of bounds (1 items)");
}

class Typed : public ZBDBObject {
public:
    Typed() { register_objectname("DBContainersTyped", &Typed::create_zbobject); }
    static int create_zbobject(ZBObject*& out, const ZBObject* from) { return create_as<Typed>(out, from, "DBContainersTyped"); }
};

class Facet : public ZBDBObjectChild<Typed> {
};

TEST_F(DBContainers, TypedContainerRefusesOtherClasses)
{
    ZBDBContainer<Typed> container("T");
    ZBDBObject plain;
    plain.set_id(3, ZBDateUtils::now(), true);
    EXPECT_TRUE(iszberr(container.add_object(&plain)));
    EXPECT_EQ(last_error(), "Could not cast object ID 3 to ZBDBObject.");
    Typed typed;
    EXPECT_FALSE(iszbwarn(container.add_object(&typed)));
    EXPECT_EQ(container.size(), 1);
}

TEST_F(DBContainers, ObjectChildFindsItsOwnerUpTheTree)
{
    Typed* owner = new Typed();
    ASSERT_FALSE(iszbwarn(db.add_object(owner, &db, "Object", "", -1, std::string())));
    Facet* facet = new Facet();
    ASSERT_FALSE(iszbwarn(db.add_object(facet, owner, "Facet", "", -1, std::string())));
    db.resolve_containers();
    EXPECT_EQ(facet->get_db(), owner);
}

} // namespace
