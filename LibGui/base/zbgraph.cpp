#include "LibGui/base/zbgraph.h"
#include "LibGui/base/zbtimegraphsource.h"

#include <cmath>
#include <ostream>

namespace Tervalon {

ZBGraph::ZBGraph() = default;
ZBGraph::~ZBGraph() = default;

void ZBGraph::set_extents(double minX, double maxX, double minY, double maxY)
{
    m_minX = minX;
    m_maxX = maxX;
    m_minY = minY;
    m_maxY = maxY;
}

void ZBGraph::set_extents(const ZBGraphSource& source)
{
    const ZBGraphExtents& e = source.get_extents();
    if (e.m_empty)
        set_extents(0.0, 1.0, 0.0, 1.0);
    else
        set_extents(e.m_minX, e.m_maxX, e.m_minY, e.m_maxY);
}

void ZBGraph::set_dimensions(double left, double top, double width, double height)
{
    m_left = left;
    m_top = top;
    m_width = width < 0 ? 0 : width;
    m_height = height < 0 ? 0 : height;
}

double ZBGraph::toX(double x) const
{
    // A range of one value puts everything in the middle rather than dividing by zero.
    if (m_maxX <= m_minX)
        return m_left + m_width / 2;
    return m_left + (x - m_minX) / (m_maxX - m_minX) * m_width;
}

double ZBGraph::toY(double y) const
{
    if (m_maxY <= m_minY)
        return m_top + m_height / 2;
    return m_top + m_height - (y - m_minY) / (m_maxY - m_minY) * m_height;
}

double ZBGraph::getDateX(const ZBTimeGraphSource& source, const ZBDate& date) const
{
    return m_left + source.date_to_x(date) * m_width;
}

double ZBGraph::nice_step(double range, int maxTicks)
{
    if (maxTicks < 2)
        maxTicks = 2;
    if (!(range > 0.0) || !std::isfinite(range))
        return 1.0;
    const double rough = range / (maxTicks - 1);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (double factor : {1.0, 2.0, 5.0, 10.0})
        if (factor * power >= rough * (1 - 1e-9))
            return factor * power;
    return 10.0 * power;
}

int ZBGraph::get_y_axis(int maxTicks, const ZBGraphSource& source, std::vector<double>& ticks,
                        std::vector<std::string>& labels)
{
    ticks.clear();
    labels.clear();
    double low = m_minY;
    double high = m_maxY;
    if (high <= low) {
        // A flat series still gets an axis around its one value.
        low -= 1.0;
        high += 1.0;
    }
    double step = nice_step(high - low, maxTicks);
    // The outer ticks may add one step at each end; widen the step until they fit.
    while (std::floor(low / step) * step + step * (maxTicks - 1) < high - step * 1e-9 && maxTicks >= 2)
        step = nice_step(step * maxTicks, maxTicks);
    const double first = std::floor(low / step + 1e-9) * step;
    for (int i = 0; i < maxTicks + 1; ++i) {
        double value = first + i * step;
        if (std::fabs(value) < step * 1e-9)
            value = 0.0;
        ticks.push_back(value);
        labels.push_back(source.value_to_string(value));
        if (value >= high - step * 1e-9)
            break;
    }
    m_minY = ticks.front();
    m_maxY = ticks.back();
    return int(ticks.size());
}

void ZBGraph::dump(std::ostream& out, int indent) const
{
    out << std::string(indent, ' ') << "extents " << m_minX << ".." << m_maxX << " x " << m_minY << ".." << m_maxY
        << " dimensions " << m_left << "," << m_top << " " << m_width << "x" << m_height << "\n";
}

} // namespace Tervalon
