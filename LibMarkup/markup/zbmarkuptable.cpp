#include "LibMarkup/markup/zbmarkuptable.h"

#include "LibCore/error/zberror.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <ostream>

namespace Tervalon {

namespace {

// A cell's text as a number, when the whole of it is one ("12", " 3.5 ").
bool as_number(const std::string& text, double& value)
{
    const char* begin = text.c_str();
    char* end = nullptr;
    value = std::strtod(begin, &end);
    if (end == begin)
        return false;
    while (*end == ' ')
        ++end;
    return *end == '\0';
}

} // namespace

ZBMarkupTable::ZBMarkupTable(int columns, int rows) : m_columns(0), m_rows(0)
{
    set_columns(columns);
    set_rows(rows);
}

ZBMarkupElement* ZBMarkupTable::clone() const { return new ZBMarkupTable(*this); }

int ZBMarkupTable::set_columns(int columns)
{
    if (columns < 0)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "A table cannot have %d columns.", columns);
    if (columns == m_columns)
        return ZBErrC_ok;
    std::vector<ZBMarkupTableCell> cells(size_t(columns) * size_t(m_rows));
    const int keep = std::min(columns, m_columns);
    for (int row = 0; row < m_rows; ++row)
        for (int column = 0; column < keep; ++column)
            cells[size_t(row) * size_t(columns) + size_t(column)] =
                std::move(m_cell[size_t(row) * size_t(m_columns) + size_t(column)]);
    m_cell = std::move(cells);
    m_title.resize(size_t(columns));
    m_align.resize(size_t(columns), E_AlignLeft);
    m_columns = columns;
    return ZBErrC_ok;
}

int ZBMarkupTable::set_rows(int rows)
{
    if (rows < 0)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "A table cannot have %d rows.", rows);
    m_cell.resize(size_t(rows) * size_t(m_columns));
    m_rows = rows;
    return ZBErrC_ok;
}

int ZBMarkupTable::add_row()
{
    set_rows(m_rows + 1);
    return m_rows - 1;
}

int ZBMarkupTable::set_title(const std::string& text, int column)
{
    return set_title(ZBMarkupParagraph(text), column);
}

int ZBMarkupTable::set_title(const ZBMarkupParagraph& title, int column)
{
    if (column < 0 || column >= m_columns)
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Title of column %d in a table of %d columns.", column, m_columns);
    m_title[size_t(column)] = title;
    return ZBErrC_ok;
}

bool ZBMarkupTable::has_titles() const
{
    for (const ZBMarkupParagraph& title : m_title)
        if (title.get_nelements() > 0)
            return true;
    return false;
}

const ZBMarkupParagraph* ZBMarkupTable::get_title(int column) const
{
    if (column < 0 || column >= m_columns)
        return nullptr;
    return &m_title[size_t(column)];
}

int ZBMarkupTable::check_cell(int column, int row) const
{
    if (column < 0 || column >= m_columns || row < 0 || row >= m_rows)
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Cell (%d, %d) outside a table of %d columns and %d rows.", column,
                       row, m_columns, m_rows);
    return ZBErrC_ok;
}

int ZBMarkupTable::set_cell(const std::string& text, int column, int row, const std::string& foreground,
                            const std::string& background, bool bold, bool italics)
{
    if (iszbwarn(check_cell(column, row)))
        return zbpass(ZBLOC);
    ZBMarkupTableCell& cell = m_cell[size_t(row) * size_t(m_columns) + size_t(column)];
    cell.set_defaults(true);
    cell.set_foreground(foreground);
    cell.set_background(background);
    cell.set_text(text);
    if ((bold || italics) && cell.m_paragraph.get_nelements() > 0) {
        ZBMarkupElement* element = cell.m_paragraph.get_element_by_index(0);
        element->set_bold(bold);
        element->set_italics(italics);
    }
    return ZBErrC_ok;
}

ZBMarkupTableCell* ZBMarkupTable::get_cell(int column, int row)
{
    if (iszbwarn(check_cell(column, row)))
        return nullptr;
    return &m_cell[size_t(row) * size_t(m_columns) + size_t(column)];
}

const ZBMarkupTableCell* ZBMarkupTable::get_cell(int column, int row) const
{
    if (iszbwarn(check_cell(column, row)))
        return nullptr;
    return &m_cell[size_t(row) * size_t(m_columns) + size_t(column)];
}

void ZBMarkupTable::set_alignment(int column, E_Align align)
{
    if (column >= 0 && column < m_columns)
        m_align[size_t(column)] = align;
}

ZBMarkupTable::E_Align ZBMarkupTable::get_alignment(int column) const
{
    if (column < 0 || column >= m_columns)
        return E_AlignLeft;
    return E_Align(m_align[size_t(column)]);
}

int ZBMarkupTable::sort(int column, bool descending)
{
    if (column < 0 || column >= m_columns)
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Sorting by column %d of a table of %d columns.", column, m_columns);
    struct Key {
        bool number;
        double value;
        std::string text;
    };
    std::vector<Key> keys(static_cast<size_t>(m_rows));
    for (int row = 0; row < m_rows; ++row) {
        Key& key = keys[size_t(row)];
        key.text = m_cell[size_t(row) * size_t(m_columns) + size_t(column)].get_raw_text();
        key.number = as_number(key.text, key.value);
    }
    auto less = [](const Key& a, const Key& b) {
        if (a.number != b.number)
            return a.number;
        if (a.number)
            return a.value < b.value;
        return a.text < b.text;
    };
    std::vector<int> order(static_cast<size_t>(m_rows));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return descending ? less(keys[size_t(b)], keys[size_t(a)]) : less(keys[size_t(a)], keys[size_t(b)]);
    });
    std::vector<ZBMarkupTableCell> cells;
    cells.reserve(m_cell.size());
    for (int row : order)
        for (int c = 0; c < m_columns; ++c)
            cells.push_back(std::move(m_cell[size_t(row) * size_t(m_columns) + size_t(c)]));
    m_cell = std::move(cells);
    return ZBErrC_ok;
}

std::string ZBMarkupTable::get_raw_text() const
{
    std::string text;
    auto add_line = [&](auto cellText) {
        for (int c = 0; c < m_columns; ++c) {
            if (c > 0)
                text += '\t';
            text += cellText(c);
        }
        text += '\n';
    };
    if (has_titles())
        add_line([&](int c) { return m_title[size_t(c)].get_raw_text(); });
    for (int row = 0; row < m_rows; ++row)
        add_line([&](int c) { return m_cell[size_t(row) * size_t(m_columns) + size_t(c)].get_raw_text(); });
    return text;
}

bool ZBMarkupTable::same_content(const ZBMarkupElement& other) const
{
    const auto& o = static_cast<const ZBMarkupTable&>(other);
    return m_columns == o.m_columns && m_rows == o.m_rows && m_title == o.m_title && m_cell == o.m_cell &&
           m_align == o.m_align;
}

void ZBMarkupTable::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupTable\n";
    ZBMarkupElement::dump(out, indent + 2);
    out << pad << "  m_columns: " << m_columns << "\n" << pad << "  m_rows: " << m_rows << "\n";
    for (const ZBMarkupParagraph& title : m_title)
        title.dump(out, indent + 4);
    for (const ZBMarkupTableCell& cell : m_cell)
        cell.dump(out, indent + 4);
}

} // namespace Tervalon
