#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBMarkupPage;
class ZBMarkupTable;

// What is planned for a span and one person (or everyone): every task or
// appointment with fixed plans, predicted work or a due date in the span,
// in the order the work is predicted to start, a line each. Reads only; the
// figures are those of the last recalculation.
class PlanReport {
public:
    explicit PlanReport(const Diary& diary);

    // Fills the page; a negative resource means everyone's entries.
    int generate_report(const ZBDateSlot& slot, int resource, ZBMarkupPage& page);
    int get_nlines() const { return m_lines; }

    // One entry's line at the bottom of the table; false when the entry has
    // nothing in the span and so no line.
    bool entry_line(const DiaryEntry& entry, ZBMarkupTable& table) const;

private:
    const Diary& m_diary;
    ZBDateSlot m_slot;
    int m_resource;
    int m_lines;
    ZBDuration m_planned;
    ZBDuration m_predicted;
};

} // namespace Tervalon
