#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

using namespace Tervalon;
using T = ZBDateExpTerm;

namespace {

// Wednesday 4 March 2026, 10:30 GMT.
const ZBDate C_Now(2026, 2, 3, 10, 30, 0, 0, ZBDate::C_GMT);

// Starting points that tell expressions apart: a month end, a clock with
// seconds and microseconds (which a lost term would leave standing), a leap day.
std::vector<ZBDate> starts()
{
    return {C_Now, ZBDate(2026, 0, 30, 23, 59, 58, 123456, ZBDate::C_GMT),
            ZBDate(2028, 1, 28, 7, 5, 9, 999999, ZBDate::C_GMT), ZBDate(2026, 11, 31, 0, 0, 1, 1, 7200)};
}

class CanonicalText : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(C_Now); }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    // The canonical text reads back without loss, gives the same dates from
    // every start, and prints again as itself.
    static void check_round_trip(const ZBDateExp& exp, const std::string& label)
    {
        const std::string canonical = exp.to_string();
        bool complete = false;
        const ZBDateExp back = ZBDateParser::parse_date(canonical, &complete);
        EXPECT_TRUE(complete) << label << " -> " << canonical;
        EXPECT_EQ(back.is_invalid(), exp.is_invalid()) << label << " -> " << canonical;
        EXPECT_EQ(back.to_string(), canonical) << label;
        for (const ZBDate& start : starts())
            EXPECT_EQ(back.apply(start), exp.apply(start)) << label << " -> " << canonical << " from "
                                                            << start.to_iso();
    }
};

} // namespace

TEST_F(CanonicalText, TypedTextsReadBackToTheSameExpression)
{
    const struct {
        const char* text;
        const char* canonical; // null: not pinned, only the round trip
    } rows[] = {
        {"minute 30 second 5", "Minute 30 Second 5"},
        {"second 5 usecond 7", "Second 5 uSecond 7"},
        {"hour 9 minute 30", "Hour 9 Minute 30"},
        {"14:30:15.000123", "14:30:15.000123"},
        {"14:30:15.5", "14:30:15.500000"},
        {"9:15PM", "9:15:00PM"},
        {"hour 9 PM", "Hour 9PM"},
        {"last day", "Last Day"},
        {"2nd last day", "2nd Last Day"},
        {"Feb last day", "Feb Last Day"},
        {"Mar 1st Mon", "Mar 1st Mon"},
        {"Mar 5th", "Mar 5th"},
        {"5th, Fri", "5th, Fri"},
        {"9-Mar-2026 14:00", "9-Mar/2026 14:00:00"},
        {"Mar 2027", "Mar/2027"},
        {"2027-Mar", "Mar/2027"},
        {"2020Jan2", "2-Jan/2020"},
        {"2026-2+", "Feb/2026"},
        {"310Apr", "Apr/0310"},
        {"0001 Oct", "Oct/0001"}, // a small year printed with four digits is still a year
        {"Oct 0050", "Oct/0050"},
        {"GMT 7-Dec", "UTC 7-Dec"}, // a number after a blank is no offset
        {"UTC 13:36:07", "UTC 13:36:07"},
        {"Sep/2026 Nov/2027", "Sep/2026 Nov/2027"}, // each year stays with its own month
        {"2026/F026/F0e40e4", nullptr},
        {"Jan +1 Day", "Jan +1 Day"},
        {"14:00 UTC+12:45", "14:00:00 UTC+12:45"},
        {"14:00 UTC-9:30 DST", "14:00:00 UTC-9:30 DST"},
        {"now +-1 week", "Now +-7 Day"},
        {"+-3 Month (1-Apr|1-Jul|1-Oct|+1 Year 1-Jan)", nullptr},
        {"(Jan|Feb) +1 Day", "(Jan|Feb) +1 Day"},
        {"12:00AM +1 Month 1st +-1 Day", nullptr},
        {"next Mon 9:15PM", nullptr},
        {"6th Fri", nullptr},
        {"+1:30:20", nullptr},
        {"+5 usecond +-2 second", nullptr},
        {"tomorrow 8AM", nullptr},
        {"+1 Week Fixed", nullptr},
        {"@Start +2 WorkDay", nullptr},
        {"last WorkDayFor bob", nullptr},
        {"week 12", nullptr},
        {"2026 Local DST", nullptr},
        {"yesterday NoDST DefaultZone", nullptr},
    };
    for (const auto& row : rows) {
        const ZBDateExp exp = ZBDateParser::parse_date(row.text);
        ASSERT_FALSE(exp.is_invalid()) << row.text;
        if (row.canonical) {
            EXPECT_EQ(exp.to_string(), row.canonical) << row.text;
        }
        check_round_trip(exp, row.text);
    }
}

// Expressions a program builds, term by term, print as text that means the same.
TEST_F(CanonicalText, BuiltExpressionsReadBack)
{
    const struct {
        std::vector<ZBDateExpTerm> terms;
        const char* canonical;
    } rows[] = {
        {{{T::SetMinute, 30}, {T::SetSecond, 5}}, "Minute 30 Second 5"},
        {{{T::SetSecond, 5}, {T::SetMicro, 0}}, "Second 5 uSecond 0"},
        {{{T::SetHour, 9}, {T::SetMinute, 30}, {T::SetSecond, 0}, {T::SetMicro, 250}}, "9:30:00.000250"},
        {{{T::SetHour, 9}, {T::SetMinute, 30}}, "Hour 9 Minute 30"},
        {{{T::SetDay, -1}}, "Last Day"},
        {{{T::SetDay, -2}}, "2nd Last Day"},
        {{{T::SetDay, -3}, {T::SetMonth, 1}}, "3rd Last Day Feb"},
        {{{T::SetDay, 1}, {T::SetWeekday, 3}}, "2nd, Wed"},
        {{{T::SetDay, 0}, {T::SetMonth, 0}, {T::SetYear, 2027}}, "1-Jan/2027"},
        {{{T::AddMicro, -7}}, "+-7 USecond"},
    };
    for (const auto& row : rows) {
        ZBDateExp exp;
        for (const ZBDateExpTerm& term : row.terms)
            exp.add_term(term.m_type, term.m_value, term.m_tag);
        EXPECT_EQ(exp.to_string(), row.canonical);
        check_round_trip(exp, row.canonical);
    }
    // A year then a month reads back with the two the other way round, which
    // sets the same date.
    ZBDateExp yearMonth;
    yearMonth.add_term(T::SetYear, 2027);
    yearMonth.add_term(T::SetMonth, 2);
    EXPECT_EQ(yearMonth.to_string(), "2027-Mar");
    const ZBDateExp back = ZBDateParser::parse_date(yearMonth.to_string());
    for (const ZBDate& start : starts())
        EXPECT_EQ(back.apply(start), yearMonth.apply(start)) << start.to_iso();
}

TEST_F(CanonicalText, MonthNamedAloneCountsWithinThatMonth)
{
    // The month is set before the day counted from its end and before the
    // weekday counted within it.
    EXPECT_EQ(ZBDateUtils::read_date("Feb last day").to_iso(), "2026-02-28T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("Jun 1st Mon").to_iso(), "2026-06-01T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("Jan 2nd last day").to_iso(), "2026-01-30T10:30:00Z");
}
