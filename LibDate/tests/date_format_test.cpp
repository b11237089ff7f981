#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

// Monday 9 March 2026, 08:05:07.000123 GMT; TZ is UTC, so GMT is the local zone.
const ZBDate C_Morning(2026, 2, 8, 8, 5, 7, 123, ZBDate::C_GMT);
const ZBDate C_Afternoon(2026, 2, 8, 13, 5, 0, 0, ZBDate::C_GMT);

class DateFormat : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 10, 10, 0, 0, 0, ZBDate::C_GMT)); }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }
};

} // namespace

TEST_F(DateFormat, EveryCode)
{
    struct {
        const char* format;
        const ZBDate& date;
        const char* text;
    } rows[] = {
        {"%a", C_Morning, "Mon"},
        {"%A", C_Morning, "Monday"},
        {"%b", C_Morning, "Mar"},
        {"%B", C_Morning, "March"},
        {"%d", C_Morning, "09"},
        {"%e", C_Morning, " 9"},
        {"%H", C_Afternoon, "13"},
        {"%k", C_Morning, "08"},
        {"%I", C_Afternoon, "01"},
        {"%l", C_Afternoon, " 1"},
        {"%j", C_Morning, "068"},
        {"%m", C_Morning, "03"},
        {"%M", C_Morning, "05"},
        {"a%nb", C_Morning, "a\nb"},
        {"%p", C_Morning, "AM"},
        {"%P", C_Afternoon, "pm"},
        {"%s", C_Morning, "1773043507"},
        {"%S", C_Morning, "07"},
        {"%U", C_Morning, "07.000123"},
        {"%u", C_Morning, "0"},
        {"%w", C_Morning, "1"},
        {"%W", C_Morning, "010"},
        {"%y", C_Morning, "26"},
        {"%Y", C_Morning, "2026"},
        {"%D", C_Morning, "09/Mar/2026"},
        {"%T", C_Morning, "08:05:07"},
        {"%E", C_Morning, "09/Mar/2026 08:05:07"},
        {"%t", C_Morning, "08:05:07"},
        {"%t", C_Afternoon, "13:05"},
        {"%i", C_Morning, "08:05"},
        // The local zone is not named.
        {"%H:%M %z", C_Morning, "08:05"},
        {"%Z", C_Morning, "GMT"},
        {"%N%H %Z", C_Morning, "08 %Z"},
        {"", C_Afternoon, "Mon 09/Mar/2026 13:05:00"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text, row.date.to_string(row.format)) << row.format;
}

TEST_F(DateFormat, ForeignZoneIsNamedUnlessSuppressed)
{
    ZBDate india = C_Morning;
    india.set_timezone(2 * 19800);
    EXPECT_EQ("13:35 GMT+05:30 NODST", india.to_string("%H:%M %z"));
    EXPECT_EQ("13:35", india.to_string("%N%H:%M %z"));
    EXPECT_EQ("GMT+05:30 NODST", india.to_string("%Z"));
    EXPECT_EQ("Mon 09/Mar/2026 13:35:07 GMT+05:30 NODST", india.to_string(""));
}

TEST_F(DateFormat, NotOkDatesPrintNothing)
{
    EXPECT_EQ("", ZBDate(ZBDate::E_Blank).to_string("%Y"));
    EXPECT_EQ("", ZBDate().to_string(""));
}

TEST_F(DateFormat, SmartFormsSayLessNearToday)
{
    // Today is Wednesday 11 March 2026.
    struct {
        ZBDate date;
        const char* f;
        const char* c;
        const char* o;
        const char* bigC;
    } rows[] = {
        {ZBDate(2026, 2, 10, 14, 30, 0, 0, 0), "Wed", "Wed", "14:30", "Wed 14:30"},
        {ZBDate(2026, 2, 8, 8, 5, 0, 0, 0), "Mon", "Mon", "Mon 08:05", "Mon 08:05"},
        {ZBDate(2026, 2, 19, 9, 0, 30, 0, 0), "Fri 20/Mar", "20/Mar", "20/Mar", "Fri 20/Mar 09:00:30"},
        {ZBDate(2025, 5, 1, 9, 0, 0, 0, 0), "Mon 02/Jun/2025", "02/Jun/2025", "02/Jun/2025", "Mon 02/Jun/2025 09:00"},
        // The year's first week always shows the year.
        {ZBDate(2026, 0, 1, 9, 0, 0, 0, 0), "Fri 02/Jan/2026", "02/Jan/2026", "02/Jan/2026", "Fri 02/Jan/2026 09:00"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.f);
        EXPECT_EQ(row.f, row.date.to_string("%F"));
        EXPECT_EQ(row.c, row.date.to_string("%c"));
        EXPECT_EQ(row.o, row.date.to_string("%O"));
        EXPECT_EQ(row.bigC, row.date.to_string("%C"));
    }
}

TEST_F(DateFormat, LateDecemberShowsTheYear)
{
    ZBDateUtils::set_fixed_now(ZBDate(2026, 11, 27, 10, 0, 0, 0, ZBDate::C_GMT));
    ZBDate d(2026, 11, 1, 9, 0, 0, 0, ZBDate::C_GMT);
    EXPECT_EQ("Wed 02/Dec/2026", d.to_string("%F"));
}

TEST_F(DateFormat, LocaleDayFormatsAndClock)
{
    ZBLocale& locale = zblocale();
    locale.set_day_format(7);
    EXPECT_EQ("2026-03-09", C_Morning.to_string("%D"));
    locale.set_24hour_clock(false);
    EXPECT_EQ("Mon 2026-03-09 01:05:00 PM", C_Afternoon.to_string(""));
    locale.set_defaults();
    EXPECT_EQ(1, locale.get_format_number());
    EXPECT_EQ(2, locale.weekday_number("tu"));
    EXPECT_EQ(-1, locale.month_number("j"));
    EXPECT_EQ(5, locale.month_number("JUN"));
}
