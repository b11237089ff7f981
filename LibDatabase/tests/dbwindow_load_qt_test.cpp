#include "LibDatabase/tests/dbwindow_qt_support.h"
#include "LibDatabase/qt/zbfirstrunqt.h"

#include <QLineEdit>
#include <QListWidget>

#include <QSysInfo>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

using namespace Tervalon;
using namespace Tervalon::Test;

TEST_F(DBWindowQt, AMissingFileOffersFourChoicesAndEachDoesWhatItSays)
{
    const std::string previous = path("previous.zbd");
    make_file(previous);
    struct Row {
        const char* key;
        bool loaded;
        bool madeMissing;
    };
    const Row rows[] = {
        {"Previous", true, false},
        {"Create New", true, true},
        {"Quit", false, false},
    };
    for (const Row& row : rows) {
        const std::string missing = path(std::string("missing ") + row.key + ".zbd");
        ZBDBManagerQt window(new ZBDatabase());
        EXPECT_EQ(window.do_load(missing, previous, ZBDBManagerQt::E_LoadPlain), ZBErrC_okNotFinished);
        ZBMessageBoxQt* box = find_box("Load File");
        ASSERT_NE(box, nullptr) << row.key;
        EXPECT_NE(box_text(box).find("Could not find or access " + missing + ". Do you want to:"), std::string::npos);
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Find It", "Create New", "Previous", "Quit"}));
        press(box, row.key);
        EXPECT_EQ(window.is_loaded(), row.loaded) << row.key;
        EXPECT_EQ(file_exists(missing), row.madeMissing) << row.key;
        if (row.loaded)
            EXPECT_EQ(window.get_database()->get_filename(), row.madeMissing ? missing : previous) << row.key;
        EXPECT_EQ(find_box(""), nullptr) << row.key;
    }
}

TEST_F(DBWindowQt, WithoutAPreviousFileTheLoadChoiceLeavesThatButtonOut)
{
    ZBDBManagerQt window(new ZBDatabase());
    window.do_load(path("nowhere.zbd"), std::string(), ZBDBManagerQt::E_LoadPlain);
    ZBMessageBoxQt* box = find_box("Load File");
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(captions(box), (std::vector<std::string>{"Find It", "Create New", "Quit"}));
    press(box, "Quit");
    EXPECT_FALSE(window.is_loaded());
}

namespace {

// A second program that holds the lock on file until it is killed. It
// writes the lock as the lock class does, with its own process id.
pid_t hold_lock_in_child(const std::string& file)
{
    pid_t child = ::fork();
    if (child == 0) {
        for (;;)
            ::pause();
    }
    write_file(ZBLockFile::lock_name(file),
               std::to_string(child) + "\ntervalon\n" + QSysInfo::machineHostName().toStdString() + "\n");
    return child;
}

void end_child(pid_t child)
{
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
}

} // namespace

TEST_F(DBWindowQt, ALockHeldByAnotherProgramAsksAndTryAgainLoadsOnceItHasGone)
{
    struct Row {
        const char* name;
        bool holderCleansUp;
    };
    // A holder that quits removes its lock; one that crashes leaves it behind.
    for (const Row& row : {Row{"quit", true}, Row{"crashed", false}}) {
        const std::string file = path(std::string("locked ") + row.name + ".zbd");
        make_file(file);
        const pid_t child = hold_lock_in_child(file);
        ZBDBManagerQt window(new ZBDatabase());
        window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain);
        ZBMessageBoxQt* box = find_box("Load File");
        ASSERT_NE(box, nullptr) << row.name;
        EXPECT_EQ(box_text(box), file + " is locked by another user.  Do you want to:");
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Quit", "Open Anyway", "Try Again"}));
        // While the holder runs, trying again asks again and loads nothing.
        press(box, "Try Again");
        EXPECT_FALSE(window.is_loaded()) << row.name;
        box = find_box("Load File");
        ASSERT_NE(box, nullptr) << row.name;
        end_child(child);
        if (row.holderCleansUp)
            QFile::remove(QString::fromStdString(ZBLockFile::lock_name(file)));
        press(box, "Try Again");
        EXPECT_TRUE(window.is_loaded()) << row.name;
        EXPECT_TRUE(window.get_lock().is_locked()) << row.name;
        EXPECT_EQ(find_box(""), nullptr) << row.name;
    }
}

TEST_F(DBWindowQt, QuitAtTheLockedFileLeavesTheOtherProgramsLockAlone)
{
    const std::string file = path("kept.zbd");
    make_file(file);
    const pid_t child = hold_lock_in_child(file);
    const std::string lock = read_file(ZBLockFile::lock_name(file));
    {
        ZBDBManagerQt window(new ZBDatabase());
        window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain);
        press(find_box("Load File"), "Quit");
        EXPECT_FALSE(window.is_loaded());
    }
    EXPECT_EQ(read_file(ZBLockFile::lock_name(file)), lock);
    end_child(child);
}

TEST_F(DBWindowQt, ADamagedLogAsksAndDeleteLoadsTheFileAsLastSaved)
{
    for (const char* answer : {"Quit", "Delete"}) {
        const std::string file = path(std::string("damaged log ") + answer + ".zbd");
        int a = -1;
        int b = -1;
        make_file(file, &a, &b);
        const std::string saved = read_file(file);
        std::string log;
        {
            // A session that crashed after two changes: never unloaded, never saved.
            ZBDatabase db;
            ASSERT_EQ(db.load(file, false), ZBErrC_ok);
            ASSERT_EQ(set_x(db, a, "1", "First"), ZBErrC_ok);
            ASSERT_EQ(set_x(db, b, "2", "Second"), ZBErrC_ok);
            log = db.get_partial_file();
        }
        std::string text = read_file(log);
        const size_t at = text.find("{ZBDBObject");
        ASSERT_NE(at, std::string::npos);
        text.replace(at, 11, "{NoSuchClass");
        write_file(log, text);

        ZBDBManagerQt window(new ZBDatabase());
        window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain);
        ZBMessageBoxQt* box = find_box("Partial Save");
        ASSERT_NE(box, nullptr) << answer;
        EXPECT_EQ(box_text(box), "A partially saved version of " + file + " has been located, but is corrupt.\n"
                                 "The application may not have been shut down cleanly last time is was run.  "
                                 "You can delete the file, or just quit.");
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Delete", "Quit"}));
        // Until the user answers, the log is untouched.
        EXPECT_EQ(read_file(log), text);
        press(box, answer);
        if (std::string(answer) == "Quit") {
            EXPECT_FALSE(window.is_loaded());
            EXPECT_EQ(read_file(log), text);
        } else {
            ASSERT_TRUE(window.is_loaded());
            EXPECT_FALSE(file_exists(log));
            EXPECT_EQ(x_of(*window.get_database(), a), "0");
            EXPECT_EQ(x_of(*window.get_database(), b), "0");
        }
        EXPECT_EQ(read_file(file), saved);
    }
}

TEST_F(DBWindowQt, LeftoversOfAnUnfinishedSaveAskAndDeleteRemovesOnlyThem)
{
    for (const char* extension : {".new", ".old"}) {
        const std::string file = path(std::string("left") + extension + ".zbd");
        int a = -1;
        make_file(file, &a);
        const std::string saved = read_file(file);
        write_file(file + extension, "half");
        ZBDBManagerQt window(new ZBDatabase());
        window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain);
        ZBMessageBoxQt* box = find_box("Temp Files");
        ASSERT_NE(box, nullptr) << extension;
        EXPECT_NE(box_text(box).find("Some temporary files from " + file + " have been located.\n"), std::string::npos);
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Delete", "Quit"}));
        EXPECT_TRUE(file_exists(file + extension));
        press(box, "Delete");
        ASSERT_TRUE(window.is_loaded()) << extension;
        EXPECT_FALSE(file_exists(file + extension));
        EXPECT_EQ(x_of(*window.get_database(), a), "0");
        EXPECT_EQ(read_file(file), saved);
    }
}

TEST_F(DBWindowQt, AFileThatCannotBeReadIsOnlySetAsideAfterTheUserConfirms)
{
    struct Row {
        const char* name;
        std::string text;
    };
    const Row rows[] = {
        {"damaged", "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!I!0\n"},
        {"not a data file", "Dear diary,\nnothing here is ours.\n"},
        {"newer version", "ZBDatabase:7685\n!Version!999\n@O:\n{ZBDatabase\n!I!0\n}\n"},
    };
    for (const Row& row : rows) {
        const std::string file = path(std::string(row.name) + ".zbd");
        write_file(file, row.text);
        ZBDBManagerQt window(new ZBDatabase());
        window.do_load(file, std::string(), ZBDBManagerQt::E_LoadPlain);
        ZBMessageBoxQt* box = find_box("Corrupt File");
        ASSERT_NE(box, nullptr) << row.name;
        EXPECT_NE(box_text(box).find("There was a problem opening " + file + ".  Press OK to view the error details."),
                  std::string::npos);
        EXPECT_EQ(captions(box), (std::vector<std::string>{"Ok", "Delete", "Auto-Saved"}));
        // Delete asks first; Cancel comes back to the choices with nothing touched.
        press(box, "Delete");
        ZBMessageBoxQt* sure = find_box("Corrupt File");
        ASSERT_NE(sure, nullptr);
        EXPECT_EQ(box_text(sure), "Are you sure you want to delete " + file);
        press(sure, "Cancel");
        EXPECT_EQ(read_file(file), row.text) << row.name;
        box = find_box("Corrupt File");
        ASSERT_NE(box, nullptr) << row.name;
        // With no auto-saved copy, that choice says so and again changes nothing.
        press(box, "Auto-Saved");
        press(find_box("Corrupt File"), "Ok");
        EXPECT_EQ(read_file(file), row.text) << row.name;
        box = find_box("Corrupt File");
        ASSERT_NE(box, nullptr) << row.name;
        press(box, "Delete");
        press(find_box("Corrupt File"), "Ok");
        // The damaged file is kept beside, and a new one takes its place.
        EXPECT_EQ(read_file(file + ".bak"), row.text) << row.name;
        EXPECT_TRUE(window.is_loaded()) << row.name;
        EXPECT_EQ(find_box(""), nullptr) << row.name;
    }
}

TEST_F(DBWindowQt, AFailedLoadBringsThePreviousFileBack)
{
    const std::string previous = path("before.zbd");
    make_file(previous);
    const std::string bad = path("bad.zbd");
    write_file(bad, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!I!0\n");
    ZBDBManagerQt window(new ZBDatabase());
    ASSERT_EQ(window.do_load(previous, std::string(), ZBDBManagerQt::E_LoadPlain), ZBErrC_ok);
    window.do_load(bad, previous, ZBDBManagerQt::E_AllowReplace);
    ZBMessageBoxQt* box = find_box("Corrupt File");
    ASSERT_NE(box, nullptr);
    press(box, "Ok");
    press(find_box("Corrupt File"), "Ok");
    ASSERT_TRUE(window.is_loaded());
    EXPECT_EQ(window.get_database()->get_filename(), previous);
}

TEST_F(DBWindowQt, CreatingOverAnExistingFileAsksBeforeAnythingIsLost)
{
    const std::string file = path("exists.zbd");
    make_file(file);
    const std::string saved = read_file(file);
    for (const char* answer : {"No", "Quit", "Yes"}) {
        ZBDBManagerQt window(new ZBDatabase());
        window.db_create(file);
        ZBMessageBoxQt* box = find_box("Overrwrite File");
        ASSERT_NE(box, nullptr) << answer;
        EXPECT_EQ(box_text(box), "The file " + file + " already exists.\nDo you want to overwrite it?\nNOTE: All data in " +
                                     file + " will be lost.");
        press(box, answer);
        if (std::string(answer) == "Yes") {
            EXPECT_TRUE(window.is_loaded());
            EXPECT_NE(read_file(file), saved);
        } else {
            EXPECT_FALSE(window.is_loaded()) << answer;
            EXPECT_EQ(read_file(file), saved) << answer;
        }
    }
}

TEST_F(DBWindowQt, TheFirstRunCopiesAFileInWithoutEverOverwritingOne)
{
    const std::string shared = make_temp_dir("shared");
    make_file(shared + "/Diary.zbd");
    const std::string original = read_file(shared + "/Diary.zbd");
    ZBFirstRunQt* first = new ZBFirstRunQt;
    std::vector<std::string> copies;
    for (int round = 0; round < 2; ++round) {
        first->choose(ZBFirstRunQt::E_Shared);
        first->get_path()->setText(QString::fromStdString(shared));
        first->scan_shared(QString::fromStdString(shared));
        ASSERT_EQ(first->get_shared_files()->count(), 1);
        QString error;
        copies.push_back(first->resolve(error).toStdString());
        EXPECT_TRUE(error.isEmpty()) << error.toStdString();
    }
    // Two takes give two copies side by side; the shared file itself is left alone.
    EXPECT_NE(copies[0], copies[1]);
    EXPECT_EQ(read_file(copies[0]), original);
    EXPECT_EQ(read_file(copies[1]), original);
    EXPECT_EQ(read_file(shared + "/Diary.zbd"), original);
    // A new file may not take the name of one that exists.
    first->choose(ZBFirstRunQt::E_Create);
    first->get_path()->setText(QString::fromStdString(copies[0]));
    QString error;
    EXPECT_TRUE(first->resolve(error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
    // An empty shared folder says so.
    first->choose(ZBFirstRunQt::E_Shared);
    first->scan_shared(QString::fromStdString(make_temp_dir("empty")));
    EXPECT_TRUE(first->resolve(error).isEmpty());
    EXPECT_EQ(error.toStdString(), "No data file was found in that folder.");
    delete first;
}
