#pragma once

#include "LibGui/base/zbgraphsource.h"
#include "LibGui/base/zbtimegraphpoint.h"

#include <string>
#include <vector>

namespace Tervalon {

// A series over time, such as weight by day or hours spent by week. Points
// come in any order; complete() sorts them and drops the ignored ones.
class ZBTimeGraphSource : public ZBGraphSource {
public:
    ZBTimeGraphSource();
    ~ZBTimeGraphSource() override;

    // An ignored point is kept until complete() but widens no range.
    void add(const ZBDate& date, double value, const std::string& toolTip = std::string(),
             const std::string& xLabel = std::string(), bool ignore = false);
    // Sorts by time and drops ignored points; with fromZero the value range
    // takes in zero, so bars and areas stand on the axis.
    void complete(bool fromZero = false);

    const ZBDate& get_min_date() const { return m_minDate; }
    const ZBDate& get_max_date() const { return m_maxDate; }
    const std::vector<ZBTimeGraphPoint>& get_data() const { return m_data; }
    int get_npoints() const override { return int(m_data.size()); }
    void clear() override;

    // 0 at the first date, 1 at the last; 0.5 for every date when the series
    // spans no time. Dates outside the range map outside 0..1.
    double date_to_x(const ZBDate& date) const;

    void dump(std::ostream& out, int indent) const override;

private:
    ZBDate m_minDate;
    ZBDate m_maxDate;
    std::vector<ZBTimeGraphPoint> m_data;
};

} // namespace Tervalon
