#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zblocale.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <sstream>
#include <cstdint>

namespace Tervalon {

const int ZBDate::C_DaysInMonth[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
const int ZBDate::C_DaysInMonthL[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
const ZBDate ZBDate::C_Blank(ZBDate::E_Blank);
const ZBDate ZBDate::C_Invalid(ZBDate::E_Invalid);


ZBDate::ZBDate() : ZBDate(E_Invalid) {}

ZBDate::ZBDate(E_DateInit init) : m_year(0), m_day(0), m_second(0), m_micro(0), m_timeZone(0)
{
    if (init == E_Invalid)
        m_year = C_InvalidDateYear;
    else if (init == E_Blank)
        m_year = C_BlankDateYear;
}

ZBDate::ZBDate(int year, int dayOfYear, int secondOfDay, int micro, int zone)
    : m_year(year), m_day(dayOfYear), m_second(secondOfDay), m_micro(micro), m_timeZone(0)
{
    recalculate();
    set_timezone(zone);
}

ZBDate::ZBDate(int year, int month, int day, int hour, int minute, int second, int micro, int zone) : ZBDate()
{
    set_date(year, month, day, hour, minute, second, micro, zone);
}

ZBDate::ZBDate(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config) : ZBDate()
{
    from_string(text, relative, config);
}

bool ZBDate::is_zero() const
{
    return m_year == 0 && m_day == 0 && m_second == 0 && m_micro == 0;
}

bool ZBDate::is_blank() const
{
    return m_year == C_BlankDateYear && m_day == 0 && m_second == 0 && m_micro == 0;
}

bool ZBDate::is_invalid() const
{
    return m_year == C_InvalidDateYear && m_day == 0 && m_second == 0 && m_micro == 0;
}

bool ZBDate::is_ok() const
{
    return m_day != 0 || m_second != 0 || m_micro != 0 || (m_year != C_InvalidDateYear && m_year != C_BlankDateYear);
}

void ZBDate::set_zero()
{
    *this = ZBDate(E_Zero);
}

void ZBDate::set_blank()
{
    *this = ZBDate(E_Blank);
}

void ZBDate::set_invalid()
{
    *this = ZBDate(E_Invalid);
}

void ZBDate::set_date(int year, int month, int day, int hour, int minute, int second, int micro, int zone)
{
    m_timeZone = 0;
    int outYear = 0;
    int outDay = 0;
    ZBDateUtils::calc_yearday(year, month, day, outYear, outDay);
    m_year = outYear;
    m_day = outDay;
    m_second = hour * C_HourSecs + minute * C_MinSecs + second;
    m_micro = micro;
    recalculate();
    // The clock fields are in the zone: first guess the zone from the clock
    // time, then settle its DST flag for the moment that gives.
    int expanded = ZBDateUtils::expand_timezone(zone, *this);
    m_second -= ZBDateUtils::zone_to_seconds(expanded, true);
    recalculate();
    if (zone == C_LocalTime || zone == C_DefaultTime) {
        int again = ZBDateUtils::expand_timezone(zone, *this);
        if (again != expanded) {
            m_second += ZBDateUtils::zone_to_seconds(expanded, true) - ZBDateUtils::zone_to_seconds(again, true);
            recalculate();
            expanded = again;
        }
    }
    m_timeZone = expanded;
}

void ZBDate::set_time_t(std::time_t seconds, int zone)
{
    from_micros(std::int64_t(seconds) * C_MicroSecs, zone);
}

std::time_t ZBDate::get_time_t() const
{
    if (m_year < 1940 || m_year > 2030)
        return 0;
    return std::time_t(to_micros() / C_MicroSecs);
}

std::int64_t ZBDate::to_micros() const
{
    std::int64_t days = ZBDateUtils::days_before_year(m_year) + m_day;
    return (days * C_DaySecs + m_second) * std::int64_t(C_MicroSecs) + m_micro;
}

void ZBDate::from_micros(std::int64_t micros, int zone)
{
    std::int64_t seconds = micros / C_MicroSecs;
    std::int64_t micro = micros % C_MicroSecs;
    if (micro < 0) {
        micro += C_MicroSecs;
        seconds -= 1;
    }
    std::int64_t days = seconds / C_DaySecs;
    std::int64_t second = seconds % C_DaySecs;
    if (second < 0) {
        second += C_DaySecs;
        days -= 1;
    }
    // Estimate the year from the mean year length, then settle it.
    std::int64_t year = 1970 + (days * 400) / 146097;
    if (days < 0)
        year -= 1;
    std::int64_t dayOfYear = days - ZBDateUtils::days_before_year(int(year));
    while (dayOfYear < 0) {
        year -= 1;
        dayOfYear += ZBDateUtils::days_in_year(int(year));
    }
    while (dayOfYear >= ZBDateUtils::days_in_year(int(year))) {
        dayOfYear -= ZBDateUtils::days_in_year(int(year));
        year += 1;
    }
    m_year = int(year);
    m_day = int(dayOfYear);
    m_second = int(second);
    m_micro = int(micro);
    m_timeZone = 0;
    set_timezone(zone);
}

ZBDuration ZBDate::get_duration() const
{
    return *this - ZBDate(E_Zero);
}

std::int64_t ZBDate::to_id() const
{
    if (is_blank())
        return INT64_MAX;
    if (is_invalid())
        return INT64_MAX - 1;
    return to_micros();
}

void ZBDate::from_id(std::int64_t id, int zone)
{
    if (id == INT64_MAX)
        set_blank();
    else if (id == INT64_MAX - 1)
        set_invalid();
    else
        from_micros(id, zone);
}

void ZBDate::set_timezone(int zone)
{
    m_timeZone = ZBDateUtils::expand_timezone(zone, *this);
}

void ZBDate::set_latest(const ZBDate& other)
{
    if (!is_ok() || (other.is_ok() && other > *this))
        *this = other;
}

void ZBDate::set_earliest(const ZBDate& other)
{
    if (!is_ok() || (other.is_ok() && other < *this))
        *this = other;
}

void ZBDate::recalculate()
{
    if (!is_ok())
        return;
    std::int64_t second = m_second + m_micro / C_MicroSecs;
    int micro = m_micro % C_MicroSecs;
    if (micro < 0) {
        micro += C_MicroSecs;
        second -= 1;
    }
    std::int64_t day = m_day + second / C_DaySecs;
    second %= C_DaySecs;
    if (second < 0) {
        second += C_DaySecs;
        day -= 1;
    }
    int year = m_year;
    while (day < 0) {
        year -= 1;
        day += ZBDateUtils::days_in_year(year);
    }
    while (day >= ZBDateUtils::days_in_year(year)) {
        day -= ZBDateUtils::days_in_year(year);
        year += 1;
    }
    m_year = year;
    m_day = int(day);
    m_second = int(second);
    m_micro = micro;
}

bool ZBDate::from_string(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config)
{
    // Only date text: a run of digits is a year or a day here, never a stored
    // date, which only the readers of stored text take.
    *this = ZBDateParser::parse_date(text).apply(relative ? *relative : C_Blank, config);
    return !is_invalid();
}

namespace {

void replace_all(std::string& text, const char* code, const std::string& with)
{
    size_t length = std::char_traits<char>::length(code);
    for (size_t pos = text.find(code); pos != std::string::npos; pos = text.find(code, pos + with.size()))
        text.replace(pos, length, with);
}

std::string printed(const char* format, long value)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

// Which of the "smart" forms fits: a date near today says less.
enum SmartCase { E_OtherYear, E_OtherWeek, E_Today, E_ThisWeek };

SmartCase smart_case(const ZBDateDetails& date)
{
    ZBDateDetails today(ZBDateUtils::now(), date.m_timeZone);
    bool lateDecember = today.m_month == 11 && today.m_dayMonth > 24;
    if (date.m_year != today.m_year || date.m_weekYear == 0 || lateDecember)
        return E_OtherYear;
    if (date.m_weekYear != today.m_weekYear)
        return E_OtherWeek;
    return date.m_dayYear == today.m_dayYear ? E_Today : E_ThisWeek;
}

} // namespace

std::string ZBDate::to_string(const std::string& format) const
{
    if (!is_ok())
        return std::string();
    const ZBLocale& locale = zblocale();
    std::string text = format.empty() ? locale.date_format() : format;
    if (text.find('%') == std::string::npos)
        return text;
    ZBDateDetails d(*this, C_OriginalTime);

    bool noZone = text.find("%N") != std::string::npos;
    if (noZone)
        replace_all(text, "%N", "");
    const std::string longDay = locale.day_format(false);
    const std::string shortDay = locale.day_format(true);
    replace_all(text, "%D", longDay);
    replace_all(text, "%E", longDay + " " + locale.time_format(false));
    replace_all(text, "%T", locale.time_format(false));

    bool smart = text.find("%F") != std::string::npos || text.find("%C") != std::string::npos
        || text.find("%c") != std::string::npos || text.find("%O") != std::string::npos;
    if (smart) {
        SmartCase which = smart_case(d);
        std::string fText;
        std::string cText;
        std::string oText;
        switch (which) {
        case E_OtherWeek:
            fText = "%a " + shortDay;
            cText = shortDay;
            oText = shortDay;
            break;
        case E_Today:
            fText = "%a";
            cText = "%a";
            oText = locale.time_format(true);
            break;
        case E_ThisWeek:
            fText = "%a";
            cText = "%a";
            oText = "%a " + locale.time_format(true);
            break;
        case E_OtherYear:
            fText = "%a " + longDay;
            cText = longDay;
            oText = longDay;
            break;
        }
        replace_all(text, "%F", fText);
        replace_all(text, "%C", fText.empty() ? std::string("%t") : fText + " %t");
        // %t and %i come below, after %C has put its %t in.
        replace_all(text, "%t", (d.m_second == 0 && d.m_micro == 0) ? locale.time_format(true) : locale.time_format(false));
        replace_all(text, "%i", locale.time_format(true));
        replace_all(text, "%c", cText);
        replace_all(text, "%O", oText);
    } else {
        replace_all(text, "%t", (d.m_second == 0 && d.m_micro == 0) ? locale.time_format(true) : locale.time_format(false));
        replace_all(text, "%i", locale.time_format(true));
    }

    replace_all(text, "%a", locale.weekday_name(d.m_dayWeek, true));
    replace_all(text, "%A", locale.weekday_name(d.m_dayWeek, false));
    replace_all(text, "%b", locale.month_name(d.m_month, true));
    replace_all(text, "%B", locale.month_name(d.m_month, false));
    replace_all(text, "%d", printed("%02ld", d.m_dayMonth + 1));
    replace_all(text, "%e", printed("%2ld", d.m_dayMonth + 1));
    replace_all(text, "%H", printed("%02ld", d.m_hour));
    replace_all(text, "%k", printed("%02ld", d.m_hour));
    int hour12 = d.m_hour % 12 == 0 ? 12 : d.m_hour % 12;
    replace_all(text, "%I", printed("%02ld", hour12));
    replace_all(text, "%l", printed("%2ld", hour12));
    replace_all(text, "%j", printed("%03ld", d.m_dayYear + 1));
    replace_all(text, "%m", printed("%02ld", d.m_month + 1));
    replace_all(text, "%M", printed("%02ld", d.m_minute));
    replace_all(text, "%n", "\n");
    replace_all(text, "%p", d.m_hour < 12 ? "AM" : "PM");
    replace_all(text, "%P", d.m_hour < 12 ? "am" : "pm");
    if (text.find("%s") != std::string::npos)
        replace_all(text, "%s", printed("%ld", long(get_time_t())));
    replace_all(text, "%S", printed("%02ld", d.m_second));
    if (text.find("%U") != std::string::npos) {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%02d.%06d", d.m_second, d.m_micro);
        replace_all(text, "%U", buffer);
    }
    replace_all(text, "%u", printed("%ld", (d.m_dayWeek + 6) % 7));
    replace_all(text, "%w", printed("%ld", d.m_dayWeek));
    replace_all(text, "%W", printed("%03ld", d.m_weekYear));
    replace_all(text, "%y", printed("%02ld", ((d.m_year % 100) + 100) % 100));
    replace_all(text, "%Y", printed("%04ld", d.m_year));
    if (text.find("%z") != std::string::npos) {
        if (noZone || ZBDateUtils::date_is_local(*this)) {
            replace_all(text, " %z", "");
            replace_all(text, "%z", "");
        } else {
            replace_all(text, "%z", ZBDateUtils::zone_to_string(m_timeZone));
        }
    }
    if (!noZone)
        replace_all(text, "%Z", ZBDateUtils::zone_to_string(m_timeZone));
    return text;
}

std::string ZBDate::to_iso() const
{
    if (!is_ok())
        return std::string();
    int year = 0;
    int month = 0;
    int day = 0;
    ZBDateUtils::breakdown_yearday(m_day, m_year, year, month, day);
    char buffer[64];
    if (m_micro)
        std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02d.%06dZ", year, month + 1, day + 1,
                      m_second / 3600, m_second / 60 % 60, m_second % 60, m_micro);
    else
        std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02dZ", year, month + 1, day + 1, m_second / 3600,
                      m_second / 60 % 60, m_second % 60);
    return buffer;
}

bool ZBDate::operator==(const ZBDate& other) const
{
    return m_year == other.m_year && m_day == other.m_day && m_second == other.m_second && m_micro == other.m_micro
        && m_timeZone == other.m_timeZone;
}

namespace {
int compare_fields(const ZBDate& a, const ZBDate& b)
{
    if (a.get_year() != b.get_year())
        return a.get_year() < b.get_year() ? -1 : 1;
    if (a.get_day_of_year() != b.get_day_of_year())
        return a.get_day_of_year() < b.get_day_of_year() ? -1 : 1;
    if (a.get_second_of_day() != b.get_second_of_day())
        return a.get_second_of_day() < b.get_second_of_day() ? -1 : 1;
    if (a.get_microsecond() != b.get_microsecond())
        return a.get_microsecond() < b.get_microsecond() ? -1 : 1;
    return 0;
}
} // namespace

// A date that is not ok acts as later than every real date; see the table in doc/dates.md.
bool ZBDate::operator<(const ZBDate& other) const
{
    if (!is_ok())
        return false;
    if (!other.is_ok())
        return true;
    return compare_fields(*this, other) < 0;
}

bool ZBDate::operator<=(const ZBDate& other) const
{
    if (!is_ok())
        return false;
    if (!other.is_ok())
        return true;
    return compare_fields(*this, other) <= 0;
}

bool ZBDate::operator>(const ZBDate& other) const
{
    if (!is_ok())
        return true;
    if (!other.is_ok())
        return false;
    return compare_fields(*this, other) > 0;
}

bool ZBDate::operator>=(const ZBDate& other) const
{
    if (!is_ok())
        return true;
    if (!other.is_ok())
        return false;
    return compare_fields(*this, other) >= 0;
}

ZBDate ZBDate::operator+(const ZBDuration& duration) const
{
    ZBDate result(*this);
    result += duration;
    return result;
}

ZBDate ZBDate::operator-(const ZBDuration& duration) const
{
    ZBDate result(*this);
    result -= duration;
    return result;
}

ZBDate& ZBDate::operator+=(const ZBDuration& duration)
{
    if (!is_ok())
        return *this;
    m_day += int(duration.get_days());
    m_second += int(duration.get_seconds());
    m_micro += duration.get_micro();
    recalculate();
    return *this;
}

ZBDate& ZBDate::operator-=(const ZBDuration& duration)
{
    return *this += -duration;
}

ZBDuration ZBDate::operator-(const ZBDate& other) const
{
    // Blank and invalid dates are markers, not moments: no time lies between them.
    if (!is_ok() || !other.is_ok())
        return ZBDuration();
    std::int64_t micros = to_micros() - other.to_micros();
    return ZBDuration(0, micros / C_MicroSecs, int(micros % C_MicroSecs));
}

void ZBDate::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBDate " << m_year << "/" << m_day << "/" << m_second << "/" << m_micro
        << " zone " << m_timeZone << "\n";
}

bool compare_zbdates(const ZBDate& a, const ZBDate& b)
{
    return a < b;
}

void ZBDate::write_stored(std::string& text) const
{
    int year = m_year;
    int month = 0;
    int day = 0;
    if (is_ok())
        ZBDateUtils::breakdown_yearday(m_day, m_year, year, month, day);
    const int second = m_second;
    char buffer[80];
    int n = 0;
    if (m_micro != 0)
        n = std::snprintf(buffer, sizeof buffer, "%06d%02d%02d%02d%02d%02d%05d%06d", m_micro, second % 60,
                          second / 60 % 60, second / 3600, day, month, year, m_timeZone);
    else
        n = std::snprintf(buffer, sizeof buffer, "%02d%02d%02d%02d%02d%05d%06d", second % 60, second / 60 % 60,
                          second / 3600, day, month, year, m_timeZone);
    text.assign(buffer, size_t(n > 0 ? n : 0));
}

std::ostream& operator<<(std::ostream& out, const ZBDate& date)
{
    std::string text;
    date.write_stored(text);
    return out << text;
}

namespace {

int field(const std::string& digits, size_t& pos, size_t width)
{
    if (pos >= digits.size())
        return 0;
    char part[16] = {0};
    size_t n = std::min(width, digits.size() - pos);
    digits.copy(part, n, pos);
    pos += width;
    return int(std::strtol(part, nullptr, 10));
}

// Digits (and minus signs) of a stored date, as gathered from its text.
void date_from_digits(const std::string& digits, ZBDate& date)
{
    if (digits.size() < 12) {
        // The old form: a time_t in the default zone.
        date.set_time_t(std::time_t(std::strtoll(digits.c_str(), nullptr, 10)), ZBDate::C_DefaultTime);
        return;
    }
    size_t pos = 0;
    int micro = digits.size() > 26 ? field(digits, pos, 6) : 0;
    int second = field(digits, pos, 2);
    int minute = field(digits, pos, 2);
    int hour = field(digits, pos, 2);
    int day = field(digits, pos, 2);
    int month = field(digits, pos, 2);
    int year = field(digits, pos, 5);
    int zone = pos < digits.size() ? field(digits, pos, 6) : 0;
    const bool onlyYear = !micro && !second && !minute && !hour && !day && !month;
    if (onlyYear && year == ZBDate::C_BlankDateYear) {
        date.set_blank();
        return;
    }
    if (onlyYear && year == ZBDate::C_InvalidDateYear) {
        date.set_invalid();
        return;
    }
    if (onlyYear && year == 0) {
        date.set_zero();
        return;
    }
    // The fields are UTC; the stored zone is only for showing.
    int outYear = 0;
    int dayOfYear = 0;
    ZBDateUtils::calc_yearday(year, month, day, outYear, dayOfYear);
    const ZBDate read(outYear, dayOfYear, hour * ZBDate::C_HourSecs + minute * ZBDate::C_MinSecs + second, micro, zone);
    // Fields past their range carry into the year; one that no longer fits
    // the five characters it is stored in could not be written back.
    if (read.get_year() > 99999 || read.get_year() < -9999) {
        date.set_invalid();
        return;
    }
    date = read;
}

// A quoted field holds date text; a stored date in quotes, which older
// writers of hand-made files produced, is still read as stored.
void read_quoted(const std::string& text, ZBDate& date)
{
    if (text.size() >= 12 && text.find_first_not_of("0123456789-") == std::string::npos)
        date_from_digits(text, date);
    else
        date.from_string(text);
}

} // namespace

void ZBDate::read_stored(const std::string& text)
{
    size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    if (i < text.size() && text[i] == '"') {
        size_t end = text.find('"', i + 1);
        read_quoted(text.substr(i + 1, end == std::string::npos ? std::string::npos : end - i - 1), *this);
        return;
    }
    size_t start = i;
    while (i < text.size() && ((text[i] >= '0' && text[i] <= '9') || text[i] == '-'))
        ++i;
    if (i == start)
        return; // Not a date: the value stays as it was, as with a stream.
    date_from_digits(text.substr(start, i - start), *this);
}

std::istream& operator>>(std::istream& in, ZBDate& date)
{
    std::string digits;
    char c;
    while (in.get(c) && (c == ' ' || c == '\t')) {
    }
    if (!in)
        return in;
    if (c == '"') {
        std::string text;
        while (in.get(c) && c != '"')
            text += c;
        read_quoted(text, date);
        if (in.eof())
            in.clear(std::ios::eofbit);
        return in;
    }
    in.unget();
    while (in.get(c)) {
        if ((c >= '0' && c <= '9') || c == '-')
            digits += c;
        else {
            in.unget();
            break;
        }
    }
    if (in.eof())
        in.clear(std::ios::eofbit);
    if (digits.empty()) {
        in.setstate(std::ios::failbit);
        return in;
    }
    date_from_digits(digits, date);
    return in;
}

} // namespace Tervalon
