#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdatemoment.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/date/zblocale.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <mutex>
#include <sstream>
#include <string>

namespace Tervalon {

namespace {

// The fixed "now" is set by tests and scripted runs before other threads read it.
// The foundation's logs and records show moments in the user's date format.
const bool g_momentFormatInstalled = (ZBMoment::set_formatter(&zb_format_moment), true);

std::atomic<bool> g_fixedNowSet{false};
ZBDate g_fixedNow;
std::mutex g_fixedNowMutex;

std::int64_t floor_div(std::int64_t a, std::int64_t b)
{
    std::int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

// The C library's answers depend on TZ. Reading the environment on every
// breakdown cost more than the breakdown itself, so the per-thread caches
// below are emptied only when the zone is changed through
// ZBDateUtils::set_machine_zone (or announced by machine_zone_changed): a
// counter bumped there is all a breakdown compares.
std::atomic<unsigned> g_zoneGeneration{1};

struct ZoneCache {
    unsigned generation = 0;
    int standardZone = 0;
    bool localDst = false;
    // A few years of per-day answers, filled a year at a time.
    struct Year {
        int year = ZBDate::C_InvalidYear;
        unsigned char dst[47] = {};
    } years[4];
    int nextSlot = 0;
};

ZoneCache& zone_cache()
{
    thread_local ZoneCache cache;
    const unsigned generation = g_zoneGeneration.load(std::memory_order_acquire);
    if (cache.generation != generation) {
        cache = ZoneCache();
        tzset();
        std::time_t t = std::time(nullptr);
        std::tm tm{};
        localtime_r(&t, &tm);
        cache.localDst = tm.tm_isdst > 0;
        cache.standardZone = ZBDateUtils::seconds_to_zone(int(tm.tm_gmtoff), tm.tm_isdst > 0, true);
        cache.standardZone = ZBDateUtils::set_dst_flag(cache.standardZone, false);
        cache.generation = generation;
    }
    return cache;
}

bool ask_dst(int day, int month, int year)
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

} // namespace

ZBDate ZBDateUtils::now()
{
    if (g_fixedNowSet.load(std::memory_order_acquire)) {
        std::lock_guard<std::mutex> lock(g_fixedNowMutex);
        return g_fixedNow;
    }
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
    if (g_fixedNowSet.load(std::memory_order_acquire)) {
        std::lock_guard<std::mutex> lock(g_fixedNowMutex);
        return g_fixedNow.to_micros();
    }
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

void ZBDateUtils::set_fixed_now(const ZBDate& date)
{
    std::lock_guard<std::mutex> lock(g_fixedNowMutex);
    g_fixedNow = date;
    g_fixedNowSet.store(true, std::memory_order_release);
    // The foundation's clock is the same clock.
    ZBMoment::set_fixed_now(zb_moment_from_date(date));
}

void ZBDateUtils::clear_fixed_now()
{
    g_fixedNowSet.store(false, std::memory_order_release);
    ZBMoment::clear_fixed_now();
}

ZBDate ZBDateUtils::read_date(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config)
{
    ZBDate date;
    date.from_string(text, relative, config);
    return date;
}

ZBDuration ZBDateUtils::read_duration(const std::string& text)
{
    ZBDuration duration;
    duration.from_string(text, 0);
    return duration;
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

std::int64_t ZBDateUtils::days_before_year(int year)
{
    auto leaps_before = [](std::int64_t y) { return floor_div(y, 4) - floor_div(y, 100) + floor_div(y, 400); };
    return (std::int64_t(year) - 1970) * 365 + (leaps_before(std::int64_t(year) - 1) - leaps_before(1969));
}

int ZBDateUtils::zone_to_seconds(int zone, bool withDST)
{
    int seconds = zone / 2;
    if (withDST && zone % 2 != 0)
        seconds += 3600;
    return seconds;
}

bool ZBDateUtils::offset_has_zone(int seconds, bool isDST)
{
    if (seconds < ZBDate::C_OffsetMin || seconds > ZBDate::C_OffsetMax)
        return false;
    int flag = isDST ? 1 : 0;
    return is_fixed_zone(seconds >= 0 ? 2 * seconds + flag : 2 * seconds - flag);
}

int ZBDateUtils::seconds_to_zone(int seconds, bool isDST, bool adjust)
{
    if (isDST && adjust)
        seconds -= 3600;
    if (!offset_has_zone(seconds, isDST))
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
    return is_fixed_zone(zone) && zone % 2 != 0;
}

bool ZBDateUtils::date_is_dst(int day, int month, int year)
{
    if (day < 0 || day > 30 || month < 0 || month > 11)
        return ask_dst(day, month, year);
    ZoneCache& cache = zone_cache();
    ZoneCache::Year* slot = nullptr;
    for (ZoneCache::Year& y : cache.years)
        if (y.year == year)
            slot = &y;
    if (!slot) {
        // Fill the whole year at once: ask on the first of each month and
        // bisect only the months in which the answer changes, a few dozen
        // questions a year instead of one a day.
        slot = &cache.years[cache.nextSlot];
        cache.nextSlot = (cache.nextSlot + 1) % 4;
        *slot = ZoneCache::Year();
        slot->year = year;
        auto mark = [slot](int m, int d, bool dst) {
            int index = m * 31 + d;
            if (dst)
                slot->dst[index / 8] |= static_cast<unsigned char>(1u << (index % 8));
        };
        bool first[13];
        for (int m = 0; m < 12; ++m)
            first[m] = ask_dst(0, m, year);
        first[12] = ask_dst(0, 0, year + 1);
        for (int m = 0; m < 12; ++m) {
            int length = days_in_month(m, year);
            if (first[m] == first[m + 1]) {
                for (int d = 0; d < length; ++d)
                    mark(m, d, first[m]);
                continue;
            }
            // The answer changes once within the month: find the first changed day.
            int low = 0;
            int high = length;
            while (high - low > 1) {
                int mid = (low + high) / 2;
                if (ask_dst(mid, m, year) == first[m])
                    low = mid;
                else
                    high = mid;
            }
            for (int d = 0; d < length; ++d)
                mark(m, d, d < high ? first[m] : !first[m]);
        }
    }
    int index = month * 31 + day;
    return (slot->dst[index / 8] & (1u << (index % 8))) != 0;
}

void ZBDateUtils::set_machine_zone(const std::string& tz)
{
    if (tz.empty())
        unsetenv("TZ");
    else
        setenv("TZ", tz.c_str(), 1);
    tzset();
    machine_zone_changed();
}

void ZBDateUtils::machine_zone_changed()
{
    g_zoneGeneration.fetch_add(1, std::memory_order_acq_rel);
}

bool ZBDateUtils::date_is_local(const ZBDate& date)
{
    return zones_equivalent(date.get_timezone(), local_standard_zone());
}

bool ZBDateUtils::local_is_dst()
{
    return zone_cache().localDst;
}

int ZBDateUtils::local_standard_zone()
{
    return zone_cache().standardZone;
}

int ZBDateUtils::local_zone_at(const ZBDate& date)
{
    int zone = local_standard_zone();
    if (!date.is_ok())
        return set_dst_flag(zone, local_is_dst());
    // The flag belongs to the local day, so that calendar arithmetic and the
    // moment agree on it.
    std::int64_t second = std::int64_t(date.get_second_of_day()) + zone_to_seconds(zone, false);
    int dayOfYear = date.get_day_of_year() + int(floor_div(second, ZBDate::C_DaySecs));
    int year = 0;
    int month = 0;
    int day = 0;
    breakdown_yearday(dayOfYear, date.get_year(), year, month, day);
    return set_dst_flag(zone, date_is_dst(day, month, year));
}

int ZBDateUtils::expand_timezone(int zone, const ZBDate& date)
{
    if (is_fixed_zone(zone))
        return zone;
    if (zone == ZBDate::C_LocalTime)
        return local_zone_at(date);
    if (zone == ZBDate::C_OriginalTime && date.get_timezone() != ZBDate::C_OriginalTime)
        return expand_timezone(date.get_timezone(), date);
    int chosen = zblocale().get_default_zone();
    if (!is_fixed_zone(chosen))
        return local_zone_at(date);
    return chosen;
}

std::string ZBDateUtils::zone_to_string(int zone, int keepZone)
{
    if (zone == ZBDate::C_LocalTime)
        return "Local Time";
    if (zone == ZBDate::C_OriginalTime) {
        std::string text = "Keep";
        if (is_fixed_zone(keepZone) || keepZone == ZBDate::C_LocalTime)
            text += " (" + zone_to_string(keepZone) + ")";
        return text;
    }
    if (zone == ZBDate::C_DefaultTime)
        return zone_to_string(zblocale().get_default_zone());
    if (!is_fixed_zone(zone) || zone == 0)
        return "GMT";
    int offset = zone_to_seconds(zone, false);
    char sign = zone < 0 ? '-' : '+';
    if (offset < 0)
        offset = -offset;
    int hours = offset / 3600;
    int minutes = offset / 60 % 60;
    int seconds = offset % 60;
    char buffer[48];
    if (seconds)
        std::snprintf(buffer, sizeof buffer, "GMT%c%02d:%02d:%02d", sign, hours, minutes, seconds);
    else if (minutes)
        std::snprintf(buffer, sizeof buffer, "GMT%c%02d:%02d", sign, hours, minutes);
    else
        std::snprintf(buffer, sizeof buffer, "GMT%c%02d", sign, hours);
    return std::string(buffer) + (zone_is_dst(zone) ? " DST" : " NODST");
}

// ---------------------------------------------------------------- periods

namespace {

template <typename F>
ZBDate adjust_in_own_zone(const ZBDate& date, F change)
{
    if (!date.is_ok())
        return date;
    ZBDateDetails details(date, ZBDate::C_OriginalTime);
    change(details);
    return details.get_date(ZBDate::C_OriginalTime);
}

void clear_clock(ZBDateDetails& d)
{
    d.m_hour = 0;
    d.m_minute = 0;
    d.m_second = 0;
    d.m_micro = 0;
}

void end_clock(ZBDateDetails& d)
{
    d.m_hour = 23;
    d.m_minute = 59;
    d.m_second = 59;
}

int back_to_week_start(const ZBDateDetails& d)
{
    return (d.m_dayWeek + 7 - zblocale().get_first_day()) % 7;
}

} // namespace

ZBDate ZBDateUtils::round_hour(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_minute = 0;
        d.m_second = 0;
        d.m_micro = 0;
    });
}

ZBDate ZBDateUtils::round_minute(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_second = 0;
        d.m_micro = 0;
    });
}

ZBDate ZBDateUtils::start_day(const ZBDate& date)
{
    return adjust_in_own_zone(date, clear_clock);
}

ZBDate ZBDateUtils::end_day(const ZBDate& date)
{
    return adjust_in_own_zone(date, end_clock);
}

ZBDateSlot ZBDateUtils::day_slot(const ZBDate& date)
{
    return date.is_ok() ? ZBDateSlot(start_day(date), end_day(date)) : ZBDateSlot::C_Blank;
}

ZBDate ZBDateUtils::start_week(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_dayMonth -= back_to_week_start(d);
        clear_clock(d);
    });
}

ZBDate ZBDateUtils::end_week(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_dayMonth += 6 - back_to_week_start(d);
        end_clock(d);
    });
}

ZBDateSlot ZBDateUtils::week_slot(const ZBDate& date)
{
    return date.is_ok() ? ZBDateSlot(start_week(date), end_week(date)) : ZBDateSlot::C_Blank;
}

ZBDate ZBDateUtils::start_month(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_dayMonth = 0;
        clear_clock(d);
    });
}

ZBDate ZBDateUtils::end_month(const ZBDate& date)
{
    // Day -1 of the next month carries back to the last day of this one.
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_month += 1;
        d.m_dayMonth = -1;
        end_clock(d);
    });
}

ZBDateSlot ZBDateUtils::month_slot(const ZBDate& date)
{
    return date.is_ok() ? ZBDateSlot(start_month(date), end_month(date)) : ZBDateSlot::C_Blank;
}

ZBDate ZBDateUtils::start_year(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_month = 0;
        d.m_dayMonth = 0;
        clear_clock(d);
    });
}

ZBDate ZBDateUtils::end_year(const ZBDate& date)
{
    return adjust_in_own_zone(date, [](ZBDateDetails& d) {
        d.m_month = 11;
        d.m_dayMonth = 30;
        end_clock(d);
    });
}

ZBDateSlot ZBDateUtils::year_slot(const ZBDate& date)
{
    return date.is_ok() ? ZBDateSlot(start_year(date), end_year(date)) : ZBDateSlot::C_Blank;
}

ZBDate ZBDateUtils::ignore_zone(const ZBDate& date)
{
    if (!date.is_ok())
        return date;
    ZBDate result(date.get_year(), date.get_day_of_year(),
                  date.get_second_of_day() + zone_to_seconds(date.get_timezone(), true), date.get_microsecond(),
                  ZBDate::C_GMT);
    return result;
}

} // namespace Tervalon
