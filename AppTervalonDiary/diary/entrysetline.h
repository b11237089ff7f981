#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

class DiaryEntry;

// One line of a display group: an entry, the date that matters for it in the
// group (a task's due, an appointment's start, or the instance of a series
// that falls in the group's span), the time it takes there, and whether it
// can be worked on now. The entry is the database's; a line only points at it.
class EntrySetLine {
public:
    EntrySetLine();
    EntrySetLine(const DiaryEntry* entry, const ZBDate& date, const ZBDuration& duration, bool active);

    void dump(std::ostream& out, int indent) const;
    bool operator==(const EntrySetLine& other) const;

    const DiaryEntry* get_entry() const { return m_entry; }
    int get_entry_id() const { return m_entryId; }
    const ZBDate& get_date() const { return m_date; }
    const ZBDuration& get_duration() const { return m_duration; }
    bool is_active() const { return m_active; }
    const std::string& get_text() const { return m_text; }
    void set_text(const std::string& text) { m_text = text; }

private:
    const DiaryEntry* m_entry;
    int m_entryId;
    ZBDate m_date;
    ZBDuration m_duration;
    bool m_active;
    std::string m_text;
};

} // namespace Tervalon
