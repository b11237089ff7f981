#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace Tervalon {

// A length of time in days, seconds and microseconds, kept normalised: the
// parts agree in sign, seconds stay under a day and micro under a second.
class ZBDuration {
public:
    ZBDuration();
    explicit ZBDuration(std::int64_t seconds);
    ZBDuration(std::int64_t days, std::int64_t seconds, std::int32_t micro);

    void set_duration(std::int64_t days, std::int64_t seconds, std::int32_t micro);
    std::int64_t get_days() const { return m_days; }
    std::int64_t get_seconds() const { return m_seconds; }
    std::int32_t get_micro() const { return m_micro; }
    std::int64_t get_as_seconds() const;
    double get_as_dseconds() const;
    double get_as_days() const;
    // Rounded to the nearest whole hour.
    std::int64_t get_as_hours() const;
    void get_breakdown(std::int64_t& days, int& hours, int& minutes, int& seconds, int& micro) const;
    bool is_zero() const { return m_days == 0 && m_seconds == 0 && m_micro == 0; }
    bool is_negative() const { return m_days < 0 || m_seconds < 0 || m_micro < 0; }

    // Total hours including the days: "HH:MM", "HH:MM:SS" or "HH:MM:SS.uuuuuu".
    std::string to_string(bool withSeconds = false) const;
    // The same with a leading day count ("1 day ", "3 days ") and the hours within the day.
    std::string to_string_day(bool withSeconds = false) const;
    // Number and unit pairs ("1h 30m", "1:30", "1.5h", "2d"); a day is the
    // locale's working day. Text with nothing usable gives defaultDays days.
    // A unit letter other than D, H, M, S, U is an error.
    int from_string(const std::string& text, std::int64_t defaultDays = 0);

    bool operator==(const ZBDuration& other) const;
    bool operator!=(const ZBDuration& other) const { return !(*this == other); }
    bool operator<(const ZBDuration& other) const;
    bool operator>(const ZBDuration& other) const { return other < *this; }
    bool operator<=(const ZBDuration& other) const { return !(other < *this); }
    bool operator>=(const ZBDuration& other) const { return !(*this < other); }
    ZBDuration operator+(const ZBDuration& other) const;
    ZBDuration operator-(const ZBDuration& other) const;
    ZBDuration& operator+=(const ZBDuration& other);
    ZBDuration& operator-=(const ZBDuration& other);
    ZBDuration operator-() const;
    ZBDuration operator*(double factor) const;
    // 0 when the divisor is zero.
    double operator/(const ZBDuration& divisor) const;

    bool operator==(std::int64_t seconds) const { return *this == ZBDuration(seconds); }
    bool operator!=(std::int64_t seconds) const { return *this != ZBDuration(seconds); }
    bool operator<(std::int64_t seconds) const { return *this < ZBDuration(seconds); }
    bool operator>(std::int64_t seconds) const { return *this > ZBDuration(seconds); }
    bool operator<=(std::int64_t seconds) const { return *this <= ZBDuration(seconds); }
    bool operator>=(std::int64_t seconds) const { return *this >= ZBDuration(seconds); }

    void dump(std::ostream& out, int indent) const;

private:
    std::int64_t m_days;
    // Always under a day, so that the three parts take 16 bytes.
    std::int32_t m_seconds;
    std::int32_t m_micro;
};

// Stored text: "%08ld%08ld@" for days and seconds, "%08ld%08ld%06d@" with microseconds.
std::ostream& operator<<(std::ostream& out, const ZBDuration& duration);
std::istream& operator>>(std::istream& in, ZBDuration& duration);

} // namespace Tervalon
