#pragma once

#include "LibDate/date/zbduration.h"

#include <iosfwd>

namespace Tervalon {

// A piece of work measured by time: its total length, how much of it is done,
// and the same as a percentage. Sums of parts keep a count so that parts
// without a length still average their percentages.
class ZBProgress {
public:
    ZBProgress();

    // Stores the percentage as the completed part can hold it.
    void set_completion(double percent);
    double get_completion() const { return m_completion; }
    // Keeps the percentage and recomputes the completed part.
    void set_duration(const ZBDuration& total);
    const ZBDuration& get_duration() const { return m_total; }
    const ZBDuration& get_completed() const { return m_completed; }
    ZBDuration get_remaining() const { return m_total - m_completed; }
    int get_add_count() const { return m_addCount; }
    void add_component(const ZBProgress& other);
    void clear();

    bool operator==(const ZBProgress& other) const;
    bool operator!=(const ZBProgress& other) const { return !(*this == other); }

    void dump(std::ostream& out, int indent) const;

private:
    void settle_completed();

    ZBDuration m_total;
    ZBDuration m_completed;
    double m_completion;
    int m_addCount;
};

// Stored text: the total's text, then the percentage "%.12f".
std::ostream& operator<<(std::ostream& out, const ZBProgress& progress);
std::istream& operator>>(std::istream& in, ZBProgress& progress);

} // namespace Tervalon
