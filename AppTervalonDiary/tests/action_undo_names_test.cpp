// Every mutating action is one undo step under its own name, and undoing the
// step takes its change back.
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
    const char* undo;
};

DiaryActionParam on(ActionFixture& f, int id, int sequence = -1)
{
    return f.select({ZBId(id, sequence)});
}

DiaryActionParam with_plans(ActionFixture& f, int sequence)
{
    DiaryEntry* task = f.entry(f.task);
    task->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 11:00")), -1);
    task->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 14:00"), at("3-Mar-2026 14:30")), -1);
    return on(f, f.task, sequence);
}

// The planner's predictions for a two-hour task, today.
DiaryActionParam predicted(ActionFixture& f, int sequence)
{
    DiaryEntry* task = f.entry(f.task);
    ZBProgress progress = task->get_duration().orig;
    progress.set_duration(ZBDuration(2 * 3600));
    task->edit_duration().set_orig(progress);
    f.diary.recalculate(ZBDatabase::E_RecalcQuick);
    f.diary.full_recalculate();
    EXPECT_GT(task->get_plan().get_predicted().size(), 0);
    return on(f, f.task, sequence);
}

DiaryActionParam commands(ActionFixture& f, const std::string& exec, const std::string& selected)
{
    f.entry(f.task)->edit_command().set_command("https://a.example/x;https://b.example/y;https://c.example/z");
    f.entry(f.task)->edit_command().set_exec_command(exec);
    DiaryActionParam p = on(f, f.task);
    p.m_selectedCmd = selected;
    return p;
}

const int p0 = DiaryEntry::get_sequence('p', 0);
const int p1 = DiaryEntry::get_sequence('p', 1);
const int r0 = DiaryEntry::get_sequence('r', 0);
const int s0 = DiaryEntry::get_sequence('s', 0);

const std::vector<Row>& rows()
{
    static const std::vector<Row> table = {
        {"CreateSibling", [](ActionFixture& f) { return on(f, f.child); }, "Create Sibling"},
        {"CreateChild", [](ActionFixture& f) { return on(f, f.task); }, "Create Child"},
        {"AddEntry", [](ActionFixture& f) { return f.select({}); }, "Create Entry"},
        {"AddAppointment", [](ActionFixture& f) { return f.select({}); }, "Create Entry"},
        {"Delete", [](ActionFixture& f) { return on(f, f.task); }, "Delete Entry"},
        {"Delete",
         [](ActionFixture& f) {
             f.entry(f.task)->edit_repeat().from_string("T=3@N=1");
             DiaryActionParam p = on(f, f.task);
             p.m_date = at("4-Mar-2026 08:00");
             return p;
         },
         "Exclude Date"},
        {"Delete",
         [](ActionFixture& f) {
             f.entry(f.task)->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 10:00"), at("1-Mar-2026 11:00")), -1);
             return on(f, f.task, s0);
         },
         "Delete Session"},
        {"CutID", [](ActionFixture& f) { return on(f, f.task); }, "Cut Entry"},
        {"Link", [](ActionFixture& f) { return f.select({ZBId(f.task), ZBId(f.appointment)}); }, "Link Tasks"},
        {"PasteAs",
         [](ActionFixture& f) {
             DiaryClipboard::instance().copy(f.diary, f.select({ZBId(f.task)}).m_selectedId, false);
             DiaryActionParam p = on(f, f.folder);
             p.m_instance = 2;
             return p;
         },
         "Paste Entry Two"},
        {"EditEntry",
         [](ActionFixture& f) {
             DiaryActionParam p = on(f, f.task);
             p.m_title = "Renamed";
             return p;
         },
         "Edit Entry"},
        {"Complete", [](ActionFixture& f) { return on(f, f.task); }, "Complete Task"},
        {"Compact", [](ActionFixture& f) { return on(f, f.folder); }, "Compact Entry"},
        {"Postpone",
         [](ActionFixture& f) {
             DiaryActionParam p = on(f, f.task);
             p.m_postponeStart = "+2 d";
             return p;
         },
         "Postpone"},
        {"PostponeDay", [](ActionFixture& f) { return on(f, f.task); }, "Postpone 1 Day"},
        {"AdjComplete",
         [](ActionFixture& f) {
             DiaryActionParam p = on(f, f.task);
             p.m_percent = 40;
             return p;
         },
         "Adjust Completion"},
        {"RepeatInstance",
         [](ActionFixture& f) {
             f.entry(f.task)->edit_repeat().from_string("T=3@N=1");
             DiaryActionParam p = on(f, f.task);
             p.m_date = at("4-Mar-2026 08:00");
             return p;
         },
         "Convert Repeat to Instance"},
        {"BaselineHours", [](ActionFixture& f) { return on(f, f.task); }, "Save Baseline Hours"},
        {"BaselineDate", [](ActionFixture& f) { return on(f, f.task); }, "Save Baseline Hours and Date"},
        {"StartSession", [](ActionFixture& f) { return on(f, f.task); }, "Start Session"},
        {"StopSession",
         [](ActionFixture& f) {
             f.diary.start_session(f.task, -1);
             return f.select({});
         },
         "Stop Session"},
        {"CompleteSession",
         [](ActionFixture& f) {
             f.diary.start_session(f.task, -1);
             return f.select({});
         },
         "Complete Running Task"},
        {"AddSession",
         [](ActionFixture& f) {
             DiaryActionParam p = on(f, f.task);
             p.m_dayRange = ZBDateSlot(at("1-Mar-2026 10:00"), at("1-Mar-2026 11:00"));
             return p;
         },
         "Add Session"},
        {"ClearSession", [](ActionFixture& f) { return with_plans(f, p0); }, "Clear Session"},
        {"Plan",
         [](ActionFixture& f) {
             DiaryActionParam p = on(f, f.task);
             p.m_dayRange = ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 11:00"));
             return p;
         },
         "Plan Time"},
        {"MovePlanUp", [](ActionFixture& f) { return with_plans(f, p1); }, "Move Plan Up"},
        {"MovePlanDown", [](ActionFixture& f) { return with_plans(f, p0); }, "Move Plan Down"},
        {"LockSession", [](ActionFixture& f) { return predicted(f, r0); }, "Lock Predicted Session"},
        {"LockTaskDay", [](ActionFixture& f) { return predicted(f, -1); }, "Lock Task for Day"},
        {"LockTaskAll", [](ActionFixture& f) { return predicted(f, -1); }, "Lock Task"},
        {"LockDay", [](ActionFixture& f) { return predicted(f, -1); }, "Lock Day"},
        {"LockAll", [](ActionFixture& f) { return predicted(f, -1); }, "Lock All Tasks"},
        {"UnlockTaskDay", [](ActionFixture& f) { return with_plans(f, p0); }, "Unlock Task for Day"},
        {"UnlockTaskAll", [](ActionFixture& f) { return with_plans(f, -1); }, "Unlock Task"},
        {"UnlockDay",
         [](ActionFixture& f) {
             DiaryActionParam p = with_plans(f, -1);
             p.m_date = at("3-Mar-2026 12:00");
             return p;
         },
         "Unlock Day"},
        {"UnlockAll", [](ActionFixture& f) { return with_plans(f, -1); }, "Unlock All"},
        {"CommandRun", [](ActionFixture& f) { return commands(f, "", "1"); }, "Run Command"},
        {"CommandRunAll", [](ActionFixture& f) { return commands(f, "", ""); }, "Run All Commands"},
        {"CommandSkip", [](ActionFixture& f) { return commands(f, "", "2"); }, "Skip Command"},
        {"CommandClear", [](ActionFixture& f) { return commands(f, "0", "0"); }, "Clear Command"},
    };
    return table;
}

struct UndoNames : public ActionFixture {};

} // namespace

TEST_F(UndoNames, EachActionIsOneStepUnderItsName)
{
    for (size_t i = 0; i < rows().size(); ++i) {
        const Row& row = rows()[i];
        SCOPED_TRACE(std::string("row ") + std::to_string(i) + " " + row.action);
        TearDown();
        SetUp();
        const DiaryActionParam param = row.setup(*this);
        // What the setup changed by hand is a step of its own.
        ASSERT_FALSE(iszbwarn(diary.complete_operation("Before")));
        const int steps = diary.get_index().size();
        EXPECT_EQ(run(row.action, param), "ok");
        EXPECT_EQ(diary.get_undo_operation(), row.undo);
        EXPECT_EQ(diary.get_index().size(), steps + 1);
        EXPECT_EQ(manager.get_operation(), row.undo);
    }
}

TEST_F(UndoNames, UndoTakesTheStepBackAndRedoPutsItAgain)
{
    EXPECT_EQ(run("Complete", on(*this, task)), "ok");
    EXPECT_TRUE(entry(task)->is_complete());
    EXPECT_EQ(run("Undo", select({})), "ok");
    EXPECT_FALSE(entry(task)->is_complete());
    EXPECT_EQ(diary.get_redo_operation(), "Complete Task");
    EXPECT_EQ(run("Redo", select({})), "ok");
    EXPECT_TRUE(entry(task)->is_complete());
}

TEST_F(UndoNames, CutAndPasteMovesASubtreeWithNewIds)
{
    EXPECT_EQ(run("CutID", on(*this, folder)), "ok");
    EXPECT_EQ(entry(folder), nullptr);
    EXPECT_EQ(entry(child), nullptr);
    EXPECT_EQ(run("Paste", on(*this, task)), "ok");
    ASSERT_EQ(entry(task)->get_nchildren(), 1);
    const DiaryEntry* pasted = entry(task)->get_child_no(0);
    EXPECT_EQ(pasted->get_summary(), "Folder");
    EXPECT_NE(pasted->get_id(), folder);
    ASSERT_EQ(pasted->get_nchildren(), 1);
    EXPECT_EQ(pasted->get_child_no(0)->get_summary(), "Child");
    EXPECT_EQ(diary.get_undo_operation(), "Paste objects");
}
