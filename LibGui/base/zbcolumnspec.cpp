#include "LibGui/base/zbcolumnspec.h"
#include "LibCore/error/zberror.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

ZBColumnSpec::ZBColumnSpec() = default;
ZBColumnSpec::~ZBColumnSpec() = default;

int ZBColumnSpec::add(bool resize, int size, int minSize, int maxSize, bool fill)
{
    ZBColumnDetails details;
    details.m_resize = resize;
    details.m_size = size;
    details.m_min = std::max(minSize, 0);
    details.m_max = maxSize;
    details.m_fill = fill;
    m_column.push_back(details);
    return int(m_column.size()) - 1;
}

ZBColumnDetails* ZBColumnSpec::edit_column(int column)
{
    if (column >= 0 && column < int(m_column.size()))
        return &m_column[size_t(column)];
    zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Column %d was not planned (%d columns)", column, int(m_column.size()));
    return nullptr;
}

void ZBColumnSpec::clear()
{
    m_column.clear();
    m_fillMode = E_FillLast;
    m_fillColumn = -1;
}

void ZBColumnSpec::set_fill_mode(E_FillMode mode, int column)
{
    m_fillMode = mode;
    m_fillColumn = mode == E_FillColumn ? column : -1;
}

void ZBColumnSpec::set_widget(bool resizeWidth, int forceWidth, int minWidth, int maxWidth)
{
    m_resizeWidth = resizeWidth;
    m_forceWidth = forceWidth;
    m_minWidth = minWidth;
    m_maxWidth = maxWidth;
}

void ZBColumnSpec::set_widget_height(bool resizeHeight, int forceHeight, int minHeight, int maxHeight)
{
    m_resizeHeight = resizeHeight;
    m_forceHeight = forceHeight;
    m_minHeight = minHeight;
    m_maxHeight = maxHeight;
}

int ZBColumnSpec::bound(int value, int minValue, int maxValue)
{
    if (maxValue >= 0)
        value = std::min(value, maxValue);
    if (minValue >= 0)
        value = std::max(value, minValue);
    return value;
}

int ZBColumnSpec::adjust_height(int rows, int rowHeight, int header) const
{
    if (m_forceHeight >= 0)
        return m_forceHeight;
    return bound(std::max(rows, 0) * std::max(rowHeight, 0) + std::max(header, 0), m_minHeight, m_maxHeight);
}

int ZBColumnSpec::adjust_width(int total) const
{
    if (m_forceWidth >= 0)
        return m_forceWidth;
    return bound(total, m_minWidth, m_maxWidth);
}

int ZBColumnSpec::calculate(int width, std::vector<int>& actual, const std::vector<int>& contents) const
{
    if (ZBASSERT(actual.size() > 0) || ZBASSERT(actual.size() == contents.size()))
        return 0;
    const size_t n = actual.size();
    std::vector<ZBColumnDetails> column(n);
    for (size_t i = 0; i < n && i < m_column.size(); ++i)
        column[i] = m_column[i];

    int total = 0;
    for (size_t i = 0; i < n; ++i) {
        const ZBColumnDetails& c = column[i];
        int wanted = c.m_size > 0 ? c.m_size : contents[i];
        actual[i] = std::max(bound(wanted, c.m_min, c.m_max), 0);
        total += actual[i];
    }

    if (total > width) {
        // Each shrinkable column gives up room in proportion to what it holds
        // above its minimum, so no single column is squeezed to nothing first.
        int overflow = total - width;
        std::vector<int> spare(n, 0);
        long long reducible = 0;
        for (size_t i = 0; i < n; ++i) {
            if (column[i].m_resize)
                spare[i] = std::max(actual[i] - std::min(column[i].m_min, actual[i]), 0);
            reducible += spare[i];
        }
        if (reducible <= overflow) {
            for (size_t i = 0; i < n; ++i)
                actual[i] -= spare[i];
        } else {
            int taken = 0;
            for (size_t i = 0; i < n; ++i) {
                int cut = int(overflow * spare[i] / reducible);
                actual[i] -= cut;
                spare[i] -= cut;
                taken += cut;
            }
            // What rounding left over comes from the right-most columns that still can give.
            for (size_t i = n; i-- > 0 && taken < overflow;) {
                int cut = std::min(spare[i], overflow - taken);
                actual[i] -= cut;
                taken += cut;
            }
        }
    } else if (total < width) {
        int room = width - total;
        std::vector<size_t> fill;
        if (m_fillMode == E_FillColumn && m_fillColumn >= 0 && size_t(m_fillColumn) < n)
            fill.push_back(size_t(m_fillColumn));
        else if (m_fillMode == E_FillLast)
            fill.push_back(n - 1);
        else if (m_fillMode == E_FillMarked)
            for (size_t i = 0; i < n; ++i)
                if (column[i].m_fill)
                    fill.push_back(i);
        for (size_t k = 0; k < fill.size(); ++k) {
            size_t i = fill[k];
            int share = room / int(fill.size() - k);
            if (column[i].m_max >= 0)
                share = std::min(share, std::max(column[i].m_max - actual[i], 0));
            actual[i] += share;
            room -= share;
        }
    }

    total = 0;
    for (int value : actual)
        total += value;
    return total;
}

void ZBColumnSpec::dump(std::ostream& out, int indent) const
{
    const std::string pad(indent, ' ');
    out << pad << "m_fillColumn " << m_fillColumn << " m_fillMode " << m_fillMode << " m_showAllColumns "
        << m_showAllColumns << "\n";
    out << pad << "m_resizeWidth " << m_resizeWidth << " m_forceWidth " << m_forceWidth << " m_minWidth "
        << m_minWidth << " m_maxWidth " << m_maxWidth << "\n";
    out << pad << "m_resizeHeight " << m_resizeHeight << " m_forceHeight " << m_forceHeight << " m_minHeight "
        << m_minHeight << " m_maxHeight " << m_maxHeight << "\n";
    for (size_t i = 0; i < m_column.size(); ++i)
        out << pad << "  column " << i << " size " << m_column[i].m_size << " min " << m_column[i].m_min << " m_max "
            << m_column[i].m_max << " m_resize " << m_column[i].m_resize << " m_fill " << m_column[i].m_fill << "\n";
}

} // namespace Tervalon
