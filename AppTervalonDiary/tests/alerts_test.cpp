#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibGui/base/zbnotifylist.h"

#include <memory>

using namespace Tervalon;

namespace {
struct Alerts : public Test::PlanFixture {
    // The one notification of the entry whose code is code, or null.
    // The entry's current notification of a code; the list is made when asked.
    static std::unique_ptr<ZBNotifyItem> find(const DiaryEntry* entry, int code)
    {
        for (const ZBNotifyItem& item : entry->get_props().get_notifications())
            if (item.get_scheme() == code && !item.get_date().is_ok())
                return std::unique_ptr<ZBNotifyItem>(new ZBNotifyItem(item));
        return nullptr;
    }
};
} // namespace

TEST_F(Alerts, EachRowOfTheTableGivesItsTextCodePriorityAndLevel)
{
    DiaryEntry* overdue = add(nullptr, "Report");
    overdue->edit_due().set_orig(at("1-Mar-2026 17:00"));

    DiaryEntry* missed = add(nullptr, "Standup", 'A');
    missed->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 07:30"), at("2-Mar-2026 07:45")));

    DiaryEntry* urgent = add(nullptr, "Taxes");
    urgent->edit_due().set_orig(at("2-Mar-2026 10:00"));
    set_length(urgent, 4);
    urgent->edit_plan().set_is_planned(false);

    DiaryEntry* delayed = add(nullptr, "Garden");
    delayed->edit_due().set_orig(at("9-Mar-2026 17:00"));
    delayed->edit_plan().edit_predicted().add(ZBDateSlot(at("10-Mar-2026 09:00"), at("10-Mar-2026 12:00")), 0);

    DiaryEntry* soon = add(nullptr, "Dentist", 'A');
    soon->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 08:10"), at("2-Mar-2026 09:00")));

    DiaryEntry* start = add(nullptr, "Letters");
    start->edit_plan().edit_planned().add(ZBDateSlot(at("2-Mar-2026 07:00"), at("2-Mar-2026 09:00")), 0);

    DiaryEntry* clash = add(nullptr, "Lunch", 'A');
    clash->edit_time().set_orig(ZBDateSlot(at("3-Mar-2026 12:00"), at("3-Mar-2026 13:00")));
    clash->edit_plan().edit_clash().push_back("Dentist");

    DiaryEntry* over = add(nullptr, "Essay");
    set_length(over, 1);
    over->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 09:00"), at("1-Mar-2026 10:30")), 0);
    over->edit_spent().start_session(at("2-Mar-2026 07:50"), 0);

    DiaryEntry* mayOver = add(nullptr, "Slides");
    set_length(mayOver, 2);
    mayOver->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 09:00"), at("1-Mar-2026 10:30")), 0);
    mayOver->edit_spent().start_session(at("2-Mar-2026 07:50"), 0);

    DiaryEntry* quiet = add(nullptr, "Someday");
    // The planner's results are set by hand above, so only the entry phases run.
    ASSERT_EQ(diary.calculate_dependencies(), ZBErrC_ok);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);

    struct Row {
        const DiaryEntry* entry;
        int code;
        std::string text;
        double priority; // < -1000: the entry's calculated priority
        int level;
    } rows[] = {
        {overdue, Diary::C_NotifyOverdue, "OVERDUE: Report", -2000, 4},
        {missed, Diary::C_NotifyOverdue, "OVERDUE: Standup", -2000, 4},
        {urgent, Diary::C_NotifyUrgent, "Urgent: Taxes", -2000, 3},
        {delayed, Diary::C_NotifyDelayed, "Delayed: Garden", -2000, 2},
        {soon, Diary::C_NotifyReminder, "Reminder: Dentist at " + at("2-Mar-2026 08:10").to_string(), -2000, 0},
        {start, Diary::C_NotifyShouldStart, "Should start: Letters", -2000, 0},
        {clash, Diary::C_NotifyClash, "Time Clash with: Dentist", 300.0, 0},
        {over, Diary::C_NotifyOverSpend, "Over Spent: Essay", 100.0, 3},
        {mayOver, Diary::C_NotifyMayOverSpend, "May Over Spend: Slides", 50.0, 2},
    };
    for (const Row& row : rows) {
        const std::unique_ptr<ZBNotifyItem> item = find(row.entry, row.code);
        ASSERT_NE(item, nullptr) << row.text;
        EXPECT_EQ(item->get_text(), row.text);
        EXPECT_EQ(item->get_object_id(), row.entry->get_id());
        EXPECT_DOUBLE_EQ(item->get_priority(), row.priority < -1000 ? row.entry->get_priority().calc : row.priority)
            << row.text;
        EXPECT_EQ(row.entry->get_alert_state(), row.level) << row.text;
    }
    EXPECT_TRUE(quiet->get_props().get_notifications().empty());
    EXPECT_EQ(quiet->get_alert_state(), 0);
    // The running session keeps an appointment from being overdue.
    EXPECT_EQ(find(over, Diary::C_NotifyMayOverSpend), nullptr);
}

TEST_F(Alerts, LevelsComeFromTheCheckerTheChildrenAndFutureProblems)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* child = add(project, "Child");
    child->edit_due().set_orig(at("1-Mar-2026 17:00"));
    DiaryEntry* flagged = add(nullptr, "Flagged");
    diary.get_checker().record_error(flagged->get_id(), Diary::ZBErrC_CircularDependancy, "loop", "loop");
    DiaryEntry* problem = add(nullptr, "Problem");
    problem->edit_plan().edit_problem_dates().push_back(at("5-Mar-2026 09:00"));
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(child->get_alert_state(), 4);
    EXPECT_EQ(project->get_alert_state(), 4);
    EXPECT_EQ(flagged->get_alert_state(), 4);
    EXPECT_EQ(problem->get_alert_state(), diary.get_settings().get_future_warnings() ? 1 : 0);
    // A finished entry is not overdue.
    child->edit_duration().orig.set_completion(100.0);
    ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
    EXPECT_EQ(find(child, Diary::C_NotifyOverdue), nullptr);
    EXPECT_EQ(project->get_alert_state(), 0);
}

TEST_F(Alerts, OfflineRemindersCarryTheirDates)
{
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:00")));
    DiaryEntry* task = add(nullptr, "Task");
    task->edit_due().set_orig(at("4-Mar-2026 17:00"));
    set_length(task, 2);
    plan();
    meeting->edit_props().update_alerts(&diary, true);
    task->edit_props().update_alerts(&diary, true);
    ZBNotifyList list;
    list.set_offline_notifications(true);
    list.reset();
    for (const DiaryEntry* entry : {meeting, task})
        for (const ZBNotifyItem& item : entry->get_props().get_notifications())
            list.add(item);
    // Only the earliest of the future items waits as the scheduled one.
    ASSERT_NE(list.get_scheduled(), nullptr);
    EXPECT_EQ(list.get_scheduled()->get_date(), at("2-Mar-2026 09:45"));
    EXPECT_EQ(list.get_scheduled()->get_priority(), 400.0);
    int dated = 0;
    for (const ZBNotifyItem& item : task->get_props().get_notifications())
        dated += item.get_date().is_ok();
    EXPECT_EQ(dated, 2); // at the latest start and at the due
}

TEST(NotifyList, RoundsTellNewResolvedAndSnoozedItems)
{
    ZBNotifyList list;
    const ZBNotifyItem a(900, 400.0, "OVERDUE: A", 1, ZBDate(ZBDate::E_Blank));
    const ZBNotifyItem b(600, 300.0, "Urgent: B", 2, ZBDate(ZBDate::E_Blank));
    const ZBNotifyItem c(200, 50.0, "May Over Spend: C", 3, ZBDate(ZBDate::E_Blank));
    list.reset();
    list.add(c);
    list.add(a);
    list.add(b);
    EXPECT_EQ(list.pop_new().size(), 3u);
    std::string text;
    EXPECT_EQ(list.get_notify_state(text), 900);
    EXPECT_EQ(text, "May Over Spend: C\nAnd 2 more warnings.");
    EXPECT_EQ(list.get_sorted_items().front().get_text(), "OVERDUE: A");
    // The second round: a is still there (not new), b is resolved.
    list.reset();
    list.add(a);
    list.add(c);
    EXPECT_TRUE(list.pop_new().empty());
    const std::vector<ZBNotifyItem> removed = list.pop_removed();
    ASSERT_EQ(removed.size(), 1u);
    EXPECT_EQ(removed[0].get_text(), "Urgent: B");
    // Snoozed until a time: gone now, back once the time has passed.
    ZBDate now;
    now.from_string("2-Mar-2026 08:00");
    ZBDateUtils::set_fixed_now(now);
    list.snooze("OVERDUE: A", 1, now + ZBDuration(3600));
    list.reset();
    list.add(a);
    EXPECT_TRUE(list.get_items().empty());
    ZBDateUtils::set_fixed_now(now + ZBDuration(3601));
    list.add(a);
    EXPECT_EQ(list.get_items().size(), 1u);
    ZBDateUtils::clear_fixed_now();
    EXPECT_EQ(list.get_notify_state(text), 900);
    list.reset();
    EXPECT_EQ(list.get_notify_state(text), -1);
}
