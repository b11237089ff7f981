#include "AppTervalonDiary/diary/entrypriority.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryPriority", &EntryPriority::create_zbobject);
}

EntryPriority::EntryPriority()
{
    EntryPriority::register_zbobject();
    EntryPriority::set_defaults(true);
}

void EntryPriority::register_zbobject()
{
    register_objectname("EntryPriority", &EntryPriority::create_zbobject);
}

int EntryPriority::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryPriority>(out, from, "EntryPriority");
}

void EntryPriority::set_defaults(bool)
{
    m_nonDueEntryPriority = 0.0;
    m_maxChildPriority = 0.0;
    m_displayOrder = 0;
    m_priorityOrder = 0.0;
}

void EntryPriority::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryPriority", out, indent);
    dump.add("m_nonDueEntryPriority", m_nonDueEntryPriority);
    dump.add("m_maxChildPriority", m_maxChildPriority);
    dump.add("m_displayOrder", m_displayOrder);
    dump.add("m_priorityOrder", m_priorityOrder);
}

int EntryPriority::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)owner;
    (void)in;
    (void)out;
    (void)prefix;
    (void)version;
    return ZBErrC_ok;
}

} // namespace Tervalon
