// The shell: one session on one file, fed lines in-process, checked by its
// acknowledgements and by reading the file back.
#include "AppTervalonDiary/cli/cmdshell.h"
#include "AppTervalonDiary/cli/tervaloncli.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>

#include <sstream>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;
using Tervalon::Test::read_file;

namespace {

struct Shell : public ::testing::Test {
    void SetUp() override
    {
        ZBDate now;
        now.from_string("2-Mar-2026 08:00");
        ZBDateUtils::set_fixed_now(now);
        dir = Tervalon::Test::make_temp_dir("shell");
        file = dir + "/d.zbd";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    // Runs a shell on file with these lines as its input.
    CliRun shell(const std::string& input, std::vector<std::string> extra = {})
    {
        std::istringstream in(input);
        TervalonCli cli;
        CmdShell command(cli, &in);
        std::ostringstream out, err;
        std::vector<std::string> args{file};
        args.insert(args.end(), extra.begin(), extra.end());
        CliContext context{args, out, err};
        const int status = command.run(context);
        get_zberror().clear_all();
        return {status, out.str(), err.str()};
    }
    // The titles of the top-level entries on disk, in order.
    std::string titles()
    {
        Diary diary;
        EXPECT_FALSE(iszbwarn(diary.read(file)));
        std::string out;
        for (int i = 0; i < diary.get_nentries(); ++i)
            out += diary.get_entry_index(i)->get_summary() + ";";
        diary.unload();
        return out;
    }

    std::string dir;
    std::string file;
};

} // namespace

TEST_F(Shell, LinesAreAcknowledgedAndTheFileIsSavedAtTheEndOfInput)
{
    CliRun run = shell("add --type T --title One\nadd --type T --title \"Two words\"\n\n# a comment\ntree\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("ok 1\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("ok 2\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("ok 5\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Two words"), std::string::npos) << run.out;
    EXPECT_EQ(titles(), "One;Two words;");
    // A clean end leaves no log behind.
    EXPECT_FALSE(ZBDatabase::has_partial(file));
}

TEST_F(Shell, UndoRedoAndHistoryNameTheSteps)
{
    CliRun run = shell("add --type T --title A\nadd --type T --title B\nundo\nhistory\nredo\nundo\n"
                       "add --type T --title C\nredo\nhistory\n");
    EXPECT_NE(run.out.find("Undone: Add Entry"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Redone: Add Entry"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\tundone\tAdd Entry"), std::string::npos) << run.out;
    // The new step ended the redo chain: the redo on line 8 fails, and says so.
    EXPECT_NE(run.out.find("\tabandoned\tAdd Entry"), std::string::npos) << run.out;
    EXPECT_NE(run.err.find("line 8: nothing to redo"), std::string::npos) << run.err;
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(titles(), "A;C;");
}

TEST_F(Shell, AFailingLineIsReportedByNumberChangesNothingAndTheShellGoesOn)
{
    CliRun run = shell("add --type T --title Kept\nset 99999 title X\nfrobnicate\nadd --type T --title \"open\n"
                       "add --type T --title Later\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("line 2: There is no entry with the id 99999."), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("line 3: unknown command 'frobnicate'"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("line 4: no closing \""), std::string::npos) << run.err;
    EXPECT_EQ(run.out.find("ok 2\n"), std::string::npos);
    EXPECT_NE(run.out.find("ok 5\n"), std::string::npos);
    EXPECT_EQ(titles(), "Kept;Later;");
}

TEST_F(Shell, UndoReachesBackAcrossASave)
{
    CliRun run = shell("add --type T --title First\nsave\nadd --type T --title Second\nsave\nundo\nundo\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(titles(), "");
}

TEST_F(Shell, ACrashedSessionIsRecoveredOnTheNextLoadOrDiscardedWhenAsked)
{
    // A session that dies before its save leaves its log; the shell's own
    // process is this one, so the crash is a database never unloaded.
    auto crash = [&](const std::string& title) {
        Diary diary;
        ASSERT_EQ(diary.load(file, false), ZBErrC_ok);
        DiaryEntry* entry = nullptr;
        ASSERT_EQ(diary.create_entry(nullptr, 'T', title, &entry), ZBErrC_ok);
        ASSERT_EQ(diary.complete_operation("Add Entry"), ZBErrC_ok);
    };
    crash("Survivor");
    CliRun run = tervalon({"tree", file});
    EXPECT_EQ(run.out.find("Survivor"), std::string::npos) << "a reader sees the last save only";
    run = shell("tree\n");
    EXPECT_NE(run.err.find("recovered 1 unsaved operation"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("Survivor"), std::string::npos) << run.out;
    EXPECT_EQ(titles(), "Survivor;");

    crash("Thrown away");
    run = tervalon({"rewrite", file, "--discard-partial"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("discarded the unsaved changes"), std::string::npos) << run.err;
    EXPECT_EQ(titles().find("Thrown away"), std::string::npos);
}

TEST_F(Shell, AFileOpenInALiveSessionIsRefused)
{
    ZBLockFile holder;
    ASSERT_EQ(holder.lock(file, false), ZBErrC_ok);
    CliRun run = shell("add --type T --title Never\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("is locked by another user"), std::string::npos) << run.err;
    run = tervalon({"add", file, "--type", "T", "--title", "Never"});
    EXPECT_EQ(run.status, 1);
    holder.unlock();
    EXPECT_EQ(titles(), "");
}

TEST_F(Shell, EachFileCommandIsOneNamedUndoStep)
{
    CliRun add = tervalon({"add", file, "--type", "T", "--title", "Task"});
    ASSERT_EQ(add.status, 0) << add.err;
    const std::string id = add.out.substr(0, add.out.find('\n'));
    CliRun run = shell("rm " + id + "\nhistory\nundo\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("\tdone\tDelete Entry"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Undone: Delete Entry"), std::string::npos) << run.out;
    EXPECT_EQ(titles(), "Task;");
}

TEST_F(Shell, SnapshotsAreListedAndRestored)
{
    ASSERT_EQ(shell("add --type T --title Before\nsave\nsnapshot\nadd --type T --title After\n").status, 0);
    CliRun list = tervalon({"snapshots", file});
    EXPECT_EQ(list.status, 0);
    EXPECT_EQ(list.out.compare(0, 4, "bk0\t"), 0) << list.out;
    EXPECT_NE(list.out.find("last-good"), std::string::npos) << list.out;
    CliRun restore = tervalon({"restore", file, "bk0"});
    EXPECT_EQ(restore.status, 0) << restore.err;
    EXPECT_EQ(titles(), "Before;");
    restore = tervalon({"restore", file, "before-restore"});
    EXPECT_EQ(restore.status, 0) << restore.err;
    EXPECT_EQ(titles(), "Before;After;");
    EXPECT_EQ(tervalon({"restore", file, "bk7"}).status, 1);

    // A file that no longer reads is set aside and the snapshot takes its place.
    Tervalon::Test::write_file(file, "garbage");
    restore = tervalon({"restore", file, "last-good"});
    EXPECT_EQ(restore.status, 0) << restore.err;
    EXPECT_EQ(read_file(file + ".bak"), "garbage");
    EXPECT_NE(titles().find("Before;"), std::string::npos);
}

TEST(ShellWords, QuotesAndBackslashesGroupWords)
{
    struct Row { const char* line; std::vector<std::string> words; const char* error; };
    const Row rows[] = {
        {"set 3 title \"two words\"", {"set", "3", "title", "two words"}, ""},
        {"set 3 title 'it''s'", {"set", "3", "title", "its"}, ""},
        {"set 3 title it\\'s", {"set", "3", "title", "it's"}, ""},
        {"  add\t--title  x ", {"add", "--title", "x"}, ""},
        {"set 3 title \"\"", {"set", "3", "title", ""}, ""},
        {"set \"open", {"set", "open"}, "no closing \""},
    };
    for (const Row& row : rows) {
        std::string error;
        EXPECT_EQ(CmdShell::split_line(row.line, error), row.words) << row.line;
        EXPECT_EQ(error, row.error) << row.line;
    }
}

TEST_F(Shell, WhenTheLastSaveFailsTheChangesAreRecoveredNextTime)
{
    // The data file's folder goes read-only for the save: a folder where the
    // new file cannot be made stands in for it, as it also does for root.
    const std::string blocker = file + ".new";
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(blocker)));
    CliRun run = shell("add --type T --title Precious\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("the changes are kept"), std::string::npos) << run.err;
    EXPECT_EQ(titles(), "");
    ASSERT_TRUE(QDir(QString::fromStdString(blocker)).removeRecursively());
    run = shell("tree\n");
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("recovered"), std::string::npos) << run.err;
    EXPECT_EQ(titles(), "Precious;");
}
