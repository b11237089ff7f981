#pragma once

#include "LibGui/base/zbtableentry.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// A grid of cells with optional column and row headers, independent of any
// toolkit: reports and views fill one, then sort it, show it, or write it as
// CSV or HTML. A cell out of range is reported, never thrown.
class ZBTable {
public:
    ZBTable();
    virtual ~ZBTable();

    // Keeps the cells that still fit; new cells are empty.
    void set_size(int rows, int columns);
    int get_rows() const { return int(m_entry.size()); }
    int get_columns() const { return m_columns; }
    void clear();

    int set_entry(int row, int column, const ZBTableEntry& entry);
    int set_entry(int row, int column, const std::string& text);
    // An empty cell for a place outside the grid (which is reported).
    const ZBTableEntry& get_entry(int row, int column) const;
    ZBTableEntry* edit_entry(int row, int column);

    int set_column_header(int column, const std::string& text);
    const ZBTableEntry& get_column_header(int column) const;
    ZBTableEntry* edit_column_header(int column);
    int set_row_header(int row, const std::string& text);
    const ZBTableEntry& get_row_header(int row) const;
    ZBTableEntry* edit_row_header(int row);
    void set_usecolumnheaders(bool on) { m_useColumnHeaders = on; }
    bool get_usecolumnheaders() const { return m_useColumnHeaders; }
    void set_userowheaders(bool on) { m_useRowHeaders = on; }
    bool get_userowheaders() const { return m_useRowHeaders; }

    // A handler passes each cell of its column (or row) through its process();
    // cells set later go through it too. A null handler removes it.
    int set_column_data_handler(int column, ZBTableHandler handler);
    int set_row_data_handler(int row, ZBTableHandler handler);
    // Passes every cell through its handlers again: column first, then row.
    void reprocess();

    int swap_rows(int a, int b);
    // Stable, so rows that compare equal keep their order; row headers move with their rows.
    int sort(int column, bool ascending = true);
    int remove_column(int column);

    // CSV: the header line when column headers are used, then one line per row;
    // the row headers, when used, as a first column. Fields holding the
    // separator, a quote or a line end are quoted, quotes doubled.
    std::string to_csv(char separator = ',') const;
    // Written beside the file and renamed over it, so a failure leaves the old one.
    int export_table(const std::string& file, char separator = ',') const;
    std::string to_html() const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    bool check(int row, int column) const;
    void apply_handlers(int row, int column);

    std::vector<std::vector<ZBTableEntry>> m_entry;
    int m_columns = 0;
    std::vector<ZBTableEntry> m_columnHeader;
    std::vector<ZBTableHandler> m_columnHandler;
    bool m_useColumnHeaders = true;
    std::vector<ZBTableEntry> m_rowHeader;
    std::vector<ZBTableHandler> m_rowHandler;
    bool m_useRowHeaders = false;
};

} // namespace Tervalon
