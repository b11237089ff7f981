#include "LibDate/date/zbduration.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbnumberwordsplitter.h"
#include "LibCore/error/zberror.h"

#include <cctype>
#include <cmath>

#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace Tervalon {

namespace {
constexpr std::int64_t C_DaySecs = 86400;
// The stored form gives the days eight characters, a minus sign included, so
// nothing longer than this can be written and read back.
constexpr std::int64_t C_MaxDays = 9999999;
constexpr std::int32_t C_MicroSecs = 1000000;
}

ZBDuration::ZBDuration() : m_days(0), m_seconds(0), m_micro(0) {}

ZBDuration::ZBDuration(std::int64_t seconds) : ZBDuration() { set_duration(0, seconds, 0); }

ZBDuration::ZBDuration(std::int64_t days, std::int64_t seconds, std::int32_t micro) : ZBDuration()
{
    set_duration(days, seconds, micro);
}

void ZBDuration::set_duration(std::int64_t days, std::int64_t seconds, std::int32_t micro)
{
    seconds += micro / C_MicroSecs;
    micro %= C_MicroSecs;
    days += seconds / C_DaySecs;
    seconds %= C_DaySecs;
    // Borrow from the next larger part until the signs agree.
    bool negative = days < 0 || (days == 0 && (seconds < 0 || (seconds == 0 && micro < 0)));
    if (negative) {
        if (micro > 0) { micro -= C_MicroSecs; seconds += 1; }
        if (seconds > 0) { seconds -= C_DaySecs; days += 1; }
        if (micro > 0) { micro -= C_MicroSecs; seconds += 1; }
    } else {
        if (micro < 0) { micro += C_MicroSecs; seconds -= 1; }
        if (seconds < 0) { seconds += C_DaySecs; days -= 1; }
        if (micro < 0) { micro += C_MicroSecs; seconds -= 1; }
    }
    m_days = days;
    m_seconds = std::int32_t(seconds);
    m_micro = micro;
}

std::int64_t ZBDuration::get_as_seconds() const
{
    return m_days * C_DaySecs + m_seconds;
}

double ZBDuration::get_as_dseconds() const
{
    return double(get_as_seconds()) + double(m_micro) / C_MicroSecs;
}

double ZBDuration::get_as_days() const
{
    return get_as_dseconds() / double(C_DaySecs);
}

bool ZBDuration::operator==(const ZBDuration& other) const
{
    return m_days == other.m_days && m_seconds == other.m_seconds && m_micro == other.m_micro;
}

bool ZBDuration::operator<(const ZBDuration& other) const
{
    if (m_days != other.m_days)
        return m_days < other.m_days;
    if (m_seconds != other.m_seconds)
        return m_seconds < other.m_seconds;
    return m_micro < other.m_micro;
}

ZBDuration ZBDuration::operator+(const ZBDuration& other) const
{
    return ZBDuration(m_days + other.m_days, m_seconds + other.m_seconds, m_micro + other.m_micro);
}

ZBDuration ZBDuration::operator-(const ZBDuration& other) const
{
    return ZBDuration(m_days - other.m_days, m_seconds - other.m_seconds, m_micro - other.m_micro);
}

ZBDuration& ZBDuration::operator+=(const ZBDuration& other)
{
    return *this = *this + other;
}

ZBDuration& ZBDuration::operator-=(const ZBDuration& other)
{
    return *this = *this - other;
}

ZBDuration ZBDuration::operator-() const
{
    return ZBDuration(-m_days, -m_seconds, -m_micro);
}

std::int64_t ZBDuration::get_as_hours() const
{
    return (m_days * C_DaySecs + m_seconds + 1800) / 3600;
}

void ZBDuration::get_breakdown(std::int64_t& days, int& hours, int& minutes, int& seconds, int& micro) const
{
    days = m_days;
    hours = int(m_seconds / 3600);
    minutes = int(m_seconds / 60 % 60);
    seconds = int(m_seconds % 60);
    micro = m_micro;
}

ZBDuration ZBDuration::operator*(double factor) const
{
    double micros = (double(m_days) * C_DaySecs + double(m_seconds)) * C_MicroSecs + m_micro;
    std::int64_t total = std::int64_t(std::llround(micros * factor));
    return ZBDuration(0, total / C_MicroSecs, std::int32_t(total % C_MicroSecs));
}

double ZBDuration::operator/(const ZBDuration& divisor) const
{
    double below = divisor.get_as_dseconds();
    return below == 0.0 ? 0.0 : get_as_dseconds() / below;
}

namespace {

std::string clock_text(std::int64_t hours, std::int64_t seconds, std::int32_t micro, bool withSeconds, bool negative)
{
    char buffer[64];
    int minutes = int(seconds / 60 % 60);
    int secs = int(seconds % 60);
    const char* sign = negative ? "-" : "";
    if (micro != 0)
        std::snprintf(buffer, sizeof buffer, "%s%02lld:%02d:%02d.%06d", sign, (long long)hours, minutes, secs, micro);
    else if (secs != 0 || withSeconds)
        std::snprintf(buffer, sizeof buffer, "%s%02lld:%02d:%02d", sign, (long long)hours, minutes, secs);
    else
        std::snprintf(buffer, sizeof buffer, "%s%02lld:%02d", sign, (long long)hours, minutes);
    return buffer;
}

} // namespace

std::string ZBDuration::to_string(bool withSeconds) const
{
    ZBDuration size = is_negative() ? -*this : *this;
    std::int64_t hours = size.m_days * 24 + size.m_seconds / 3600;
    return clock_text(hours, size.m_seconds % 3600, size.m_micro, withSeconds, is_negative());
}

std::string ZBDuration::to_string_day(bool withSeconds) const
{
    ZBDuration size = is_negative() ? -*this : *this;
    std::string text = is_negative() ? "-" : "";
    if (size.m_days == 1)
        text += "1 day ";
    else if (size.m_days > 1)
        text += std::to_string(size.m_days) + " days ";
    return text + clock_text(size.m_seconds / 3600, size.m_seconds % 3600, size.m_micro, withSeconds, false);
}

int ZBDuration::from_string(const std::string& text, std::int64_t defaultDays)
{
    std::vector<std::string> tokens;
    ZBNumberWordSplitter::split(text, tokens);
    // Parts in microseconds, so that fractions carry without loss.
    const double workDay = zblocale().get_workhours() * 3600.0;
    const double unitSecs[4] = {3600.0, 60.0, 1.0, 1.0 / C_MicroSecs};
    bool used[4] = {false, false, false, false};
    bool any = false;
    bool negative = false;
    double micros = 0;
    std::int64_t total = 0;
    // Kept in floating point alongside, so that a huge number is refused
    // before it can overflow the whole microseconds.
    double magnitude = 0;
    const double maxMicros = double(C_MaxDays) * C_DaySecs * C_MicroSecs;
    for (size_t i = 0; i < tokens.size(); ++i) {
        const std::string& token = tokens[i];
        if (token == "-" && !any) {
            negative = true;
            continue;
        }
        if (!ZBNumberWordSplitter::is_number(token))
            continue; // ":" and other separators
        double value = std::atof(token.c_str());
        int unit = -1;
        double seconds = 0;
        if (i + 1 < tokens.size() && std::isalpha(static_cast<unsigned char>(tokens[i + 1][0]))) {
            char letter = char(std::toupper(static_cast<unsigned char>(tokens[i + 1][0])));
            ++i;
            switch (letter) {
            case 'D': seconds = workDay; break;
            case 'H': unit = 0; break;
            case 'M': unit = 1; break;
            case 'S': unit = 2; break;
            case 'U': unit = 3; break;
            default:
                return zberror(ZBErrC_InvalidValue, ZBLOC, "Invalid duration unit %s in %s", tokens[i].c_str(), text.c_str());
            }
        } else {
            for (int u = 0; u < 4 && unit < 0; ++u)
                if (!used[u])
                    unit = u;
            if (unit < 0)
                continue;
        }
        if (unit >= 0) {
            used[unit] = true;
            seconds = unitSecs[unit];
        }
        any = true;
        magnitude += std::fabs(value) * seconds * C_MicroSecs;
        if (!(magnitude <= maxMicros))
            return zberror(ZBErrC_InvalidValue, ZBLOC, "Duration %s is too long (at most %lld days)", text.c_str(),
                           (long long)C_MaxDays);
        // A fraction of an hour or minute lands on whole units of the next
        // smaller one; a fraction of a second becomes microseconds.
        double whole = std::trunc(value);
        double fraction = value - whole;
        if (unit == 0 || unit == 1) {
            total += std::int64_t(whole * seconds * C_MicroSecs);
            total += std::int64_t(std::llround(fraction * 60.0)) * std::int64_t(seconds / 60.0 * C_MicroSecs);
        } else {
            micros += value * seconds * C_MicroSecs;
        }
    }
    if (!any) {
        set_duration(defaultDays, 0, 0);
        return ZBErrC_ok;
    }
    total += std::int64_t(std::llround(micros));
    if (negative)
        total = -total;
    set_duration(0, total / C_MicroSecs, std::int32_t(total % C_MicroSecs));
    return ZBErrC_ok;
}

void ZBDuration::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBDuration " << m_days << "d " << m_seconds << "s " << m_micro << "us\n";
}

std::ostream& operator<<(std::ostream& out, const ZBDuration& duration)
{
    char buffer[64];
    if (duration.get_micro() == 0)
        std::snprintf(buffer, sizeof buffer, "%08lld%08lld@", (long long)duration.get_days(), (long long)duration.get_seconds());
    else
        std::snprintf(buffer, sizeof buffer, "%08lld%08lld%06d@", (long long)duration.get_days(),
                      (long long)duration.get_seconds(), duration.get_micro());
    return out << buffer;
}

std::istream& operator>>(std::istream& in, ZBDuration& duration)
{
    std::string digits;
    char c;
    while (in.get(c)) {
        if ((c >= '0' && c <= '9') || c == '-')
            digits += c;
        else if (c == '@')
            break;
        else if (!digits.empty()) {
            in.unget();
            break;
        }
    }
    if (digits.size() < 16) {
        in.setstate(std::ios::failbit);
        return in;
    }
    long long days = std::strtoll(digits.substr(0, 8).c_str(), nullptr, 10);
    long long seconds = std::strtoll(digits.substr(8, 8).c_str(), nullptr, 10);
    // "%06d" gives six characters, or seven for a value below -99999
    // ("-0000180-400000": minus three minutes and 0.4 s), so the field runs
    // to the '@'.
    int micro = digits.size() - 16 > 5 ? int(std::strtol(digits.substr(16, 7).c_str(), nullptr, 10)) : 0;
    // Seconds past a day carry into the days; a damaged text whose days then
    // no longer fit the stored form is refused, as a typed one is.
    const ZBDuration read(days, seconds, micro);
    if (read.get_days() > C_MaxDays || read.get_days() < -C_MaxDays) {
        in.setstate(std::ios::failbit);
        return in;
    }
    duration = read;
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
