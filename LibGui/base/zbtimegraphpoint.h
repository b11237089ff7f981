#pragma once

#include "LibDate/date/zbdate.h"

#include <string>

namespace Tervalon {

// One point of a series over time. A point marked to ignore counts for
// nothing: it is dropped when the source is completed.
struct ZBTimeGraphPoint {
    ZBDate m_date;
    double m_value = 0.0;
    std::string m_toolTip;
    std::string m_xLabel;
    bool m_ignore = false;

    // Earlier dates first; the value decides between equal dates so the order is fixed.
    static bool compare_time(const ZBTimeGraphPoint& a, const ZBTimeGraphPoint& b);
};

} // namespace Tervalon
