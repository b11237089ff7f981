#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"

#include <string>

namespace Tervalon {

class ZBRepeatConfig;

// Stateless date helpers: the clock, the calendar tables, zones and the
// start and end of days, weeks, months and years. now() can be fixed for
// tests and scripted runs.
class ZBDateUtils {
public:
    static ZBDate now();
    static std::int64_t unow();
    // Fixes the moment that now() returns, until cleared; for tests and "--now".
    static void set_fixed_now(const ZBDate& date);
    static void clear_fixed_now();

    static ZBDate blank_date() { return ZBDate(ZBDate::E_Blank); }
    static ZBDate invalid_date() { return ZBDate(ZBDate::E_Invalid); }
    static ZBDate zero_date() { return ZBDate(ZBDate::E_Zero); }
    static ZBDate read_date(const std::string& text, const ZBDate* relative = nullptr,
                            const ZBRepeatConfig* config = nullptr);
    static ZBDuration read_duration(const std::string& text);

    static bool is_leap_year(int year);
    static int days_in_year(int year);
    static int days_in_month(int month, int year);
    // Month and day may lie outside their ranges; both carry.
    static void calc_yearday(int year, int month, int day, int& outYear, int& outDay);
    static void breakdown_yearday(int day, int year, int& outYear, int& outMonth, int& outDay);
    // Days from 1 January 1970 to 1 January of the year.
    static std::int64_t days_before_year(int year);

    static int zone_to_seconds(int zone, bool withDST);
    // An offset that has no code (beyond the range, or 12:30 east) gives GMT;
    // offset_has_zone says beforehand whether it has one.
    static int seconds_to_zone(int seconds, bool isDST, bool adjust);
    static bool offset_has_zone(int seconds, bool isDST);
    static int set_dst_flag(int zone, bool flag);
    static bool zones_equivalent(int a, int b);
    static bool zone_is_dst(int zone);
    static bool is_fixed_zone(int zone)
    {
        return zone >= ZBDate::C_ZoneMin && zone <= ZBDate::C_ZoneMax
            && (zone < ZBDate::C_LocalTime || zone > ZBDate::C_DefaultTime);
    }
    // Whether noon of the day (month and day from 0) is in summer time where
    // the machine is. Answers are cached per thread and per TZ setting.
    static bool date_is_dst(int day, int month, int year);
    // Sets the machine's zone (TZ; empty for the system's own) for the whole
    // process. A change of TZ made any other way must be announced with
    // machine_zone_changed(), or the cached answers stay those of the old zone.
    static void set_machine_zone(const std::string& tz);
    static void machine_zone_changed();
    static bool date_is_local(const ZBDate& date);
    static bool local_is_dst();
    // The machine's standard zone, without the DST flag.
    static int local_standard_zone();
    // The machine's zone for a moment, with the DST flag of that local day.
    static int local_zone_at(const ZBDate& date);
    // Resolves the three symbolic zones to a fixed one for the given date.
    static int expand_timezone(int zone, const ZBDate& date);
    static std::string zone_to_string(int zone, int keepZone = ZBDate::C_GMT);

    // All in the date's own zone; a date that is not ok comes back unchanged.
    static ZBDate round_hour(const ZBDate& date);
    static ZBDate round_minute(const ZBDate& date);
    static ZBDate start_day(const ZBDate& date);
    static ZBDate end_day(const ZBDate& date);
    static ZBDateSlot day_slot(const ZBDate& date);
    static ZBDate start_week(const ZBDate& date);
    static ZBDate end_week(const ZBDate& date);
    static ZBDateSlot week_slot(const ZBDate& date);
    static ZBDate start_month(const ZBDate& date);
    static ZBDate end_month(const ZBDate& date);
    static ZBDateSlot month_slot(const ZBDate& date);
    static ZBDate start_year(const ZBDate& date);
    static ZBDate end_year(const ZBDate& date);
    static ZBDateSlot year_slot(const ZBDate& date);
    // Zone 0 with the old zone's clock time, as if that time were GMT.
    static ZBDate ignore_zone(const ZBDate& date);
};

} // namespace Tervalon
