#include "LibGui/base/zbtimegraphsource.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

bool ZBTimeGraphPoint::compare_time(const ZBTimeGraphPoint& a, const ZBTimeGraphPoint& b)
{
    if (a.m_date != b.m_date)
        return a.m_date < b.m_date;
    return a.m_value < b.m_value;
}

ZBTimeGraphSource::ZBTimeGraphSource()
{
    m_minDate.set_blank();
    m_maxDate.set_blank();
}

ZBTimeGraphSource::~ZBTimeGraphSource() = default;

void ZBTimeGraphSource::add(const ZBDate& date, double value, const std::string& toolTip, const std::string& xLabel,
                            bool ignore)
{
    m_data.push_back(ZBTimeGraphPoint{date, value, toolTip, xLabel, ignore});
    if (ignore || !date.is_ok())
        return;
    if (m_extents.m_empty) {
        m_minDate = date;
        m_maxDate = date;
    } else {
        m_minDate.set_earliest(date);
        m_maxDate.set_latest(date);
    }
    m_extents.add(double(m_minDate.to_micros()) / 1e6, value);
    m_extents.add(double(m_maxDate.to_micros()) / 1e6, value);
}

void ZBTimeGraphSource::complete(bool fromZero)
{
    m_data.erase(std::remove_if(m_data.begin(), m_data.end(),
                                [](const ZBTimeGraphPoint& p) { return p.m_ignore || !p.m_date.is_ok(); }),
                 m_data.end());
    std::stable_sort(m_data.begin(), m_data.end(), ZBTimeGraphPoint::compare_time);
    if (fromZero && !m_extents.m_empty)
        include_value(0.0);
}

void ZBTimeGraphSource::clear()
{
    ZBGraphSource::clear();
    m_data.clear();
    m_minDate.set_blank();
    m_maxDate.set_blank();
}

double ZBTimeGraphSource::date_to_x(const ZBDate& date) const
{
    if (m_extents.m_empty)
        return 0.5;
    const double span = double(m_maxDate.to_micros() - m_minDate.to_micros());
    if (span <= 0.0)
        return 0.5;
    return double(date.to_micros() - m_minDate.to_micros()) / span;
}

void ZBTimeGraphSource::dump(std::ostream& out, int indent) const
{
    ZBGraphSource::dump(out, indent);
    out << std::string(indent, ' ') << "m_minDate " << m_minDate.to_iso() << " m_maxDate " << m_maxDate.to_iso()
        << " m_data " << m_data.size() << "\n";
}

} // namespace Tervalon
