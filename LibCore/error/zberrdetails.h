#pragma once

#include <string>

namespace Tervalon {

// Severities of an error value; 5 selects all of them where a setter takes one.
enum ZBErrSeverity { ZBErrSev_Log = 0, ZBErrSev_UserWarning = 1, ZBErrSev_Warning = 2,
                     ZBErrSev_Error = 3, ZBErrSev_Fatal = 4, ZBErrSev_All = 5 };

// The two texts of a record: what a developer reads and what the user reads.
enum ZBErrAspect { ZBErrAsp_System = 0, ZBErrAsp_User = 1 };

// One error record, and the exception that carries one across many levels.
// The time is kept as microseconds since 1970 (UTC) and shown as a ZBMoment,
// in the date library's format once that library has joined in.
class ZBErrDetails {
public:
    ZBErrDetails();
    ZBErrDetails(int code, ZBErrSeverity severity);
    virtual ~ZBErrDetails();

    static int compute_severity(int value);
    static int compute_code(int value);
    static int compute_combination(int code, int severity);

    int get_value() const;
    int get_code() const { return m_code; }
    ZBErrSeverity get_severity() const { return m_severity; }
    void populate_error(int code, ZBErrSeverity severity);

    const std::string& get_details(ZBErrAspect aspect) const { return m_details[aspect]; }
    void set_details(ZBErrAspect aspect, const std::string& text) { m_details[aspect] = text; }
    const std::string& get_location() const { return m_location; }
    void set_location(const std::string& location) { m_location = location; }
    void append_location(const std::string& location);
    const std::string& get_extra() const { return m_extra; }
    void append_extra(const std::string& name, const std::string& value);
    long long get_time() const { return m_time; }
    void set_time(long long microsSinceEpoch) { m_time = microsSinceEpoch; }
    // The time in the local zone, "2026-03-09 14:05:07.123456"; empty when none is set.
    std::string get_time_text() const;
    // Local wall-clock text of a moment: "YYYY-MM-DD HH:MM:SS", with ".uuuuuu" if asked.
    static std::string format_time(long long microsSinceEpoch, bool withMicros);

    // The text a person should see: the user aspect if there is one, else the system text.
    std::string get_message() const;

    ZBErrDetails& operator+=(const ZBErrDetails& other);
    bool operator==(const ZBErrDetails& other) const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    int m_code;
    ZBErrSeverity m_severity;
    std::string m_details[2];
    std::string m_location;
    std::string m_extra;
    long long m_time;
};

std::ostream& operator<<(std::ostream& out, const ZBErrDetails& details);

} // namespace Tervalon
