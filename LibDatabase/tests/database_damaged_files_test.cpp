#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainerbase.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <QDir>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace Tervalon;

namespace {

const ZBDate kNow(2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT);

class DatabaseDamage : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_dir = Tervalon::Test::make_temp_dir("damage");
        ZBDateUtils::set_fixed_now(kNow);
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    std::string path(const std::string& name) const { return m_dir + "/" + name; }

    std::string m_dir;
};

std::string error_text()
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_details(ZBErrAsp_System) : std::string();
}

// The text of a file's record of one object, from its "@O:" line to its end.
std::string cut_record(std::string& text, int id)
{
    const size_t at = text.find("\n!I!" + std::to_string(id) + "\n");
    const size_t start = text.rfind("@O:\n", at);
    const size_t end = text.find("\n}\n", at) + 3;
    std::string record = text.substr(start, end - start);
    text.erase(start, end - start);
    return record;
}

// A database class whose data is at version 3; older files are upgraded.
class Versioned : public ZBDatabase {
public:
    int current_appfileversion() const override { return 3; }
};

// An object that may not hold children, as a resource in a diary.
class Childless : public ZBDBObject {
public:
    bool allow_children() const override { return false; }
};

} // namespace

TEST_F(DatabaseDamage, OrphanedSubtreeStaysAWeekAsTombstonesThoughItsTimesAreOld)
{
    // Made in the autumn: root R with P under it, and C moved under P, so
    // that C comes before its parent in the file.
    const std::string file = path("orphans.zbd");
    int r = -1, p = -1, c = -1, loopA = -1, loopB = -1;
    ZBDateUtils::set_fixed_now(ZBDate(2025, 9, 1, 8, 0, 0, 0, ZBDate::C_GMT));
    {
        ZBDatabase db;
        ASSERT_EQ(db.create(file, false), ZBErrC_ok);
        ZBDBObject* child = new ZBDBObject();
        ASSERT_EQ(db.add_object(child, &db, "OB", "", -1, ""), ZBErrC_ok);
        ZBDBObject* root = new ZBDBObject();
        ASSERT_EQ(db.add_object(root, &db, "OB", "", -1, ""), ZBErrC_ok);
        ZBDBObject* middle = new ZBDBObject();
        ASSERT_EQ(db.add_object(middle, root, "OB", "", -1, ""), ZBErrC_ok);
        ASSERT_EQ(db.reparent(child, middle, "OB"), ZBErrC_ok);
        ZBDBObject* a = new ZBDBObject();
        ASSERT_EQ(db.add_object(a, &db, "OB", "", -1, ""), ZBErrC_ok);
        ZBDBObject* b = new ZBDBObject();
        ASSERT_EQ(db.add_object(b, a, "OB", "", -1, ""), ZBErrC_ok);
        r = root->get_id(), p = middle->get_id(), c = child->get_id(), loopA = a->get_id(), loopB = b->get_id();
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    }
    // The root is lost from the file, and A and B are made each other's parent.
    std::string text = Tervalon::Test::read_file(file);
    cut_record(text, r);
    std::string damagedA = cut_record(text, loopA);
    damagedA.replace(damagedA.find("!P!"), damagedA.find('\n', damagedA.find("!P!")) - damagedA.find("!P!"),
                     "!P!" + std::to_string(loopB));
    text += damagedA;
    Tervalon::Test::write_file(file, text);

    // Months later the file is opened and saved.
    ZBDateUtils::set_fixed_now(kNow);
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok) << error_text();
        for (int id : {p, c, loopA, loopB}) {
            ASSERT_NE(db.get_object_by_id(id), nullptr) << id;
            EXPECT_TRUE(db.get_object_by_id(id)->is_deleted()) << id;
            EXPECT_EQ(db.get_object_by_id(id)->get_parent(), nullptr) << id;
        }
        const ZBDBContainerBase* top = db.get_container("OB");
        EXPECT_TRUE(!top || top->get_nobjects() == 0);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    }
    ZBDatabase again;
    ASSERT_EQ(again.read(file), ZBErrC_ok);
    for (int id : {p, c, loopA, loopB}) {
        ASSERT_NE(again.get_object_by_id(id), nullptr) << id;
        EXPECT_TRUE(again.get_object_by_id(id)->is_deleted()) << id;
    }
}

TEST_F(DatabaseDamage, DamagedIdIsRefusedNamingItsLine)
{
    const std::string head = "ZBDatabase:7685\n!Version!0\n";
    const std::string dbObject = "@O:\n{ZBDatabase\n!UnID!5\n!AppType!T\n!AppType!T\n!I!0\n}\n"; // lines 3 to 9
    struct Case {
        const char* name;
        std::string text;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"letters", head + dbObject + "@O:\n{ZBDBObject\n!P!0\n!I!xyz\n!C!OB\n}\n",
         "The object id \"xyz\" on line 13 is damaged."},
        {"negative", head + dbObject + "@O:\n{ZBDBObject\n!I!-4\n}\n", "The object id \"-4\" on line 12 is damaged."},
        {"trailing junk", head + dbObject + "@O:\n{ZBDBObject\n@SC\n{ZBDBScript\n}\n!I!12ab\n}\n",
         "The object id \"12ab\" on line 15 is damaged."},
        {"empty", head + dbObject + "@O:\n{ZBDBObject\n!I!\n}\n", "The object id \"\" on line 12 is damaged."},
        {"database's own", head + "@O:\n{ZBDatabase\n!I!zero\n}\n", "The object id \"zero\" on line 5 is damaged."},
    };
    for (const Case& c : cases) {
        const std::string file = path(std::string("id-") + c.name + ".zbd");
        Tervalon::Test::write_file(file, c.text);
        ZBDatabase db;
        EXPECT_TRUE(iszberr(db.load(file, false))) << c.name;
        EXPECT_EQ(error_text(), c.message) << c.name;
        EXPECT_FALSE(db.is_loaded()) << c.name;
        EXPECT_EQ(Tervalon::Test::read_file(file), c.text) << c.name;
        get_zberror().clear_all();
    }
}

TEST_F(DatabaseDamage, DeeplyNestedFileIsRefusedNotACrash)
{
    std::string text = "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!I!0\n}\n@O:\n{ZBDBObject\n!I!1\n";
    const int depth = 100000;
    for (int i = 0; i < depth; ++i)
        text += "@MC\n{ZBDBObject\n";
    for (int i = 0; i <= depth; ++i)
        text += "}\n";
    const std::string file = path("deep.zbd");
    Tervalon::Test::write_file(file, text);
    ZBDatabase db;
    EXPECT_TRUE(iszberr(db.load(file, false)));
    EXPECT_EQ(error_text(), "Objects are nested more than " + std::to_string(ZBSerialisationEntry::C_MaxNesting) + " deep.");
    EXPECT_FALSE(db.is_loaded());
}

TEST_F(DatabaseDamage, TopLevelLinesThatAreNotObjectsAreWrittenBack)
{
    const std::string file = path("top.zbd");
    const std::string extra = "!Shiny!top \\\\ field\nnote to self\n\\{braced\n@Index\n{ZBDBObject\n!I!50\n}\n";
    Tervalon::Test::write_file(file, "ZBDatabase:7685\n!Version!0\n" + extra
                                         + "@O:\n{ZBDatabase\n!UnID!3\n!AppType!T\n!AppType!T\n!I!0\n}\n"
                                           "@O:\n{ZBDBObject\n!I!2\n!P!0\n!C!OB\n}\n!Transaction!4:Old\n\n}\n");
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok) << error_text();
        EXPECT_EQ(db.get_nobjects(), 1); // what is inside "@Index" is not an object of the database
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    }
    const std::string saved = Tervalon::Test::read_file(file);
    EXPECT_EQ(saved.compare(0, 27 + extra.size(), "ZBDatabase:7685\n!Version!0\n" + extra), 0) << saved;
    EXPECT_EQ(saved.find("Transaction"), std::string::npos) << saved;
    // A second round changes nothing.
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    }
    EXPECT_EQ(Tervalon::Test::read_file(file), saved);
}

TEST_F(DatabaseDamage, UpgradingOneFileDropsUnknownFieldsOfThatFileOnly)
{
    const std::string old = path("old.zbd");
    const std::string current = path("current.zbd");
    Tervalon::Test::write_file(old, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!UnID!3\n!AFV!1\n!I!0\n}\n"
                                    "@O:\n{ZBDBObject\n!Retired!old field\n!I!2\n!P!0\n!C!OB\n}\n");
    Tervalon::Test::write_file(current, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!UnID!3\n!AFV!3\n!I!0\n}\n"
                                        "@O:\n{ZBDBObject\n!Future!new field\n!I!2\n!P!0\n!C!OB\n}\n");
    Versioned upgraded;
    ASSERT_EQ(upgraded.load(old, false), ZBErrC_ok) << error_text();
    EXPECT_EQ(upgraded.get_app_file_version(), 3);
    EXPECT_EQ(Tervalon::Test::read_file(old).find("Retired"), std::string::npos);
    EXPECT_FALSE(ZBObject::get_purge_unhandled());
    {
        // Another file opened in the same run, and saved.
        Versioned other;
        ASSERT_EQ(other.load(current, false), ZBErrC_ok) << error_text();
        other.get_object_by_id(2)->mark_changed(ZBLOC, true);
        ASSERT_EQ(other.save(true, true, false), ZBErrC_ok);
    }
    EXPECT_NE(Tervalon::Test::read_file(current).find("!Future!new field\n"), std::string::npos);
    // The upgraded file goes on without the old field at its next save.
    upgraded.get_object_by_id(2)->mark_changed(ZBLOC, true);
    ASSERT_EQ(upgraded.save(true, true, false), ZBErrC_ok);
    EXPECT_EQ(Tervalon::Test::read_file(old).find("Retired"), std::string::npos);
}

TEST_F(DatabaseDamage, UpgradeCopiesOfSameNamedFilesInTwoFoldersAreBothKept)
{
    const std::string first = Tervalon::Test::make_temp_dir("home") + "/diary.zbd";
    const std::string second = Tervalon::Test::make_temp_dir("work") + "/diary.zbd";
    const std::string head = "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!UnID!3\n!AFV!1\n!I!0\n}\n";
    const std::string firstText = head + "@O:\n{ZBDBObject\n!Note!home\n!I!2\n}\n";
    const std::string secondText = head + "@O:\n{ZBDBObject\n!Note!work\n!I!2\n}\n";
    Tervalon::Test::write_file(first, firstText);
    Tervalon::Test::write_file(second, secondText);
    for (const std::string& file : {first, second, first}) {
        // The first file twice: a copy already made is not overwritten.
        if (file == first && Tervalon::Test::read_file(file) != firstText)
            Tervalon::Test::write_file(file, firstText);
        Versioned db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok) << error_text();
    }
    const QDir cache(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
    std::vector<std::string> copies;
    for (const QString& name : cache.entryList({"diary.zbd*.Ver1*"}, QDir::Files, QDir::Name))
        copies.push_back(Tervalon::Test::read_file(cache.filePath(name).toStdString()));
    std::sort(copies.begin(), copies.end());
    EXPECT_EQ(copies, (std::vector<std::string>{firstText, firstText, secondText}));
}

TEST_F(DatabaseDamage, RefusedObjectIsStillTheCallersAndNothingOfItStays)
{
    ZBDatabase db;
    ASSERT_EQ(db.load("", false), ZBErrC_ok);
    Childless* holder = new Childless();
    ASSERT_EQ(db.add_object(holder, &db, "OB", "", -1, ""), ZBErrC_ok);
    const int before = db.get_nobjects();
    const int nextId = db.next_id();
    {
        auto person = std::make_unique<ZBDBObject>();
        EXPECT_TRUE(iszberr(db.add_object(person.get(), holder, "PE", "", -1, "Add Person")));
        EXPECT_EQ(error_text(), "The parent container tag PE could not be located.");
        EXPECT_EQ(person->get_id(), -1);
        get_zberror().clear_all();
    } // the caller frees what was refused
    EXPECT_EQ(db.get_nobjects(), before);
    EXPECT_EQ(db.next_id(), nextId);

    // Nor may a childless object come in carrying children.
    auto carrier = std::make_unique<Childless>();
    carrier->add_managed_child(new ZBDBObject());
    EXPECT_TRUE(iszberr(db.add_object(carrier.get(), &db, "OB", "", -1, "")));
    EXPECT_EQ(carrier->get_nmanaged_children(), 1);
    EXPECT_EQ(db.get_nobjects(), before);
    get_zberror().clear_all();
}
