#include "AppTervalonDiary/diary/entryproperties.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryProperties", &EntryProperties::create_zbobject);
}

EntryProperties::EntryProperties()
{
    EntryProperties::register_zbobject();
    EntryProperties::set_defaults(true);
}

void EntryProperties::register_zbobject()
{
    register_objectname("EntryProperties", &EntryProperties::create_zbobject);
}

int EntryProperties::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryProperties>(out, from, "EntryProperties");
}

void EntryProperties::set_defaults(bool)
{
    m_resource = ZBCalcPair<int>(C_ParentId);
    m_timeType = ZBCalcPair<int>(C_ParentId);
    m_report = false;
}

void EntryProperties::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryProperties", out, indent);
    dump.add("m_resource", m_resource.orig);
    dump.add("m_timeType", m_timeType.orig);
    dump.add("m_report", m_report);
}

int EntryProperties::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // Only the user's choice is stored: whom "<Parent>" resolves to is worked
    // out again by recalculation, so a new entry writes nothing here.
    int resource = m_resource.orig;
    int timeType = m_timeType.orig;
    owner.serialise_field<int>(in, out, prefix, "re", resource, C_ParentId);
    owner.serialise_field<int>(in, out, prefix, "tt", timeType, C_ParentId);
    if (in) {
        m_resource.set_orig(resource);
        m_timeType.set_orig(timeType);
    }
    (void)version;
    owner.serialise_field<bool>(in, out, prefix, "rz", m_report, false);
    return ZBErrC_ok;
}

const char* const EntryProperties::C_JournalSource = "Jnl";

} // namespace Tervalon
