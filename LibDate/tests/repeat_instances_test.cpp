#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

#include <climits>
#include <sstream>

using namespace Tervalon;

namespace {

// Monday 2 March 2026, 08:00 GMT.
const ZBDate C_From(2026, 2, 1, 8, 0, 0, 0, ZBDate::C_GMT);

std::string stored(const ZBDate& date)
{
    std::ostringstream out;
    out << date;
    return out.str();
}

std::vector<std::string> starts(const ZBDateRepeat& repeat, int count, const ZBDate& from,
                                const ZBRepeatConfig* config = nullptr)
{
    std::vector<ZBDateSlot> slots;
    repeat.generate_slots(ZBDateSlot(), ZBDateSlot(from, ZBDate(ZBDate::E_Blank)), count, config, slots);
    std::vector<std::string> out;
    for (const ZBDateSlot& slot : slots)
        out.push_back(slot.m_start.to_iso());
    return out;
}

// A calendar that never works, counting how often it is asked.
class NoWorkDays : public ZBRepeatConfig {
public:
    bool is_workday(const ZBDateDetails&, const std::string&) const override
    {
        ++m_calls;
        return false;
    }
    mutable long m_calls = 0;
};

// Monday to Friday, apart from three weeks of leave from Monday 9 March.
class OnLeave : public ZBRepeatConfig {
public:
    bool is_workday(const ZBDateDetails& details, const std::string&) const override
    {
        ZBDateDetails d(details);
        ZBDate day = d.get_date(ZBDate::C_OriginalTime);
        bool away = !(day < ZBDate(2026, 2, 8, 0, 0, 0, 0, 0)) && day < ZBDate(2026, 2, 29, 0, 0, 0, 0, 0);
        return !away && details.m_dayWeek >= 1 && details.m_dayWeek <= 5;
    }
};

class RepeatInstances : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(C_From); }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
};

} // namespace

TEST_F(RepeatInstances, InstancesComeFromTheRule)
{
    const std::string wednesday = stored(ZBDate(2026, 2, 3, 8, 0, 0, 0, 0));
    const std::string monday = stored(C_From);
    struct {
        std::string rule;
        ZBDate from;
        std::vector<std::string> first;
    } rows[] = {
        // A begin off the rule is not an instance; one on it is the first.
        {"T=3@N=1@D=1@B=" + wednesday, C_From, {"2026-03-09T08:00:00Z", "2026-03-16T08:00:00Z"}},
        {"T=3@N=1@D=3@B=" + wednesday, C_From, {"2026-03-04T08:00:00Z", "2026-03-11T08:00:00Z"}},
        {"T=3@N=1@D=1@A=32400@B=" + monday, C_From, {"2026-03-02T09:00:00Z", "2026-03-09T09:00:00Z"}},
        {"T=4@N=1@D=0@B=" + wednesday, C_From, {"2026-04-01T08:00:00Z", "2026-05-01T08:00:00Z"}},
        {"T=2@N=2@B=" + wednesday, C_From, {"2026-03-04T08:00:00Z", "2026-03-06T08:00:00Z"}},
        {"T=1@N=3600@B=" + wednesday, C_From, {"2026-03-04T08:00:00Z", "2026-03-04T09:00:00Z"}},
        // The earliest listed day wins, whatever order the days fall in that
        // month: in February 2024 the last Friday comes before the 25th.
        {"T=4@D=24,95", ZBDate(2024, 1, 0, 8, 0, 0, 0, 0),
         {"2024-02-23T08:00:00Z", "2024-02-25T08:00:00Z", "2024-03-25T08:00:00Z", "2024-03-29T08:00:00Z"}},
        // The 60th day counted from 1 January.
        {"T=5@D=159", C_From, {"2027-03-01T08:00:00Z", "2028-02-29T08:00:00Z"}},
        // Two times a day, every other day.
        {"T=2@N=2@A=61200,32400", ZBDate(2026, 2, 1, 12, 0, 0, 0, 0),
         {"2026-03-02T17:00:00Z", "2026-03-04T09:00:00Z", "2026-03-04T17:00:00Z"}},
        {"T=6@Y=\"+1 Month 1st\"", C_From, {"2026-04-01T08:00:00Z", "2026-05-01T08:00:00Z"}},
        // Nothing past year 9997.
        {"T=5@N=10", ZBDate(9990, 0, 0, 0, 0, 0, 0, 0), {}},
        {"T=2@N=1", ZBDate(9997, 11, 30, 0, 0, 0, 0, 0), {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(row.rule)));
        EXPECT_EQ(row.first, starts(repeat, int(row.first.size()) + (row.first.empty() ? 3 : 0), row.from));
    }
}

TEST_F(RepeatInstances, IntervalsThatCannotGiveADateAreRefused)
{
    struct {
        const char* rule;
        bool accepted;
    } rows[] = {
        {"T=3@N=400000000@D=1", false}, {"T=4@N=1000000000", false}, {"T=5@N=9997", false},
        {"T=2@N=3650000", false},       {"N=200000@T=4", false},     {"T=5@N=9996", true},
        {"T=4@N=119952", true},         {"T=3@N=519792@D=1", true},  {"T=2@N=3648540", true},
        {"T=1@N=1000000000", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        int result = repeat.from_string(row.rule);
        EXPECT_EQ(!row.accepted, iszbwarn(result));
        if (!row.accepted) {
            ASSERT_NE(nullptr, get_zberror().top());
            std::string message = get_zberror().top()->get_details(ZBErrAsp_System);
            EXPECT_NE(std::string::npos, message.find("should be of the form \"N=N\"")) << message;
            get_zberror().clear_all();
            continue;
        }
        std::vector<ZBDateSlot> slots;
        repeat.generate_slots(ZBDateSlot(), ZBDateSlot(C_From, ZBDate(ZBDate::E_Blank)), 5, nullptr, slots);
        ZBDate previous = C_From;
        for (const ZBDateSlot& slot : slots) {
            EXPECT_LT(slot.m_start.get_year(), ZBDate::C_InvalidDateYear);
            EXPECT_TRUE(previous < slot.m_start);
            previous = slot.m_start;
        }
    }

    ZBDateRepeat weekly;
    weekly.set_type(ZBDateRepeat::E_Weeks);
    EXPECT_TRUE(iszbwarn(weekly.set_interval(600000)));
    get_zberror().clear_all();
    weekly.adjust_interval(INT_MAX);
    EXPECT_EQ(ZBDateRepeat::max_interval(ZBDateRepeat::E_Weeks), weekly.get_interval());
    // A long daily rule switched to years keeps an interval that can still give a date.
    ZBDateRepeat daily;
    ASSERT_FALSE(iszbwarn(daily.from_string("T=2@N=3000000")));
    daily.set_type(ZBDateRepeat::E_Years);
    EXPECT_EQ(ZBDateRepeat::max_interval(ZBDateRepeat::E_Years), daily.get_interval());
}

TEST_F(RepeatInstances, NextDateByType)
{
    EXPECT_TRUE(ZBDateRepeat().next_date(C_From, nullptr).is_blank());
    // A rule the owner steps by hand does not move: the date comes back.
    ZBDateRepeat choice;
    ASSERT_FALSE(iszbwarn(choice.from_string("T=8")));
    EXPECT_EQ(C_From, choice.next_date(C_From, nullptr));
    EXPECT_TRUE(starts(choice, 3, C_From).empty());
    // So does a list of dates that has run out.
    ZBDateRepeat dates;
    dates.set_type(ZBDateRepeat::E_SetDates);
    dates.set_dateset({ZBDate(2026, 1, 0, 0, 0, 0, 0, 0)});
    EXPECT_EQ(C_From, dates.next_date(C_From, nullptr));
}

TEST_F(RepeatInstances, OffsetExpressionRunsFromTheInstanceBefore)
{
    const ZBDate before(2026, 2, 1, 8, 0, 0, 0, 0);
    const ZBDate instance(2026, 2, 8, 8, 0, 0, 0, 0);
    struct {
        const char* rule;
        ZBDate last;
        const char* end;
    } rows[] = {
        {"T=3@D=1@O=1@Z=\"+10 Day\"", before, "2026-03-12T08:00:00Z"},
        {"T=3@D=1@O=1@Z=\"+10 Day\"", ZBDate(), "2026-03-19T08:00:00Z"},
        {"T=3@D=1@O=1@Z=\"@TIME +10 Day\"", before, "2026-03-19T08:00:00Z"},
        // An end before the instance is the instance.
        {"T=3@D=1@O=1@Z=\"+2 Day\"", before, "2026-03-09T08:00:00Z"},
        {"T=3@D=1@O=3610", before, "2026-03-09T09:00:00Z"},
        {"T=3@D=1@O=-161210", before, "2026-03-10T17:00:00Z"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(row.rule)));
        EXPECT_EQ(row.end, repeat.generate_slot(row.last, instance, ZBDate(), nullptr).m_end.to_iso());
    }
}

TEST_F(RepeatInstances, RulesAreCompiledOnceAndAgainAfterAChange)
{
    ZBDateRepeat repeat;
    ASSERT_FALSE(iszbwarn(repeat.from_string("T=6@Y=\"+1 Week\"")));
    EXPECT_EQ(0, repeat.get_state());
    EXPECT_EQ("2026-03-09T08:00:00Z", repeat.next_date(C_From, nullptr).to_iso());
    EXPECT_EQ(1, repeat.get_state());
    repeat.set_exp("+2 Day");
    EXPECT_EQ(0, repeat.get_state());
    EXPECT_EQ("2026-03-04T08:00:00Z", repeat.next_date(C_From, nullptr).to_iso());

    ZBDateRepeat weekly;
    ASSERT_FALSE(iszbwarn(weekly.from_string("T=3@D=1@O=-61210")));
    weekly.next_date(C_From, nullptr);
    // A copy compiles for itself; one loaded with its slots keeps the compiled form.
    ZBDateRepeat copy(weekly);
    EXPECT_EQ(0, copy.get_state());
    ZBDateRepeat loaded;
    loaded.load_slots(weekly);
    EXPECT_EQ(weekly.get_state(), loaded.get_state());
    EXPECT_EQ(weekly.get_expression(), loaded.get_expression());
}

TEST_F(RepeatInstances, NoWorkDayEndsTheSeriesAtOnce)
{
    const char* rules[] = {
        "T=6@Y=\"WorkDay Fixed\"",
        "T=6@Y=\"+1 Day WorkDay Fixed\"",
        "T=2@N=1@W=1",
        "T=3@N=1@D=1,2,3,4,5@W=2",
        "T=1@N=60@W=2",
    };
    for (const char* rule : rules) {
        SCOPED_TRACE(rule);
        ZBDateRepeat repeat;
        ASSERT_FALSE(iszbwarn(repeat.from_string(rule)));
        NoWorkDays calendar;
        EXPECT_TRUE(starts(repeat, 5, C_From, &calendar).empty());
        EXPECT_GE(long(2 * ZBDateRepeat::C_WorkPeriodDays), calendar.m_calls);
    }
    // A long leave is not the end: the series picks up when work does.
    ZBDateRepeat daily;
    ASSERT_FALSE(iszbwarn(daily.from_string("T=2@N=1@W=2")));
    OnLeave leave;
    EXPECT_EQ((std::vector<std::string>{"2026-03-30T08:00:00Z", "2026-03-31T08:00:00Z"}),
              starts(daily, 2, ZBDate(2026, 2, 6, 8, 0, 0, 0, 0), &leave));
}

// A rule loaded with another's instances answers with them until it changes.
TEST_F(RepeatInstances, LoadedSlotsStayUntilTheRuleChanges)
{
    ZBDateRepeat weekly;
    ASSERT_FALSE(iszbwarn(weekly.from_string("T=3@N=1@D=1,3")));
    ZBDateRepeat::set_global_range(ZBDateSlot(C_From, C_From + ZBDuration(std::int64_t(28) * 86400)), 100);
    ASSERT_EQ(weekly.generate(true, ZBDateSlot(), nullptr), ZBErrC_ok);
    ASSERT_EQ(weekly.get_slots().size(), 8u);

    ZBDateRepeat live;
    ASSERT_FALSE(iszbwarn(live.from_string("T=3@N=1@D=1,3")));
    live.load_slots(weekly);
    EXPECT_EQ(live.get_state(), 2);
    EXPECT_EQ(live.get_slots(), weekly.get_slots());
    EXPECT_TRUE(live == weekly);
    // Asking again does not throw them away.
    ASSERT_EQ(live.generate(false, ZBDateSlot(), nullptr), ZBErrC_ok);
    EXPECT_EQ(live.get_slots(), weekly.get_slots());
    // Loading from itself keeps everything.
    live.load_slots(live);
    EXPECT_EQ(live.get_slots().size(), 8u);

    // A changed rule forgets instances that were not its own.
    live.set_interval(2);
    EXPECT_TRUE(live.get_slots().empty());
    EXPECT_EQ(live.get_state(), 0);
    ZBDateRepeat::set_global_range(ZBDateSlot(), 1000);
}

// Two rules stepped in turn on one thread, and one rule changed between
// steps, give what each gives alone: no period of one serves the other.
TEST_F(RepeatInstances, RulesSteppedInTurnDoNotMix)
{
    const char* texts[] = {"T=3@N=1@D=0,1,2,3,4", "T=3@N=1@D=1,2,3,4,5", "T=3@N=2@D=2,4@A=32400,50400",
                           "T=4@N=1@D=0,14,-1", "T=5@N=1@D=300,1500", "T=2@N=1@A=28800,61200"};
    const int n = int(sizeof(texts) / sizeof(texts[0]));
    std::vector<ZBDateRepeat> rules(n);
    std::vector<std::vector<std::string>> alone(n);
    for (int r = 0; r < n; ++r) {
        ASSERT_FALSE(iszbwarn(rules[r].from_string(texts[r])));
        alone[r] = starts(ZBDateRepeat(rules[r]), 40, C_From);
        ASSERT_EQ(alone[r].size(), 40u) << texts[r];
    }
    std::vector<ZBDate> at(n, C_From);
    for (int step = 0; step < 40; ++step)
        for (int r = 0; r < n; ++r) {
            at[r] = rules[r].next_date(at[r], nullptr);
            EXPECT_EQ(at[r].to_iso(), alone[r][size_t(step)]) << texts[r] << " step " << step;
        }
    // Monday to Friday, then Tuesday to Saturday from the same date.
    ZBDateRepeat changing;
    ASSERT_FALSE(iszbwarn(changing.from_string(texts[0])));
    const ZBDate first = changing.next_date(C_From, nullptr);
    changing.set_days({1, 2, 3, 4, 5});
    EXPECT_EQ(changing.next_date(first, nullptr).to_iso(), alone[1][1]);
}
