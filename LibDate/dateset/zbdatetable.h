#pragma once

#include "LibDate/date/zbdateslot.h"

#include <iosfwd>
#include <vector>

namespace Tervalon {

// A grid of values for reports: one column per date slot (sorted, as from
// ZBDateSlot::slot_series), one row per integer id. Values added by date go
// to the column whose slot holds the date.
class ZBDateTable {
public:
    ZBDateTable() = default;
    virtual ~ZBDateTable() = default;

    void initialise(const std::vector<ZBDateSlot>& slots, const std::vector<int>& ids);
    void set(int column, int row, double value);
    void add(const ZBDate& date, int row, double value);
    void set(const ZBDate& date, int row, double value);
    void set_for_id(const ZBDate& date, int id, double value);
    // The column whose slot holds the date, or -1.
    int date_index(const ZBDate& date) const;
    double get_value(int column, int row) const;
    ZBDateSlot get_date_for_column(int column) const;
    int get_id_for_row(int row) const;
    // Linear, but a repeated call for one id costs nothing.
    int get_row_for_id(int id) const;
    // How much of the date's column has passed, from 0 to 1.
    double period_weighting(const ZBDate& date) const;

    int get_ncolumns() const { return int(m_header.size()); }
    int get_nrows() const { return int(m_rowId.size()); }

    virtual void dump(std::ostream& out, int indent) const;

private:
    bool in_range(int column, int row) const;

    std::vector<ZBDateSlot> m_header;
    std::vector<int> m_rowId;
    std::vector<std::vector<double>> m_row;
    // Kept per table, so that tables on two threads never share it.
    mutable int m_lastId = -1;
    mutable int m_lastRow = -1;
};

} // namespace Tervalon
