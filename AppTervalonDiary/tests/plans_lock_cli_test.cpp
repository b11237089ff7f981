#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

// A diary on disk: "Write" (id in writeId) with fixed plans on 3 and 4 March,
// "Idle" with none, and "Project" with one child.
struct LockFile {
    LockFile()
    {
        file = Tervalon::Test::make_temp_dir("plans_lock") + "/l.zbd";
        Diary diary;
        EXPECT_EQ(diary.create(file, true), ZBErrC_ok);
        DiaryEntry* write = nullptr;
        DiaryEntry* idle = nullptr;
        DiaryEntry* project = nullptr;
        diary.create_entry(nullptr, 'T', "Write", &write);
        diary.create_entry(nullptr, 'T', "Idle", &idle);
        diary.create_entry(nullptr, 'O', "Project", &project);
        diary.create_entry(project, 'T', "Part", nullptr);
        const int resource = diary.get_default_resource_id();
        write->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 09:00"), at("3-Mar-2026 11:00")), resource);
        write->edit_plan().edit_planned().add(ZBDateSlot(at("4-Mar-2026 09:00"), at("4-Mar-2026 10:00")), resource);
        writeId = std::to_string(write->get_id());
        idleId = std::to_string(idle->get_id());
        projectId = std::to_string(project->get_id());
        diary.complete_operation("Set up");
        EXPECT_EQ(diary.save(true, true, false), ZBErrC_ok);
        diary.unload();
    }
    std::string file;
    std::string writeId;
    std::string idleId;
    std::string projectId;
};

} // namespace

TEST(PlansLockCli, UnlockByDayThenAllAndNothingLeftIsRefused)
{
    LockFile setup;
    CliRun run = tervalon({"unlock", setup.file, setup.writeId, "--from", "4-Mar-2026", "--to", "4-Mar-2026",
                           "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Unlocked " + setup.writeId + " \"Write\" 2026-03-04 09:00 - 2026-03-04 10:00\n"
                       "Unlocked 1 session.\n");

    // A range with clock times that only touches the session takes nothing.
    run = tervalon({"unlock", setup.file, "--from", "3-Mar-2026 11:00", "--to", "3-Mar-2026 12:00"});
    EXPECT_EQ(run.status, 1);

    run = tervalon({"unlock", setup.file, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Unlocked " + setup.writeId + " \"Write\" 2026-03-03 09:00 - 2026-03-03 11:00\n"
                       "Unlocked 1 session.\n");

    const std::string before = Tervalon::Test::read_file(setup.file);
    run = tervalon({"unlock", setup.file});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("The diary has no planned time to unlock."), std::string::npos) << run.err;
    EXPECT_EQ(Tervalon::Test::read_file(setup.file), before);
}

TEST(PlansLockCli, BadRequestsLeaveTheFileAsItWas)
{
    LockFile setup;
    const std::string before = Tervalon::Test::read_file(setup.file);
    struct Row {
        std::vector<std::string> args;
        const char* message;
    } rows[] = {
        {{"lock", setup.file, "9999"}, "9999"},
        {{"unlock", setup.file, setup.writeId, "--from", "5-Mar-2026", "--to", "3-Mar-2026"}, "is not before"},
        {{"lock", setup.file, setup.idleId}, "has no predicted sessions to lock."},
        {{"unlock", setup.file, setup.idleId}, "has no planned time to unlock."},
        {{"unlock", setup.file, setup.writeId, "--from", "10-Mar-2026"}, "in that range."},
        {{"lock", setup.file, setup.projectId}, "Tasks with children cannot have plans set."},
        {{"lock", setup.file, "--from"}, "--from"},
        {{"lock", setup.file, "1", "2"}, "unexpected argument"},
    };
    for (const Row& row : rows) {
        CliRun run = tervalon(row.args);
        EXPECT_NE(run.status, 0) << row.message;
        EXPECT_NE(run.err.find(row.message), std::string::npos) << run.err;
        EXPECT_EQ(Tervalon::Test::read_file(setup.file), before) << row.message;
    }
}

TEST(PlansLockCli, HelpNamesTheForms)
{
    CliRun run = tervalon({"lock", "--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("lock FILE [ID] [--from DATE] [--to DATE]"), std::string::npos) << run.out;
}
