#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbrepeatconfig.h"
#include "LibCore/error/zberror.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

// Wednesday 4 March 2026, 10:30 GMT; TZ is UTC, so GMT is the local zone and
// the locale reads day first with Monday as the first day of the week.
const ZBDate C_Now(2026, 2, 3, 10, 30, 0, 0, ZBDate::C_GMT);

struct Row {
    const char* text;
    const char* moment; // ISO 8601 in UTC
};

class DateText : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(C_Now); }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        zblocale().set_day_format(1);
        get_zberror().clear_all();
    }

    static void check(const Row* rows, size_t n, const ZBDate* relative = nullptr)
    {
        for (size_t i = 0; i < n; ++i) {
            ZBDate date;
            EXPECT_TRUE(date.from_string(rows[i].text, relative)) << rows[i].text;
            EXPECT_EQ(date.to_iso(), rows[i].moment) << rows[i].text;
        }
    }
};

} // namespace

TEST_F(DateText, AbsoluteDatesAndTimes)
{
    const Row rows[] = {
        {"9-Mar-2026 14:00", "2026-03-09T14:00:00Z"},
        {"2026-03-09", "2026-03-09T10:30:00Z"}, // the clock of now is kept
        {"2020-1-2", "2020-01-02T10:30:00Z"},  // four digits first: year first whatever the style
        {"1/2/03", "2003-02-01T10:30:00Z"},
        {"5-Apr-26", "2026-04-05T10:30:00Z"},
        {"25-12-99", "1999-12-25T10:30:00Z"}, // 2099 is too far ahead: the century before
        {"1 Jan 2027", "2027-01-01T10:30:00Z"},
        {"1 Jan, 2027", "2027-01-01T10:30:00Z"},
        {"Mar 15", "2026-03-15T10:30:00Z"},
        {"Mar 5/2027", "2027-03-05T10:30:00Z"},
        {"march 15 2027", "2027-03-15T10:30:00Z"},
        {"15th", "2026-03-15T10:30:00Z"},
        {"Jan", "2026-01-04T10:30:00Z"}, // the month alone; the day stays
        {"2027", "2027-03-04T10:30:00Z"},
        {"2026-Dec", "2026-12-04T10:30:00Z"},
        {"31-Feb", "2026-03-03T10:30:00Z"}, // read leniently: the day carries into March
        {"14:30", "2026-03-04T14:30:00Z"},
        {"14:30:15", "2026-03-04T14:30:15Z"},
        {"14:30:15.5", "2026-03-04T14:30:15.500000Z"},
        {"14:30:15.000123", "2026-03-04T14:30:15.000123Z"},
        {"14;30", "2026-03-04T14:30:00Z"},
        {"9PM", "2026-03-04T21:00:00Z"},
        {"9 pm", "2026-03-04T21:00:00Z"},
        {"2:15PM", "2026-03-04T14:15:00Z"},
        {"12AM", "2026-03-04T00:00:00Z"},
        {"12PM", "2026-03-04T12:00:00Z"},
        {"hour 9", "2026-03-04T09:30:00Z"}, // the hour alone: minutes stay
        {"minute 5", "2026-03-04T10:05:00Z"},
        {"week 1", "2026-01-07T10:30:00Z"},
        {"14:00 UTC+2", "2026-03-04T12:00:00Z"},
        {"14:00 GMT-5:30", "2026-03-04T19:30:00Z"},
        {"UTC 14:00", "2026-03-04T14:00:00Z"}, // after a blank a number is the time, not an offset
        {"GMT2 14:00", "2026-03-04T12:00:00Z"},
        {"  9-Mar-2026   14:00  ", "2026-03-09T14:00:00Z"},
    };
    check(rows, sizeof rows / sizeof rows[0]);
}

TEST_F(DateText, DayMonthOrderFollowsTheLocale)
{
    const struct {
        int format;
        const char* text;
        const char* moment;
    } rows[] = {
        {1, "1/2/03", "2003-02-01T10:30:00Z"}, {4, "1/2/03", "2003-01-02T10:30:00Z"},
        {7, "1/2/03", "2001-02-03T10:30:00Z"}, {1, "1/2/2003", "2003-02-01T10:30:00Z"},
        {4, "1/2/2003", "2003-01-02T10:30:00Z"}, {7, "1/2/2003", "2003-01-02T10:30:00Z"},
        {1, "3/4", "2026-04-03T10:30:00Z"},    {4, "3/4", "2026-03-04T10:30:00Z"},
    };
    for (const auto& row : rows) {
        zblocale().set_day_format(row.format);
        EXPECT_EQ(ZBDateUtils::read_date(row.text).to_iso(), row.moment) << row.text << " format " << row.format;
    }
}

TEST_F(DateText, RelativeWordsAndSteps)
{
    const Row rows[] = {
        {"now", "2026-03-04T10:30:00Z"},
        {"today", "2026-03-04T10:30:00Z"},
        {"tomorrow", "2026-03-05T10:30:00Z"},
        {"TOM", "2026-03-05T10:30:00Z"},
        {"yesterday", "2026-03-03T10:30:00Z"},
        {"tomorrow 9AM", "2026-03-05T09:00:00Z"},
        {"+1 Day", "2026-03-05T10:30:00Z"},
        {"+1d", "2026-03-05T10:30:00Z"},
        {"+1 Days", "2026-03-05T10:30:00Z"},
        {"+1 Daily", "2026-03-05T10:30:00Z"},
        {"+-1 Day", "2026-03-03T10:30:00Z"},
        {"+2 Hours", "2026-03-04T12:30:00Z"},
        {"+90 Min", "2026-03-04T12:00:00Z"},
        {"+1:30", "2026-03-04T12:00:00Z"},
        {"+-1:30:10", "2026-03-04T08:59:50Z"},
        {"+45 s", "2026-03-04T10:30:45Z"},
        {"+1 Week", "2026-03-11T10:30:00Z"},
        {"now +-1 Week", "2026-02-25T10:30:00Z"},
        {"+1 Month", "2026-04-04T10:30:00Z"},
        {"+1 Year", "2027-03-04T10:30:00Z"},
        {"+1 WorkDay", "2026-03-05T10:30:00Z"},
        {"+3 WorkDays", "2026-03-09T10:30:00Z"}, // Thursday, Friday, Monday
        {"next week", "2026-03-11T10:30:00Z"},
        {"last month", "2026-02-04T10:30:00Z"},
        {"next year", "2027-03-04T10:30:00Z"},
        {"tomorrow +1 Mystery", "2026-03-05T10:30:00Z"}, // an unknown unit adds nothing
    };
    check(rows, sizeof rows / sizeof rows[0]);
}

TEST_F(DateText, StepsFromAGivenDate)
{
    const ZBDate jan31(2026, 0, 30, 9, 0, 0, 0, ZBDate::C_GMT);
    const ZBDate friday(2026, 2, 5, 9, 0, 0, 0, ZBDate::C_GMT);
    const ZBDate july1(2026, 6, 0, 9, 0, 0, 0, ZBDate::C_GMT);
    const Row fromJan31[] = {{"+1 Month", "2026-02-28T09:00:00Z"}, {"+1 Month +1 Month", "2026-03-28T09:00:00Z"}};
    check(fromJan31, 2, &jan31);
    const Row fromFriday[] = {
        {"+1 Day Fixed", "2026-03-09T09:00:00Z"}, // Saturday and Sunday are passed over
        {"+1 WorkDay", "2026-03-09T09:00:00Z"},
        {"+0 WorkDay", "2026-03-06T09:00:00Z"},
        {"last WorkDay", "2026-03-09T09:00:00Z"}, // a negative count stops at the next work day
    };
    check(fromFriday, 4, &friday);
    // Neither quarter start is later than 1 July itself, so the date stays.
    const Row fromJuly[] = {{"(1-Apr|1-Jul)", "2026-07-01T09:00:00Z"}, {"(1-Apr|1-Jul|1-Oct)", "2026-10-01T09:00:00Z"}};
    check(fromJuly, 2, &july1);
}

TEST_F(DateText, Weekdays)
{
    const Row rows[] = {
        {"Mon", "2026-03-02T10:30:00Z"}, // within the locale's week, Monday to Sunday
        {"fri", "2026-03-06T10:30:00Z"},
        {"Sunday", "2026-03-08T10:30:00Z"},
        {"tu", "2026-03-03T10:30:00Z"},
        {"Wed", "2026-03-04T10:30:00Z"},
        {"next Mon", "2026-03-09T10:30:00Z"},
        {"next Wed", "2026-03-11T10:30:00Z"},
        {"last Fri", "2026-02-27T10:30:00Z"},
        {"Mon 9AM", "2026-03-02T09:00:00Z"},
        {"1st Mon", "2026-03-02T10:30:00Z"},
        {"2nd Tue", "2026-03-10T10:30:00Z"},
        {"6th Fri", "2026-03-27T10:30:00Z"}, // the sixth is the last
        // A month named first is set first, so the weekday is found in it.
        {"Apr 1st Mon", "2026-04-06T10:30:00Z"},
    };
    check(rows, sizeof rows / sizeof rows[0]);
}

TEST_F(DateText, WeekdaysWithSundayFirst)
{
    zblocale().set_first_day(0);
    EXPECT_EQ(ZBDateUtils::read_date("Sun").to_iso(), "2026-03-01T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("Sat").to_iso(), "2026-03-07T10:30:00Z");
    zblocale().set_first_day(1);
}

TEST_F(DateText, Expressions)
{
    const Row rows[] = {
        {"+-3 Month (1-Apr|1-Jul|1-Oct|+1 Year 1-Jan)", "2026-01-01T10:30:00Z"},
        {"12:00AM +1 Month 1st +-1 Day", "2026-03-31T00:00:00Z"},
        {"+1 Day 11PM", "2026-03-05T23:00:00Z"},
        {"now +-1 Week", "2026-02-25T10:30:00Z"},
        {"+-1 Month +1 Month 1st", "2026-03-01T10:30:00Z"},
        {"(+1 Day|+2 Day)", "2026-03-05T10:30:00Z"},
        {"((1-Jan|1-Feb)|1-Jun)", "2026-06-01T10:30:00Z"},
        {"@Start +1 Day", "2026-03-05T10:30:00Z"},
    };
    check(rows, sizeof rows / sizeof rows[0]);
}

TEST_F(DateText, RelativeTagIsKeptForTheCaller)
{
    ZBDateExp exp = ZBDateParser::parse_date("@START +1 Day");
    EXPECT_EQ(exp.get_relative(), "START");
    EXPECT_EQ(exp.size(), 2);
}

TEST_F(DateText, EmptyTextIsBlankNotInvalid)
{
    for (const char* text : {"", "   ", "\t \n"}) {
        ZBDate date;
        EXPECT_TRUE(date.from_string(text)) << '"' << text << '"';
        EXPECT_TRUE(date.is_blank()) << '"' << text << '"';
    }
}

TEST_F(DateText, UnreadableTextIsInvalid)
{
    for (const char* text : {"blah", "-1 Day", "9-Foo-2026", "tomorrow = 2", "12345678901", "9-Mar-12345678901",
                             "+999999999 Year", "+999999999 Week", "INVALID", "+1 WorkDayFor bob", "2026 9999999999"}) {
        ZBDate date;
        EXPECT_FALSE(date.from_string(text)) << text << " gave " << date.to_iso();
        EXPECT_TRUE(date.is_invalid()) << text;
    }
}

// Text that names no date at all is invalid, never a date that prints as
// nothing: "1" or "45m" used to land on the start date and print as "",
// which reads back as the blank date.
TEST_F(DateText, TextGivingNoTermIsInvalid)
{
    for (const char* text : {"1", "45m", "+soon", "+1 Mystery", ".", "7 days"}) {
        const ZBDateExp exp = ZBDateParser::parse_date(text);
        EXPECT_TRUE(exp.is_invalid()) << text << " -> \"" << exp.to_string() << '"';
        ZBDate date;
        EXPECT_FALSE(date.from_string(text)) << text;
        ZBDate checked;
        EXPECT_TRUE(iszbwarn(ZBDateParser::read_checked(text, nullptr, nullptr, checked))) << text;
        get_zberror().clear_all();
    }
}

// Day and month numbers no calendar has: the lenient reader carried them
// into another date whose canonical text read back as something else.
TEST_F(DateText, ImpossibleDayOrMonthNumbersAreInvalid)
{
    for (const char* text : {"1/13/2026", "2020-0-2", "23/202", "07.000123", "0/3", "32nd", "0th", "Jan 40",
                             "40 Jan", "5/310", "2020Jan40"}) {
        const ZBDateExp exp = ZBDateParser::parse_date(text);
        EXPECT_TRUE(exp.is_invalid()) << text << " -> \"" << exp.to_string() << '"';
    }
    // A day the month lacks still carries, as the calendar does.
    EXPECT_EQ(ZBDateUtils::read_date("31-Feb-2026").to_iso(), "2026-03-03T10:30:00Z");
}

// Three digits or more before a month are its year, whether the month is a
// name or a number, and a day may follow the name.
TEST_F(DateText, LongNumberBeforeAMonthIsTheYear)
{
    const Row rows[] = {
        {"2026-2", "2026-02-04T10:30:00Z"},
        {"2026-2+", "2026-02-04T10:30:00Z"},
        {"2020Jan2", "2020-01-02T10:30:00Z"},
        {"2020 Jan 2", "2020-01-02T10:30:00Z"},
        {"2027 Mar", "2027-03-04T10:30:00Z"},
        {"2027Mar 14:00", "2027-03-04T14:00:00Z"},
        {"2026-03-09", "2026-03-09T10:30:00Z"},
    };
    check(rows, sizeof rows / sizeof rows[0]);
    // Beyond the last year a date can hold there is no date, but the text still
    // prints as itself.
    const ZBDateExp far = ZBDateParser::parse_date("202021-2");
    EXPECT_EQ(far.to_string(), "Feb/202021");
    EXPECT_TRUE(far.apply(C_Now).is_invalid());
}

TEST_F(DateText, CutShortTextKeepsWhatCameBefore)
{
    // A time or step with a missing part ends the reading quietly.
    EXPECT_EQ(ZBDateUtils::read_date("tomorrow 14:").to_iso(), "2026-03-05T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("tomorrow +").to_iso(), "2026-03-05T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("tomorrow next").to_iso(), "2026-03-05T10:30:00Z");
}

TEST_F(DateText, DigitsAreDateTextNeverAStoredDate)
{
    // Twelve digits typed by a person are no date; only stored text is read as stored.
    ZBDate date;
    EXPECT_FALSE(date.from_string("202603021400"));
    EXPECT_FALSE(date.from_string(" 070508080202026000000 "));
    ZBDate checked;
    EXPECT_TRUE(iszbwarn(ZBDateParser::read_checked("202603021400", nullptr, nullptr, checked)));
    EXPECT_FALSE(checked.is_ok());
    const ZBDate stored(2026, 2, 8, 8, 5, 7, 0, ZBDate::C_GMT);
    std::ostringstream out;
    out << stored;
    ZBDate back;
    back.read_stored(out.str());
    EXPECT_EQ(back, stored);
}

TEST_F(DateText, CheckedReadingRefusesWhatTheLenientOneCarries)
{
    const struct {
        const char* text;
        const char* message;
    } rows[] = {
        {"blah", "Invalid date value: blah"},
        {"-1 Day", "Invalid date value: -1 Day"},
        {"+soon", "Invalid date value: +soon"},
        {"+3 fortnights", "Invalid date value: +3 fortnights"},
        {"tomorrow and then", "Invalid date value: tomorrow and then"},
        {"31-Feb-2026", "Invalid date value: 31-Feb-2026. Feb 2026 has 28 days."},
        {"29/2/2027", "Invalid date value: 29/2/2027. Feb 2027 has 28 days."},
        {"31 Apr", "Invalid date value: 31 Apr. Apr 2026 has 30 days."},
        {"25:00", "Invalid date value: 25:00. There is no hour 25."},
        {"14:60", "Invalid date value: 14:60. There is no minute 60."},
        {"13PM", "Invalid date value: 13PM. There is no hour 13."},
        {"0/3/2026", "Invalid date value: 0/3/2026. There is no day 0."},
        {"1/13/2026", "Invalid date value: 1/13/2026. There is no month 13."},
        {"32nd", "Invalid date value: 32nd. No month has a day 32."},
        {"7th Mon", "Invalid date value: 7th Mon. There is no 7th weekday in a month."},
        {"99999999999", "Invalid date value: 99999999999"},
        {"+999999999 Year", "Invalid date value: +999999999 Year"},
        {"202603021400", "Invalid date value: 202603021400"},
        {"0th", "Invalid date value: 0th. There is no day 0."},
        {"40th last day", "Invalid date value: 40th last day. No month has a 40th last day."},
        {"14:00 UTC+12:30", "Invalid date value: 14:00 UTC+12:30"},
        {"14:00 UTC+15", "Invalid date value: 14:00 UTC+15"},
    };
    for (const auto& row : rows) {
        ZBDate date;
        int result = ZBDateParser::read_checked(row.text, nullptr, nullptr, date);
        EXPECT_TRUE(iszbwarn(result)) << row.text;
        ASSERT_NE(get_zberror().top(), nullptr) << row.text;
        EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), row.message);
        get_zberror().clear_all();
    }
    ZBDate date;
    EXPECT_EQ(ZBDateParser::read_checked("29/2/2028", nullptr, nullptr, date), ZBErrC_ok);
    EXPECT_EQ(date.to_iso(), "2028-02-29T10:30:00Z");
    EXPECT_EQ(ZBDateParser::read_checked("Feb 2nd last day", nullptr, nullptr, date), ZBErrC_ok);
    EXPECT_EQ(date.to_iso(), "2026-02-27T10:30:00Z");
    EXPECT_EQ(ZBDateParser::read_checked("Apr 3rd last day", nullptr, nullptr, date), ZBErrC_ok);
    EXPECT_EQ(date.to_iso(), "2026-04-28T10:30:00Z");
    EXPECT_EQ(ZBDateParser::read_checked(" ", nullptr, nullptr, date), ZBErrC_ok);
    EXPECT_TRUE(date.is_blank());
}

TEST_F(DateText, ExpressionIsCompiledOnceAndRunOnManyDates)
{
    ZBDateExp exp = ZBDateParser::parse_date("+1 Month 1st");
    EXPECT_EQ(exp.apply(ZBDate(2026, 0, 30, 0, 0, 0, 0, ZBDate::C_GMT)).to_iso(), "2026-02-01T00:00:00Z");
    EXPECT_EQ(exp.apply(ZBDate(2026, 11, 5, 0, 0, 0, 0, ZBDate::C_GMT)).to_iso(), "2027-01-01T00:00:00Z");
}

namespace {
// A calendar that works only on Saturdays, for the named resource "sat".
class SaturdayConfig : public ZBRepeatConfig {
public:
    bool is_workday(const ZBDateDetails& details, const std::string& tag) const override
    {
        lastTag = tag;
        return details.m_dayWeek == 6;
    }
    mutable std::string lastTag;
};
} // namespace

TEST_F(DateText, WorkDaysComeFromTheConfigOrTheLocale)
{
    SaturdayConfig config;
    ZBDate date;
    date.from_string("WorkDayFor sat", nullptr, &config);
    EXPECT_EQ(date.to_iso(), "2026-03-07T10:30:00Z");
    EXPECT_EQ(config.lastTag, "SAT");
    zblocale().set_workdays(0x7f); // every day
    EXPECT_EQ(ZBDateUtils::read_date("+1 WorkDay +1 WorkDay +1 WorkDay").to_iso(), "2026-03-07T10:30:00Z");
    zblocale().set_workdays(ZBLocale::C_DefaultWorkDays);
    EXPECT_EQ(ZBDateUtils::read_date("+3 WorkDay").to_iso(), "2026-03-09T10:30:00Z");
}
