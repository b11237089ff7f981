#pragma once

#include "LibDate/date/zbduration.h"
#include "LibObject/object/zbobject.h"

#include <vector>

namespace Tervalon {

// One line of a timesheet: an entry and the time spent on it each day of the
// sheet. m_updated marks the days the user has changed since the sheet was
// read, which are the ones written back.
class TimesheetRow : public ZBObject {
public:
    TimesheetRow();
    TimesheetRow(int entryId, int days);

    void dump(std::ostream& out, int indent) const override;
    void set_defaults(bool all) override;

    int get_entry_id() const { return m_entryId; }
    int get_ndays() const { return int(m_time.size()); }
    const ZBDuration& get_time(int day) const { return m_time[size_t(day)]; }
    // The time as read from the sessions; the cell stays changed until written back.
    void load_time(int day, const ZBDuration& time);
    void set_time(int day, const ZBDuration& time);
    bool is_updated(int day) const { return m_updated[size_t(day)] != 0; }
    bool is_updated() const;
    void clear_updated();
    ZBDuration get_total() const;

    bool operator==(const TimesheetRow& other) const;

    int m_entryId;
    std::vector<ZBDuration> m_time;
    std::vector<char> m_updated;
};

} // namespace Tervalon
