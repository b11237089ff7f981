#include "LibDatabase/tests/undo_support.h"
#include "LibDatabase/db/zbdbindex.h"
#include "LibDatabase/db/zbsavestop.h"

#include <QDir>
#include <QFile>

using namespace Tervalon;
using Tervalon::Test::UndoFixture;
using Tervalon::Test::read_file;
using Tervalon::Test::write_file;

namespace {

class UndoRecovery : public UndoFixture {
protected:
    // A session that ends as a crash would: its database is never unloaded
    // nor saved, so its log stays on disk.
    void crashed_session(const std::string& file, const std::function<void(ZBDatabase&)>& work)
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        work(db);
        ASSERT_TRUE(db.needs_save());
    }
    // Loads as the program does after a crash: the log is kept and replayed.
    static int recover(ZBDatabase& db, const std::string& file)
    {
        return db.load(file, false, false, std::string(), true, true, true, false);
    }
};

} // namespace

TEST_F(UndoRecovery, ALoadAfterACrashReplaysTheLogFromTheLastSave)
{
    const std::string file = path("crash.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    crashed_session(file, [&](ZBDatabase& db) {
        ASSERT_EQ(set_x(db, a, "1", "Saved"), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
        ASSERT_EQ(set_x(db, b, "2", "Logged"), ZBErrC_ok);
    });
    // Without leave to keep the log, the load stops and says why.
    {
        ZBDatabase plain;
        EXPECT_TRUE(iszbwarn(plain.load(file, false)));
        get_zberror().clear_all();
    }
    // Only the transaction after the save is replayed: the one before it is
    // in the file already. A change to the file that replay would undo shows it.
    std::string text = read_file(file);
    ZBDatabase db;
    ASSERT_EQ(recover(db, file), ZBErrC_ok);
    EXPECT_EQ(db.get_recovered(), 1);
    EXPECT_EQ(x_of(db, a), "1");
    EXPECT_EQ(x_of(db, b), "2");
    // The recovered state is in the file, and the history goes on.
    EXPECT_NE(read_file(file), text);
    EXPECT_EQ(db.get_undo_operation(), "Logged");
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, b), "0");
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    db.unload();
}

TEST_F(UndoRecovery, AnUndoAfterTheLastSaveIsRecoveredToo)
{
    const std::string file = path("undone.zbd");
    int a = -1;
    make_file(file, &a);
    crashed_session(file, [&](ZBDatabase& db) {
        ASSERT_EQ(set_x(db, a, "1", "Saved"), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
        ASSERT_EQ(db.undo(), ZBErrC_ok);
    });
    ZBDatabase db;
    ASSERT_EQ(recover(db, file), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    EXPECT_TRUE(db.can_redo());
    db.unload();
}

TEST_F(UndoRecovery, DiscardingTheLogKeepsTheMainFile)
{
    const std::string file = path("discard.zbd");
    int a = -1;
    make_file(file, &a);
    crashed_session(file, [&](ZBDatabase& db) { ASSERT_EQ(set_x(db, a, "1", "Lost"), ZBErrC_ok); });
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false, std::string(), false, true, true), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    EXPECT_FALSE(db.can_undo());
    db.unload();
}

TEST_F(UndoRecovery, ABlockCutShortByACrashIsDroppedAndTheRestReplayed)
{
    const std::string file = path("torn.zbd");
    int a = -1, b = -1;
    make_file(file, &a, &b);
    std::string log;
    crashed_session(file, [&](ZBDatabase& db) {
        ASSERT_EQ(set_x(db, a, "1", "Whole"), ZBErrC_ok);
        ASSERT_EQ(set_x(db, b, "2", "Torn"), ZBErrC_ok);
        log = db.get_partial_file();
    });
    std::string text = read_file(log);
    const size_t cut = text.rfind("!X=2");
    ASSERT_NE(cut, std::string::npos) << text;
    write_file(log, text.substr(0, cut + 2));
    ZBDatabase db;
    ASSERT_EQ(recover(db, file), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "1");
    EXPECT_EQ(x_of(db, b), "0");
    // The file is cut back, so that what the session appends next reads.
    ASSERT_EQ(set_x(db, b, "3", "After"), ZBErrC_ok);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, b), "0");
    EXPECT_EQ(x_of(db, a), "1");
    db.unload();
}

TEST_F(UndoRecovery, DamagedLogsAreReportedAndTheMainFileLoads)
{
    struct Row { const char* name; std::function<void(const std::string& log, const std::string& index)> damage; };
    const Row rows[] = {
        {"log damaged in the middle",
         [](const std::string& log, const std::string&) {
             std::string text = read_file(log);
             const size_t at = text.find("{ZBDBObject");
             text.replace(at, 11, "{NoSuchClass");
             write_file(log, text);
         }},
        {"index damaged in the middle",
         [](const std::string&, const std::string& index) {
             std::string text = read_file(index);
             text.replace(text.find("{ZBDBTransaction"), 16, "{Nonsense");
             write_file(index, text);
         }},
    };
    for (const Row& row : rows) {
        const std::string file = path(std::string("damaged") + std::to_string(&row - rows) + ".zbd");
        int a = -1;
        make_file(file, &a);
        std::string log, index;
        crashed_session(file, [&](ZBDatabase& db) {
            ASSERT_EQ(set_x(db, a, "1", "One"), ZBErrC_ok);
            ASSERT_EQ(set_x(db, a, "2", "Two"), ZBErrC_ok);
            log = db.get_partial_file();
            index = db.get_index_file();
        });
        const std::string before = read_file(file);
        row.damage(log, index);
        ZBDatabase db;
        ASSERT_EQ(recover(db, file), ZBErrC_ok) << row.name;
        EXPECT_EQ(db.get_recovered(), -1) << row.name;
        EXPECT_FALSE(db.get_recovery_message().empty()) << row.name;
        EXPECT_EQ(x_of(db, a), "0") << row.name;
        EXPECT_EQ(read_file(file), before) << row.name;
        db.unload();
    }
}

TEST_F(UndoRecovery, ALogWithoutTheDatabaseRecordIsReplayed)
{
    const std::string file = path("nodb.zbd");
    int a = -1;
    make_file(file, &a);
    std::string log;
    crashed_session(file, [&](ZBDatabase& db) {
        ASSERT_EQ(set_x(db, a, "4", "Only an object"), ZBErrC_ok);
        log = db.get_partial_file();
    });
    const std::string text = read_file(log);
    ASSERT_EQ(text.find("{ZBDatabase"), std::string::npos) << text;
    ZBDatabase db;
    ASSERT_EQ(recover(db, file), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "4");
    db.unload();
}

TEST_F(UndoRecovery, FilesOfOneNameInTwoFoldersKeepSeparateLogs)
{
    QDir().mkpath(QString::fromStdString(path("one")));
    QDir().mkpath(QString::fromStdString(path("two")));
    const std::string first = path("one/same.zbd");
    const std::string second = path("two/same.zbd");
    int a1 = -1, a2 = -1;
    make_file(first, &a1);
    make_file(second, &a2);
    EXPECT_NE(ZBDatabase::partial_name(first), ZBDatabase::partial_name(second));
    EXPECT_NE(ZBDatabase::get_cache_name(first, true), ZBDatabase::get_cache_name(second, true));
    EXPECT_NE(ZBDatabase::get_scratch_name(first), ZBDatabase::get_scratch_name(second));
    EXPECT_EQ(ZBDatabase::get_cache_name(first, false), first);

    ZBDatabase one, two;
    ASSERT_EQ(one.load(first, false), ZBErrC_ok);
    ASSERT_EQ(two.load(second, false), ZBErrC_ok);
    ASSERT_EQ(set_x(one, a1, "1", "In one"), ZBErrC_ok);
    ASSERT_EQ(set_x(two, a2, "2", "In two"), ZBErrC_ok);
    ASSERT_EQ(set_x(two, a2, "3", "In two again"), ZBErrC_ok);
    ASSERT_EQ(one.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(one, a1), "0");
    EXPECT_EQ(x_of(two, a2), "3");
    ASSERT_EQ(two.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(two, a2), "2");
    one.unload();
    two.unload();
}

TEST_F(UndoRecovery, TheCacheFolderIsNamedFromTheInitialsOfTheFolders)
{
    const std::string name = ZBDatabase::get_cache_name("/alpha/beta/x.zbd", true);
    EXPECT_NE(name.find("/ab."), std::string::npos) << name;
    EXPECT_EQ(name.substr(name.size() - 6), "/x.zbd");
    // Same initials, different folders: still apart.
    EXPECT_NE(ZBDatabase::get_cache_name("/alpha/beta/x.zbd", true), ZBDatabase::get_cache_name("/ax/bx/x.zbd", true));
}

namespace {
// Every save of the scope stops after one step, as a crash there would leave it.
struct SaveStop {
    explicit SaveStop(int step) { zb_set_save_stop(step); }
    ~SaveStop() { zb_set_save_stop(0); }
};
} // namespace

TEST_F(UndoRecovery, ACrashAtAnyStepOfASaveLosesNoOperationAndTheFileAlwaysLoads)
{
    struct Row { int step; bool newLeft, oldLeft, fileIsNew; };
    const Row rows[] = {
        {5, true, false, false},  // the new file written, nothing renamed
        {6, true, true, false},   // the old file has its second name
        {7, true, true, false},   // the base made
        {9, false, true, true},   // the new file in place
        {10, false, false, true}, // backups rotated: the old file went to .bk0
        {11, false, false, true}, // all done but the index's record of the save
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.step);
        const std::string file = path("step" + std::to_string(row.step) + ".zbd");
        int a = -1, b = -1;
        make_file(file, &a, &b);
        crashed_session(file, [&](ZBDatabase& db) {
            ASSERT_EQ(set_x(db, a, "1", "Before the save"), ZBErrC_ok);
            SaveStop stop(row.step);
            ASSERT_EQ(db.save(true, true, false), ZBErrC_okShutdown);
            ASSERT_EQ(set_x(db, b, "2", "After the save"), ZBErrC_ok);
        });
        EXPECT_EQ(Tervalon::Test::file_exists(file + ".new"), row.newLeft);
        EXPECT_EQ(Tervalon::Test::file_exists(file + ".old"), row.oldLeft);
        EXPECT_EQ(read_file(file).find("!X=1") != std::string::npos, row.fileIsNew);
        if (row.newLeft || row.oldLeft) {
            ZBDatabase plain;
            EXPECT_TRUE(iszbwarn(plain.load(file, false)));
            get_zberror().clear_all();
        }
        ZBDatabase db;
        ASSERT_EQ(recover(db, file), ZBErrC_ok);
        EXPECT_EQ(x_of(db, a), "1");
        EXPECT_EQ(x_of(db, b), "2");
        EXPECT_FALSE(Tervalon::Test::file_exists(file + ".new"));
        EXPECT_FALSE(Tervalon::Test::file_exists(file + ".old"));
        ASSERT_EQ(db.undo(), ZBErrC_ok);
        ASSERT_EQ(db.undo(), ZBErrC_ok);
        EXPECT_EQ(x_of(db, a), "0");
        db.unload();
    }
}
