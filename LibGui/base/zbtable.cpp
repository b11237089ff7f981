#include "LibGui/base/zbtable.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbfileutils.h"

#include <algorithm>
#include <numeric>
#include <ostream>

namespace Tervalon {

namespace {

const ZBTableEntry& blank_entry()
{
    static const ZBTableEntry blank;
    return blank;
}

std::string csv_field(const std::string& text, char separator)
{
    if (text.find_first_of(std::string(1, separator) + "\"\r\n") == std::string::npos)
        return text;
    std::string out = "\"";
    for (char c : text) {
        if (c == '"')
            out += '"';
        out += c;
    }
    return out + "\"";
}

std::string html_text(const std::string& text)
{
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
    return out;
}

} // namespace

ZBTable::ZBTable() = default;
ZBTable::~ZBTable() = default;

void ZBTable::set_size(int rows, int columns)
{
    rows = std::max(rows, 0);
    columns = std::max(columns, 0);
    m_entry.resize(size_t(rows));
    for (auto& row : m_entry)
        row.resize(size_t(columns));
    m_columns = columns;
    m_columnHeader.resize(size_t(columns));
    m_columnHandler.resize(size_t(columns));
    m_rowHeader.resize(size_t(rows));
    m_rowHandler.resize(size_t(rows));
}

void ZBTable::clear()
{
    m_entry.clear();
    m_columns = 0;
    m_columnHeader.clear();
    m_columnHandler.clear();
    m_rowHeader.clear();
    m_rowHandler.clear();
}

bool ZBTable::check(int row, int column) const
{
    if (row >= 0 && row < get_rows() && column >= 0 && column < m_columns)
        return true;
    zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Table cell %d,%d is outside the table of %d rows and %d columns", row, column,
              get_rows(), m_columns);
    return false;
}

void ZBTable::apply_handlers(int row, int column)
{
    ZBTableEntry& cell = m_entry[size_t(row)][size_t(column)];
    if (m_columnHandler[size_t(column)])
        m_columnHandler[size_t(column)]->process(cell);
    if (m_rowHandler[size_t(row)])
        m_rowHandler[size_t(row)]->process(cell);
}

int ZBTable::set_entry(int row, int column, const ZBTableEntry& entry)
{
    if (!check(row, column))
        return zberrorvalue();
    m_entry[size_t(row)][size_t(column)] = entry;
    apply_handlers(row, column);
    return ZBErrC_ok;
}

int ZBTable::set_entry(int row, int column, const std::string& text)
{
    return set_entry(row, column, ZBTableEntry(text));
}

const ZBTableEntry& ZBTable::get_entry(int row, int column) const
{
    return check(row, column) ? m_entry[size_t(row)][size_t(column)] : blank_entry();
}

ZBTableEntry* ZBTable::edit_entry(int row, int column)
{
    return check(row, column) ? &m_entry[size_t(row)][size_t(column)] : nullptr;
}

int ZBTable::set_column_header(int column, const std::string& text)
{
    ZBTableEntry* header = edit_column_header(column);
    if (!header)
        return zberrorvalue();
    header->set_text(text);
    return ZBErrC_ok;
}

const ZBTableEntry& ZBTable::get_column_header(int column) const
{
    return column >= 0 && column < m_columns ? m_columnHeader[size_t(column)] : blank_entry();
}

ZBTableEntry* ZBTable::edit_column_header(int column)
{
    if (column >= 0 && column < m_columns)
        return &m_columnHeader[size_t(column)];
    zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Column %d is outside the table of %d columns", column, m_columns);
    return nullptr;
}

int ZBTable::set_row_header(int row, const std::string& text)
{
    ZBTableEntry* header = edit_row_header(row);
    if (!header)
        return zberrorvalue();
    header->set_text(text);
    return ZBErrC_ok;
}

const ZBTableEntry& ZBTable::get_row_header(int row) const
{
    return row >= 0 && row < get_rows() ? m_rowHeader[size_t(row)] : blank_entry();
}

ZBTableEntry* ZBTable::edit_row_header(int row)
{
    if (row >= 0 && row < get_rows())
        return &m_rowHeader[size_t(row)];
    zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Row %d is outside the table of %d rows", row, get_rows());
    return nullptr;
}

int ZBTable::set_column_data_handler(int column, ZBTableHandler handler)
{
    if (column < 0 || column >= m_columns)
        return zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Column %d is outside the table of %d columns", column, m_columns);
    m_columnHandler[size_t(column)] = handler;
    if (handler)
        for (int row = 0; row < get_rows(); ++row)
            handler->process(m_entry[size_t(row)][size_t(column)]);
    return ZBErrC_ok;
}

int ZBTable::set_row_data_handler(int row, ZBTableHandler handler)
{
    if (row < 0 || row >= get_rows())
        return zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Row %d is outside the table of %d rows", row, get_rows());
    m_rowHandler[size_t(row)] = handler;
    if (handler)
        for (auto& cell : m_entry[size_t(row)])
            handler->process(cell);
    return ZBErrC_ok;
}

void ZBTable::reprocess()
{
    for (int row = 0; row < get_rows(); ++row)
        for (int column = 0; column < m_columns; ++column)
            apply_handlers(row, column);
}

int ZBTable::swap_rows(int a, int b)
{
    if (a < 0 || b < 0 || a >= get_rows() || b >= get_rows())
        return zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Rows %d and %d: the table has %d rows", a, b, get_rows());
    std::swap(m_entry[size_t(a)], m_entry[size_t(b)]);
    std::swap(m_rowHeader[size_t(a)], m_rowHeader[size_t(b)]);
    std::swap(m_rowHandler[size_t(a)], m_rowHandler[size_t(b)]);
    return ZBErrC_ok;
}

int ZBTable::sort(int column, bool ascending)
{
    if (m_entry.empty())
        return ZBErrC_ok;
    if (column < 0 || column >= m_columns)
        return zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Cannot sort on column %d of a table of %d columns", column,
                         m_columns);
    std::vector<size_t> order(m_entry.size());
    std::iota(order.begin(), order.end(), size_t(0));
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        int result = ZBTableEntry::compare(m_entry[a][size_t(column)], m_entry[b][size_t(column)]);
        return ascending ? result < 0 : result > 0;
    });
    std::vector<std::vector<ZBTableEntry>> entry;
    std::vector<ZBTableEntry> header;
    std::vector<ZBTableHandler> handler;
    for (size_t index : order) {
        entry.push_back(std::move(m_entry[index]));
        header.push_back(std::move(m_rowHeader[index]));
        handler.push_back(std::move(m_rowHandler[index]));
    }
    m_entry.swap(entry);
    m_rowHeader.swap(header);
    m_rowHandler.swap(handler);
    return ZBErrC_ok;
}

int ZBTable::remove_column(int column)
{
    if (column < 0 || column >= m_columns)
        return zbwarning(ZBErrC_ArrayBounds, ZBLOC, "Cannot remove column %d of a table of %d columns", column,
                         m_columns);
    for (auto& row : m_entry)
        row.erase(row.begin() + column);
    m_columnHeader.erase(m_columnHeader.begin() + column);
    m_columnHandler.erase(m_columnHandler.begin() + column);
    --m_columns;
    return ZBErrC_ok;
}

std::string ZBTable::to_csv(char separator) const
{
    std::string out;
    auto line = [&](const ZBTableEntry* first, const std::vector<ZBTableEntry>& cells) {
        bool start = true;
        if (m_useRowHeaders) {
            out += csv_field(first ? first->get_text() : std::string(), separator);
            start = false;
        }
        for (const auto& cell : cells) {
            if (!start)
                out += separator;
            out += csv_field(cell.get_text(), separator);
            start = false;
        }
        out += "\n";
    };
    if (m_useColumnHeaders)
        line(nullptr, m_columnHeader);
    for (int row = 0; row < get_rows(); ++row)
        line(&m_rowHeader[size_t(row)], m_entry[size_t(row)]);
    return out;
}

int ZBTable::export_table(const std::string& file, char separator) const
{
    int result = zb_write_text_file(file, to_csv(separator));
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

std::string ZBTable::to_html() const
{
    std::string out = "<table>\n";
    if (m_useColumnHeaders) {
        out += "<tr>";
        if (m_useRowHeaders)
            out += "<th></th>";
        for (const auto& header : m_columnHeader)
            out += "<th>" + html_text(header.get_text()) + "</th>";
        out += "</tr>\n";
    }
    for (int row = 0; row < get_rows(); ++row) {
        out += "<tr>";
        if (m_useRowHeaders)
            out += "<th>" + html_text(m_rowHeader[size_t(row)].get_text()) + "</th>";
        for (const auto& cell : m_entry[size_t(row)])
            out += (cell.has_value() ? "<td align=\"right\">" : "<td>") + html_text(cell.get_text()) + "</td>";
        out += "</tr>\n";
    }
    return out + "</table>\n";
}

void ZBTable::dump(std::ostream& out, int indent) const
{
    const std::string pad(indent, ' ');
    out << pad << "ZBTable rows " << get_rows() << " columns " << m_columns << " m_useColumnHeaders "
        << m_useColumnHeaders << " m_useRowHeaders " << m_useRowHeaders << "\n";
    out << to_csv(',');
}

} // namespace Tervalon
