#pragma once

#include "LibDate/date/zbduration.h"

#include <cstdint>
#include <ctime>
#include <iosfwd>
#include <string>

namespace Tervalon {

class ZBRepeatConfig;

// A moment in UTC (year, day of year, second of day, microsecond) and the zone
// in which it is shown. Blank (year 9999: no date set) and invalid (year 9998:
// could not be worked out) sort after every real date. Default: invalid.
// A plain value with no virtual members, like the duration, slot and progress
// types: a diary entry holds dozens of them, and a table pointer each would
// cost more than the fields.
class ZBDate {
public:
    enum E_DateInit { E_Invalid = 0, E_Zero = 1, E_Blank = 2 };

    static constexpr int C_BlankDateYear = 9999;
    static constexpr int C_InvalidDateYear = 9998;
    static constexpr int C_InvalidYear = -99999;
    static constexpr int C_MinSecs = 60;
    static constexpr int C_HourSecs = 3600;
    static constexpr int C_DaySecs = 86400;
    static constexpr int C_WeekSecs = 604800;
    static constexpr int C_HourMins = 60;
    static constexpr int C_DayHours = 24;
    static constexpr int C_WeekDays = 7;
    static constexpr int C_YearMonths = 12;
    static constexpr int C_MicroSecs = 1000000;
    static const int C_DaysInMonth[12];
    static const int C_DaysInMonthL[12];

    // Zones: twice the standard offset east of GMT, plus or minus one for DST.
    // Offsets run from 12 hours west to 14 hours east (Kiribati), so the codes
    // run past the three symbolic zones below; the offset that would land on
    // one of them (12:30 east, which no place uses) is refused.
    static constexpr int C_OffsetMin = -12 * 3600;
    static constexpr int C_OffsetMax = 14 * 3600;
    static constexpr int C_ZoneMin = 2 * C_OffsetMin - 1;
    static constexpr int C_ZoneMax = 2 * C_OffsetMax + 1;
    static constexpr int C_GMT = 0;
    static constexpr int C_LocalTime = 90000;
    static constexpr int C_OriginalTime = 90001;
    static constexpr int C_DefaultTime = 90002;

    static const ZBDate C_Blank;
    static const ZBDate C_Invalid;

    ZBDate();
    explicit ZBDate(E_DateInit init);
    ZBDate(int year, int dayOfYear, int secondOfDay, int micro, int zone);
    ZBDate(int year, int month, int day, int hour, int minute, int second, int micro, int zone);
    explicit ZBDate(const std::string& text, const ZBDate* relative = nullptr, const ZBRepeatConfig* config = nullptr);

    bool is_zero() const;
    bool is_blank() const;
    bool is_invalid() const;
    bool is_ok() const;
    void set_zero();
    void set_blank();
    void set_invalid();

    // Month and day from 0; the clock fields are in the given zone.
    void set_date(int year, int month, int day, int hour, int minute, int second, int micro, int zone);
    void set_time_t(std::time_t seconds, int zone);
    std::time_t get_time_t() const;
    // Microseconds since 1970 (UTC), and back.
    std::int64_t to_micros() const;
    void from_micros(std::int64_t micros, int zone);

    int get_year() const { return m_year; }
    int get_day_of_year() const { return m_day; }
    int get_second_of_day() const { return m_second; }
    int get_microsecond() const { return m_micro; }
    void set_micro(int micro) { m_micro = micro; }
    int get_timezone() const { return m_timeZone; }
    void set_timezone(int zone);
    // The time since the zero date (year 0), so that zero + get_duration() is this moment.
    ZBDuration get_duration() const;
    // A number that sorts as the dates do (blank and invalid last); the zone is not part of it.
    std::int64_t to_id() const;
    void from_id(std::int64_t id, int zone);

    void set_latest(const ZBDate& other);
    void set_earliest(const ZBDate& other);
    // Carries microseconds, seconds and days into their larger fields.
    void recalculate();

    // Date text ("now +-1 Week", "9-Mar-2026 14:00") run on relative, or on now
    // when relative is null; digits are read as date text, never as a stored
    // date. False only when the result is invalid: empty text gives the blank
    // date. Text a person has typed goes through ZBDateParser::read_checked.
    bool from_string(const std::string& text, const ZBDate* relative = nullptr, const ZBRepeatConfig* config = nullptr);
    // The format codes of the locale's formats ("%a %d/%b/%Y %H:%M" and the like),
    // shown in the date's own zone; blank and invalid dates give an empty text.
    // An empty format means the locale's date format.
    std::string to_string(const std::string& format = std::string()) const;
    // ISO 8601 in UTC, "2026-03-09T08:00:00Z" (with ".uuuuuu" when there are microseconds).
    std::string to_iso() const;
    // The stored text of a field, without a stream (the reading of files goes through these).
    void write_stored(std::string& text) const;
    void read_stored(const std::string& text);

    bool operator==(const ZBDate& other) const;
    bool operator!=(const ZBDate& other) const { return !(*this == other); }
    bool operator<(const ZBDate& other) const;
    bool operator<=(const ZBDate& other) const;
    bool operator>(const ZBDate& other) const;
    bool operator>=(const ZBDate& other) const;
    ZBDate operator+(const ZBDuration& duration) const;
    ZBDate operator-(const ZBDuration& duration) const;
    ZBDate& operator+=(const ZBDuration& duration);
    ZBDate& operator-=(const ZBDuration& duration);
    ZBDuration operator-(const ZBDate& other) const;

    void dump(std::ostream& out, int indent) const;

private:
    std::int32_t m_year;
    std::int32_t m_day;
    std::int32_t m_second;
    std::int32_t m_micro;
    std::int32_t m_timeZone;
};

bool compare_zbdates(const ZBDate& a, const ZBDate& b);

// Stored text (all in UTC, day and month from 0):
// "%06d%02d%02d%02d%02d%02d%05d%06d" micro, second, minute, hour, day, month, year, zone,
// the leading micro part left out when it is zero.
std::ostream& operator<<(std::ostream& out, const ZBDate& date);
std::istream& operator>>(std::istream& in, ZBDate& date);

} // namespace Tervalon
