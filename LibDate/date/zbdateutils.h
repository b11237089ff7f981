#pragma once

#include "LibDate/date/zbdate.h"

#include <string>

namespace Tervalon {

// Stateless date helpers. now() can be fixed for tests and scripted runs.
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

    static bool is_leap_year(int year);
    static int days_in_year(int year);
    static int days_in_month(int month, int year);
    // Month and day may lie outside their ranges; both carry.
    static void calc_yearday(int year, int month, int day, int& outYear, int& outDay);
    static void breakdown_yearday(int day, int year, int& outYear, int& outMonth, int& outDay);

    static int zone_to_seconds(int zone, bool withDST);
    static int seconds_to_zone(int seconds, bool isDST, bool adjust);
    static int set_dst_flag(int zone, bool flag);
    static bool zones_equivalent(int a, int b);
    static bool zone_is_dst(int zone);
    static bool date_is_dst(int day, int month, int year);
    // The machine's zone for a moment, with its DST flag.
    static int local_zone_at(const ZBDate& date);
    // Resolves the three symbolic zones to a fixed one for the given date.
    static int expand_timezone(int zone, const ZBDate& date);
};

} // namespace Tervalon
