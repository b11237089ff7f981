#pragma once

#include "LibObject/object/zbobject.h"

#include <string>

namespace Tervalon {

// One stretch of a day type: from start to end, in seconds from midnight,
// available for one time type. Owned by its day type.
class DayTypeEntry : public ZBObject {
public:
    DayTypeEntry();
    DayTypeEntry(int start, int end, int timeType, const std::string& comment = std::string());
    DayTypeEntry(const DayTypeEntry& other) = default;
    DayTypeEntry& operator=(const DayTypeEntry& other) = default;
    bool operator==(const DayTypeEntry& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    int get_start() const { return m_start; }
    void set_start(int seconds) { m_start = seconds; }
    int get_end() const { return m_end; }
    void set_end(int seconds) { m_end = seconds; }
    int get_timetype() const { return m_timeType; }
    void set_timetype(int id) { m_timeType = id; }
    const std::string& get_comment() const { return m_comment; }
    void set_comment(const std::string& comment) { m_comment = comment; }
    // Nothing when the end is not after the start.
    int get_duration() const { return m_end > m_start ? m_end - m_start : 0; }

    // "9:00", "17:30", "23:59:59".
    static std::string offset_to_string(int seconds);
    // A time of day as people write it, as seconds from midnight; 0 for what
    // is not a time of one day.
    static int string_to_offset(const std::string& text);
    // True when a starts behind b.
    static int compare_start(const DayTypeEntry& a, const DayTypeEntry& b);

private:
    int m_start;
    int m_end;
    int m_timeType;
    std::string m_comment;
};

} // namespace Tervalon
