// An entry's command list: how its lines read, which have run, and how the
// actions run them (URLs go to a recorder in place of the desktop).
#include "AppTervalonDiary/tests/action_fixture.h"

using namespace Tervalon;
using Tervalon::Test::ActionFixture;

namespace {

struct ParseRow {
    const char* line;
    bool ok;
    const char* command; // or the message when not ok
    bool autoStart;
    bool autoEnd;
    bool stop;
};

} // namespace

TEST(CommandLine, ReadsTagsAndCommands)
{
    const ParseRow rows[] = {
        {"https://example.com/a", true, "https://example.com/a", false, false, false},
        {"  https://example.com/a  ", true, "https://example.com/a", false, false, false},
        {"AUTOSTART=https://example.com/a", true, "https://example.com/a", true, false, false},
        {"AUTOSTART,AUTOEND=mailto:ann@example.com", true, "mailto:ann@example.com", true, true, false},
        {"AUTOEND = reminder: ring Bob", true, "reminder: ring Bob", false, true, false},
        // An "=" inside a URL is the URL's own.
        {"https://example.com/?q=1&r=2", true, "https://example.com/?q=1&r=2", false, false, false},
        {"=https://example.com/a", true, "https://example.com/a", false, false, false},
        {"=0", true, "", false, false, true},
        {"AUTOSTART=0", true, "", true, false, true},
        {"AUTOSTRAT=https://example.com/a", false, "Unknown command tag \"AUTOSTRAT\".", false, false, false},
        {"AUTOSTART=", false, "A command line has tags but no command.", false, false, false},
    };
    for (const ParseRow& row : rows) {
        SCOPED_TRACE(row.line);
        DiaryCommand command;
        std::string message;
        ASSERT_EQ(command.parse(row.line, message), row.ok);
        if (!row.ok) {
            EXPECT_EQ(message, row.command);
            continue;
        }
        EXPECT_EQ(command.m_command, row.command);
        EXPECT_EQ(command.m_autoStart, row.autoStart);
        EXPECT_EQ(command.m_autoEnd, row.autoEnd);
        EXPECT_EQ(command.m_stop, row.stop);
    }
}

TEST(CommandLine, KnowsItsKindAndWhatIsAUrl)
{
    DiaryCommand command;
    std::string message;
    ASSERT_TRUE(command.parse("macro: tidy up", message));
    EXPECT_EQ(command.get_kind(), DiaryCommand::E_Macro);
    EXPECT_EQ(command.get_argument(), "tidy up");
    ASSERT_TRUE(command.parse("reminder:call", message));
    EXPECT_EQ(command.get_kind(), DiaryCommand::E_Reminder);
    EXPECT_EQ(command.get_argument(), "call");

    EXPECT_TRUE(DiaryCommand::is_valid_url("https://example.com/a?b=c"));
    EXPECT_TRUE(DiaryCommand::is_valid_url("file:///home/ann/plan.txt"));
    EXPECT_TRUE(DiaryCommand::is_valid_url("mailto:ann@example.com"));
    EXPECT_FALSE(DiaryCommand::is_valid_url("just words"));
    EXPECT_FALSE(DiaryCommand::is_valid_url("example"));
    EXPECT_FALSE(DiaryCommand::is_valid_url("http:"));
    EXPECT_FALSE(DiaryCommand::is_valid_url("http://exa mple.com"));
}

TEST(CommandList, SplitsLinesKeepsEnvironmentAndTagsByPosition)
{
    EntryCommand list;
    list.set_command("@SITE=example.com; https://$<SITE>/a ;; AUTOSTART=https://$<SITE>/b;=0;reminder: done");
    ASSERT_FALSE(iszbwarn(list.update_commands()));
    const std::vector<DiaryCommand>& commands = list.get_commands();
    ASSERT_EQ(commands.size(), 4u);
    EXPECT_EQ(commands[0].m_command, "https://example.com/a");
    EXPECT_EQ(commands[0].m_tag, "0");
    EXPECT_EQ(commands[1].m_command, "https://example.com/b");
    EXPECT_TRUE(commands[1].m_autoStart);
    EXPECT_EQ(commands[1].m_tag, "1");
    EXPECT_TRUE(commands[2].m_stop);
    EXPECT_EQ(commands[3].m_tag, "2");
    EXPECT_EQ(list.count_remaining(), 3);
}

TEST(CommandList, AnUnknownTagLeavesNoCommands)
{
    EntryCommand list;
    list.set_command("https://example.com/a;NOW=https://example.com/b");
    EXPECT_TRUE(iszbwarn(list.update_commands()));
    get_zberror().clear_all();
    EXPECT_TRUE(list.get_commands().empty());
    EXPECT_TRUE(iszbwarn(EntryCommand::validate("NOW=x")));
    get_zberror().clear_all();
    EXPECT_FALSE(iszbwarn(EntryCommand::validate("AUTOEND=https://example.com/a;=0")));
}

TEST(CommandList, CompletedIsTheShareRunAndWholeWithNone)
{
    EntryCommand list;
    EXPECT_EQ(list.get_completed(), 1.0);
    list.set_command("https://example.com/a;@X=1;https://example.com/b;=0;https://example.com/c;https://example.com/d");
    EXPECT_EQ(list.get_completed(), 0.0);
    list.mark_command("1");
    list.mark_command("3");
    list.mark_command("3");
    EXPECT_EQ(list.get_exec_command(), "1,3");
    EXPECT_DOUBLE_EQ(list.get_completed(), 0.5);
    list.clear_command("1");
    EXPECT_EQ(list.get_exec_command(), "3");
    EXPECT_DOUBLE_EQ(list.get_completed(), 0.25);
    list.reset_executed();
    EXPECT_EQ(list.get_completed(), 0.0);
}

TEST(CommandList, ExpandedFormIsOneCommandALine)
{
    EntryCommand list;
    list.set_expanded_command("https://example.com/a\nAUTOEND=https://example.com/b");
    EXPECT_EQ(list.get_command(), "https://example.com/a;AUTOEND=https://example.com/b");
    EXPECT_EQ(list.get_expanded_command(), "https://example.com/a\nAUTOEND=https://example.com/b");
}

namespace {
struct CommandActions : public ActionFixture {
    DiaryActionParam with(const std::string& list, const std::string& selected = std::string())
    {
        entry(task)->edit_command().set_command(list);
        DiaryActionParam p = select({ZBId(task)});
        p.m_selectedCmd = selected;
        return p;
    }
};
} // namespace

TEST_F(CommandActions, RunOpensTheUrlAndMarksItRun)
{
    EXPECT_EQ(run("CommandRun", with("https://example.com/a;https://example.com/b", "1")), "ok");
    EXPECT_EQ(recorded, std::vector<std::string>({"https://example.com/b"}));
    EXPECT_EQ(entry(task)->get_command().get_exec_command(), "1");
    EXPECT_EQ(why("CommandRun", with("https://example.com/a;https://example.com/b", "1")),
              "The command has already been run.");
}

TEST_F(CommandActions, AnInvalidUrlIsRefusedAndNothingIsMarked)
{
    EXPECT_EQ(run("CommandRun", with("not a url", "0")), "\"not a url\" is not a valid URL.");
    EXPECT_TRUE(recorded.empty());
    EXPECT_EQ(entry(task)->get_command().get_exec_command(), "");
}

TEST_F(CommandActions, RunAllRunsWhatIsLeftInOrder)
{
    DiaryActionParam p = with("https://example.com/a;https://example.com/b;https://example.com/c");
    entry(task)->edit_command().set_exec_command("1");
    EXPECT_EQ(run("CommandRunAll", p), "ok");
    EXPECT_EQ(recorded, std::vector<std::string>({"https://example.com/a", "https://example.com/c"}));
    EXPECT_EQ(entry(task)->get_command().get_completed(), 1.0);
}

TEST_F(CommandActions, MacrosSayTheyCannotRunAndRemindersSpeak)
{
    EXPECT_EQ(run("CommandRun", with("macro: tidy;reminder: ring Ann", "0")), "ok");
    EXPECT_EQ(manager.get_messages(),
              std::vector<std::string>({"The macro \"tidy\" cannot run: this diary has no scripts."}));
    EXPECT_EQ(entry(task)->get_command().get_exec_command(), "");
    EXPECT_EQ(run("CommandRun", with("macro: tidy;reminder: ring Ann", "1")), "ok");
    EXPECT_EQ(manager.get_messages(), std::vector<std::string>({"Reminder: ring Ann"}));
    EXPECT_EQ(entry(task)->get_command().get_exec_command(), "1");
}

TEST_F(CommandActions, SessionsRunTheirAutomaticCommandsUpToTheStopMark)
{
    with("AUTOSTART=https://example.com/start;https://example.com/by-hand;AUTOEND=https://example.com/end;"
         "=0;AUTOSTART=https://example.com/never");
    EXPECT_EQ(run("StartSession", select({ZBId(task)})), "ok");
    EXPECT_EQ(recorded, std::vector<std::string>({"https://example.com/start"}));
    EXPECT_TRUE(entry(task)->get_spent().has_running_session());
    EXPECT_EQ(why("StartSession", select({ZBId(appointment)})), "A session is already active.");

    recorded.clear();
    ZBDateUtils::set_fixed_now(Tervalon::Test::at("2-Mar-2026 09:30"));
    EXPECT_EQ(run("StopSession", select({})), "ok");
    EXPECT_EQ(recorded, std::vector<std::string>({"https://example.com/end"}));
    EXPECT_FALSE(entry(task)->get_spent().has_running_session());
    EXPECT_EQ(entry(task)->get_spent().get_sessions().size(), 1);
    // The list has an end command but one command is still to run by hand.
    EXPECT_FALSE(entry(task)->is_complete());
    EXPECT_EQ(run("CommandRun", with(entry(task)->get_command().get_command(), "1")), "ok");
    EXPECT_EQ(run("CommandRunAll", select({ZBId(task)})), "There is only one remaining command.");
    EXPECT_EQ(run("CommandRun", with(entry(task)->get_command().get_command(), "3")), "ok");
    EXPECT_TRUE(entry(task)->is_complete());
}

TEST_F(CommandActions, AJournalIsDoneWhenItsCommandsAre)
{
    entry(journal)->edit_command().set_command("reminder: one;reminder: two");
    DiaryActionParam p = select({ZBId(journal)});
    p.m_selectedCmd = "1";
    EXPECT_EQ(run("CommandRun", p), "ok");
    EXPECT_FALSE(entry(journal)->is_complete());
    p.m_selectedCmd = "0";
    EXPECT_EQ(run("CommandSkip", p), "ok");
    EXPECT_TRUE(entry(journal)->is_complete());
}
