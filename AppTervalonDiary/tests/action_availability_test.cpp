// Whether each diary action may run, and the reason the user is given when
// it may not: one row per refusal.
#include "AppTervalonDiary/tests/action_fixture.h"

#include <functional>

using namespace Tervalon;
using Tervalon::Test::ActionFixture;
using Tervalon::Test::at;

namespace {

using Setup = std::function<DiaryActionParam(ActionFixture&)>;

struct Row {
    const char* action;
    Setup setup;
    const char* expected; // "ok", or the reason ("" for a refusal without one)
};

void complete(ActionFixture& f, int id)
{
    f.entry(id)->mark_complete(ZBDateUtils::now());
}

void commands(ActionFixture& f, int id, const std::string& list, const std::string& exec)
{
    f.entry(id)->edit_command().set_command(list);
    f.entry(id)->edit_command().set_exec_command(exec);
}

void plan(ActionFixture& f, int id)
{
    f.entry(id)->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 11:00")), -1);
}

const int p0 = DiaryEntry::get_sequence('p', 0);
const int s0 = DiaryEntry::get_sequence('s', 0);
const int r0 = DiaryEntry::get_sequence('r', 0);

const std::vector<Row>& rows()
{
    static const std::vector<Row> table = {
        {"Redo", [](ActionFixture& f) { return f.select({}); }, ""},
        {"Undo", [](ActionFixture& f) { return f.select({}); }, "ok"},
        {"AddTask", [](ActionFixture& f) { return f.select({}); }, "ok"},
        {"AddTask",
         [](ActionFixture& f) {
             DiaryActionParam p = f.select({});
             p.m_bookmark = true;
             return p;
         },
         "There are no task bookmarks."},
        {"AddPlace",
         [](ActionFixture& f) {
             DiaryActionParam p = f.select({});
             p.m_bookmark = true;
             return p;
         },
         "There are no place bookmarks."},
        {"AddJournal",
         [](ActionFixture& f) {
             f.entry(f.journal)->set_bookmark(true);
             DiaryActionParam p = f.select({});
             p.m_bookmark = true;
             return p;
         },
         "ok"},
        {"Complete", [](ActionFixture& f) { return f.select({}); }, "No item has been selected."},
        {"Complete", [](ActionFixture& f) { return f.select({ZBId(9999)}); }, "Could not find the entry in the diary."},
        {"StartSession", [](ActionFixture& f) { return f.select({ZBId(f.person)}); }, "Must be a task or appointment."},
        {"AddSession", [](ActionFixture& f) { return f.select({ZBId(f.journal)}); }, "Must be a task or appointment."},
        {"StartSession",
         [](ActionFixture& f) {
             f.diary.start_session(f.appointment, -1);
             return f.select({ZBId(f.task)});
         },
         "A session is already active."},
        {"StartSession", [](ActionFixture& f) { return f.select({ZBId(f.task)}); }, "ok"},
        {"StopSession", [](ActionFixture& f) { return f.select({}); }, "There is no current active session."},
        {"CompleteSession", [](ActionFixture& f) { return f.select({}); }, "There is no current active session."},
        {"Complete", [](ActionFixture& f) { return f.select({ZBId(f.folder)}); },
         "Tasks with children cannot be signed off."},
        {"Complete",
         [](ActionFixture& f) {
             complete(f, f.task);
             return f.select({ZBId(f.task)});
         },
         "That entry is already complete."},
        {"AdjComplete", [](ActionFixture& f) { return f.select({ZBId(f.folder)}); },
         "Tasks with children cannot have completion adjusted."},
        {"Link", [](ActionFixture& f) { return f.select({ZBId(f.folder), ZBId(f.child)}); },
         "\"Child\" cannot be linked to previous."},
        {"Link",
         [](ActionFixture& f) {
             f.entry(f.task)->edit_depend().add_depend(f.appointment);
             return f.select({ZBId(f.task), ZBId(f.appointment)});
         },
         "\"Meeting\" cannot be linked to previous."},
        {"Link", [](ActionFixture& f) { return f.select({ZBId(f.task), ZBId(f.child)}); }, "ok"},
        {"BaselineHours", [](ActionFixture& f) { return f.select({ZBId(f.appointment)}); }, "Must be a task."},
        {"BaselineDate", [](ActionFixture& f) { return f.select({ZBId(f.journal)}); }, "Must be a task."},
        {"LockSession", [](ActionFixture& f) { return f.select({ZBId(f.task, p0)}); }, "No predicted session selected."},
        {"MovePlanUp", [](ActionFixture& f) { return f.select({ZBId(f.task)}); }, "No plan selected."},
        {"MovePlanDown", [](ActionFixture& f) { return f.select({ZBId(f.task, p0)}); }, "No planned time for this task."},
        {"UnlockTaskDay", [](ActionFixture& f) { return f.select({ZBId(f.task)}); }, "No planned time for this task."},
        {"UnlockTaskDay", [](ActionFixture& f) { return f.select({ZBId(f.task, s0)}); }, "No plan selected."},
        {"UnlockTaskDay",
         [](ActionFixture& f) {
             plan(f, f.task);
             return f.select({ZBId(f.task, p0)});
         },
         "ok"},
        {"Plan", [](ActionFixture& f) { return f.select({ZBId(f.folder)}); }, "Tasks with children cannot have plans set."},
        {"LockTaskAll",
         [](ActionFixture& f) {
             complete(f, f.task);
             return f.select({ZBId(f.task)});
         },
         "You cannot plan complete tasks."},
        {"CommandRun", [](ActionFixture& f) { return f.select({ZBId(f.task)}); }, "There are no commands for this task."},
        {"CommandRun",
         [](ActionFixture& f) {
             commands(f, f.task, "https://a.example/x;https://b.example/y", "0");
             DiaryActionParam p = f.select({ZBId(f.task)});
             p.m_selectedCmd = "0";
             return p;
         },
         "The command has already been run."},
        {"CommandSkip",
         [](ActionFixture& f) {
             commands(f, f.task, "https://a.example/x", "0");
             DiaryActionParam p = f.select({ZBId(f.task)});
             p.m_selectedCmd = "0";
             return p;
         },
         "The command has already been run."},
        {"CommandClear",
         [](ActionFixture& f) {
             commands(f, f.task, "https://a.example/x;https://b.example/y", "0");
             DiaryActionParam p = f.select({ZBId(f.task)});
             p.m_selectedCmd = "1";
             return p;
         },
         "The command has not been run."},
        {"CommandRunAll",
         [](ActionFixture& f) {
             commands(f, f.task, "https://a.example/x;https://b.example/y", "1");
             return f.select({ZBId(f.task)});
         },
         "There is only one remaining command."},
        {"CommandRunAll",
         [](ActionFixture& f) {
             commands(f, f.task, "https://a.example/x;https://b.example/y", "");
             return f.select({ZBId(f.task)});
         },
         "ok"},
        {"ClearSession", [](ActionFixture& f) { return f.select({ZBId(f.task, r0)}); },
         "Must be either planned or spent time."},
        {"Postpone", [](ActionFixture& f) { return f.select({ZBId(f.person)}); },
         "Must be a task, appointment or journal."},
        {"Postpone",
         [](ActionFixture& f) {
             complete(f, f.task);
             return f.select({ZBId(f.task)});
         },
         "The task is complete."},
        {"Delete", [](ActionFixture& f) { return f.select({ZBId(f.task, r0)}); },
         "You can only delete spent or planned time."},
        {"Delete", [](ActionFixture& f) { return f.select({ZBId(f.task, p0)}); }, "The selected time is no longer there."},
        {"Delete", [](ActionFixture& f) { return f.select({ZBId(f.task)}); }, "ok"},
        {"UnlockDay", [](ActionFixture& f) { return f.select({}); }, ""},
        {"UnlockAll",
         [](ActionFixture& f) {
             plan(f, f.child);
             return f.select({});
         },
         "ok"},
        {"LockDay", [](ActionFixture& f) { return f.select({}); }, "ok"},
        {"Paste", [](ActionFixture& f) { return f.select({}); }, "No object on the clipboard."},
        {"NoSuchAction", [](ActionFixture& f) { return f.select({}); }, "There is no action called \"NoSuchAction\"."},
        // Moving the window needs nothing of the diary.
        {DiaryActionMgr::C_ActJournalView, [](ActionFixture& f) { return f.select({}); }, "ok"},
        {"CalNextWeek", [](ActionFixture& f) { return f.select({}); }, "ok"},
    };
    return table;
}

struct Availability : public ActionFixture {};

} // namespace

TEST_F(Availability, EachRuleGivesItsReason)
{
    for (size_t i = 0; i < rows().size(); ++i) {
        const Row& row = rows()[i];
        SCOPED_TRACE(std::string("row ") + std::to_string(i) + " " + row.action);
        // Each row starts from the same diary.
        TearDown();
        SetUp();
        const DiaryActionParam param = row.setup(*this);
        EXPECT_EQ(why(row.action, param), row.expected);
    }
}

TEST_F(Availability, AParamOfAnotherClassIsRefused)
{
    ZBActionParam other;
    std::string reason;
    EXPECT_FALSE(manager.is_available("Complete", other, reason));
    EXPECT_EQ(reason, "Could not cast to DiaryActionParam");
    EXPECT_TRUE(iszbwarn(manager.run_action("Complete", other)));
    get_zberror().clear_all();
}

TEST_F(Availability, ARefusedOrFailedRunChangesNothing)
{
    complete(*this, task);
    entry(appointment)->edit_time().set_orig(ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 11:00")));
    ASSERT_FALSE(iszbwarn(diary.complete_operation("Done")));
    const std::string before = diary.get_undo_operation();
    EXPECT_EQ(run("Complete", select({ZBId(task)})), "That entry is already complete.");
    DiaryActionParam bad = select({ZBId(appointment)});
    bad.m_postponeStart = "+1 d";
    bad.m_postponeEnd = "no such date";
    EXPECT_NE(run("Postpone", bad), "ok");
    EXPECT_EQ(entry(appointment)->get_time().orig, ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 11:00")));
    EXPECT_EQ(diary.get_undo_operation(), before);
}

TEST_F(Availability, TheJournalViewIsTheDayView)
{
    EXPECT_STREQ(DiaryActionMgr::C_ActJournalView, "DayView");
    EXPECT_STREQ(DiaryActionMgr::C_ActJournalView, DiaryActionMgr::C_ActDayView);
    EXPECT_EQ(DiaryActionMgr::action_names().size(), 90u);
    for (const std::string& name : DiaryActionMgr::action_names())
        EXPECT_TRUE(DiaryActionMgr::is_action(name)) << name;
}
