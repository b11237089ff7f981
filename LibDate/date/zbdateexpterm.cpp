#include "LibDate/date/zbdateexpterm.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbrepeatconfig.h"
#include "LibCore/error/zberror.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace Tervalon {

namespace {

// About 11000 years: further than any real date goes, near enough to keep the
// carrying loops of ZBDateDetails short and every field inside an int.
constexpr std::int64_t C_MaxSpanDays = 4000000;

// How many days a term could move the date, so that a step no calendar can
// hold makes the date invalid instead of overflowing.
std::int64_t span_days(int type, std::int64_t value)
{
    std::int64_t size = std::llabs(value);
    switch (type) {
    case ZBDateExpTerm::SetMicro:
    case ZBDateExpTerm::AddMicro: return size / (std::int64_t(ZBDate::C_DaySecs) * ZBDate::C_MicroSecs);
    case ZBDateExpTerm::SetSecond:
    case ZBDateExpTerm::AddSecond: return size / ZBDate::C_DaySecs;
    case ZBDateExpTerm::SetMinute:
    case ZBDateExpTerm::AddMinute: return size / (24 * 60);
    case ZBDateExpTerm::SetHour:
    case ZBDateExpTerm::AddHour: return size / 24;
    case ZBDateExpTerm::SetDay:
    case ZBDateExpTerm::AddDay:
    case ZBDateExpTerm::WorkDay: return size;
    case ZBDateExpTerm::SetWeek:
    case ZBDateExpTerm::AddWeek: return size * 7;
    case ZBDateExpTerm::SetMonth:
    case ZBDateExpTerm::AddMonth: return size * 31;
    case ZBDateExpTerm::AddYear: return size * 366;
    default: return 0;
    }
}

bool is_workday(const ZBDateDetails& details, const ZBRepeatConfig* config, const std::string& tag)
{
    if (!config)
        return ZBDateDetails::is_workday(details);
    return config->is_workday(details, tag);
}

// Today's calendar day in the details' zone, plus a number of days; the clock
// is left alone.
void set_today(ZBDateDetails& details, int plusDays)
{
    ZBDateDetails today(ZBDateUtils::now(), details.m_timeZone);
    details.m_year = today.m_year;
    details.m_month = today.m_month;
    details.m_dayMonth = today.m_dayMonth + plusDays;
    details.recalculate();
}

std::string number(const char* format, long value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

std::string signed_count(int value)
{
    return value < 0 ? " +-" + std::to_string(-static_cast<long>(value)) : " +" + std::to_string(value);
}

std::string zone_text(int zone)
{
    if (zone == ZBDate::C_DefaultTime)
        return " DefaultZone";
    if (zone == ZBDate::C_LocalTime)
        return " Local";
    int seconds = ZBDateUtils::zone_to_seconds(zone, false);
    if (seconds == 0)
        return " UTC";
    std::string text = seconds < 0 ? " UTC-" : " UTC+";
    seconds = std::abs(seconds);
    text += std::to_string(seconds / 3600);
    if (seconds % 3600)
        text += number(":%02ld", long(seconds % 3600 / 60));
    return text;
}

} // namespace

int ZBDateExpTerm::apply(ZBDateDetails& d, const ZBRepeatConfig* config, int& outcome) const
{
    if (span_days(m_type, m_value) > C_MaxSpanDays) {
        outcome = E_Invalid;
        return ZBErrC_ok;
    }
    switch (m_type) {
    case SetMicro: d.m_micro = m_value; break;
    case SetSecond: d.m_second = m_value; break;
    case SetMinute: d.m_minute = m_value; break;
    case SetHour: d.m_hour = m_value; break;
    case SetDay:
        if (m_value < 0) {
            d.recalculate();
            d.m_dayMonth = ZBDateUtils::days_in_month(d.m_month, d.m_year) + m_value;
        } else {
            d.m_dayMonth = m_value;
        }
        break;
    case SetWeekday:
        if (m_value <= 9) {
            d.set_weekday(m_value, d.m_dayMonth, d.m_month, d.m_year);
        } else {
            int weekNo = 0;
            int weekday = 0;
            decode_weekday_month(m_value, weekNo, weekday);
            d.set_weekdayno(weekday, weekNo, d.m_month, d.m_year);
        }
        break;
    case SetWeek:
        d.recalculate();
        d.set_dayyear(d.m_dayYear % 7 + 7 * m_value);
        break;
    case SetMonth: d.m_month = m_value; break;
    case SetYear:
        if (m_value < 1 || m_value >= ZBDate::C_InvalidDateYear) {
            outcome = E_Invalid;
            return ZBErrC_ok;
        }
        d.m_year = m_value;
        break;
    case AddMicro: d.m_micro += m_value; d.recalculate(); break;
    case AddSecond: d.m_second += m_value; d.recalculate(); break;
    case AddMinute: d.m_minute += m_value; d.recalculate(); break;
    case AddHour: d.m_hour += m_value; d.recalculate(); break;
    case AddDay: d.m_dayMonth += m_value; d.recalculate(); break;
    case AddWeek: d.m_dayMonth += 7 * m_value; d.recalculate(); break;
    case AddYear: d.m_year += m_value; d.recalculate(); break;
    case AddMonth: {
        d.recalculate();
        int month = d.m_month + m_value;
        int year = d.m_year + month / 12;
        month %= 12;
        if (month < 0) {
            month += 12;
            year -= 1;
        }
        d.m_year = year;
        d.m_month = month;
        int length = ZBDateUtils::days_in_month(month, year);
        if (d.m_dayMonth >= length)
            d.m_dayMonth = length - 1;
        d.recalculate();
        break;
    }
    case WorkDay: {
        d.recalculate();
        // Never more than this many days: a calendar with no work days at all
        // must not hang the recalculation.
        const int C_MaxSteps = 10000;
        if (m_value == 0) {
            for (int step = 0; step < C_MaxSteps && !is_workday(d, config, m_tag); ++step) {
                d.m_dayMonth += 1;
                d.recalculate();
            }
            break;
        }
        // A negative count stops at the first work day ahead: the test is
        // count >= value, and stored repeats rely on that reading.
        int count = 0;
        for (int step = 0; step < C_MaxSteps; ++step) {
            d.m_dayMonth += 1;
            d.recalculate();
            if (is_workday(d, config, m_tag) && ++count >= m_value)
                break;
        }
        break;
    }
    case Fixed:
        d.recalculate();
        if (!is_workday(d, config, m_tag))
            return ZBErrC_okNotFinished;
        break;
    case Now: d.set_date(ZBDateUtils::now(), d.m_timeZone); break;
    case Today: set_today(d, 0); break;
    case Tomorrow: set_today(d, 1); break;
    case Yesterday: set_today(d, -1); break;
    case SetZone:
        if (m_value == ZBDate::C_LocalTime || m_value == ZBDate::C_DefaultTime) {
            int chosen = m_value == ZBDate::C_DefaultTime ? zblocale().get_default_zone() : ZBDate::C_LocalTime;
            // The machine's zone takes the DST flag of the day in recalculate().
            d.m_timeZone = ZBDateUtils::is_fixed_zone(chosen) ? chosen : ZBDateUtils::local_standard_zone();
            d.m_forceDST = false;
        } else if (ZBDateUtils::is_fixed_zone(m_value)) {
            d.m_timeZone = m_value;
        }
        d.recalculate();
        break;
    case SetDST:
        d.m_timeZone = ZBDateUtils::set_dst_flag(d.m_timeZone, m_value != 0);
        d.m_forceDST = true;
        d.m_isDST = m_value != 0;
        break;
    case AM:
        if (d.m_hour == 12)
            d.m_hour = 0;
        break;
    case PM:
        if (d.m_hour < 12)
            d.m_hour += 12;
        break;
    case Blank: outcome = E_Blank; break;
    case Invalid: outcome = E_Invalid; break;
    default: break; // Relative, and the brackets, which the expression walks itself
    }
    return ZBErrC_ok;
}

std::string ZBDateExpTerm::to_string(int previousType, int nextType) const
{
    const int v = m_value;
    switch (m_type) {
    case SetHour:
        if (nextType == SetMinute)
            return " " + std::to_string(v);
        return " Hour " + std::to_string(v);
    case SetMinute:
        if (previousType == SetHour)
            return number(":%02ld", v);
        return " Minute " + std::to_string(v);
    case SetSecond:
        if (previousType == SetMinute)
            return number(":%02ld", v);
        return " Second " + std::to_string(v);
    case SetMicro:
        if (previousType == SetSecond)
            return v ? number(".%06ld", v) : std::string();
        return " uSecond " + std::to_string(v);
    case SetDay:
        if (v < 0)
            return v == -1 ? std::string(" Last Day") : " " + std::to_string(-v) + ZBLocale::get_ordinal(-v, false) + " Last Day";
        if (nextType == SetMonth)
            return " " + std::to_string(v + 1);
        return " " + std::to_string(v + 1) + ZBLocale::get_ordinal(v + 1, false);
    case SetMonth:
        // After a bare year the month joins it ("2027-Mar"), since "2027 Mar"
        // would read the year as a day.
        return (previousType == SetDay || previousType == SetYear ? "-" : " ") + ZBLocale::english_month(v);
    case SetYear:
        // Four digits at least, so that a small year is not read as a day.
        return (previousType == SetMonth ? "/" : " ") + number("%04ld", v);
    case SetWeekday: {
        if (v <= 9)
            return " " + ZBLocale::english_weekday(v);
        int weekNo = 0;
        int weekday = 0;
        decode_weekday_month(v, weekNo, weekday);
        return " " + std::to_string(weekNo + 1) + ZBLocale::get_ordinal(weekNo + 1, false) + " "
               + ZBLocale::english_weekday(weekday);
    }
    case SetWeek: return " Week " + std::to_string(v + 1);
    case AddMicro: return signed_count(v) + " USecond";
    case AddSecond: return signed_count(v) + " Second";
    case AddMinute: return signed_count(v) + " Minute";
    case AddHour: return signed_count(v) + " Hour";
    case AddDay: return signed_count(v) + " Day";
    case AddWeek: return signed_count(v) + " Week";
    case AddMonth: return signed_count(v) + " Month";
    case AddYear: return signed_count(v) + " Year";
    case WorkDay:
        if (m_tag.empty())
            return signed_count(v) + " WorkDay";
        if (v == 0)
            return " WorkDayFor " + m_tag;
        if (v == 1 || v == -1)
            return (v > 0 ? " Next" : " Last") + std::string(" WorkDayFor ") + m_tag;
        // No text carries both a count and a calendar; the count is kept.
        return signed_count(v) + " WorkDay";
    case Fixed: return m_tag.empty() ? " Fixed" : " FixedFor " + m_tag;
    case Now: return " Now";
    case Today: return " Today";
    case Tomorrow: return " Tomorrow";
    case Yesterday: return " Yesterday";
    case Relative: return " @" + m_tag;
    case SetZone: return zone_text(v);
    case SetDST: return v ? " DST" : " NoDST";
    case AM: return "AM";
    case PM: return "PM";
    case Blank: return std::string();
    case Open: return " (";
    case Or: return "|";
    case Close: return ")";
    default: return " INVALID";
    }
}

void ZBDateExpTerm::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBDateExpTerm\n"
        << pad << "    m_type  : " << m_type << "\n"
        << pad << "    m_value : " << m_value << "\n"
        << pad << "    m_tag   : " << m_tag << "\n";
}

} // namespace Tervalon
