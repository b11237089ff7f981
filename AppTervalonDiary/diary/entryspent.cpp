#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntrySpent", &EntrySpent::create_zbobject);
}

EntrySpent::EntrySpent()
{
    EntrySpent::register_zbobject();
    EntrySpent::set_defaults(true);
}

void EntrySpent::register_zbobject()
{
    register_objectname("EntrySpent", &EntrySpent::create_zbobject);
}

int EntrySpent::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntrySpent>(out, from, "EntrySpent");
}

void EntrySpent::set_defaults(bool)
{
    m_session.clear();
    m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1);
    m_timeSpent = ZBDuration();
    m_closed = ZBDate::C_Blank;
}

void EntrySpent::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntrySpent", out, indent);
    dump.add("m_closed", m_closed);
    dump.add("m_timeSpent", m_timeSpent);
}

int EntrySpent::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszbwarn(serialise_set(owner, in, out, prefix, "se", m_session, version)))
        return zbpass(ZBLOC);
    owner.serialise_field<ZBDate>(in, out, prefix, "cl", m_closed, ZBDate::C_Blank);
    return ZBErrC_ok;
}

void EntrySpent::stop_session(const ZBDate& date)
{
    if (!has_running_session())
        return;
    ZBDateSlot slot(m_currentSession.m_start, date, true);
    if (slot.m_start < slot.m_end)
        m_session.add(slot, m_currentSession.m_type);
    m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1);
}

} // namespace Tervalon
