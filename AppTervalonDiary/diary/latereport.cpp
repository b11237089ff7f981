#include "AppTervalonDiary/diary/latereport.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

const char* const LateReport::C_Unassigned = "<Unassigned>";

LateReport::LateReport(const std::string& name) : m_name(name.empty() ? C_Unassigned : name), m_latestEnd(ZBDate::E_Blank)
{
}

void LateReport::dump(std::ostream& out, int indent) const
{
    ZBDump dump("LateReport", out, indent);
    dump.add("m_name", m_name);
    dump.add("m_latestEnd", m_latestEnd);
    dump.add("m_duration", m_duration);
    dump.add("m_remaining", m_remaining);
    dump.add("m_spent", m_spent);
}

bool LateReport::operator==(const LateReport& other) const
{
    return m_name == other.m_name && m_latestEnd == other.m_latestEnd && m_duration == other.m_duration &&
           m_remaining == other.m_remaining && m_spent == other.m_spent;
}

void LateReport::raise_end(const ZBDate& end, const ZBDate& bound)
{
    if (!end.is_ok() || (bound.is_ok() && end <= bound))
        return;
    // A blank date sorts after every real one, so the first real end is taken as it is.
    if (!m_latestEnd.is_ok() || m_latestEnd < end)
        m_latestEnd = end;
}

void LateReport::add_work(const ZBDuration& duration, const ZBDuration& remaining)
{
    m_duration += duration;
    m_remaining += remaining;
}

int LateReport::compareLateReport(const LateReport& a, const LateReport& b)
{
    return b.m_name < a.m_name;
}

} // namespace Tervalon
