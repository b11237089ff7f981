#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBGraphSource;
class ZBTimeGraphSource;
class ZBDate;

// The mapping from a graph's values to a drawing area, and the choice of axis
// ticks; a widget draws with it, tests check it without a display. Screen y
// grows downwards, so the least value is at the bottom of the area.
class ZBGraph {
public:
    ZBGraph();
    virtual ~ZBGraph();

    void set_extents(double minX, double maxX, double minY, double maxY);
    // Takes the ranges of a source (a time source's x is in seconds).
    void set_extents(const ZBGraphSource& source);
    void set_dimensions(double left, double top, double width, double height);

    double toX(double x) const;
    double toY(double y) const;
    double getDateX(const ZBTimeGraphSource& source, const ZBDate& date) const;

    // Up to maxTicks values in steps of 1, 2 or 5 times a power of ten that
    // cover the value range, with their labels in the source's value type.
    // The value range is widened to the outer ticks.
    int get_y_axis(int maxTicks, const ZBGraphSource& source, std::vector<double>& ticks,
                   std::vector<std::string>& labels);
    static double nice_step(double range, int maxTicks);

    double get_min_x() const { return m_minX; }
    double get_max_x() const { return m_maxX; }
    double get_min_y() const { return m_minY; }
    double get_max_y() const { return m_maxY; }
    double get_left() const { return m_left; }
    double get_top() const { return m_top; }
    double get_width() const { return m_width; }
    double get_height() const { return m_height; }

    virtual void dump(std::ostream& out, int indent) const;

private:
    double m_minX = 0.0;
    double m_maxX = 1.0;
    double m_minY = 0.0;
    double m_maxY = 1.0;
    double m_left = 0.0;
    double m_top = 0.0;
    double m_width = 100.0;
    double m_height = 100.0;
};

} // namespace Tervalon
