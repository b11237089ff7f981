#include "LibDate/dateset/zbdatetable.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>

namespace Tervalon {

void ZBDateTable::initialise(const std::vector<ZBDateSlot>& slots, const std::vector<int>& ids)
{
    m_header = slots;
    m_rowId = ids;
    m_row.assign(ids.size(), std::vector<double>(slots.size(), 0.0));
    m_lastId = -1;
    m_lastRow = -1;
}

bool ZBDateTable::in_range(int column, int row) const
{
    return column >= 0 && column < int(m_header.size()) && row >= 0 && row < int(m_row.size());
}

void ZBDateTable::set(int column, int row, double value)
{
    if (in_range(column, row))
        m_row[size_t(row)][size_t(column)] = value;
}

void ZBDateTable::add(const ZBDate& date, int row, double value)
{
    if (!date.is_ok())
        return;
    int column = date_index(date);
    if (in_range(column, row))
        m_row[size_t(row)][size_t(column)] += value;
}

void ZBDateTable::set(const ZBDate& date, int row, double value)
{
    if (date.is_ok())
        set(date_index(date), row, value);
}

void ZBDateTable::set_for_id(const ZBDate& date, int id, double value)
{
    set(date, get_row_for_id(id), value);
}

int ZBDateTable::date_index(const ZBDate& date) const
{
    if (m_header.empty() || !date.is_ok() || date < m_header.front().m_start || date > m_header.back().m_end)
        return -1;
    int low = 0;
    int high = int(m_header.size()) - 1;
    // Columns are roughly even in length, so the guess from elapsed time
    // usually lands at once; each miss narrows the range by one at least.
    while (low <= high) {
        double span = (m_header[size_t(high)].m_end - m_header[size_t(low)].m_start).get_as_days();
        double elapsed = (date - m_header[size_t(low)].m_start).get_as_days();
        int guess = low;
        if (span > 0)
            guess = low + int(elapsed / span * double(high - low + 1));
        guess = std::max(low, std::min(high, guess));
        const ZBDateSlot& slot = m_header[size_t(guess)];
        if (slot.within(date))
            return guess;
        if (date < slot.m_start)
            high = guess - 1;
        else
            low = guess + 1;
    }
    return -1;
}

double ZBDateTable::get_value(int column, int row) const
{
    return in_range(column, row) ? m_row[size_t(row)][size_t(column)] : 0.0;
}

ZBDateSlot ZBDateTable::get_date_for_column(int column) const
{
    if (column < 0 || column >= int(m_header.size()))
        return ZBDateSlot::C_Blank;
    return m_header[size_t(column)];
}

int ZBDateTable::get_id_for_row(int row) const
{
    return row >= 0 && row < int(m_rowId.size()) ? m_rowId[size_t(row)] : -1;
}

int ZBDateTable::get_row_for_id(int id) const
{
    if (id == m_lastId && m_lastRow >= 0)
        return m_lastRow;
    for (size_t i = 0; i < m_rowId.size(); ++i) {
        if (m_rowId[i] == id) {
            m_lastId = id;
            m_lastRow = int(i);
            return m_lastRow;
        }
    }
    return -1;
}

double ZBDateTable::period_weighting(const ZBDate& date) const
{
    int column = date_index(date);
    if (column < 0)
        return 0.0;
    return ZBDateSlot::withinRange(date, m_header[size_t(column)]);
}

void ZBDateTable::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBDateTable", out, indent);
    for (size_t c = 0; c < m_header.size(); ++c)
        writer.add("m_header", m_header[c].to_compact_string(), int(c));
    for (size_t r = 0; r < m_rowId.size(); ++r)
        writer.add("m_rowId", m_rowId[r], int(r));
    writer.write();
}

} // namespace Tervalon
