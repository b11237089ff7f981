// "tervalon action": runs an action by name on a file; a refusal or bad
// input prints the reason, exits 1 and leaves the file as it was.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryactionmgr.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {

std::string read_all(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

struct ActionCli : public ::testing::Test {
    void SetUp() override
    {
        ZBDate now;
        now.from_string("2-Mar-2026 08:00");
        ZBDateUtils::set_fixed_now(now);
        dir = Tervalon::Test::make_temp_dir("action_cli");
        file = dir + "/d.zbd";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
        task = add("T", "Write");
        person = add("P", "Ann");
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }
    std::string add(const std::string& type, const std::string& title)
    {
        CliRun run = tervalon({"add", file, "--type", type, "--title", title});
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out.substr(0, run.out.find('\n'));
    }
    std::string dir;
    std::string file;
    std::string task;
    std::string person;
};

} // namespace

TEST_F(ActionCli, RunsAnActionAsOneNamedStep)
{
    CliRun run = tervalon({"action", file, "Complete", task});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(tervalon({"tree", file}).out.find(task + " T Write  100%"), std::string::npos);
    run = tervalon({"action", file, "AddTask", "--param", "title=Buy milk"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(tervalon({"tree", file}).out.find("Buy milk"), std::string::npos);
}

TEST_F(ActionCli, RefusalsAndBadInputLeaveTheFileAlone)
{
    ASSERT_EQ(tervalon({"set", file, task, "commands", "https://example.com/a"}).status, 0);
    const std::string before = read_all(file);
    struct Row {
        std::vector<std::string> args;
        const char* message;
    } rows[] = {
        {{"Complete"}, "No item has been selected."},
        {{"Complete", "999"}, "Could not find the entry in the diary."},
        {{"Postpone", person, "--param", "postponeStart=+1 d"}, "Must be a task, appointment or journal."},
        {{"Complete", task + ":x1"}, "is not an entry id"},
        {{"Complete", "abc"}, "is not an entry id"},
        {{"CalGoDate", "--param", "date=tomorrow"}, "only moves the window"},
        {{"Plan", task, "--param", "dayRange=someday"}, "someday"},
        {{"AddSession", task, "--param", "dayRange=3-Mar-2026 10:00..lots"}, "lots"},
        {{"CommandRun", task, "--param", "selectedCmd=4"}, "No command selected."},
        {{"NoSuch", task}, "there is no action called 'NoSuch'"},
        {{"Complete", task, "--param", "colour=red"}, "Unknown action parameter: colour"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> args = {"action", file};
        args.insert(args.end(), row.args.begin(), row.args.end());
        SCOPED_TRACE(row.args.front());
        CliRun run = tervalon(args);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.err.find(row.message), std::string::npos) << run.err;
        EXPECT_EQ(read_all(file), before);
    }
    EXPECT_NE(tervalon({"set", file, task, "commands", "SOON=https://example.com/a"}).err.find(
                  "Unknown command tag \"SOON\"."),
              std::string::npos);
    EXPECT_EQ(read_all(file), before);
}

TEST_F(ActionCli, UrlsAreHandedOnAsLines)
{
    ASSERT_EQ(tervalon({"set", file, task, "commands", "https://example.com/a;reminder: ring Ann"}).status, 0);
    CliRun run = tervalon({"action", file, "CommandRunAll", task});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "open https://example.com/a\nReminder: ring Ann\n");
    run = tervalon({"action", file, "CommandRun", task, "--param", "selectedCmd=0"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("The command has already been run."), std::string::npos);
}

TEST_F(ActionCli, PlansBySequence)
{
    CliRun run = tervalon({"action", file, "Plan", task, "--param", "dayRange=3-Mar-2026 10:00..90 min"});
    ASSERT_EQ(run.status, 0) << run.err;
    run = tervalon({"action", file, "Plan", task, "--param", "dayRange=3-Mar-2026 14:00..4-Mar-2026 15:00"});
    ASSERT_EQ(run.status, 0) << run.err;
    run = tervalon({"action", file, "ClearSession", task + ":p1"});
    ASSERT_EQ(run.status, 0) << run.err;
    run = tervalon({"action", file, "ClearSession", task + ":p1"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("The selected time is no longer there."), std::string::npos);
    Diary diary;
    ASSERT_FALSE(iszbwarn(diary.read(file)));
    const ZBDateSet& planned = diary.get_entry_id(std::stoi(task))->get_plan().get_planned();
    ASSERT_EQ(planned.size(), 1);
    EXPECT_EQ(planned[0]->m_end - planned[0]->m_start, ZBDuration(90 * 60));
    diary.unload();
}
