#pragma once

#include "LibDate/date/zbdate.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// A span from m_start to m_end. An end that is not ok is open: it sets no limit.
// The slot operations are the planner's building blocks for free and booked time.
class ZBDateSlot {
public:
    enum E_SeriesKind { E_Days = 0, E_Weeks = 1, E_Months = 2 };

    static const ZBDateSlot C_Blank;

    ZBDateSlot();
    ZBDateSlot(const ZBDate& start, const ZBDate& end, bool sort = false);

    void set_defaults();
    bool is_ok() const;
    // Copies an ok end into one that is not; false if neither end is ok.
    bool correct();
    bool within(const ZBDate& date) const;
    void extend(const ZBDate& date);
    void set_timezone(int zone);
    void ignore_zone();
    ZBDuration get_duration() const { return m_end - m_start; }

    // Touching slots do not intersect.
    static bool intersects(const ZBDateSlot& a, const ZBDateSlot& b);
    static bool intersection(const ZBDateSlot& a, const ZBDateSlot& b, ZBDateSlot& out);
    // Joins b into a when they overlap or touch; b becomes empty at the end of a.
    static bool merge(ZBDateSlot& a, ZBDateSlot& b, bool keepDuration);
    static ZBDateSlot expand(const ZBDateSlot& a, const ZBDateSlot& b);
    // Takes b out of a: overlap gets the common part, a what is left before b
    // (or after it, if b starts first), rest what is left after b when b lies inside a.
    static bool subtract(ZBDateSlot& a, const ZBDateSlot& b, ZBDateSlot& overlap, ZBDateSlot& rest);
    // Where date lies in slot, as a fraction from 0 at the start to 1 at the end.
    static double withinRange(const ZBDate& date, const ZBDateSlot& slot);
    static double within_range(const ZBDate& date, const ZBDateSlot& slot) { return withinRange(date, slot); }
    // Whole days, weeks or months from the one containing from to the one containing to.
    static std::vector<ZBDateSlot> slot_series(const ZBDate& from, const ZBDate& to, int kind);

    std::string to_string(const std::string& format = std::string()) const;
    // "%Y%m%d" of the start, and of the end when it is another day.
    std::string to_compact_string() const;
    bool from_compact_string(const std::string& text);

    bool operator==(const ZBDateSlot& other) const { return m_start == other.m_start && m_end == other.m_end; }
    bool operator!=(const ZBDateSlot& other) const { return !(*this == other); }
    bool operator<(const ZBDateSlot& other) const;

    void dump(std::ostream& out, int indent) const;

    ZBDate m_start;
    ZBDate m_end;
};

bool compare_zbdateslots(const ZBDateSlot& a, const ZBDateSlot& b);

// Stored text: the start, then "&" when the ends are equal, else "=" and the end.
// Reading also takes "+" and a number of seconds from the start.
std::ostream& operator<<(std::ostream& out, const ZBDateSlot& slot);
std::istream& operator>>(std::istream& in, ZBDateSlot& slot);

} // namespace Tervalon
