#pragma once

namespace Tervalon {

// The ranges a graph spans; empty until the first value is added.
struct ZBGraphExtents {
    double m_minX = 0.0;
    double m_maxX = 0.0;
    double m_minY = 0.0;
    double m_maxY = 0.0;
    bool m_empty = true;

    void add(double x, double y)
    {
        if (m_empty) {
            m_minX = m_maxX = x;
            m_minY = m_maxY = y;
            m_empty = false;
            return;
        }
        if (x < m_minX) m_minX = x;
        if (x > m_maxX) m_maxX = x;
        if (y < m_minY) m_minY = y;
        if (y > m_maxY) m_maxY = y;
    }
};

} // namespace Tervalon
