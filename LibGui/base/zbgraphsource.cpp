#include "LibGui/base/zbgraphsource.h"

#include <cmath>
#include <cstdio>
#include <ostream>

namespace Tervalon {

ZBGraphSource::ZBGraphSource() = default;
ZBGraphSource::~ZBGraphSource() = default;

void ZBGraphSource::include_value(double value)
{
    if (m_extents.m_empty) {
        m_extents.add(0.0, value);
        return;
    }
    m_extents.add(m_extents.m_minX, value);
}

void ZBGraphSource::add(double x, double y, const std::string& toolTip)
{
    m_point.push_back(ZBGraphPoint{x, y, toolTip});
    m_extents.add(x, y);
}

void ZBGraphSource::clear()
{
    m_point.clear();
    m_extents = ZBGraphExtents();
}

std::string ZBGraphSource::value_to_string(double value) const
{
    return value_to_string(value, m_valueType);
}

std::string ZBGraphSource::value_to_string(double value, E_ValueType type)
{
    char text[64];
    switch (type) {
    case E_Integer:
        std::snprintf(text, sizeof text, "%.0f", value);
        break;
    case E_Percent:
        std::snprintf(text, sizeof text, "%.0f%%", value);
        break;
    case E_Hours: {
        long long minutes = std::llround(std::fabs(value) * 60.0);
        std::snprintf(text, sizeof text, "%s%lld:%02lld", value < 0 && minutes > 0 ? "-" : "", minutes / 60,
                      minutes % 60);
        break;
    }
    case E_Money:
        std::snprintf(text, sizeof text, "%.2f", value);
        break;
    default:
        std::snprintf(text, sizeof text, "%g", value);
        break;
    }
    std::string out = text;
    // "-0" helps nobody on an axis.
    if (out == "-0" || out == "-0%" || out == "-0.00")
        out.erase(0, 1);
    return out;
}

void ZBGraphSource::dump(std::ostream& out, int indent) const
{
    const std::string pad(indent, ' ');
    out << pad << "m_valueType " << m_valueType << " m_extents " << m_extents.m_minX << ".." << m_extents.m_maxX
        << " x " << m_extents.m_minY << ".." << m_extents.m_maxY << " points " << m_point.size() << "\n";
}

} // namespace Tervalon
