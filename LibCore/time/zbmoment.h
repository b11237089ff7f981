#pragma once

#include <cstdint>
#include <string>

namespace Tervalon {

// A moment as the foundation needs one: microseconds since 1970 (UTC), or
// blank. Errors, logs, status lines, file times and the small statistics carry
// it; the date library converts it to and from its full date. "now" lives here
// so that a clock fixed for a test or for "--now" is seen by every layer.
class ZBMoment {
public:
    // Formats a moment with the date library's format codes; installed by the
    // date library, so that logs read in the user's date format.
    using FormatFn = std::string (*)(const ZBMoment& moment, const std::string& format);

    // Blank: no moment.
    ZBMoment() : m_micros(C_BlankMicros) {}
    explicit ZBMoment(std::int64_t microsSinceEpoch) : m_micros(microsSinceEpoch) {}

    static ZBMoment now();
    static void set_fixed_now(const ZBMoment& moment);
    static void clear_fixed_now();

    bool is_ok() const { return m_micros != C_BlankMicros; }
    bool is_blank() const { return m_micros == C_BlankMicros; }
    std::int64_t to_micros() const { return m_micros; }
    // The moment this many microseconds later; blank stays blank.
    ZBMoment plus_micros(std::int64_t micros) const;
    // Days (with fraction) from this moment to a later one.
    double days_until(const ZBMoment& later) const;

    // The moment in the machine's zone with the format codes of the date
    // library ("%D %H:%M:%U"); blank gives an empty text. Without the date
    // library, the default formats are used: %D is "%d/%b/%Y" (English month
    // names), %T "%H:%M:%S", %U seconds with six decimals, and
    // %Y %m %d %b %H %M %S as strftime has them.
    std::string to_string(const std::string& format) const;
    static void set_formatter(FormatFn fn);
    static std::string plain_format(const ZBMoment& moment, const std::string& format);

    bool operator==(const ZBMoment& other) const { return m_micros == other.m_micros; }
    bool operator!=(const ZBMoment& other) const { return m_micros != other.m_micros; }
    // Blank sorts after every real moment.
    bool operator<(const ZBMoment& other) const { return m_micros < other.m_micros; }
    bool operator>(const ZBMoment& other) const { return m_micros > other.m_micros; }
    bool operator<=(const ZBMoment& other) const { return m_micros <= other.m_micros; }
    bool operator>=(const ZBMoment& other) const { return m_micros >= other.m_micros; }

private:
    static constexpr std::int64_t C_BlankMicros = INT64_MAX;
    std::int64_t m_micros;
};

} // namespace Tervalon
