#pragma once

#include "LibGui/base/zbcolumndetails.h"

#include <iosfwd>
#include <vector>

namespace Tervalon {

// Plans the widths of a view's columns for the room it has, without a widget:
// each column gets what it wants; when that is too wide the columns that may
// shrink give up room in proportion to what they have above their minimum;
// spare room goes to the fill column (or is shared by the columns marked to fill).
// The height side bounds a view's height by its rows.
class ZBColumnSpec {
public:
    enum E_FillMode { E_FillNone = 0, E_FillColumn = 1, E_FillLast = 2, E_FillMarked = 3 };

    ZBColumnSpec();
    virtual ~ZBColumnSpec();

    // Returns the new column's index.
    int add(bool resize, int size = 0, int minSize = 20, int maxSize = -1, bool fill = false);
    // Null (and reported) for a column that was not added.
    ZBColumnDetails* edit_column(int column);
    int get_ncolumns() const { return int(m_column.size()); }
    void clear();

    void set_fill_mode(E_FillMode mode, int column = -1);
    E_FillMode get_fill_mode() const { return m_fillMode; }
    int get_fill_column() const { return m_fillColumn; }
    void set_show_all_columns(bool on) { m_showAllColumns = on; }
    bool get_show_all_columns() const { return m_showAllColumns; }

    // How the view itself is sized: to its columns (resize), to a fixed width
    // (force, or -1), and within a least and most width (-1 for none).
    void set_widget(bool resizeWidth, int forceWidth = -1, int minWidth = -1, int maxWidth = -1);
    void set_widget_height(bool resizeHeight, int forceHeight = -1, int minHeight = -1, int maxHeight = -1);
    // The height for rows of rowHeight under a header, within the bounds set.
    int adjust_height(int rows, int rowHeight, int header = 0) const;
    // The width of the view for columns totalling total, within the bounds set.
    int adjust_width(int total) const;

    // actual must hold one place per column of the view and contents as many
    // measured widths; actual gets the widths. Returns their sum.
    int calculate(int width, std::vector<int>& actual, const std::vector<int>& contents) const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    static int bound(int value, int minValue, int maxValue);

    std::vector<ZBColumnDetails> m_column;
    E_FillMode m_fillMode = E_FillLast;
    int m_fillColumn = -1;
    bool m_showAllColumns = false;
    bool m_resizeWidth = false;
    int m_forceWidth = -1;
    int m_minWidth = -1;
    int m_maxWidth = -1;
    bool m_resizeHeight = false;
    int m_forceHeight = -1;
    int m_minHeight = -1;
    int m_maxHeight = -1;
};

} // namespace Tervalon
