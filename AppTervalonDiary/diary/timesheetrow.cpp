#include "AppTervalonDiary/diary/timesheetrow.h"

#include <ostream>

namespace Tervalon {

TimesheetRow::TimesheetRow() { set_defaults(true); }

TimesheetRow::TimesheetRow(int entryId, int days)
    : m_entryId(entryId), m_time(size_t(days > 0 ? days : 0)), m_updated(size_t(days > 0 ? days : 0), 0)
{
}

void TimesheetRow::set_defaults(bool)
{
    m_entryId = -1;
    m_time.clear();
    m_updated.clear();
}

void TimesheetRow::load_time(int day, const ZBDuration& time)
{
    m_time[size_t(day)] = time;
    m_updated[size_t(day)] = 0;
}

void TimesheetRow::set_time(int day, const ZBDuration& time)
{
    if (m_time[size_t(day)] == time)
        return;
    m_time[size_t(day)] = time;
    m_updated[size_t(day)] = 1;
}

bool TimesheetRow::is_updated() const
{
    for (char updated : m_updated)
        if (updated)
            return true;
    return false;
}

void TimesheetRow::clear_updated() { m_updated.assign(m_updated.size(), 0); }

ZBDuration TimesheetRow::get_total() const
{
    ZBDuration total;
    for (const ZBDuration& time : m_time)
        total += time;
    return total;
}

bool TimesheetRow::operator==(const TimesheetRow& other) const
{
    return m_entryId == other.m_entryId && m_time == other.m_time && m_updated == other.m_updated;
}

void TimesheetRow::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "TimesheetRow\n" << pad << "  m_entryId: " << m_entryId << "\n" << pad << "  m_time:";
    for (const ZBDuration& time : m_time)
        out << " " << time.to_string();
    out << "\n" << pad << "  m_updated:";
    for (char updated : m_updated)
        out << " " << int(updated);
    out << "\n";
}

} // namespace Tervalon
