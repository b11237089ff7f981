#pragma once

#include "LibGui/base/zbgraphextents.h"
#include "LibGui/base/zbgraphpoint.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The data of one series of a graph and how its values read as text. Filled
// by the logic side; a graph widget only draws it.
class ZBGraphSource {
public:
    enum E_ValueType { E_Number = 0, E_Integer = 1, E_Percent = 2, E_Hours = 3, E_Money = 4 };

    ZBGraphSource();
    virtual ~ZBGraphSource();

    void set_value_type(E_ValueType type) { m_valueType = type; }
    E_ValueType get_value_type() const { return m_valueType; }
    const ZBGraphExtents& get_extents() const { return m_extents; }
    // Widens the value range, so an axis can start at zero or end at a target.
    void include_value(double value);

    void add(double x, double y, const std::string& toolTip = std::string());
    const std::vector<ZBGraphPoint>& get_points() const { return m_point; }
    virtual int get_npoints() const { return int(m_point.size()); }
    virtual void clear();

    // "12.5", "12", "12%", "2:30" (hours and minutes of a value in hours), "12.50".
    std::string value_to_string(double value) const;
    static std::string value_to_string(double value, E_ValueType type);

    virtual void dump(std::ostream& out, int indent) const;

protected:
    ZBGraphExtents m_extents;
    E_ValueType m_valueType = E_Number;
    std::vector<ZBGraphPoint> m_point;
};

} // namespace Tervalon
