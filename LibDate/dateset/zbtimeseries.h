#pragma once

#include "LibDate/dateset/zbtimeseriespoint.h"

#include <iosfwd>
#include <vector>

namespace Tervalon {

// A list of dated values for graphs and reports, in date order once complete.
class ZBTimeSeries {
public:
    using const_iterator = std::vector<ZBTimeSeriesPoint>::const_iterator;
    using const_reverse_iterator = std::vector<ZBTimeSeriesPoint>::const_reverse_iterator;

    ZBTimeSeries() = default;
    virtual ~ZBTimeSeries() = default;

    // Appends; sorts at once when asked, otherwise complete() does it once.
    void add_point(const ZBDate& date, double value, const ZBId& id, bool flag, bool sort);
    void complete();
    int size() const { return int(m_point.size()); }
    const ZBTimeSeriesPoint& operator[](int index) const { return m_point[size_t(index)]; }
    ZBTimeSeriesPoint& edit(int index) { return m_point[size_t(index)]; }
    void clear() { m_point.clear(); }

    const_iterator begin() const { return m_point.begin(); }
    const_iterator end() const { return m_point.end(); }
    const_reverse_iterator rbegin() const { return m_point.rbegin(); }
    const_reverse_iterator rend() const { return m_point.rend(); }

    virtual void dump(std::ostream& out, int indent) const;

private:
    std::vector<ZBTimeSeriesPoint> m_point;
};

} // namespace Tervalon
