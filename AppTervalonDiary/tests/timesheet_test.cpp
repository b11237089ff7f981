#include "AppTervalonDiary/diary/entryplan.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/timesheet.h"
#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuprenderer.h"

#include <sstream>

using namespace Tervalon;

namespace {

// Sheets over the week of Monday 2 March 2026.
class TimesheetTest : public Test::PlanFixture {
protected:
    // Hours of a day of that week (0 Monday) as a slot; 9.5 is 09:30.
    static ZBDateSlot hours(int day, double from, double to)
    {
        const ZBDate start = at("2-Mar-2026 00:00") + ZBDuration(std::int64_t(day) * 86400);
        return ZBDateSlot(start + ZBDuration(std::int64_t(from * 3600)), start + ZBDuration(std::int64_t(to * 3600)));
    }
    // A day's sessions as "9-10 14-14.5".
    static std::string text(const ZBDateSet& set, int day)
    {
        const ZBDate start = at("2-Mar-2026 00:00") + ZBDuration(std::int64_t(day) * 86400);
        std::ostringstream out;
        for (int i = 0; i < set.size(); ++i) {
            if (set[i]->m_end <= start || set[i]->m_start >= start + ZBDuration(86400))
                continue;
            out << (out.tellp() > 0 ? " " : "") << double((set[i]->m_start - start).get_as_seconds()) / 3600 << "-"
                << double((set[i]->m_end - start).get_as_seconds()) / 3600;
        }
        return out.str();
    }
    int me() const { return diary.get_default_resource_id(); }
    void spend(DiaryEntry* entry, int day, double from, double to)
    {
        entry->edit_spent().add_session(hours(day, from, to), me());
    }
    void read(Timesheet& sheet) { ASSERT_EQ(ZBErrC_ok, sheet.generate(at("2-Mar-2026 00:00"), 7)); }
};

} // namespace

TEST_F(TimesheetTest, ReadsEachDaysTimeAndSplitsSessionsAtMidnight)
{
    DiaryEntry* report = add(nullptr, "Report");
    DiaryEntry* idle = add(nullptr, "Idle");
    spend(report, 0, 9, 10.5);
    spend(report, 0, 23, 26); // into Tuesday
    spend(report, 8, 9, 10);  // after the sheet
    Timesheet sheet(diary);
    read(sheet);
    ASSERT_EQ(1, sheet.get_nrows());
    EXPECT_EQ(-1, sheet.find_row(idle->get_id()));
    const TimesheetRow& row = *sheet.get_row(0);
    EXPECT_EQ(report->get_id(), row.get_entry_id());
    EXPECT_EQ(ZBDuration(9000), row.get_time(0));
    EXPECT_EQ(ZBDuration(7200), row.get_time(1));
    EXPECT_EQ(ZBDuration(16200), sheet.get_total());
    EXPECT_EQ(ZBDuration(7200), sheet.get_day_total(1));
}

TEST_F(TimesheetTest, AddedTimeGoesIntoTheDaysPlansFirstThenAroundOtherWork)
{
    DiaryEntry* task = add(nullptr, "Task");
    DiaryEntry* other = add(nullptr, "Other");
    task->edit_plan().edit_planned().add(hours(1, 14, 15), me());
    spend(other, 1, 0, 14);
    Timesheet sheet(diary);
    read(sheet);
    const int row = sheet.find_row(task->get_id());
    ASSERT_GE(row, 0) << "a fixed plan puts the task on the sheet";
    ASSERT_EQ(ZBErrC_ok, sheet.set_cell(row, 1, "1:30"));
    int count = 0;
    ASSERT_EQ(ZBErrC_ok, sheet.write_back(&count));
    EXPECT_EQ(1, count);
    // The plan's hour, then the earliest free time of the day that nothing
    // else was spent on.
    EXPECT_EQ("14-15.5", text(task->get_spent().get_sessions(), 1));
    EXPECT_EQ(ZBDuration(5400), sheet.get_row(sheet.find_row(task->get_id()))->get_time(1));
    EXPECT_EQ(ZBDuration(5400), task->get_spent().get_time_spent()) << "the entry's total follows at once";
    EXPECT_FALSE(sheet.is_updated());
}

TEST_F(TimesheetTest, LessTimeComesOffTheLatestSessions)
{
    DiaryEntry* task = add(nullptr, "Task");
    spend(task, 2, 9, 10);
    spend(task, 2, 14, 16);
    Timesheet sheet(diary);
    read(sheet);
    ASSERT_EQ(ZBErrC_ok, sheet.set_cell(0, 2, "1h 30m"));
    ASSERT_EQ(ZBErrC_ok, sheet.write_back());
    EXPECT_EQ("9-10 14-14.5", text(task->get_spent().get_sessions(), 2));
    ASSERT_EQ(ZBErrC_ok, sheet.set_cell(0, 2, ""));
    ASSERT_EQ(ZBErrC_ok, sheet.write_back());
    EXPECT_EQ("", text(task->get_spent().get_sessions(), 2));
    EXPECT_EQ(0, sheet.get_nrows()) << "an entry with no time left drops off the sheet";
}

TEST_F(TimesheetTest, ACellThatIsNotALengthIsRefusedAndChangesNothing)
{
    DiaryEntry* task = add(nullptr, "Task");
    spend(task, 0, 9, 10);
    Timesheet sheet(diary);
    read(sheet);
    for (const char* bad : {"soon", "1x", "-1h", "25h", "1:3a"}) {
        SCOPED_TRACE(bad);
        get_zberror().clear_all();
        EXPECT_TRUE(iszbwarn(sheet.set_cell(0, 0, bad)));
        ASSERT_NE(nullptr, get_zberror().top());
        EXPECT_FALSE(get_zberror().top()->get_message().empty());
        EXPECT_EQ(ZBDuration(3600), sheet.get_row(0)->get_time(0));
        EXPECT_FALSE(sheet.is_updated());
    }
    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(sheet.set_cell(0, 7, "1h")));
    EXPECT_EQ("9-10", text(task->get_spent().get_sessions(), 0));
}

TEST_F(TimesheetTest, ACellWithNoRoomLeftWritesNoCellAtAll)
{
    DiaryEntry* early = add(nullptr, "Early");
    DiaryEntry* busy = add(nullptr, "Busy");
    DiaryEntry* late = add(nullptr, "Late");
    spend(early, 0, 8, 9);
    spend(busy, 1, 0, 24);
    spend(late, 4, 8, 9);
    Timesheet sheet(diary);
    read(sheet);
    ASSERT_EQ(ZBErrC_ok, sheet.set_cell(sheet.find_row(early->get_id()), 0, "3h"));
    ASSERT_EQ(ZBErrC_ok, sheet.set_cell(sheet.find_row(late->get_id()), 1, "1h"));
    EXPECT_TRUE(iszbwarn(sheet.write_back()));
    EXPECT_EQ("8-9", text(early->get_spent().get_sessions(), 0));
    EXPECT_EQ("", text(late->get_spent().get_sessions(), 1));
    EXPECT_TRUE(sheet.is_updated()) << "the edits stay for the user to fix";
}

TEST_F(TimesheetTest, TextOutputHasTotalsAndLinesUp)
{
    DiaryEntry* report = add(nullptr, "Write the report");
    DiaryEntry* call = add(nullptr, "Call");
    spend(report, 0, 9, 12.5);
    spend(call, 1, 9, 9.25);
    Timesheet sheet(diary);
    ASSERT_EQ(ZBErrC_ok, sheet.generate(at("2-Mar-2026 10:00"), 2));
    ZBMarkupPage page;
    sheet.to_markup(page);
    const std::string text = ZBMarkupRenderer().to_string(page);
    const std::string table = text.substr(text.find("Id"));
    // Ids are right-aligned in a column at least as wide as its title.
    auto id = [](const DiaryEntry* entry) {
        const std::string digits = std::to_string(entry->get_id());
        return std::string(digits.size() < 2 ? 2 - digits.size() : 0, ' ') + digits;
    };
    ASSERT_EQ(id(report).size(), id(call).size());
    EXPECT_EQ("Id  Entry             Mon 02  Tue 03  Total\n"
              "--  ----------------  ------  ------  -----\n" +
                  id(report) + "  Write the report    3:30           3:30\n" +
                  id(call) + "  Call                        0:15   0:15\n" +
                  "    Total               3:30    0:15   3:45\n",
              table.substr(0, table.find(std::string(id(call).size() + 2, ' ') + "Work time")));
    std::ostringstream csv;
    sheet.to_csv(csv);
    EXPECT_EQ("Id,Entry,2026-03-02,2026-03-03,Total\n" + std::to_string(report->get_id()) +
                  ",Write the report,3.50,0.00,3.50\n" + std::to_string(call->get_id()) + ",Call,0.00,0.25,0.25\n" +
                  ",Total,3.50,0.25,3.75\n",
              csv.str());
}

TEST_F(TimesheetTest, TasksDeepInTheTreeAreOnTheSheet)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* folder = add(project, "Folder", 'O');
    DiaryEntry* task = add(folder, "Deep task");
    spend(task, 1, 9, 11);
    Timesheet sheet(diary);
    read(sheet);
    const int row = sheet.find_row(task->get_id());
    ASSERT_GE(row, 0);
    EXPECT_EQ(ZBDuration(7200), sheet.get_row(row)->get_time(1));
    EXPECT_EQ(ZBDuration(7200), sheet.get_total());
}
