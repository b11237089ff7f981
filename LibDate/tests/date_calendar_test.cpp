#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

ZBDate gmt(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return ZBDate(year, month, day, hour, minute, second, 0, ZBDate::C_GMT);
}

std::string ymd(const ZBDate& date)
{
    return date.to_string("%Y-%m-%d %H:%M:%S");
}

} // namespace

TEST(DateCalendar, LeapYearsFollowTheGregorianRule)
{
    struct {
        int year;
        int days;
    } rows[] = {{2000, 366}, {2400, 366}, {1900, 365}, {2100, 365}, {2024, 366}, {2026, 365}, {1600, 366}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.year);
        EXPECT_EQ(row.days, ZBDateUtils::days_in_year(row.year));
        EXPECT_EQ(row.days == 366 ? 29 : 28, ZBDateUtils::days_in_month(1, row.year));
    }
    EXPECT_EQ("2000-02-29 00:00:00", ymd(gmt(2000, 1, 28)));
    EXPECT_EQ("1900-03-01 00:00:00", ymd(gmt(1900, 1, 28)));
}

TEST(DateCalendar, MonthAndDayOutsideTheirRangesCarry)
{
    int year = 0;
    int day = 0;
    ZBDateUtils::calc_yearday(2026, 12, 0, year, day);
    EXPECT_EQ(2027, year);
    EXPECT_EQ(0, day);
    ZBDateUtils::calc_yearday(2026, -1, 30, year, day);
    EXPECT_EQ(2025, year);
    EXPECT_EQ(364, day);
    ZBDateUtils::calc_yearday(2026, 0, -1, year, day);
    EXPECT_EQ(2025, year);
    EXPECT_EQ(364, day);
    int month = 0;
    ZBDateUtils::breakdown_yearday(365, 2024, year, month, day);
    EXPECT_EQ(2024, year);
    EXPECT_EQ(11, month);
    EXPECT_EQ(30, day);
}

TEST(DateCalendar, ArithmeticCarriesAcrossYears)
{
    EXPECT_EQ("2027-01-01 00:00:00", ymd(gmt(2026, 11, 30) + ZBDuration(1, 0, 0)));
    EXPECT_EQ("2025-12-31 23:59:59", ymd(gmt(2026, 0, 0) - ZBDuration(1)));
    EXPECT_EQ("2024-03-01 00:00:00", ymd(gmt(2024, 1, 28) + ZBDuration(ZBDate::C_DaySecs)));
    ZBDuration gap = gmt(2027, 0, 0) - gmt(2026, 0, 0);
    EXPECT_EQ(365, gap.get_days());
    EXPECT_EQ(0, gap.get_seconds());
    // Microseconds borrow from the second.
    ZBDate d = gmt(2026, 0, 0) - ZBDuration(0, 0, 1);
    EXPECT_EQ(999999, d.get_microsecond());
    EXPECT_EQ(2025, d.get_year());
}

TEST(DateCalendar, MicrosAndTimeTRoundTrip)
{
    for (std::int64_t micros : {std::int64_t(0), std::int64_t(-1), std::int64_t(1773043507000123),
                                std::int64_t(-62135596800000000), std::int64_t(4102444800000000)}) {
        ZBDate d;
        d.from_micros(micros, ZBDate::C_GMT);
        EXPECT_EQ(micros, d.to_micros());
    }
    ZBDate d;
    d.set_time_t(1773043507, ZBDate::C_GMT);
    EXPECT_EQ("2026-03-09 08:05:07", ymd(d));
    EXPECT_EQ(1773043507, d.get_time_t());
    // Years past 2030 and before 1940 give 0; callers use it to spot blank dates.
    EXPECT_EQ(0, gmt(2031, 0, 0).get_time_t());
    EXPECT_EQ(0, gmt(1939, 11, 30).get_time_t());
    EXPECT_EQ(0, ZBDate(ZBDate::E_Blank).get_time_t());
    EXPECT_EQ("2026-03-09T08:05:07Z", d.to_iso());
}

TEST(DateCalendar, DetailsCarryFieldsAndWorkOutWeekdays)
{
    ZBDateDetails d(gmt(2026, 0, 30), ZBDate::C_GMT); // 31 January 2026, a Saturday
    EXPECT_EQ(6, d.m_dayWeek);
    d.m_month += 1; // 31 February carries into March
    d.recalculate();
    EXPECT_EQ(2, d.m_month);
    EXPECT_EQ(2, d.m_dayMonth);
    d.m_hour = -1; // an hour before midnight
    EXPECT_EQ("2026-03-02 23:00:00", ymd(d.get_date(ZBDate::C_GMT)));
    d.m_dayMonth += 400;
    EXPECT_EQ("2027-04-06 23:00:00", ymd(d.get_date(ZBDate::C_GMT)));
    d.m_dayMonth -= 800;
    EXPECT_EQ("2025-01-26 23:00:00", ymd(d.get_date(ZBDate::C_GMT)));
    d.add_seconds(3600);
    EXPECT_EQ("2025-01-27 00:00:00", ymd(d.get_date(ZBDate::C_GMT)));
    EXPECT_TRUE(ZBDateDetails::is_workday(d)); // a Monday
}

TEST(DateCalendar, WeeksCountFromTheLocaleFirstDay)
{
    // 1 January 2026 is a Thursday: week 0 runs to Sunday 4 January.
    ZBDateDetails d(gmt(2026, 0, 3), ZBDate::C_GMT);
    EXPECT_EQ(0, d.m_weekYear);
    d = ZBDateDetails(gmt(2026, 0, 4), ZBDate::C_GMT);
    EXPECT_EQ(1, d.m_weekYear);
    zblocale().set_first_day(0);
    d = ZBDateDetails(gmt(2026, 0, 3), ZBDate::C_GMT); // Sunday starts week 1
    EXPECT_EQ(1, d.m_weekYear);
    zblocale().set_first_day(1);
}

TEST(DateCalendar, WeekdayOccurrencesInAMonth)
{
    ZBDateDetails d;
    d.set_weekdayno(1, 0, 2, 2026); // first Monday of March 2026
    EXPECT_EQ(1, d.m_dayMonth);
    d.set_weekdayno(1, 5, 2, 2026); // last Monday: the 30th
    EXPECT_EQ(29, d.m_dayMonth);
    d.set_weekdayno(0, 5, 1, 2026); // last Sunday of February: the 22nd, no fifth one
    EXPECT_EQ(21, d.m_dayMonth);
    d.set_weekday(5, 10, 2, 2026); // Friday of the week of Wednesday 11 March
    EXPECT_EQ(12, d.m_dayMonth);
    d.set_weekday(0, 10, 2, 2026); // Sunday ends a Monday week
    EXPECT_EQ(14, d.m_dayMonth);
    d.m_year = 2026;
    d.set_dayyear(59);
    EXPECT_EQ(2, d.m_month);
    EXPECT_EQ(0, d.m_dayMonth);
    d.set_dayyear(400);
    EXPECT_EQ(2027, d.m_year);
    EXPECT_EQ(1, d.m_month);
    EXPECT_EQ(4, d.m_dayMonth);
}

TEST(DateCalendar, PeriodsStartAndEndInTheDatesOwnZone)
{
    const ZBDate d = ZBDate(2026, 0, 14, 13, 45, 30, 250, ZBDate::C_GMT); // Thursday 15 January
    struct {
        ZBDate (*period)(const ZBDate&);
        const char* expected;
    } rows[] = {
        {ZBDateUtils::round_hour, "2026-01-15 13:00:00"},  {ZBDateUtils::round_minute, "2026-01-15 13:45:00"},
        {ZBDateUtils::start_day, "2026-01-15 00:00:00"},   {ZBDateUtils::end_day, "2026-01-15 23:59:59"},
        {ZBDateUtils::start_week, "2026-01-12 00:00:00"},  {ZBDateUtils::end_week, "2026-01-18 23:59:59"},
        {ZBDateUtils::start_month, "2026-01-01 00:00:00"}, {ZBDateUtils::end_month, "2026-01-31 23:59:59"},
        {ZBDateUtils::start_year, "2026-01-01 00:00:00"},  {ZBDateUtils::end_year, "2026-12-31 23:59:59"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.expected, ymd(row.period(d)));
    EXPECT_EQ(250, ZBDateUtils::end_day(d).get_microsecond());
    EXPECT_EQ(0, ZBDateUtils::start_day(d).get_microsecond());
    EXPECT_EQ("2024-02-29 23:59:59", ymd(ZBDateUtils::end_month(gmt(2024, 1, 3))));
    EXPECT_EQ("2026-01-31 23:59:59", ymd(ZBDateUtils::end_month(gmt(2026, 0, 30))));
    // In a zone east of GMT the day starts before midnight GMT.
    ZBDate east = ZBDate(2026, 0, 14, 1, 0, 0, 0, 2 * 3600 * 2);
    EXPECT_EQ("2026-01-15 00:00:00", ymd(ZBDateUtils::start_day(east)));
    EXPECT_EQ(22 * 3600, ZBDateUtils::start_day(east).get_second_of_day());
    EXPECT_TRUE(ZBDateUtils::start_day(ZBDate(ZBDate::E_Blank)).is_blank());
    EXPECT_EQ(ZBDateSlot::C_Blank, ZBDateUtils::week_slot(ZBDate()));
    ZBDate clock = ZBDateUtils::ignore_zone(east);
    EXPECT_EQ(0, clock.get_timezone());
    EXPECT_EQ(3600, clock.get_second_of_day());
}
