#include "LibDate/dateset/zbtimeseries.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

void ZBTimeSeries::add_point(const ZBDate& date, double value, const ZBId& id, bool flag, bool sort)
{
    m_point.emplace_back(date, value, id, flag);
    if (sort)
        complete();
}

void ZBTimeSeries::complete()
{
    // Ordered through the system's one sort, on a view of the points.
    ZBPtrArray<ZBTimeSeriesPoint> view(false);
    view.reserve(size());
    for (ZBTimeSeriesPoint& point : m_point)
        view.push_back(&point);
    view.sort(&ZBTimeSeriesPoint::compare_date);
    std::vector<ZBTimeSeriesPoint> sorted;
    sorted.reserve(m_point.size());
    for (const ZBTimeSeriesPoint* point : view)
        sorted.push_back(*point);
    m_point.swap(sorted);
}

void ZBTimeSeries::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBTimeSeries", out, indent);
    writer.add("m_point.size()", size());
    writer.write();
    for (const ZBTimeSeriesPoint& point : m_point)
        point.dump(out, indent + 1);
}

} // namespace Tervalon
