#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBMarkupPage;

// What time was spent on, over a span and for one person (or everyone): each
// entry with sessions in the span, by its place in the tree, then the totals
// per top-level entry. Reads only.
class SpentReport {
public:
    // One entry's line.
    struct Line {
        int entryId = -1;
        int topId = -1;
        std::string path;
        ZBDuration spent;
        int sessions = 0;
    };

    explicit SpentReport(const Diary& diary);

    // A negative resource means everyone's sessions.
    int generate_report(const ZBDateSlot& slot, int resource);
    const std::vector<Line>& get_lines() const { return m_line; }
    ZBDuration get_total() const;
    void to_markup(ZBMarkupPage& page) const;

    // "Project / Phase / Task".
    static std::string entry_path(const DiaryEntry& entry);

private:
    const Diary& m_diary;
    ZBDateSlot m_slot;
    int m_resource;
    std::vector<Line> m_line;
};

} // namespace Tervalon
