#include "LibDate/date/zbduration.h"

#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>

namespace Tervalon {

namespace {
constexpr std::int64_t C_DaySecs = 86400;
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
    m_seconds = seconds;
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
    int micro = digits.size() - 16 > 5 ? int(std::strtol(digits.substr(16, 6).c_str(), nullptr, 10)) : 0;
    duration.set_duration(days, seconds, micro);
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
