#include "LibDiary/diary/zbnotifyitem.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

void ZBNotifyItem::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBNotifyItem", out, indent);
    dump.add("m_scheme", m_scheme);
    dump.add("m_priority", m_priority);
    dump.add_entry("m_text", m_text);
    dump.add("m_objectId", m_objectId);
    dump.add_entry("m_date", m_date.to_iso());
    dump.write();
}

} // namespace Tervalon
