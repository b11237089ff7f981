#include "LibDatabase/tests/undo_support.h"
#include "LibDatabase/db/zbdbmanager.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibCore/fileutils/zbsyncfile.h"

#include <QDir>
#include <QFile>

#include <QSysInfo>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tervalon;
using Tervalon::Test::UndoFixture;
using Tervalon::Test::file_exists;
using Tervalon::Test::read_file;
using Tervalon::Test::write_file;

namespace {

class FilesSave : public UndoFixture {
protected:
    void TearDown() override
    {
        zb_set_write_fault(-1);
        UndoFixture::TearDown();
    }
    static std::string backup(const std::string& file, int n)
    {
        return ZBDatabase::get_scratch_name(file) + ".bk" + std::to_string(n);
    }
    void advance(int seconds)
    {
        m_now = m_now + ZBDuration(0, seconds, 0);
        ZBDateUtils::set_fixed_now(m_now);
    }

    ZBDate m_now{2026, 2, 2, 8, 0, 0, 0, ZBDate::C_GMT};
};

// A database class whose check of a saved file always fails: its copy for
// checking is of a data version older than every file.
class Unreadable : public ZBDatabase {
public:
    int current_appfileversion() const override { return -1; }
};
class RefusesItsFiles : public ZBDatabase {
public:
    ZBDatabase* create_verification_db(const std::string&) const override { return new Unreadable(); }
};

} // namespace

TEST_F(FilesSave, BackupsRotateAtMostOnceInTwoHours)
{
    const std::string file = path("rotate.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    struct Step { int advanceSeconds; std::string x; bool bk0, bk1; std::string bk0Holds; };
    // A new session's first save rotates; the next ones within two hours do not.
    const Step steps[] = {
        {60, "1", true, false, "!X=0"},
        {60, "2", true, false, "!X=0"},
        {7201, "3", true, true, "!X=2"},
    };
    for (const Step& step : steps) {
        advance(step.advanceSeconds);
        ASSERT_EQ(set_x(db, a, step.x, "Edit"), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
        EXPECT_EQ(file_exists(backup(file, 0)), step.bk0) << step.x;
        EXPECT_EQ(file_exists(backup(file, 1)), step.bk1) << step.x;
        if (step.bk0)
            EXPECT_NE(read_file(backup(file, 0)).find(step.bk0Holds), std::string::npos) << step.x;
        EXPECT_FALSE(file_exists(file + ".old")) << step.x;
        EXPECT_FALSE(file_exists(file + ".new")) << step.x;
        EXPECT_NE(read_file(file).find("!X=" + step.x), std::string::npos);
    }
    db.unload();
}

TEST_F(FilesSave, WithNoBackupsKeptASnapshotStillLandsInTheNewestBackup)
{
    const std::string file = path("snap.zbd");
    int a = -1;
    make_file(file, &a);
    QFile::remove(QString::fromStdString(backup(file, 0)));
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    db.set_backup_count(0);
    advance(8000);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    EXPECT_FALSE(file_exists(backup(file, 0)));
    ASSERT_EQ(set_x(db, a, "2", "Edit"), ZBErrC_ok);
    ASSERT_EQ(db.save_snapshot(false), ZBErrC_ok);
    ASSERT_TRUE(file_exists(backup(file, 0)));
    EXPECT_NE(read_file(backup(file, 0)).find("!X=1"), std::string::npos);
    EXPECT_EQ(db.get_backup_count(), 0);
    EXPECT_EQ(ZBDatabase::list_snapshots(file).size(), 1u);
    // A snapshot is verified, so it is also the last known good copy.
    EXPECT_TRUE(file_exists(ZBDatabase::get_scratch_name(file) + ".lkg"));
    db.unload();
}

TEST_F(FilesSave, AFailedVerifyLeavesTheOldFileAndTheLastKnownGoodCopy)
{
    const std::string file = path("verify.zbd");
    int a = -1;
    make_file(file, &a);
    const std::string good = ZBDatabase::get_scratch_name(file) + ".lkg";
    write_file(good, "the copy that passed last time");
    const std::string before = read_file(file);
    RefusesItsFiles db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    EXPECT_TRUE(iszbwarn(db.save(true, true, true)));
    get_zberror().clear_all();
    EXPECT_EQ(read_file(file), before);
    EXPECT_EQ(read_file(good), "the copy that passed last time");
    EXPECT_FALSE(file_exists(file + ".old"));
    // The change is still logged, and a save without the check goes through.
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    EXPECT_NE(read_file(file).find("!X=1"), std::string::npos);
    db.unload();
}

TEST_F(FilesSave, FailedSavesNeverLeaveTheFileHalfWritten)
{
    struct Row {
        const char* what;
        std::function<void(const std::string& file)> before;
        const char* message;
    };
    const Row rows[] = {
        {"disk full", [](const std::string&) { zb_set_write_fault(40); }, "No space left on device"},
        {"no room for the new file", [](const std::string& file) { QDir().mkpath(QString::fromStdString(file + ".new")); },
         "Is a directory"},
        {"changed by another program",
         [](const std::string& file) {
             write_file(file, read_file(file) + "\n");
         },
         "changed by another program"},
    };
    int n = 0;
    for (const Row& row : rows) {
        const std::string file = path("fail" + std::to_string(n++) + ".zbd");
        int a = -1;
        make_file(file, &a);
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
        row.before(file);
        const std::string before = read_file(file);
        const int result = db.save(true, true, false);
        zb_set_write_fault(-1);
        EXPECT_TRUE(iszbwarn(result)) << row.what;
        const ZBErrDetails* top = get_zberror().top();
        ASSERT_NE(top, nullptr) << row.what;
        EXPECT_NE(top->get_message().find(row.message), std::string::npos) << row.what << ": " << top->get_message();
        get_zberror().clear_all();
        EXPECT_EQ(read_file(file), before) << row.what;
        EXPECT_FALSE(file_exists(file + ".old")) << row.what;
        EXPECT_TRUE(db.needs_save()) << row.what;
        QDir(QString::fromStdString(file + ".new")).removeRecursively();
        db.accept_file_change();
        db.unload();
    }
}

TEST_F(FilesSave, AReadOnlyFolderRefusesTheSaveWithTheSystemsMessage)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "file permissions do not bind the super-user";
    const std::string dir = path("locked");
    QDir().mkpath(QString::fromStdString(dir));
    const std::string file = dir + "/ro.zbd";
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    const std::string before = read_file(file);
    ::chmod(dir.c_str(), 0555);
    const int result = db.save(true, true, false);
    ::chmod(dir.c_str(), 0755);
    EXPECT_TRUE(iszbwarn(result));
    ASSERT_NE(get_zberror().top(), nullptr);
    EXPECT_NE(get_zberror().top()->get_message().find("Permission denied"), std::string::npos);
    get_zberror().clear_all();
    EXPECT_EQ(read_file(file), before);
    db.unload();
}

TEST_F(FilesSave, LeftoversOfAnInterruptedSaveStopTheLoadUntilCleaned)
{
    const std::string file = path("left.zbd");
    int a = -1;
    make_file(file, &a);
    for (const char* extension : {".new", ".old"}) {
        write_file(file + extension, "half");
        ZBDatabase db;
        EXPECT_TRUE(iszbwarn(db.load(file, false))) << extension;
        get_zberror().clear_all();
        ASSERT_EQ(db.load(file, false, std::string(), false, true, true), ZBErrC_ok) << extension;
        EXPECT_FALSE(file_exists(file + extension));
        EXPECT_EQ(x_of(db, a), "0");
        db.unload();
    }
}

TEST_F(FilesSave, RestoringASnapshotKeepsTheStateBeforeItAndADamagedOneChangesNothing)
{
    const std::string file = path("restore.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    ASSERT_EQ(db.save_snapshot(false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "2", "Edit"), ZBErrC_ok);
    ASSERT_EQ(db.save(true, true, false), ZBErrC_ok);
    const std::string snapshot = backup(file, 0);
    ASSERT_NE(read_file(snapshot).find("!X=0"), std::string::npos);

    std::string keep;
    ASSERT_EQ(db.restore_snapshot(snapshot, keep), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    EXPECT_NE(read_file(file).find("!X=0"), std::string::npos);
    EXPECT_NE(read_file(keep).find("!X=2"), std::string::npos);
    EXPECT_EQ(keep, ZBDatabase::get_scratch_name(file) + ".bkc");

    const std::string damaged = path("damaged.bk9");
    write_file(damaged, "ZBDatabase:7685\n!Version!0\n@O:\n{Nonsense\n}\n");
    const std::string before = read_file(file);
    EXPECT_TRUE(iszbwarn(db.restore_snapshot(damaged, keep)));
    get_zberror().clear_all();
    EXPECT_EQ(read_file(file), before);
    EXPECT_TRUE(db.is_loaded());
    EXPECT_EQ(x_of(db, a), "0");
    EXPECT_TRUE(iszbwarn(db.restore_snapshot(path("missing.bk0"), keep)));
    get_zberror().clear_all();
    db.unload();
}

TEST_F(FilesSave, ALoadFailureRestoresTheLastKnownGoodCopyAndSetsTheBadFileAside)
{
    const std::string file = path("bad.zbd");
    int a = -1;
    make_file(file, &a);
    {
        ZBDatabase db;
        ASSERT_EQ(db.load(file, false), ZBErrC_ok);
        ASSERT_EQ(set_x(db, a, "5", "Edit"), ZBErrC_ok);
        ASSERT_EQ(db.save(true, true, true), ZBErrC_ok);
        db.unload();
    }
    write_file(file, "not a data file");
    ZBDatabase db;
    EXPECT_TRUE(iszbwarn(db.load(file, false)));
    get_zberror().clear_all();
    ASSERT_EQ(db.handle_load_fail(file), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "5");
    EXPECT_EQ(read_file(file + ".bak"), "not a data file");
    db.unload();
    // With neither a verified copy nor a backup there is nothing to go back to.
    const std::string lonely = path("lonely.zbd");
    write_file(lonely, "not a data file");
    ZBDatabase other;
    EXPECT_EQ(other.handle_load_fail(lonely), ZBErrC_okNotHandled);
    EXPECT_EQ(read_file(lonely), "not a data file");
}

TEST_F(FilesSave, SaveAsTakesTheSessionsLogAlong)
{
    const std::string file = path("first.zbd");
    const std::string renamed = path("second.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    ASSERT_EQ(db.save_as(renamed, false), ZBErrC_ok);
    EXPECT_NE(read_file(renamed).find("!X=1"), std::string::npos);
    EXPECT_EQ(db.get_filename(), renamed);
    ASSERT_EQ(db.undo(), ZBErrC_ok);
    EXPECT_EQ(x_of(db, a), "0");
    db.unload();
}

TEST_F(FilesSave, ALiveLockIsNeverTakenOverAndAStaleOneOnlyWhenAsked)
{
    const std::string file = path("locked.zbd");
    ZBLockFile first;
    ASSERT_EQ(first.lock(file, false), ZBErrC_ok);
    ZBLockFile second;
    EXPECT_EQ(second.lock(file, false), ZBErrC_FileOpen);
    // The holder is this very process, alive: even when asked, no take-over.
    EXPECT_TRUE(iszbwarn(second.lock(file, true)));
    ASSERT_NE(get_zberror().top(), nullptr);
    EXPECT_NE(get_zberror().top()->get_message().find("Could not lock"), std::string::npos);
    get_zberror().clear_all();
    first.unlock();
    EXPECT_EQ(second.lock(file, false), ZBErrC_ok);
    second.unlock();

    // A lock left by a process that is gone: a pid no process has.
    const std::string name = ZBLockFile::lock_name(file);
    pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    int status = 0;
    ::waitpid(child, &status, 0);
    write_file(name, std::to_string(child) + "\ntervalon\n" + QSysInfo::machineHostName().toStdString() + "\n");
    ZBLockFile third;
    EXPECT_EQ(third.lock(file, false), ZBErrC_FileOpen);
    EXPECT_EQ(third.lock(file, true), ZBErrC_ok);
    EXPECT_EQ(third.took_over_from(), child);
    third.unlock();
}

TEST_F(FilesSave, AutosaveSavesOnlyWhatChangedAndOnlyWhenOn)
{
    const std::string file = path("auto.zbd");
    int a = -1;
    make_file(file, &a);
    ZBDatabase db;
    ZBDBManager manager(&db);
    EXPECT_EQ(manager.do_autosave(false), ZBErrC_okNotHandled);
    ASSERT_EQ(db.load(file, false), ZBErrC_ok);
    EXPECT_EQ(manager.do_autosave(false), ZBErrC_okNotHandled);
    ASSERT_EQ(set_x(db, a, "1", "Edit"), ZBErrC_ok);
    db.set_autosave(false);
    EXPECT_EQ(manager.do_autosave(false), ZBErrC_okNotHandled);
    EXPECT_EQ(read_file(file).find("!X=1"), std::string::npos);
    db.set_autosave(true);
    EXPECT_EQ(manager.do_autosave(false), ZBErrC_ok);
    EXPECT_NE(read_file(file).find("!X=1"), std::string::npos);
    EXPECT_FALSE(db.needs_save());
    db.unload();
}
