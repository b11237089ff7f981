#pragma once

#include "LibDate/date/zbdate.h"

#include <iosfwd>

namespace Tervalon {

// A moment broken down into calendar fields in one zone, on which all calendar
// arithmetic is done: change a field, even out of range, and recalculate()
// carries it. Month, day of month, day of year and the weeks count from 0;
// m_dayWeek is 0 for Sunday. The fields are public because callers step them.
class ZBDateDetails {
public:
    ZBDateDetails();
    ZBDateDetails(const ZBDate& date, int zone);
    virtual ~ZBDateDetails() = default;

    void set_date(const ZBDate& date, int zone);
    ZBDate get_date(int zone);
    // Carries every field into the next larger one, both ways, and works out the
    // day of year, weekday and weeks. In the machine's zone the DST flag follows
    // the new day, so stepping across a change keeps the clock time.
    void recalculate();
    // The weekNo'th (from 0) weekday of a month; 5 means the last one.
    void set_weekday_no(int weekday, int weekNo, int month, int year);
    void set_weekdayno(int weekday, int weekNo, int month, int year) { set_weekday_no(weekday, weekNo, month, year); }
    // The given weekday within the week (from the locale's first day) of the date.
    void set_weekday(int weekday, int dayMonth, int month, int year);
    void set_dayyear(int day);
    void add_seconds(std::int64_t seconds);
    static bool is_workday(const ZBDateDetails& details);
    int get_timezone() const { return m_timeZone; }
    void set_timezone(int zone) { m_timeZone = zone; }

    virtual void dump(std::ostream& out, int indent) const;

    int m_year;
    int m_weekYear;
    int m_dayYear;
    int m_month;
    int m_weekMonth;
    int m_dayMonth;
    int m_dayWeek;
    int m_hour;
    int m_minute;
    int m_second;
    int m_micro;
    int m_timeZone;
    bool m_isDST;
    bool m_forceDST;

private:
    void carry_fields();
    void derive_fields();
};

} // namespace Tervalon
