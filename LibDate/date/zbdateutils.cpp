#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <chrono>
#include <cstdlib>
#include <ctime>

namespace Tervalon {

namespace {
bool g_fixedNowSet = false;
ZBDate g_fixedNow;
}

ZBDate ZBDateUtils::now()
{
    if (g_fixedNowSet)
        return g_fixedNow;
    // A per-thread cache: the recalculation thread calls this too.
    thread_local std::time_t lastSecond = -1;
    thread_local int lastZone = 0;
    thread_local ZBDate cached;
    std::time_t second = std::time(nullptr);
    int zone = zblocale().get_default_zone();
    if (second != lastSecond || zone != lastZone) {
        cached.set_time_t(second, ZBDate::C_DefaultTime);
        lastSecond = second;
        lastZone = zone;
    }
    return cached;
}

std::int64_t ZBDateUtils::unow()
{
    if (g_fixedNowSet)
        return g_fixedNow.to_micros();
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

void ZBDateUtils::set_fixed_now(const ZBDate& date)
{
    g_fixedNow = date;
    g_fixedNowSet = true;
}

void ZBDateUtils::clear_fixed_now()
{
    g_fixedNowSet = false;
}

bool ZBDateUtils::is_leap_year(int year)
{
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

int ZBDateUtils::days_in_year(int year)
{
    return is_leap_year(year) ? 366 : 365;
}

int ZBDateUtils::days_in_month(int month, int year)
{
    year += month / 12;
    month %= 12;
    if (month < 0) {
        month += 12;
        year -= 1;
    }
    return is_leap_year(year) ? ZBDate::C_DaysInMonthL[month] : ZBDate::C_DaysInMonth[month];
}

void ZBDateUtils::calc_yearday(int year, int month, int day, int& outYear, int& outDay)
{
    year += month / 12;
    month %= 12;
    if (month < 0) {
        month += 12;
        year -= 1;
    }
    const int* lengths = is_leap_year(year) ? ZBDate::C_DaysInMonthL : ZBDate::C_DaysInMonth;
    int dayOfYear = day;
    for (int m = 0; m < month; ++m)
        dayOfYear += lengths[m];
    while (dayOfYear < 0) {
        year -= 1;
        dayOfYear += days_in_year(year);
    }
    while (dayOfYear >= days_in_year(year)) {
        dayOfYear -= days_in_year(year);
        year += 1;
    }
    outYear = year;
    outDay = dayOfYear;
}

void ZBDateUtils::breakdown_yearday(int day, int year, int& outYear, int& outMonth, int& outDay)
{
    while (day < 0) {
        year -= 1;
        day += days_in_year(year);
    }
    while (day >= days_in_year(year)) {
        day -= days_in_year(year);
        year += 1;
    }
    const int* lengths = is_leap_year(year) ? ZBDate::C_DaysInMonthL : ZBDate::C_DaysInMonth;
    int month = 0;
    while (month < 11 && day >= lengths[month]) {
        day -= lengths[month];
        ++month;
    }
    outYear = year;
    outMonth = month;
    outDay = day;
}

int ZBDateUtils::zone_to_seconds(int zone, bool withDST)
{
    int seconds = zone / 2;
    if (withDST && zone % 2 != 0)
        seconds += 3600;
    return seconds;
}

int ZBDateUtils::seconds_to_zone(int seconds, bool isDST, bool adjust)
{
    if (isDST && adjust)
        seconds -= 3600;
    if (seconds < ZBDate::C_ZoneMin || seconds > ZBDate::C_ZoneMax)
        return ZBDate::C_GMT;
    int flag = isDST ? 1 : 0;
    return seconds >= 0 ? 2 * seconds + flag : 2 * seconds - flag;
}

int ZBDateUtils::set_dst_flag(int zone, bool flag)
{
    bool has = zone % 2 != 0;
    if (flag == has)
        return zone;
    if (flag)
        return zone >= 0 ? zone + 1 : zone - 1;
    return zone >= 0 ? zone - 1 : zone + 1;
}

bool ZBDateUtils::zones_equivalent(int a, int b)
{
    return a / 2 == b / 2;
}

bool ZBDateUtils::zone_is_dst(int zone)
{
    return zone >= ZBDate::C_ZoneMin && zone <= ZBDate::C_ZoneMax && zone % 2 != 0;
}

bool ZBDateUtils::date_is_dst(int day, int month, int year)
{
    std::tm tm{};
    tm.tm_year = (year > 1900 ? year : 1970) - 1900;
    tm.tm_mon = month;
    tm.tm_mday = day + 1;
    tm.tm_hour = 12;
    tm.tm_isdst = -1;
    std::mktime(&tm);
    return tm.tm_isdst > 0;
}

int ZBDateUtils::local_zone_at(const ZBDate& date)
{
    std::time_t t = date.is_ok() ? std::time_t(date.to_micros() / ZBDate::C_MicroSecs) : std::time(nullptr);
    std::tm tm{};
    localtime_r(&t, &tm);
    return seconds_to_zone(int(tm.tm_gmtoff), tm.tm_isdst > 0, true);
}

int ZBDateUtils::expand_timezone(int zone, const ZBDate& date)
{
    if (zone >= ZBDate::C_ZoneMin && zone <= ZBDate::C_ZoneMax)
        return zone;
    if (zone == ZBDate::C_LocalTime)
        return local_zone_at(date);
    if (zone == ZBDate::C_OriginalTime && date.get_timezone() != ZBDate::C_OriginalTime)
        return expand_timezone(date.get_timezone(), date);
    int chosen = zblocale().get_default_zone();
    if (chosen == ZBDate::C_LocalTime || chosen > ZBDate::C_ZoneMax || chosen < ZBDate::C_ZoneMin)
        return local_zone_at(date);
    return chosen;
}

} // namespace Tervalon
