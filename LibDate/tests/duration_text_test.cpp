#include "LibDate/date/zbduration.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbnumberwordsplitter.h"
#include "LibCore/error/zberror.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

TEST(DurationNormalise, PartsAgreeInSign)
{
    struct {
        std::int64_t days, seconds;
        int micro;
        std::int64_t outDays, outSeconds;
        int outMicro;
    } rows[] = {
        {-1, 3600, 0, 0, -82800, 0},  {0, 90000, 0, 1, 3600, 0},    {1, -1, 0, 0, 86399, 0},
        {0, 1, -1, 0, 0, 999999},     {0, -1, 1, 0, 0, -999999},    {0, 0, 2500000, 0, 2, 500000},
        {2, -86400 * 3, 0, -1, 0, 0}, {-1, 86399, 1, 0, 0, -999999},
    };
    for (const auto& row : rows) {
        ZBDuration d(row.days, row.seconds, row.micro);
        EXPECT_EQ(row.outDays, d.get_days()) << row.days << " " << row.seconds << " " << row.micro;
        EXPECT_EQ(row.outSeconds, d.get_seconds()) << row.days << " " << row.seconds << " " << row.micro;
        EXPECT_EQ(row.outMicro, d.get_micro()) << row.days << " " << row.seconds << " " << row.micro;
    }
}

TEST(DurationArithmetic, ScalingDividingAndRounding)
{
    EXPECT_EQ(ZBDuration(0, 45, 0), ZBDuration(90) * 0.5);
    EXPECT_EQ(ZBDuration(1, 43200, 0), ZBDuration(1, 0, 0) * 1.5);
    EXPECT_DOUBLE_EQ(2.5, ZBDuration(5400) / ZBDuration(2160));
    EXPECT_DOUBLE_EQ(0.0, ZBDuration(5400) / ZBDuration());
    EXPECT_EQ(2, ZBDuration(5400).get_as_hours());
    EXPECT_EQ(1, ZBDuration(5399).get_as_hours());
    EXPECT_EQ(25, ZBDuration(1, 3600, 0).get_as_hours());
    EXPECT_TRUE(ZBDuration(1, 0, 0) == 86400);
    EXPECT_TRUE(ZBDuration(0, 0, 1) > 0);
    EXPECT_TRUE(ZBDuration(-5) < 0);
    std::int64_t days = 0;
    int hours = 0, minutes = 0, seconds = 0, micro = 0;
    ZBDuration(2, 3723, 9).get_breakdown(days, hours, minutes, seconds, micro);
    EXPECT_EQ(2, days);
    EXPECT_EQ(1, hours);
    EXPECT_EQ(2, minutes);
    EXPECT_EQ(3, seconds);
    EXPECT_EQ(9, micro);
}

TEST(DurationText, Printing)
{
    struct {
        ZBDuration duration;
        bool withSeconds;
        const char* text;
        const char* dayText;
    } rows[] = {
        {ZBDuration(5400), false, "01:30", "01:30"},
        {ZBDuration(5400), true, "01:30:00", "01:30:00"},
        {ZBDuration(5401), false, "01:30:01", "01:30:01"},
        {ZBDuration(0, 1, 5), false, "00:00:01.000005", "00:00:01.000005"},
        {ZBDuration(1, 3600, 0), false, "25:00", "1 day 01:00"},
        {ZBDuration(3, 0, 0), false, "72:00", "3 days 00:00"},
        {ZBDuration(-5400), false, "-01:30", "-01:30"},
        {ZBDuration(0, 100 * 3600, 0), false, "100:00", "4 days 04:00"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, row.duration.to_string(row.withSeconds));
        EXPECT_EQ(row.dayText, row.duration.to_string_day(row.withSeconds));
    }
}

TEST(DurationText, Reading)
{
    struct {
        const char* text;
        std::int64_t seconds;
        int micro;
    } rows[] = {
        {"1:30", 5400, 0},     {"1.5h", 5400, 0},       {"1h 30m", 5400, 0},  {"90 mins", 5400, 0},
        {"1.25 hours", 4500, 0}, {"0.1m", 6, 0},        {"1:02:03", 3723, 0}, {"2.5s", 2, 500000},
        {"100u", 0, 100},      {"2d", 16 * 3600, 0},    {"0.5 day", 4 * 3600, 0}, {"1d 2h", 10 * 3600, 0},
        {"-1:30", -5400, 0},   {"1:30:15.5", 5415, 500000},
    };
    for (const auto& row : rows) {
        ZBDuration d;
        EXPECT_FALSE(iszbwarn(d.from_string(row.text, 0))) << row.text;
        EXPECT_EQ(ZBDuration(0, row.seconds, row.micro), d) << row.text;
    }
}

TEST(DurationText, WorkingDayFollowsTheLocale)
{
    zblocale().set_workhours(7.5);
    ZBDuration d;
    d.from_string("2d", 0);
    EXPECT_EQ(ZBDuration(15 * 3600), d);
    zblocale().set_workhours(8);
}

TEST(DurationText, NothingUsableGivesTheDefaultDaysAndBadUnitsFail)
{
    ZBDuration d(77);
    d.from_string("", 3);
    EXPECT_EQ(ZBDuration(3, 0, 0), d);
    d.from_string("soon", 1);
    EXPECT_EQ(ZBDuration(1, 0, 0), d);
    int result = d.from_string("3 weeks", 0);
    EXPECT_TRUE(iszberr(result));
    clear_last_error();
}

TEST(DurationText, PrintedTextReadsBack)
{
    for (const ZBDuration& d : {ZBDuration(5400), ZBDuration(1, 3661, 0), ZBDuration(0, 59, 250000), ZBDuration(-7260)}) {
        ZBDuration back;
        back.from_string(d.to_string(false), 0);
        EXPECT_EQ(d, back) << d.to_string(false);
    }
}

TEST(DurationText, SplitterSeparatesNumbersWordsAndMarks)
{
    std::vector<std::string> tokens;
    ZBNumberWordSplitter::split(" 1.5h30mins:2.5.1 x", tokens);
    std::vector<std::string> expected = {"1.5", "h", "30", "mins", ":", "2.5", ".1", "x"};
    EXPECT_EQ(expected, tokens);
}

TEST(DurationText, TooLongToStoreIsRefusedAndKeepsTheValue)
{
    // The longest that fits the stored form reads; anything beyond is refused.
    ZBDuration d(5400);
    EXPECT_FALSE(iszbwarn(d.from_string("239999976h", 0)));
    EXPECT_EQ(9999999, d.get_days());
    for (const char* text : {"239999977h", "100000000000000000000", "0000000100000000000123@", "1e400h", "-99999999999999h"}) {
        ZBDuration kept(5400);
        EXPECT_TRUE(iszberr(kept.from_string(text, 0))) << text;
        EXPECT_EQ(ZBDuration(5400), kept) << text;
    }
    clear_last_error();
}

// Below zero and not whole seconds, the microseconds are stored with their
// minus sign, one character wider; they used to read back without their last digit.
TEST(DurationStored, NegativeFractionsReadBack)
{
    for (const ZBDuration& duration : {ZBDuration(0, -180, -400001), ZBDuration(0, -1, -1), ZBDuration(-2, -5, -999999),
                                       ZBDuration(0, 180, 400001), ZBDuration(3, 0, 7)}) {
        std::ostringstream out;
        out << duration;
        std::istringstream in(out.str());
        ZBDuration back;
        in >> back;
        EXPECT_FALSE(in.fail()) << out.str();
        EXPECT_EQ(back, duration) << out.str();
    }
}

// Seconds that carry the days past what the stored form holds: refused, the
// duration kept, instead of a value that writes as a longer text.
TEST(DurationStored, CarryPastTheStoredDaysIsRefused)
{
    const ZBDuration kept(1, 2, 3);
    ZBDuration duration = kept;
    std::istringstream in("9999999999999999@");
    in >> duration;
    EXPECT_TRUE(in.fail());
    EXPECT_EQ(duration, kept);
    std::istringstream fits("0099999999999999@");
    fits >> duration;
    EXPECT_FALSE(fits.fail());
    EXPECT_EQ(duration.get_days(), 999999 + 99999999 / 86400);
}
