#include "LibDate/dateset/zbtimeseriespoint.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

int ZBTimeSeriesPoint::compare_date(const ZBTimeSeriesPoint& a, const ZBTimeSeriesPoint& b)
{
    return b.m_date < a.m_date ? 1 : 0;
}

void ZBTimeSeriesPoint::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBTimeSeriesPoint", out, indent);
    writer.add("m_date", m_date.to_iso());
    writer.add("m_value", m_value);
    writer.add("m_id", m_id.m_id);
    writer.add("m_flag", m_flag);
    writer.write();
}

} // namespace Tervalon
