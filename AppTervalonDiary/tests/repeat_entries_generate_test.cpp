// Which instances a repeating entry gives the planner, and how the cheap pass
// keeps a series on its current instance.
#include "AppTervalonDiary/tests/plan_fixture.h"
#include "tests/support/testsupport.h"

#include <vector>

using namespace Tervalon;

namespace {
struct RepeatGenerate : public Test::PlanFixture {
    // A week from the fixed clock, as the planner's range would be.
    ZBDateSlot week() const { return ZBDateSlot(at("2-Mar-2026 08:00"), at("9-Mar-2026 23:00")); }
    std::vector<ZBDateSlot> instances(DiaryEntry* entry, const ZBDateSlot& range, int limit = 100)
    {
        EXPECT_EQ(entry->edit_erepeat().generate_slots(false, range, limit), ZBErrC_ok);
        return entry->get_erepeat().get_slots();
    }
};
} // namespace

TEST_F(RepeatGenerate, ADailyTaskGivesOneInstancePerDueWithinTheRangeAndLimit)
{
    DiaryEntry* task = add(nullptr, "Water plants");
    task->edit_due().set_orig(at("3-Mar-2026 09:00"));
    task->edit_repeat().from_string("T=2@N=1");
    plan();
    std::vector<ZBDateSlot> all = instances(task, week());
    ASSERT_EQ(all.size(), 7u);
    // The current instance runs from the range's start (no start-after) to
    // its due; each later one from the due before it.
    EXPECT_EQ(all[0], ZBDateSlot(at("2-Mar-2026 08:00"), at("3-Mar-2026 09:00")));
    EXPECT_EQ(all[1], ZBDateSlot(at("3-Mar-2026 09:00"), at("4-Mar-2026 09:00")));
    EXPECT_EQ(all[6].m_end, at("9-Mar-2026 09:00"));
    EXPECT_EQ(instances(task, week(), 3).size(), 3u);
    EXPECT_EQ(task->get_erepeat().separation(), ZBDuration(86400));
    EXPECT_TRUE(task->get_erepeat().slot_match(ZBDateSlot(at("5-Mar-2026 00:00"), at("5-Mar-2026 23:59"))));
    EXPECT_FALSE(task->get_erepeat().slot_match(ZBDateSlot(at("12-Mar-2026 00:00"), at("12-Mar-2026 23:59"))));
}

TEST_F(RepeatGenerate, AStartAfterKeepsItsLeadBeforeEveryDue)
{
    DiaryEntry* task = add(nullptr, "Report");
    task->edit_start().set_orig(at("3-Mar-2026 07:00"));
    task->edit_due().set_orig(at("3-Mar-2026 09:00"));
    task->edit_repeat().from_string("T=2@N=2");
    plan();
    std::vector<ZBDateSlot> all = instances(task, week());
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0], ZBDateSlot(at("3-Mar-2026 07:00"), at("3-Mar-2026 09:00")));
    EXPECT_EQ(all[1], ZBDateSlot(at("5-Mar-2026 07:00"), at("5-Mar-2026 09:00")));
    EXPECT_EQ(all[3], ZBDateSlot(at("9-Mar-2026 07:00"), at("9-Mar-2026 09:00")));
}

TEST_F(RepeatGenerate, AnEntryThatDoesNotRepeatGivesItsOwnWindow)
{
    struct Row {
        const char* start;
        const char* due;
        ZBDateSlot expected;
    } rows[] = {
        {"", "4-Mar-2026 12:00", ZBDateSlot(at("2-Mar-2026 08:00"), at("4-Mar-2026 12:00"))},
        {"4-Mar-2026 12:00", "", ZBDateSlot(at("4-Mar-2026 12:00"), at("9-Mar-2026 23:00"))},
        // Reversed dates are put in order.
        {"6-Mar-2026 12:00", "4-Mar-2026 12:00", ZBDateSlot(at("4-Mar-2026 12:00"), at("6-Mar-2026 12:00"))},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.start) + " / " + row.due);
        DiaryEntry* task = add(nullptr, "Once");
        if (*row.start)
            task->edit_start().set_orig(at(row.start));
        if (*row.due)
            task->edit_due().set_orig(at(row.due));
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        std::vector<ZBDateSlot> all = instances(task, week());
        ASSERT_EQ(all.size(), 1u);
        EXPECT_EQ(all[0], row.expected);
        EXPECT_EQ(task->get_erepeat().separation(), ZBDuration());
    }
}

TEST_F(RepeatGenerate, AWeeklyAppointmentKeepsItsLengthAndTheCacheFollowsChanges)
{
    DiaryEntry* meeting = add(nullptr, "Team", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:30")));
    meeting->edit_repeat().from_string("T=3@N=1");
    plan();
    const ZBDateSlot month(at("2-Mar-2026 08:00"), at("31-Mar-2026 23:00"));
    std::vector<ZBDateSlot> all = instances(meeting, month);
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(all[1], ZBDateSlot(at("9-Mar-2026 10:00"), at("9-Mar-2026 11:30")));
    EXPECT_EQ(all[4], ZBDateSlot(at("30-Mar-2026 10:00"), at("30-Mar-2026 11:30")));
    // A changed entry generates again rather than reusing the old instances.
    meeting->edit_repeat().from_string("T=3@N=2");
    meeting->clear_predicted(false);
    EXPECT_EQ(instances(meeting, month).size(), 3u);
    diary.reset_repeating();
    EXPECT_FALSE(meeting->get_erepeat().has_slots());
}

TEST_F(RepeatGenerate, WithAllThePastInstancesAreKeptNearestFirst)
{
    DiaryEntry* meeting = add(nullptr, "Team", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("16-Mar-2026 10:00"), at("16-Mar-2026 11:00")));
    // Mondays at 10:00, so that the instances line up from any start.
    meeting->edit_repeat().from_string("T=3@N=1@D=1@A=36000");
    plan();
    const ZBDateSlot range(at("1-Mar-2026 00:00"), at("23-Mar-2026 23:00"));
    ASSERT_EQ(meeting->edit_erepeat().generate_slots(true, range, 100), ZBErrC_ok);
    const std::vector<ZBDateSlot>& past = meeting->get_erepeat().get_past_slots();
    ASSERT_EQ(past.size(), 2u);
    EXPECT_EQ(past[0].m_start, at("9-Mar-2026 10:00"));
    EXPECT_EQ(past[1].m_start, at("2-Mar-2026 10:00"));
    EXPECT_EQ(meeting->get_erepeat().get_slots().size(), 2u);
}

// The cheap pass: before its range a series shows its first instance; past
// its end it completes; while it runs it is never left complete.
TEST_F(RepeatGenerate, TheCheapPassKeepsASeriesOnItsInstance)
{
    DiaryEntry* before = add(nullptr, "Not begun");
    before->edit_due().set_orig(at("3-Mar-2026 09:00"));
    before->edit_repeat().from_string("T=2@N=1");
    before->edit_repeat().set_range_start(at("10-Mar-2026 09:00"), false);

    DiaryEntry* ended = add(nullptr, "Ended");
    ended->edit_due().set_orig(at("6-Mar-2026 09:00"));
    ended->edit_repeat().from_string("T=2@N=1");
    ended->edit_repeat().set_range_end(at("5-Mar-2026 09:00"), false);

    DiaryEntry* running = add(nullptr, "Running");
    running->edit_due().set_orig(at("6-Mar-2026 09:00"));
    running->edit_repeat().from_string("T=2@N=1");
    ZBProgress done = running->get_duration().orig;
    done.set_completion(100.0);
    running->edit_duration().set_orig(done);

    diary.recalculate(ZBDatabase::E_RecalcQuick);
    EXPECT_EQ(before->get_due().orig, at("10-Mar-2026 09:00"));
    EXPECT_EQ(before->get_due().calc, at("10-Mar-2026 09:00"));
    EXPECT_FALSE(before->is_complete());
    EXPECT_TRUE(ended->is_complete());
    EXPECT_FALSE(running->is_complete());
    EXPECT_EQ(running->get_due().orig, at("6-Mar-2026 09:00"));

    // Once the range has begun the entry is left where the user puts it.
    now("11-Mar-2026 08:00");
    before->edit_due().set_orig(at("12-Mar-2026 09:00"));
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    EXPECT_EQ(before->get_due().orig, at("12-Mar-2026 09:00"));
}

TEST_F(RepeatGenerate, TheInstanceLastDoneIsFoundFromTheClosingDate)
{
    DiaryEntry* task = add(nullptr, "Weekly");
    task->edit_due().set_orig(at("6-Mar-2026 09:00"));
    // Fridays at 09:00.
    task->edit_repeat().from_string("T=3@N=1@D=5@A=32400");
    ASSERT_EQ(task->mark_complete(at("6-Mar-2026 10:00")), ZBErrC_ok);
    EXPECT_EQ(task->get_due().orig, at("13-Mar-2026 09:00"));
    const ZBDateSlot last = task->get_erepeat().previous_slot(true);
    EXPECT_EQ(last.m_start, at("6-Mar-2026 09:00"));
    DiaryEntry* once = add(nullptr, "Once");
    EXPECT_FALSE(once->get_erepeat().previous_slot(true).m_start.is_ok());
}

TEST_F(RepeatGenerate, ACalendarShowsTheInstancesAroundNow)
{
    DiaryEntry* meeting = add(nullptr, "Daily", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:00")));
    meeting->edit_repeat().from_string("T=2@N=1");
    plan();
    now("2-Mar-2026 12:00");
    std::vector<ZBDateSlot> shown;
    ASSERT_EQ(diary.times_from_repeat(*meeting, shown), ZBErrC_ok);
    // Within a day and an hour of now: today's and tomorrow's, not the day after.
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].m_start, at("3-Mar-2026 10:00"));
}

// The background pass hands its instances back with its plan, so the views
// need not make them again; a rule changed meanwhile keeps its own.
TEST_F(RepeatGenerate, ThePlansLoadBackBringTheInstancesOfAnUnchangedRule)
{
    DiaryEntry* task = add(nullptr, "Water plants");
    task->edit_due().set_orig(at("3-Mar-2026 09:00"));
    task->edit_repeat().from_string("T=2@N=1");
    DiaryEntry* changed = add(nullptr, "Stretch");
    changed->edit_due().set_orig(at("3-Mar-2026 09:00"));
    changed->edit_repeat().from_string("T=2@N=1");
    plan();
    ASSERT_EQ(diary.complete_operation("Repeats"), ZBErrC_ok);
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    const std::string copyFile = file + ".copy.zbd";
    Tervalon::Test::write_file(copyFile, Tervalon::Test::read_file(file));

    Diary copy;
    ASSERT_EQ(copy.load(copyFile, false), ZBErrC_ok);
    DiaryEntry* theirs = copy.get_entry_id(task->get_id());
    DiaryEntry* theirsChanged = copy.get_entry_id(changed->get_id());
    ASSERT_NE(theirs, nullptr);
    const ZBDateSlot seed(at("2-Mar-2026 09:00"), at("3-Mar-2026 09:00"));
    ASSERT_EQ(theirs->edit_repeat().generate(true, seed, nullptr), ZBErrC_ok);
    ASSERT_EQ(theirsChanged->edit_repeat().generate(true, seed, nullptr), ZBErrC_ok);
    const std::vector<ZBDateSlot> made = theirs->get_repeat().get_slots();
    ASSERT_FALSE(made.empty());
    ASSERT_EQ(theirs->get_repeat().get_state(), 2);

    changed->edit_repeat().from_string("T=2@N=2");
    const std::vector<ZBDateSlot> before = changed->get_repeat().get_slots();
    const long stamp = 1L << 40; // nothing here changed after the copy was taken
    task->load_predicted(copy, stamp);
    changed->load_predicted(copy, stamp);
    EXPECT_EQ(task->get_repeat().get_slots(), made);
    EXPECT_EQ(task->get_repeat().get_state(), 2);
    EXPECT_EQ(changed->get_repeat().get_slots(), before) << "another rule's instances would be wrong";
    EXPECT_EQ(changed->get_repeat().to_string(), "T=2@N=2");
    copy.unload();
}
