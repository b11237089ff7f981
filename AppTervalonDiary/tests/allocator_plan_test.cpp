#include "AppTervalonDiary/diary/timeallocator.h"
#include "AppTervalonDiary/tests/plan_fixture.h"

#include <string>
#include <vector>

using namespace Tervalon;

namespace {
struct AllocatorPlan : public Test::PlanFixture {
    static std::string sessions(const DiaryEntry* entry)
    {
        const ZBDateSet& set = entry->get_plan().get_predicted();
        std::string text;
        for (int i = 0; i < set.size(); ++i)
            text += (i ? " " : "") + set[i]->m_start.to_string("%d %H:%M") + "-" + set[i]->m_end.to_string("%H:%M");
        return text;
    }
    DiaryEntry* task(const std::string& title, int hours, const std::string& due = "", double priority = 0.0)
    {
        DiaryEntry* entry = add(nullptr, title);
        set_length(entry, hours);
        if (!due.empty())
            entry->edit_due().set_orig(at(due));
        if (priority != 0.0)
            entry->edit_priority().set_orig(priority);
        return entry;
    }
    bool has_alert(const DiaryEntry* entry, const std::string& prefix)
    {
        for (const ZBNotifyItem& item : entry->get_props().get_notifications())
            if (item.get_text().compare(0, prefix.size(), prefix) == 0)
                return true;
        return false;
    }
};
} // namespace

// Now is Monday 2 March 2026 08:00; work is Monday to Friday 09:00-17:00.
// Whole plans are pinned through the command line (allocator_cli_test); these
// look at what the JSON does not show.

TEST_F(AllocatorPlan, AnAppointmentPullsItsPredecessorsDueToItsStart)
{
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("4-Mar-2026 10:00"), at("4-Mar-2026 11:00")));
    DiaryEntry* slides = task("Slides", 4);
    meeting->edit_depend().add_depend(slides->get_id());
    plan();
    // Four hours back from 10:00 on the 4th, skipping the night.
    EXPECT_EQ(slides->get_muststart(), at("3-Mar-2026 14:00"));
    EXPECT_EQ(slides->get_plan().get_preddue(), at("4-Mar-2026 10:00"));
    EXPECT_EQ(slides->get_plan().get_preddue_id(), meeting->get_id());
    EXPECT_EQ(sessions(slides), "02 09:00-13:00");
    EXPECT_TRUE(meeting->get_plan().get_predicted().empty()) << "appointments are not booked";
}

TEST_F(AllocatorPlan, RepeatingInstancesAreEachBookedBeforeTheirDue)
{
    DiaryEntry* daily = task("Daily", 1, "2-Mar-2026 12:00");
    ASSERT_EQ(daily->edit_repeat().from_string("T=2@N=1"), ZBErrC_ok);
    daily->edit_repeat().set_range_end(at("4-Mar-2026 23:00"), true);
    plan();
    const ZBDateSet& set = daily->get_plan().get_predicted();
    // Each instance can begin once the one before is due.
    EXPECT_EQ(sessions(daily), "02 09:00-10:00 02 12:00-13:00 03 12:00-13:00");
    EXPECT_EQ(set.duration(), ZBDuration(3 * 3600));
    EXPECT_TRUE(daily->get_plan().get_problem_dates().empty()) << sessions(daily);
    EXPECT_FALSE(daily->get_plan().could_overrun());
}

TEST_F(AllocatorPlan, ASecondPassChangesNothing)
{
    DiaryEntry* a = task("A", 5, "3-Mar-2026 12:00", 5.0);
    DiaryEntry* b = task("B", 7, "4-Mar-2026 17:00", 20.0);
    DiaryEntry* c = task("C", 3, "", 1.0);
    DiaryEntry* d = task("D", 6, "3-Mar-2026 17:00");
    d->edit_depend().add_depend(a->get_id());
    c->edit_depend().add_depend(b->get_id());
    plan();
    std::vector<std::string> first;
    for (DiaryEntry* entry : {a, b, c, d})
        first.push_back(sessions(entry) + " / " + entry->get_muststart().to_iso() + " / "
                        + entry->get_due().calc.to_iso());
    plan();
    for (size_t i = 0; i < first.size(); ++i) {
        DiaryEntry* entry = std::vector<DiaryEntry*>{a, b, c, d}[i];
        EXPECT_EQ(sessions(entry) + " / " + entry->get_muststart().to_iso() + " / "
                      + entry->get_due().calc.to_iso(),
                  first[i]);
    }
    EXPECT_FALSE(sessions(c).empty());
    EXPECT_LE(a->get_plan().get_predicted().end(), d->get_plan().get_predicted().start());
}

TEST_F(AllocatorPlan, TheListOrderDoesNotChangeThePlan)
{
    // The same chain made in two orders gives the same sessions.
    auto chain = [this](bool reversed) {
        Diary other;
        std::string file = Tervalon::Test::make_temp_dir("order") + "/o.zbd";
        EXPECT_EQ(other.create(file, true), ZBErrC_ok);
        std::vector<DiaryEntry*> made(3);
        const int order[3] = {reversed ? 2 : 0, 1, reversed ? 0 : 2};
        for (int k : order) {
            DiaryEntry* entry = nullptr;
            EXPECT_EQ(other.create_entry(nullptr, 'T', "T" + std::to_string(k), &entry), ZBErrC_ok);
            set_length(entry, 3);
            made[size_t(k)] = entry;
        }
        made[2]->edit_due().set_orig(at("3-Mar-2026 12:00"));
        made[1]->edit_depend().add_depend(made[0]->get_id());
        made[2]->edit_depend().add_depend(made[1]->get_id());
        EXPECT_EQ(other.full_recalculate(), ZBErrC_ok);
        std::string text;
        for (DiaryEntry* entry : made)
            text += sessions(entry) + "|" + entry->get_muststart().to_iso() + ";";
        other.unload();
        return text;
    };
    const std::string forwards = chain(false);
    EXPECT_EQ(forwards, chain(true));
    // The due at the end of the chain reaches its first link: three hours
    // before each must-start in turn.
    EXPECT_EQ(forwards.substr(0, forwards.find(';')), "02 09:00-12:00|2026-03-02T11:00:00Z") << forwards;
}

// Bad input: each gives a plan with what is possible and a finding, never a
// hang or a crash.
TEST_F(AllocatorPlan, ImpossibleWorkIsReportedNotBooked)
{
    diary.edit_settings().set_features(DiarySettings::C_FeatureTask | DiarySettings::C_FeatureMultiUser);
    Resource* idle = nullptr;
    ASSERT_EQ(diary.add_resource("Idle", &idle), ZBErrC_ok);
    // A calendar with no working day.
    for (int r = -1; r < diary.get_nresources(); ++r) {
        ResourceCalendar& calendar =
            r < 0 ? diary.edit_calendar() : diary.get_resource_by_index(r)->edit_calendar();
        const DayType* weekend = calendar.get_daytype_by_name(DayType::C_Weekend);
        for (int day = 0; day < 7 && weekend; ++day)
            calendar.set_standard_day(day, weekend->get_id());
    }
    DiaryEntry* nowhere = task("Nowhere", 2, "5-Mar-2026 17:00");
    DiaryEntry* unassigned = task("Unassigned", 2);
    unassigned->edit_props().set_resource_orig(idle->get_id());
    // A loop, a dependency on a complete task, a due before the start-after.
    DiaryEntry* x = task("X", 1);
    DiaryEntry* y = task("Y", 1);
    x->edit_depend().add_depend(y->get_id());
    y->edit_depend().add_depend(x->get_id());
    DiaryEntry* done = task("Done", 1);
    done->set_completion(100.0, true);
    DiaryEntry* after = task("After", 1);
    after->edit_depend().add_depend(done->get_id());
    DiaryEntry* backwards = task("Backwards", 1, "3-Mar-2026 09:00");
    backwards->edit_start().set_orig(at("5-Mar-2026 09:00"));
    plan();
    for (DiaryEntry* entry : {nowhere, unassigned, x, y, after, backwards}) {
        EXPECT_TRUE(entry->get_plan().get_predicted().empty()) << entry->get_summary();
        EXPECT_TRUE(has_alert(entry, "Delayed: ")) << entry->get_summary();
    }
    EXPECT_TRUE(done->get_plan().get_predicted().empty());
    EXPECT_FALSE(diary.get_circular_dependencies().empty());
}

TEST_F(AllocatorPlan, AllocatorRunsItsStagesOnItsOwn)
{
    DiaryEntry* a = task("A", 2, "2-Mar-2026 17:00");
    DiaryEntry* b = task("B", 2);
    b->edit_depend().add_depend(a->get_id());
    ASSERT_EQ(diary.full_recalculate(), ZBErrC_ok);
    TimeAllocator allocator;
    ASSERT_EQ(allocator.start(diary), ZBErrC_ok);
    ASSERT_EQ(allocator.get_nrequests(), 2);
    EXPECT_EQ(allocator.get_start(), at("2-Mar-2026 08:01"));
    TimeRequest* first = allocator.get_request(0);
    TimeRequest* second = allocator.get_request(1);
    EXPECT_EQ(second->m_depend, std::vector<int>{first->m_id});
    EXPECT_EQ(first->m_rdepend, std::vector<int>{second->m_id});
    ASSERT_NE(first->get_set(), nullptr);
    allocator.upgrade_times();
    EXPECT_EQ(first->m_mustStart, at("2-Mar-2026 15:00"));
    EXPECT_EQ(second->m_startAfter, at("2-Mar-2026 11:00")) << "two hours of work after now";
    EXPECT_EQ(second->m_startSource, a->get_id());
    // A stopping pass gives up between stages and books nothing.
    allocator.set_stopping([] { return true; });
    EXPECT_EQ(allocator.allocate(diary), ZBErrC_okNotFinished);
    EXPECT_TRUE(first->m_allocated.empty());
}

// The planner books exactly the instances the entry's series gives: the same
// rule for where each instance starts as the calendar and the summary use.
TEST_F(AllocatorPlan, ARepeatingTaskAsksForEachOfItsGeneratedInstances)
{
    DiaryEntry* report = task("Report", 1, "3-Mar-2026 12:00");
    // Two hours' lead before each due, every other day.
    report->edit_start().set_orig(at("3-Mar-2026 10:00"));
    ASSERT_EQ(report->edit_repeat().from_string("T=2@N=2"), ZBErrC_ok);
    DiaryEntry* meeting = add(nullptr, "Stand-up", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 09:30"), at("2-Mar-2026 09:45")));
    ASSERT_EQ(meeting->edit_repeat().from_string("T=2@N=1"), ZBErrC_ok);
    plan();

    TimeAllocator allocator;
    ASSERT_EQ(allocator.start(diary), ZBErrC_ok);
    for (DiaryEntry* entry : {report, meeting}) {
        SCOPED_TRACE(entry->get_summary());
        std::vector<ZBDateSlot> asked;
        for (int i = 0; i < allocator.get_nrequests(); ++i) {
            const TimeRequest* request = allocator.get_request(i);
            if (request->m_entryId == entry->get_id())
                asked.push_back(ZBDateSlot(request->m_startAfter, request->m_due));
        }
        const ZBDateSlot range(ZBDateUtils::now(), allocator.get_range().m_end);
        ASSERT_EQ(entry->edit_erepeat().generate_slots(false, range, TimeAllocator::C_RepeatLimit), ZBErrC_ok);
        const std::vector<ZBDateSlot>& generated = entry->get_erepeat().get_slots();
        ASSERT_GT(generated.size(), 5u);
        ASSERT_EQ(asked.size(), generated.size());
        for (size_t i = 0; i < asked.size(); ++i) {
            EXPECT_EQ(asked[i].m_start, generated[i].m_start) << i;
            EXPECT_EQ(asked[i].m_end, generated[i].m_end) << i;
        }
    }
    // Every instance of the report may start two hours before its due, not
    // from the due of the one before.
    EXPECT_EQ(allocator.get_request(1)->m_startAfter, at("5-Mar-2026 10:00"));
}
