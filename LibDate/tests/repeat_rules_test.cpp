#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

// Monday 2 March 2026, 08:00 GMT.
const ZBDate C_From(2026, 2, 1, 8, 0, 0, 0, ZBDate::C_GMT);

std::vector<std::string> instances(const ZBDateRepeat& repeat, int count, const ZBDate& from = C_From)
{
    std::vector<ZBDateSlot> slots;
    repeat.generate_slots(ZBDateSlot(), ZBDateSlot(from, ZBDate(ZBDate::E_Blank)), count, nullptr, slots);
    std::vector<std::string> out;
    for (const ZBDateSlot& slot : slots)
        out.push_back(slot.m_start.to_iso());
    return out;
}

class RepeatRules : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(C_From); }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
};

} // namespace

// One row per rule: its stored text, its words and its first instances.
TEST_F(RepeatRules, WordsAndFirstDatesByKind)
{
    struct {
        const char* rule;
        const char* words;
        std::vector<std::string> first;
    } rows[] = {
        // Seconds
        {"T=1@N=5400", "Every 01:30:00", {"2026-03-02T09:30:00Z", "2026-03-02T11:00:00Z"}},
        // Days
        {"T=2@N=1", "Every day", {"2026-03-03T08:00:00Z", "2026-03-04T08:00:00Z"}},
        {"T=2@N=3@A=61200", "Every 3 days at 17:00", {"2026-03-02T17:00:00Z", "2026-03-05T17:00:00Z"}},
        {"T=2@N=2@A=32400,61200", "Every 2 days at 09:00, 17:00",
         {"2026-03-02T09:00:00Z", "2026-03-02T17:00:00Z", "2026-03-04T09:00:00Z"}},
        // Weeks
        {"T=3@N=1@D=1,3", "Every week on Mon, Wed",
         {"2026-03-04T08:00:00Z", "2026-03-09T08:00:00Z", "2026-03-11T08:00:00Z"}},
        {"T=3@N=2@D=5@A=36000", "Every 2 weeks on Fri at 10:00", {"2026-03-06T10:00:00Z", "2026-03-20T10:00:00Z"}},
        // Months
        {"T=4@N=1@D=0", "Every month on 1st", {"2026-04-01T08:00:00Z", "2026-05-01T08:00:00Z"}},
        {"T=4@N=1@D=-1", "Every month on last", {"2026-03-31T08:00:00Z", "2026-04-30T08:00:00Z"}},
        {"T=4@N=3@D=14", "Every 3 months on 15th", {"2026-03-15T08:00:00Z", "2026-06-15T08:00:00Z"}},
        {"T=4@N=1@D=41", "Every month on 1st Monday", {"2026-04-06T08:00:00Z", "2026-05-04T08:00:00Z"}},
        {"T=4@N=1@D=95", "Every month on last Friday", {"2026-03-27T08:00:00Z", "2026-04-24T08:00:00Z"}},
        // Years
        {"T=5@N=1@D=1102", "Every year on 3 Jun", {"2026-06-03T08:00:00Z", "2027-06-03T08:00:00Z"}},
        {"T=5@N=2@D=2311", "Every 2 years on 12 Dec", {"2026-12-12T08:00:00Z", "2028-12-12T08:00:00Z"}},
        // Set dates and choice
        {"T=7@S=000001090202026000000,000001190302026000000", "On ", {"2026-03-10T01:00:00Z", "2026-04-20T01:00:00Z"}},
        {"T=8", "When I Choose.", {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(row.rule)));
        std::string words = repeat.to_natural(nullptr);
        EXPECT_EQ(0u, words.find(row.words)) << words;
        EXPECT_EQ(row.first, instances(repeat, int(row.first.size()) + (row.first.empty() ? 3 : 0)));
    }
}

TEST_F(RepeatRules, MonthEndsAndLeapYearsCarryForwardAndKeepAdvancing)
{
    struct {
        const char* rule;
        ZBDate from;
        std::vector<std::string> first;
    } rows[] = {
        // The 31st in a 30-day month carries into the next, and the series goes on.
        {"T=4@D=30", ZBDate(2026, 2, 30, 8, 0, 0, 0, 0),
         {"2026-05-01T08:00:00Z", "2026-05-31T08:00:00Z", "2026-07-01T08:00:00Z", "2026-07-31T08:00:00Z"}},
        // 29 February: in a common year it is 1 March.
        {"T=5@D=328", ZBDate(2026, 0, 0, 0, 0, 0, 0, 0),
         {"2026-03-01T00:00:00Z", "2027-03-01T00:00:00Z", "2028-02-29T00:00:00Z"}},
        // The last day follows the month's length, leap February included.
        {"T=4@D=-1", ZBDate(2028, 0, 30, 12, 0, 0, 0, 0), {"2028-02-29T12:00:00Z", "2028-03-31T12:00:00Z"}},
        // Every month, no day: the day is kept or clipped to the month's end.
        {"T=4@N=1", ZBDate(2026, 0, 30, 8, 0, 0, 0, 0), {"2026-02-28T08:00:00Z", "2026-03-28T08:00:00Z"}},
        {"T=5@N=4", ZBDate(2024, 1, 28, 8, 0, 0, 0, 0), {"2028-02-29T08:00:00Z", "2032-02-29T08:00:00Z"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(row.rule)));
        EXPECT_EQ(row.first, instances(repeat, int(row.first.size()), row.from));
    }
}

TEST_F(RepeatRules, ExcludedInstancesAreSkippedAndTheSeriesGoesOn)
{
    ZBDateRepeat repeat;
    ASSERT_FALSE(iszbwarn(repeat.from_string("T=2@N=1")));
    repeat.exclude_day(ZBDate(2026, 2, 3, 12, 0, 0, 0, 0));
    repeat.exclude_range(ZBDateSlot(ZBDate(2026, 2, 5, 0, 0, 0, 0, 0), ZBDate(2026, 2, 6, 0, 0, 0, 0, 0)));
    EXPECT_EQ((std::vector<std::string>{"2026-03-03T08:00:00Z", "2026-03-05T08:00:00Z", "2026-03-08T08:00:00Z"}),
              instances(repeat, 3));
    EXPECT_EQ("04/Mar/2026-04/Mar/2026,06/Mar/2026-07/Mar/2026", repeat.get_exclude_string());
    // Exclusions travel in the stored text.
    ZBDateRepeat back;
    ASSERT_FALSE(iszbwarn(back.from_string(repeat.to_string())));
    EXPECT_EQ(repeat, back);

    // Exclusions that ended over 30 days ago are dropped.
    ZBDateRepeat old;
    old.exclude_day(C_From - ZBDuration(40 * 86400));
    EXPECT_TRUE(old.get_exclude().empty());
}

TEST_F(RepeatRules, WorkDayRules)
{
    // Every day, but a Saturday or Sunday moves to Monday.
    ZBDateRepeat next;
    ASSERT_FALSE(iszbwarn(next.from_string("T=2@N=1@W=1")));
    ZBDate friday(2026, 2, 5, 8, 0, 0, 0, 0);
    EXPECT_EQ("2026-03-09T08:00:00Z", next.next_date(friday, nullptr).to_iso());
    EXPECT_EQ("Every day on next work day", next.to_natural(nullptr));

    // Only on work days: the weekend instances are dropped.
    ZBDateRepeat only;
    ASSERT_FALSE(iszbwarn(only.from_string("T=2@N=1@W=2")));
    EXPECT_EQ((std::vector<std::string>{"2026-03-09T08:00:00Z", "2026-03-10T08:00:00Z"}), instances(only, 2, friday));

    // A rule that only ever lands on weekends ends its series, not the program.
    ZBDateRepeat never;
    ASSERT_FALSE(iszbwarn(never.from_string("T=3@D=0,6@W=2")));
    EXPECT_TRUE(instances(never, 5).empty());

    // Time type 0 would be stored as "no rule": refused.
    ZBDateRepeat typed;
    typed.set_type(ZBDateRepeat::E_Days);
    EXPECT_TRUE(iszbwarn(typed.set_workday(ZBDateRepeat::E_WorkOnly, 0)));
    get_zberror().clear_all();
    EXPECT_FALSE(iszbwarn(typed.set_workday(ZBDateRepeat::E_WorkOnly, 7)));
    ZBDateRepeat::E_WorkdayType type = ZBDateRepeat::E_WorkNone;
    int id = 0;
    typed.get_workday(type, id);
    EXPECT_EQ(ZBDateRepeat::E_WorkOnly, type);
    EXPECT_EQ(7, id);
}

TEST_F(RepeatRules, OffsetsGiveTheEndOfEachInstance)
{
    ZBDateRepeat last;
    ASSERT_FALSE(iszbwarn(last.from_string("T=3@D=1")));
    std::vector<ZBDateSlot> slots;
    last.generate_slots(ZBDateSlot(), ZBDateSlot(C_From, ZBDate(ZBDate::E_Blank)), 3, nullptr, slots);
    ASSERT_EQ(3u, slots.size());
    for (size_t i = 0; i + 1 < slots.size(); ++i)
        EXPECT_EQ(slots[i].m_end, slots[i + 1].m_start);

    ZBDateRepeat timed;
    timed.set_type(ZBDateRepeat::E_Weeks);
    timed.set_days({2});
    timed.set_offset_time(ZBDuration(17 * 3600), 1);
    ZBDateSlot slot = timed.generate_slot(ZBDate(), ZBDate(2026, 2, 2, 8, 0, 0, 0, 0), ZBDate(), nullptr);
    EXPECT_EQ("2026-03-04T17:00:00Z", slot.m_end.to_iso());
    ZBDuration duration;
    int days = 0;
    EXPECT_EQ(ZBDateRepeat::E_OffTime, timed.get_offset_details(duration, days));
    EXPECT_EQ(1, days);
}

TEST_F(RepeatRules, BadRulesGiveTheirMessage)
{
    struct {
        const char* rule;
        const char* message;
    } rows[] = {
        {"T=x", "T=x should be of the form \"T=[0-6]\""},
        {"T=2@N=0", "N=0 should be of the form \"N=N\""},
        {"T=2@N=-3", "N=-3 should be of the form \"N=N\""},
        {"T=3@D=7", "D=7 should be of the form \"D=D[,D]\""},
        {"T=5@D=99", "D=99 should be of the form \"D=D[,D]\""},
        {"T=2@B=zz", "B=zz should be of the form \"B=\"DATE\"\""},
        {"T=6@Y=next", "Y=next should be of the form \"Y=\"EXPRESSION\"\""},
        {"T=2@X=2026", "X=2026 should be of the form \"X=E[,E]\""},
        {"T=2@Q=1", "I do not understand Q=1 in T=2@Q=1"},
        {"REPEAT_WEEKDAY(mon xyz)", "REPEAT_WEEKDAY(mon xyz) should be of the form \"REPEAT_WEEKDAY(mon tue wed)\""},
        {"T=2@B=000000000002026000000@E=000000000002025000000", "The end of a repeat cannot come before its start."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        EXPECT_TRUE(iszbwarn(repeat.from_string(row.rule)));
        ASSERT_NE(nullptr, get_zberror().top());
        EXPECT_EQ(row.message, get_zberror().top()->get_details(ZBErrAsp_System));
        get_zberror().clear_all();
    }
}

TEST_F(RepeatRules, OldFormsRead)
{
    struct {
        const char* old;
        const char* now;
    } rows[] = {
        {"REPEAT_DAYS(3)", "T=2@N=3"},
        {"REPEAT_WEEKDAY(mon tue wed)", "T=3@N=1@D=1,2,3"},
        {"REPEAT_MONTHDAY(1 2 4 12)", "T=4@N=1@D=0,1,3,11"},
        {"REPEAT_YEARDAY(3 Jun 12 Sep)", "T=5@N=1@D=1102,1711"},
        {"T=9999", "T=8"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.old);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(row.old)));
        EXPECT_EQ(row.now, repeat.to_string());
    }
}

TEST_F(RepeatRules, StoredTextRoundTripsAndFixedFieldsStayOut)
{
    const char* rules[] = {
        "T=1@N=900@O=610",
        "T=2@N=2@A=32400,61200@O=3610@W=1",
        "T=3@N=1@D=1,3,5@O=-100020@B=000000000002026000000@W=17@E=000000000002027000000",
        "T=4@N=1@D=-1,41@O=2@W=-4",
        "T=5@N=1@D=1125,5023@W=1000000005",
        "T=6@Y=\"+1 Week Fixed\"@Z=\"+2 Hour\"",
        "T=7@S=000000000002026000000,000012000002026000000@O=3610",
        "T=2@N=1@X=20260310,2026032020260325",
    };
    for (const char* rule : rules) {
        SCOPED_TRACE(rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(rule)));
        EXPECT_EQ(rule, repeat.to_string());
        // And through the object stream.
        std::string text;
        ASSERT_FALSE(iszbwarn(repeat.object_to_string(text, 0)));
        ZBDateRepeat back;
        ASSERT_FALSE(iszbwarn(back.object_from_string(text, 0)));
        EXPECT_EQ(repeat, back);
    }
    ZBDateRepeat fixed;
    ASSERT_FALSE(iszbwarn(fixed.from_string("T=3@N=1@D=1@B=000000000002026000000")));
    fixed.set_fixed(ZBDateRepeat::E_FixedBegin, true);
    EXPECT_EQ("T=3@N=1@D=1", fixed.to_string());
    // Reading keeps what the owner supplies.
    ASSERT_FALSE(iszbwarn(fixed.from_string("T=3@N=2@D=2")));
    EXPECT_TRUE(fixed.get_range_start().is_ok());
}

TEST_F(RepeatRules, SeriesLimitsAndBackwards)
{
    ZBDateRepeat repeat;
    ASSERT_FALSE(iszbwarn(repeat.from_string("T=2@N=1@A=43200@B=000012040202026000000@E=000012080202026000000")));
    // From the 5th to the 9th of March, 12:00: the begin is the first instance.
    EXPECT_EQ((std::vector<std::string>{"2026-03-05T12:00:00Z", "2026-03-06T12:00:00Z", "2026-03-07T12:00:00Z",
                                        "2026-03-08T12:00:00Z", "2026-03-09T12:00:00Z"}),
              instances(repeat, 20));

    ZBDateRepeat daily;
    ASSERT_FALSE(iszbwarn(daily.from_string("T=2@N=1@A=43200")));
    std::vector<ZBDateSlot> back;
    ZBDate stop(2026, 2, 10, 0, 0, 0, 0, 0);
    daily.generate_back_slots(ZBDateSlot(stop, stop), ZBDateSlot(ZBDate(2026, 0, 0, 0, 0, 0, 0, 0), stop), 3, nullptr,
                              back);
    ASSERT_EQ(3u, back.size());
    EXPECT_EQ("2026-03-10T12:00:00Z", back[0].m_start.to_iso());
    EXPECT_EQ("2026-03-08T12:00:00Z", back[2].m_start.to_iso());

    EXPECT_TRUE(ZBDateRepeat().next_date(C_From, nullptr).is_blank());
    ZBDateRepeat rough;
    ASSERT_FALSE(iszbwarn(rough.from_string("T=4@N=2@D=0,14,-1")));
    EXPECT_EQ(20, rough.days_between());
}
