#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// One row of the project lateness table: for one resource, the latest moment
// its work under a project is predicted to end, and the work the project
// holds for it in all, still to do and already spent.
class LateReport {
public:
    // The name of the row for work that no resource is given.
    static const char* const C_Unassigned; // "<Unassigned>"

    explicit LateReport(const std::string& name = std::string());

    void dump(std::ostream& out, int indent) const;
    bool operator==(const LateReport& other) const;

    const std::string& get_name() const { return m_name; }
    const ZBDate& get_latest_end() const { return m_latestEnd; }
    const ZBDuration& get_duration() const { return m_duration; }
    const ZBDuration& get_remaining() const { return m_remaining; }
    const ZBDuration& get_spent() const { return m_spent; }

    // Moves the latest end on to end when that is a real date after both the
    // present latest end and bound.
    void raise_end(const ZBDate& end, const ZBDate& bound);
    void add_work(const ZBDuration& duration, const ZBDuration& remaining);
    void add_spent(const ZBDuration& spent) { m_spent += spent; }

    // Non-zero when a belongs behind b: names in byte order.
    static int compareLateReport(const LateReport& a, const LateReport& b);

private:
    std::string m_name;
    ZBDate m_latestEnd;
    ZBDuration m_duration;
    ZBDuration m_remaining;
    ZBDuration m_spent;
};

} // namespace Tervalon
