#pragma once

#include "LibDate/date/zbdate.h"
#include "LibObject/object/zbid.h"

#include <iosfwd>

namespace Tervalon {

// One dated value of a ZBTimeSeries, with the row it came from.
class ZBTimeSeriesPoint {
public:
    ZBTimeSeriesPoint() = default;
    ZBTimeSeriesPoint(const ZBDate& date, double value, const ZBId& id, bool flag)
        : m_date(date), m_value(value), m_id(id), m_flag(flag) {}
    virtual ~ZBTimeSeriesPoint() = default;

    // Non-zero when a belongs behind b: the form ZBPtrArray::sort takes.
    static int compare_date(const ZBTimeSeriesPoint& a, const ZBTimeSeriesPoint& b);

    virtual void dump(std::ostream& out, int indent) const;

    ZBDate m_date;
    double m_value = 0.0;
    ZBId m_id;
    bool m_flag = false;
};

} // namespace Tervalon
