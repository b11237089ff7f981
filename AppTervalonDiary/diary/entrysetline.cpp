#include "AppTervalonDiary/diary/entrysetline.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

EntrySetLine::EntrySetLine() : m_entry(nullptr), m_entryId(-1), m_date(ZBDate::E_Blank), m_active(false) {}

EntrySetLine::EntrySetLine(const DiaryEntry* entry, const ZBDate& date, const ZBDuration& duration, bool active)
    : m_entry(entry), m_entryId(entry ? entry->get_id() : -1), m_date(date), m_duration(duration), m_active(active),
      m_text(entry ? entry->get_summary() : std::string())
{
}

void EntrySetLine::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntrySetLine", out, indent);
    dump.add("m_entryId", m_entryId);
    dump.add("m_date", m_date);
    dump.add("m_duration", m_duration);
    dump.add("m_active", m_active);
    dump.add("m_text", m_text);
}

bool EntrySetLine::operator==(const EntrySetLine& other) const
{
    return m_entryId == other.m_entryId && m_date == other.m_date && m_duration == other.m_duration
           && m_active == other.m_active && m_text == other.m_text;
}

} // namespace Tervalon
