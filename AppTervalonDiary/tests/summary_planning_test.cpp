#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibMarkup/markup/zbmarkuppage.h"

using namespace Tervalon;

namespace {

// Plans and predictions set by hand after the entry phases, on Monday
// 2 March 2026, as a finished pass would leave them.
class Planning : public Test::PlanFixture {
protected:
    void book(DiaryEntry* entry, const std::string& from, const std::string& to, bool fixed)
    {
        const ZBDateSlot slot(at(from), at(to));
        const int resource = entry->get_props().get_resource_calc();
        if (fixed) {
            entry->edit_plan().edit_planned().add(slot, resource);
        } else {
            ZBDateSet sessions;
            sessions.add(slot, resource);
            entry->edit_plan().add_predicted(at(from), ZBDate(ZBDate::E_Blank), sessions, ZBDate(ZBDate::E_Blank), -1,
                                             ZBDate(ZBDate::E_Blank), -1, ZBDuration());
        }
    }
    std::string planning(int days)
    {
        DiaryDisplay display(diary);
        ZBDSummaryPage builder;
        ZBMarkupPage page;
        EXPECT_EQ(builder.get_planning(diary, display, -1, at("2-Mar-2026 08:00"), days, page), ZBErrC_ok);
        return page.get_raw_text();
    }
    static bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
    static size_t where(const std::string& text, const std::string& part) { return text.find(part); }
};

} // namespace

TEST_F(Planning, EachDayListsPlannedDueScheduledAndSuggestedWorkThenTheFuture)
{
    DiaryEntry* fixed = add(nullptr, "Fixed");
    set_length(fixed, 2);
    DiaryEntry* dueTuesday = add(nullptr, "Due Tuesday");
    dueTuesday->edit_due().set_orig(at("3-Mar-2026 17:00"));
    set_length(dueTuesday, 1);
    DiaryEntry* someday = add(nullptr, "Someday");
    set_length(someday, 1);
    DiaryEntry* far = add(nullptr, "Far away");
    far->edit_due().set_orig(at("20-Mar-2026 17:00"));
    plan();
    for (DiaryEntry* entry : {fixed, dueTuesday, someday, far})
        entry->edit_plan().clear_predicted(true);
    book(fixed, "2-Mar-2026 09:00", "2-Mar-2026 11:00", true);
    book(dueTuesday, "3-Mar-2026 09:00", "3-Mar-2026 10:00", false);
    book(someday, "2-Mar-2026 13:00", "2-Mar-2026 14:00", false);

    const std::string text = planning(2);
    ASSERT_TRUE(has(text, " time (")) << text;
    const size_t monday = where(text, "Planned for Mon 2026-03-02");
    const size_t suggested = where(text, "Suggested for Mon 2026-03-02");
    const size_t tuesday = where(text, "Due for Tue 2026-03-03");
    const size_t scheduled = where(text, "Scheduled for Tue 2026-03-03");
    const size_t future = where(text, "Future tasks");
    ASSERT_NE(monday, std::string::npos) << text;
    ASSERT_NE(suggested, std::string::npos) << text;
    ASSERT_NE(tuesday, std::string::npos) << text;
    ASSERT_NE(scheduled, std::string::npos) << text;
    ASSERT_NE(future, std::string::npos) << text;
    EXPECT_LT(monday, suggested);
    EXPECT_LT(suggested, tuesday);
    EXPECT_LT(tuesday, scheduled);
    EXPECT_LT(scheduled, future);
    // Only the task that no day showed is left for the future.
    EXPECT_EQ(text.find("Far away"), text.rfind("Far away"));
    EXPECT_GT(text.find("Far away"), future);
    EXPECT_FALSE(has(text, "Scheduled for Mon")); // a task without a due date is only suggested
}

TEST_F(Planning, TimeBreakdownSplitsSpentAndRemainingWorkPerResource)
{
    Resource* other = nullptr;
    ASSERT_EQ(diary.add_resource("Bob", &other), ZBErrC_ok);
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* open = add(project, "Open");
    set_length(open, 5);
    DiaryEntry* done = add(project, "Done");
    set_length(done, 1);
    ASSERT_EQ(done->set_completion(100.0, true), ZBErrC_ok);
    plan();
    const int me = diary.get_default_resource_id();
    open->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 09:00"), at("1-Mar-2026 11:00")), me);
    done->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 13:00"), at("1-Mar-2026 14:00")), other->get_id());

    DiaryDisplay display(diary);
    const auto rows = display.get_time_breakdown(project->get_id());
    ASSERT_EQ(rows.size(), 3u);
    const DiaryDisplay::BreakdownRow& overall = rows.back();
    EXPECT_EQ(overall.m_name, "Overall");
    EXPECT_EQ(overall.m_pendingTasks, ZBDuration(2 * 3600));
    EXPECT_EQ(overall.m_completedTasks, ZBDuration(3600));
    EXPECT_EQ(overall.m_remain, open->get_duration().calc.get_remaining());
    for (const auto& row : rows)
        if (row.m_name == "Bob") {
            EXPECT_EQ(row.m_completedTasks, ZBDuration(3600));
            EXPECT_TRUE(row.m_pendingTasks.is_zero());
        }
    EXPECT_TRUE(display.get_time_breakdown(987654).empty());
}
