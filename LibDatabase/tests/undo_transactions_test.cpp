#include "LibDatabase/tests/undo_support.h"
#include "LibDatabase/db/zbdbindex.h"

#include <QFile>

using namespace Tervalon;
using Tervalon::Test::UndoFixture;

namespace {

class UndoTransactions : public UndoFixture {};

} // namespace

TEST_F(UndoTransactions, UndoAndRedoStepThroughTheOperationsByName)
{
    const std::string file = path("steps.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "First"), ZBErrC_ok);
    ASSERT_EQ(set_x(db, b, "2", "Second"), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "3", "Third"), ZBErrC_ok);
    EXPECT_EQ(db.get_undo_operation(), "Third");

    struct Step { bool undo; std::string a, b, undoName, redoName; };
    const Step steps[] = {
        {true, "1", "2", "Second", "Third"},
        {true, "1", "0", "First", "Second"},
        {true, "0", "0", "", "First"},
        {false, "1", "0", "First", "Second"},
        {false, "1", "2", "Second", "Third"},
        {false, "3", "2", "Third", ""},
    };
    for (const Step& step : steps) {
        ASSERT_EQ(step.undo ? db.undo() : db.redo(), ZBErrC_ok);
        EXPECT_EQ(x_of(db, a), step.a);
        EXPECT_EQ(x_of(db, b), step.b);
        EXPECT_EQ(db.get_undo_operation(), step.undoName);
        EXPECT_EQ(db.get_redo_operation(), step.redoName);
        EXPECT_EQ(db.can_undo(), !step.undoName.empty());
        EXPECT_EQ(db.can_redo(), !step.redoName.empty());
    }
    // Nothing left to redo: a no-op, and the state stands.
    ASSERT_EQ(db.redo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "3");
    db.unload();
}

TEST_F(UndoTransactions, ANewOperationEndsTheRedoChainAndTheIndexKeepsTheLastRecord)
{
    const std::string file = path("chain.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "One"), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "2", "Two"), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "3", "Three"), ZBErrC_ok);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    ASSERT_TRUE(db.can_redo());
    ASSERT_EQ(set_x(db, b, "9", "Four"), ZBErrC_ok);
    EXPECT_FALSE(db.can_redo());
    EXPECT_EQ(x_of(db, a), "1");
    EXPECT_EQ(x_of(db, b), "9");

    // The file holds several records for the undone ids; reading it back, the last wins.
    ZBDBIndex index;
    index.initialise(db.get_index_file());
    ASSERT_EQ(index.load(), ZBErrC_ok);
    ASSERT_EQ(index.size(), 4);
    const int expected[] = {ZBDBTransaction::E_Live, ZBDBTransaction::E_Abandoned, ZBDBTransaction::E_Abandoned,
                            ZBDBTransaction::E_Live};
    for (int id = 0; id < 4; ++id)
        EXPECT_EQ(index.get_status(id), expected[id]) << id;
    EXPECT_EQ(index.get_transaction(3)->m_operation, "Four");
    // An undo now skips the abandoned ones.
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, b), "0");
    EXPECT_EQ(db.get_undo_operation(), "One");
    db.unload();
}

TEST_F(UndoTransactions, AnOperationThatChangesNothingAddsNoTransaction)
{
    const std::string file = path("nothing.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Real"), ZBErrC_ok);
    const int before = db.get_index().size();
    ASSERT_EQ(db.complete_operation("Empty"), ZBErrC_ok);
    EXPECT_EQ(db.get_index().size(), before);
    // And after an undo, an empty operation leaves the redo chain alone.
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    ASSERT_EQ(db.complete_operation("Empty"), ZBErrC_ok);
    EXPECT_TRUE(db.can_redo());
    db.unload();
}

TEST_F(UndoTransactions, UndoAcrossAFullSaveRestoresTheStateBeforeTheSave)
{
    const std::string file = path("across.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Before"), ZBErrC_ok);
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "2", "After"), ZBErrC_ok);
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    EXPECT_TRUE(db.needs_save());
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    db.unload();
    ZBDatabase again;
    ASSERT_EQ(again.load(file, false), ZBErrC_ok);
    EXPECT_EQ(x_of(again, a), "0");
    again.unload();
}

TEST_F(UndoTransactions, UntouchedObjectsKeepTheirUpdateCountsAfterAnUndo)
{
    const std::string file = path("counts.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Edit a"), ZBErrC_ok);
    ASSERT_EQ(set_x(db, b, "1", "Edit b"), ZBErrC_ok);
    const long countA = db.get_object_by_id(a)->get_last_update();
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(db.get_object_by_id(a)->get_last_update(), countA);
    // The next operation writes only what it changes.
    ASSERT_EQ(set_x(db, b, "5", "Edit b again"), ZBErrC_ok);
    const std::string log = Tervalon::Test::read_file(db.get_partial_file());
    const std::string last = log.substr(log.rfind("!Transaction!"));
    EXPECT_EQ(last.find("!I!" + std::to_string(a) + "\n"), std::string::npos) << last;
    EXPECT_NE(last.find("!I!" + std::to_string(b) + "\n"), std::string::npos) << last;
    db.unload();
}

TEST_F(UndoTransactions, UndoBeforeAnyFullSaveNeverEmptiesTheDatabase)
{
    const std::string file = path("first.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_FALSE(db.get_base_file().empty());
    ZBDBObject* added = new ZBDBObject();
    ASSERT_EQ(db.add_object(added, &db, "OB", "c", -1, "Add"), ZBErrC_ok);
    const int c = added->get_id();
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(db.get_nobjects(), 2);
    EXPECT_EQ(db.get_object_by_id(c), nullptr);
    EXPECT_EQ(x_of(db, a), "0");
    ASSERT_EQ(db.redo(), ZBErrC_ok);
    ASSERT_NE(db.get_object_by_id(c), nullptr);
    EXPECT_EQ(db.get_object_by_id(c)->get_member_tag(), "c");
    db.unload();
}

TEST_F(UndoTransactions, UndoWithTheScratchFilesGoneOrDamagedChangesNothingInMemory)
{
    const std::string file = path("gone.zbd");
    int a = -1;
    make_file(file, &a);
    for (int damage = 0; damage < 2; ++damage) {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
        if (damage == 0)
            QFile::remove(QString::fromStdString(db.get_base_file()));
        else
            Tervalon::Test::write_file(db.get_base_file(), "ZBDatabase:7685\n!Version!0\n@O:\n{NoSuchClass\n");
        const int result = db.undo();
        EXPECT_TRUE(iszbwarn(result)) << damage;
        get_zberror().clear_all();
        EXPECT_EQ(db.get_nobjects(), 2) << damage;
        EXPECT_EQ(x_of(db, a), "1") << damage;
        // The step is still done, so a new operation cannot abandon it.
        EXPECT_EQ(db.get_undo_operation(), "Edit") << damage;
        EXPECT_FALSE(db.can_redo()) << damage;
        db.unload();
    }
}

TEST_F(UndoTransactions, RevertPutsTheBackupBackAndDropsAnObjectMadeForTheEdit)
{
    const std::string file = path("revert.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(db.edit_object(a, false), ZBErrC_ok);
    EXPECT_TRUE(db.object_edited());
    db.get_object_by_id(a)->set_var_value("X", "7");
    ASSERT_EQ(db.revert_object(a), ZBErrC_ok);
    EXPECT_FALSE(db.object_edited());
    EXPECT_EQ(x_of(db, a), "0");

    ZBDBObject* fresh = new ZBDBObject();
    ASSERT_EQ(db.add_object(fresh, &db, "OB", "new", -1, ""), ZBErrC_ok);
    const int id = fresh->get_id();
    ASSERT_EQ(db.edit_object(id, true), ZBErrC_ok);
    ASSERT_EQ(db.revert_object(id), ZBErrC_ok);
    ASSERT_NE(db.get_object_by_id(id), nullptr);
    EXPECT_TRUE(db.get_object_by_id(id)->is_deleted());

    EXPECT_TRUE(iszbwarn(db.edit_object(9999, false)));
    get_zberror().clear_all();
    db.unload();
}

TEST_F(UndoTransactions, TheLogNamesEachOperationInItsTransactionLine)
{
    const std::string file = path("tags.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Rename: the thing"), ZBErrC_ok);
    const std::string log = Tervalon::Test::read_file(db.get_partial_file());
    EXPECT_EQ(log.find("ZBDatabase:7685\n!Version!0\n"), 0u) << log;
    EXPECT_NE(log.find("!Transaction!0:Rename: the thing\n"), std::string::npos) << log;
    EXPECT_EQ(ZBDBTransaction::read_transaction_tag("12:Rename: the thing"), 12);
    EXPECT_EQ(ZBDBTransaction::read_transaction_tag("x:1"), -1);
    const std::string index = Tervalon::Test::read_file(db.get_index_file());
    EXPECT_NE(index.find("@T:\n{ZBDBTransaction\n"), std::string::npos) << index;
    db.unload();
    // A clean end of the session leaves no log behind.
    EXPECT_FALSE(Tervalon::Test::file_exists(ZBDatabase::partial_name(file)));
}
