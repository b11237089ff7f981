#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainerbase.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

using namespace Tervalon;

namespace {

class DatabaseFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = Tervalon::Test::make_temp_dir("db");
        ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    std::string path(const std::string& name) const { return m_dir + "/" + name; }

    // A database with a small tree: a root object, two children, one grandchild.
    std::unique_ptr<ZBDatabase> make_tree(const std::string& file)
    {
        std::unique_ptr<ZBDatabase> db(new ZBDatabase());
        EXPECT_EQ(db->create(file, false), ZBErrC_ok);
        ZBDBObject* root = new ZBDBObject();
        EXPECT_EQ(db->add_object(root, db.get(), "OB", "root", -1, ""), ZBErrC_ok);
        ZBDBObject* a = new ZBDBObject();
        EXPECT_EQ(db->add_object(a, root, "CH", "child", -1, ""), ZBErrC_ok);
        ZBDBObject* b = new ZBDBObject();
        EXPECT_EQ(db->add_object(b, root, "CH", "child", -1, ""), ZBErrC_ok);
        ZBDBObject* c = new ZBDBObject();
        EXPECT_EQ(db->add_object(c, a, "CH", "leaf", -1, ""), ZBErrC_ok);
        c->add_link(b->get_id(), "depends");
        return db;
    }

    std::string m_dir;
};

std::string error_text()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_details(ZBErrAsp_System) : std::string();
}

} // namespace

TEST_F(DatabaseFile, SecondRunReadsWhatTheFirstWrote)
{
    const std::string file = path("tree.zbd");
    std::string written;
    {
        std::unique_ptr<ZBDatabase> db = make_tree(file);
        ASSERT_EQ(db->save(true, true, false), ZBErrC_ok);
        written = Tervalon::Test::read_file(file);
    }
    ZBDatabase again;
    ASSERT_EQ(again.load(file, false), ZBErrC_ok);
    EXPECT_EQ(again.get_nobjects(), 4);
    ZBDBObject* root = again.get_object_by_index(0);
    ASSERT_NE(root, nullptr);
    ASSERT_NE(root->get_container("CH"), nullptr);
    EXPECT_EQ(root->get_container("CH")->get_nobjects(), 2);
    EXPECT_EQ(root->get_num_member_tag("child"), 2);
    ZBDBObject* leaf = again.get_object_by_index(3);
    EXPECT_EQ(leaf->get_links("depends"), std::vector<int>{again.get_object_by_index(2)->get_id()});
    EXPECT_TRUE(again.is_ancestor(leaf->get_id(), root->get_id()));
    // Writing again without a change gives the same bytes.
    ASSERT_EQ(again.save(true, true, false), ZBErrC_ok);
    EXPECT_EQ(Tervalon::Test::read_file(file), written);
}

TEST_F(DatabaseFile, FileHeadAndHeaderFieldOrder)
{
    const std::string file = path("head.zbd");
    { make_tree(file); }
    const std::string text = Tervalon::Test::read_file(file);
    EXPECT_EQ(text.compare(0, 27, "ZBDatabase:7685\n!Version!0\n"), 0) << text;
    // The application type stands twice, around the write time and host.
    size_t first = text.find("!AppType!");
    size_t write = text.find("!WriteTime!");
    size_t second = text.find("!AppType!", first + 1);
    EXPECT_LT(first, write);
    EXPECT_LT(write, second);
    EXPECT_LT(text.find("!UnID!"), first);
    EXPECT_LT(second, text.find("!AppRelease!"));
    EXPECT_NE(text.find("@O:\n{ZBDatabase\n"), std::string::npos);
}

TEST_F(DatabaseFile, IdsKeepGrowingAfterReload)
{
    const std::string file = path("ids.zbd");
    int highest = 0;
    {
        std::unique_ptr<ZBDatabase> db = make_tree(file);
        highest = db->get_object_by_index(db->get_nobjects() - 1)->get_id();
        db->save(true, true, false);
    }
    ZBDatabase again;
    ASSERT_EQ(again.load(file, false), ZBErrC_ok);
    ZBDBObject* added = new ZBDBObject();
    ASSERT_EQ(again.add_object(added, &again, "OB", "", -1, ""), ZBErrC_ok);
    EXPECT_GT(added->get_id(), highest);
    for (int i = 0; i < again.get_nobjects() - 1; ++i)
        EXPECT_NE(again.get_object_by_index(i)->get_id(), added->get_id());
}

TEST_F(DatabaseFile, DamagedFilesAreRefusedAndLeftUntouched)
{
    struct Case {
        const char* name;
        std::string text;
        const char* message;
    };
    const std::string head = "ZBDatabase:7685\n!Version!0\n";
    const std::string dbObject = "@O:\n{ZBDatabase\n!UnID!5\n!AppType!TervalonDiary\n!AppType!TervalonDiary\n!I!0\n}\n";
    const std::vector<Case> cases = {
        {"not a database", "hello\nworld\n", "The file you are opening is not a database file."},
        {"empty", "", "The file you are opening is not a database file."},
        {"no database record", head + "@O:\n{ZBDBObject\n!I!3\n}\n", "Could not locate database information in DB file."},
        {"cut inside an object", head + dbObject + "@O:\n{ZBDBObject\n!I!3\n", "Could not find the end of the class marker."},
        {"newer file version", "ZBDatabase:7685\n!Version!3\n" + dbObject,
         "Does not handle database version 3 (max version handled is 0)"},
        {"unknown class", head + dbObject + "@O:\n{FromTheFuture\n!I!3\n}\n", "Could not identify object FromTheFuture"},
        {"newer application data", head + "@O:\n{ZBDatabase\n!AFV!9\n!I!0\n}\n",
         "This file was written by a newer version of this program - Cannot load."},
    };
    for (const Case& c : cases) {
        const std::string file = path(std::string("bad-") + c.name + ".zbd");
        Tervalon::Test::write_file(file, c.text);
        ZBDatabase db;
        int result = db.load(file, false);
        EXPECT_TRUE(iszberr(result)) << c.name;
        EXPECT_EQ(error_text(), c.message) << c.name;
        EXPECT_FALSE(db.is_loaded()) << c.name;
        EXPECT_EQ(Tervalon::Test::read_file(file), c.text) << c.name;
        get_zberror().clear_all();
    }
}

TEST_F(DatabaseFile, MissingFileWithoutCreateIsAWarning)
{
    ZBDatabase folder;
    EXPECT_TRUE(iszbwarn(folder.load(m_dir, false)));
    EXPECT_EQ(get_zberror().top()->get_message(), m_dir + " is a folder, not a data file.");
    get_zberror().clear_all();
    ZBDatabase db;
    int result = db.load(path("absent.zbd"), false);
    EXPECT_TRUE(iszbwarn(result));
    EXPECT_FALSE(iszberr(result));
    EXPECT_FALSE(Tervalon::Test::file_exists(path("absent.zbd")));
}

TEST_F(DatabaseFile, UnknownFieldsSurviveAReadAndAWrite)
{
    const std::string file = path("future.zbd");
    Tervalon::Test::write_file(file, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!UnID!4\n!AppType!T\n!AppType!T\n!Shiny!new\n!I!0\n}\n"
                           "@O:\n{ZBDBObject\n!NewField!kept\n!I!2\n!P!0\n!C!OB\n}\n");
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    }
    const std::string text = Tervalon::Test::read_file(file);
    EXPECT_NE(text.find("!Shiny!new\n}"), std::string::npos) << text;
    EXPECT_NE(text.find("!NewField!kept\n}"), std::string::npos) << text;
}

TEST_F(DatabaseFile, OrphansBecomeDeletedAndSecondCopyUpdatesTheFirst)
{
    const std::string file = path("odd.zbd");
    Tervalon::Test::write_file(file, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!UnID!2\n!I!0\n}\n"
                           "@O:\n{ZBDBObject\n!I!1\n!P!0\n!C!OB\n!M!first\n}\n"
                           "@O:\n{ZBDBObject\n!I!7\n!P!99\n!C!OB\n}\n"
                           "@O:\n{ZBDBObject\n!I!1\n!P!0\n!C!OB\n!M!second\n}\n");
    ZBDatabase db;
    ASSERT_EQ(db.read(file), ZBErrC_ok);
    EXPECT_EQ(db.get_nobjects(), 2);
    EXPECT_EQ(db.get_object_by_id(1)->get_member_tag(), "second");
    EXPECT_TRUE(db.get_object_by_id(7)->is_deleted());
    EXPECT_EQ(db.next_id(), 8);
}

TEST_F(DatabaseFile, TombstonesAreKeptForAWeek)
{
    const std::string file = path("tomb.zbd");
    std::unique_ptr<ZBDatabase> db = make_tree(file);
    const int leaf = db->get_object_by_index(3)->get_id();
    const int sibling = db->get_object_by_index(2)->get_id();
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT));
    ASSERT_EQ(db->delete_object(leaf, "Delete"), ZBErrC_ok);
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 4, 8, 0, 0, 0, ZBDate::C_GMT));
    ASSERT_EQ(db->delete_object(sibling, "Delete"), ZBErrC_ok);
    // Eight days after the first deletion, six after the second.
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 10, 8, 0, 0, 0, ZBDate::C_GMT));
    ASSERT_EQ(db->save(true, true, false), ZBErrC_ok);
    ZBDatabase again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    EXPECT_EQ(again.get_object_by_id(leaf), nullptr);
    ASSERT_NE(again.get_object_by_id(sibling), nullptr);
    EXPECT_TRUE(again.get_object_by_id(sibling)->is_deleted());
}

TEST_F(DatabaseFile, DeletingTakesTheSubtreeAndExtractKeepsACopy)
{
    std::unique_ptr<ZBDatabase> db = make_tree(path("extract.zbd"));
    ZBDBObject* root = db->get_object_by_index(0);
    ZBDBObject* child = db->get_object_by_index(1);
    ZBDBObject* copy = nullptr;
    ASSERT_EQ(db->extract_object(child->get_id(), copy, false), ZBErrC_ok);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->get_nmanaged_children(), 1);
    EXPECT_TRUE(child->is_deleted());
    EXPECT_TRUE(db->get_object_by_index(3)->is_deleted());
    EXPECT_EQ(root->get_container("CH")->get_nobjects(), 1);
    // Adding the copy back brings its child with it, under new ids.
    ASSERT_EQ(db->add_object(copy, root, "CH", "child", -1, "Paste"), ZBErrC_ok);
    EXPECT_EQ(root->get_container("CH")->get_nobjects(), 2);
    EXPECT_EQ(copy->get_container("CH")->get_nobjects(), 1);
    EXPECT_TRUE(iszberr(db->delete_object(12345, "Delete")));
    EXPECT_EQ(error_text(), "Could not delete - Object ID 12345 not found.");
}

TEST_F(DatabaseFile, AddObjectRefusesBadArguments)
{
    ZBDatabase db;
    ASSERT_EQ(db.load("", false), ZBErrC_ok); // memory only
    EXPECT_TRUE(iszberr(db.add_object(nullptr, &db, "OB", "", -1, "")));
    EXPECT_EQ(error_text(), "The supplied object was nullptr.");
    get_zberror().clear_all();
    ZBDBObject* object = new ZBDBObject();
    EXPECT_TRUE(iszberr(db.add_object(object, &db, "", "", -1, "")));
    EXPECT_EQ(error_text(), "The container tag must be set if a parent is assigned.");
    delete object;
    get_zberror().clear_all();
    ZBDBObject orphan;
    ZBDBObject* child = new ZBDBObject();
    EXPECT_TRUE(iszberr(db.add_object(child, &orphan, "OB", "", -1, "")));
    delete child;
}

TEST_F(DatabaseFile, ReadOnlyLoadNeverWrites)
{
    const std::string file = path("ro.zbd");
    { make_tree(file); }
    const std::string before = Tervalon::Test::read_file(file);
    ZBDatabase db;
    ASSERT_EQ(db.read(file), ZBErrC_ok);
    EXPECT_TRUE(iszberr(db.save(true, true, false)));
    get_zberror().clear_all();
    std::ostringstream out;
    EXPECT_TRUE(iszberr(db.write(out, 0, true, "", -1)));
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
}

TEST_F(DatabaseFile, FirstObjectNamesTheDatabaseClass)
{
    const std::string file = path("first.zbd");
    { make_tree(file); }
    std::string name;
    EXPECT_EQ(ZBDatabase::first_object(file, name), ZBErrC_ok);
    EXPECT_EQ(name, "ZBDatabase");
}

TEST_F(DatabaseFile, PartialWriteHasOnlyChangedObjects)
{
    std::unique_ptr<ZBDatabase> db = make_tree(path("partial.zbd"));
    long since = ZBUpdateCounter::get_counter(false);
    ZBDBObject* leaf = db->get_object_by_index(3);
    leaf->mark_changed(ZBLOC, true);
    std::ostringstream out;
    ASSERT_EQ(db->write(out, since, true, "Change", -1), ZBErrC_ok);
    const std::string text = out.str();
    EXPECT_NE(text.find("!Transaction!0:Change\n"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '{'), 1) << text;
    EXPECT_NE(text.find("!I!" + std::to_string(leaf->get_id()) + "\n"), std::string::npos);
}

namespace {
// A database class whose data is at version 3.
class VersionedDatabase : public ZBDatabase {
public:
    int current_appfileversion() const override { return 3; }
};
} // namespace

TEST_F(DatabaseFile, NewFileIsOfTheCurrentVersionAndLoadsUnchanged)
{
    const std::string file = path("versioned.zbd");
    {
        VersionedDatabase db;
        ASSERT_EQ(db.create(file, false), ZBErrC_ok);
    }
    const std::string written = Tervalon::Test::read_file(file);
    EXPECT_NE(written.find("!AFV!3\n"), std::string::npos) << written;
    VersionedDatabase again;
    ASSERT_EQ(again.load(file, false), ZBErrC_ok);
    EXPECT_EQ(Tervalon::Test::read_file(file), written);
    EXPECT_FALSE(Tervalon::Test::file_exists(ZBDatabase::get_cache_name(file, false) + ".Ver0"));
}
