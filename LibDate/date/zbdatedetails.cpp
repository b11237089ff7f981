#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <ostream>
#include <string>

namespace Tervalon {

namespace {

// Moves the whole of value outside [0, size) into carry; works for negatives.
inline void carry(int& value, int size, int& next)
{
    if (value >= 0 && value < size)
        return;
    int q = value / size;
    int r = value % size;
    if (r < 0) {
        r += size;
        q -= 1;
    }
    value = r;
    next += q;
}

} // namespace

ZBDateDetails::ZBDateDetails()
    : m_year(1970), m_weekYear(0), m_dayYear(0), m_month(0), m_weekMonth(0), m_dayMonth(0), m_dayWeek(4), m_hour(0),
      m_minute(0), m_second(0), m_micro(0), m_timeZone(0), m_isDST(false), m_forceDST(false)
{
}

ZBDateDetails::ZBDateDetails(const ZBDate& date, int zone) : ZBDateDetails()
{
    set_date(date, zone);
}

void ZBDateDetails::set_date(const ZBDate& date, int zone)
{
    int expanded = ZBDateUtils::expand_timezone(zone, date);
    int second = date.get_second_of_day() + ZBDateUtils::zone_to_seconds(expanded, true);
    m_year = date.get_year();
    m_month = 0;
    m_dayMonth = date.get_day_of_year();
    m_hour = 0;
    m_minute = 0;
    m_second = second;
    m_micro = date.get_microsecond();
    m_timeZone = expanded;
    carry_fields();
    // A fixed zone equal to the machine's standard zone takes the machine's
    // DST for that day, as recalculate() would; the moment stays the same.
    if (!m_forceDST && ZBDateUtils::zones_equivalent(m_timeZone, ZBDateUtils::local_standard_zone())) {
        bool dst = ZBDateUtils::date_is_dst(m_dayMonth, m_month, m_year);
        if (dst != ZBDateUtils::zone_is_dst(m_timeZone)) {
            m_second += dst ? 3600 : -3600;
            m_timeZone = ZBDateUtils::set_dst_flag(m_timeZone, dst);
            carry_fields();
        }
    }
    m_isDST = ZBDateUtils::zone_is_dst(m_timeZone);
    derive_fields();
}

ZBDate ZBDateDetails::get_date(int zone)
{
    recalculate();
    ZBDate result(m_year, m_month, m_dayMonth, m_hour, m_minute, m_second, m_micro, m_timeZone);
    if (zone == ZBDate::C_OriginalTime || zone == m_timeZone)
        return result;
    result.set_timezone(zone);
    return result;
}

void ZBDateDetails::carry_fields()
{
    carry(m_micro, ZBDate::C_MicroSecs, m_second);
    carry(m_second, 60, m_minute);
    carry(m_minute, 60, m_hour);
    carry(m_hour, 24, m_dayMonth);
    carry(m_month, 12, m_year);
    // Whole years first when far out, then month by month.
    while (m_dayMonth >= 366 + 31) {
        m_dayMonth -= ZBDateUtils::days_in_year(m_month >= 2 ? m_year + 1 : m_year);
        m_year += 1;
    }
    while (m_dayMonth < -366) {
        m_dayMonth += ZBDateUtils::days_in_year(m_month >= 2 ? m_year : m_year - 1);
        m_year -= 1;
    }
    while (m_dayMonth < 0) {
        m_month -= 1;
        if (m_month < 0) {
            m_month = 11;
            m_year -= 1;
        }
        m_dayMonth += ZBDateUtils::days_in_month(m_month, m_year);
    }
    for (int length = ZBDateUtils::days_in_month(m_month, m_year); m_dayMonth >= length;
         length = ZBDateUtils::days_in_month(m_month, m_year)) {
        m_dayMonth -= length;
        m_month += 1;
        if (m_month > 11) {
            m_month = 0;
            m_year += 1;
        }
    }
}

void ZBDateDetails::derive_fields()
{
    const int* lengths = ZBDateUtils::is_leap_year(m_year) ? ZBDate::C_DaysInMonthL : ZBDate::C_DaysInMonth;
    m_dayYear = m_dayMonth;
    for (int m = 0; m < m_month; ++m)
        m_dayYear += lengths[m];
    // 1 January 1970 was a Thursday.
    std::int64_t days = ZBDateUtils::days_before_year(m_year) + m_dayYear;
    int weekday = int(((days + 4) % 7 + 7) % 7);
    m_dayWeek = weekday;
    int first = zblocale().get_first_day();
    int shift = (6 - m_dayWeek + first) % 7;
    m_weekYear = (m_dayYear + shift) / 7;
    m_weekMonth = (m_dayMonth + shift) / 7;
}

void ZBDateDetails::recalculate()
{
    carry_fields();
    if (!m_forceDST && ZBDateUtils::is_fixed_zone(m_timeZone)
        && ZBDateUtils::zones_equivalent(m_timeZone, ZBDateUtils::local_standard_zone())) {
        m_timeZone = ZBDateUtils::set_dst_flag(m_timeZone, ZBDateUtils::date_is_dst(m_dayMonth, m_month, m_year));
    }
    m_isDST = ZBDateUtils::zone_is_dst(m_timeZone);
    derive_fields();
}

void ZBDateDetails::set_weekday_no(int weekday, int weekNo, int month, int year)
{
    m_year = year;
    m_month = month;
    m_dayMonth = 0;
    recalculate();
    int d = (weekday + 7 - m_dayWeek) % 7;
    if (weekNo >= 5)
        m_dayMonth = d + 28 < ZBDateUtils::days_in_month(m_month, m_year) ? d + 28 : d + 21;
    else
        m_dayMonth = d + 7 * weekNo;
    recalculate();
}

void ZBDateDetails::set_weekday(int weekday, int dayMonth, int month, int year)
{
    m_year = year;
    m_month = month;
    m_dayMonth = dayMonth;
    recalculate();
    int first = zblocale().get_first_day();
    m_dayMonth = dayMonth + ((weekday + 7 - first) % 7 - (m_dayWeek + 7 - first) % 7);
    recalculate();
}

void ZBDateDetails::set_dayyear(int day)
{
    m_month = 0;
    for (int i = 0; i < 100; ++i) {
        int length = ZBDateUtils::days_in_month(m_month, m_year);
        if (day < length)
            break;
        day -= length;
        m_month += 1;
        if (m_month > 11) {
            m_month = 0;
            m_year += 1;
        }
    }
    m_dayMonth = day;
    recalculate();
}

void ZBDateDetails::add_seconds(std::int64_t seconds)
{
    std::int64_t days = seconds / ZBDate::C_DaySecs;
    m_dayMonth += int(days);
    m_second += int(seconds - days * ZBDate::C_DaySecs);
    recalculate();
}

bool ZBDateDetails::is_workday(const ZBDateDetails& details)
{
    return zblocale().is_workday(details.m_dayWeek);
}

void ZBDateDetails::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBDateDetails\n"
        << pad << "    m_year      : " << m_year << "\n"
        << pad << "    m_weekYear  : " << m_weekYear << "\n"
        << pad << "    m_dayYear   : " << m_dayYear << "\n"
        << pad << "    m_month     : " << m_month << "\n"
        << pad << "    m_weekMonth : " << m_weekMonth << "\n"
        << pad << "    m_dayMonth  : " << m_dayMonth << "\n"
        << pad << "    m_dayWeek   : " << m_dayWeek << "\n"
        << pad << "    m_hour      : " << m_hour << "\n"
        << pad << "    m_minute    : " << m_minute << "\n"
        << pad << "    m_second    : " << m_second << "\n"
        << pad << "    m_micro     : " << m_micro << "\n"
        << pad << "    m_timeZone  : " << m_timeZone << "\n"
        << pad << "    m_isDST     : " << m_isDST << "\n"
        << pad << "    m_forceDST  : " << m_forceDST << "\n";
}

} // namespace Tervalon
