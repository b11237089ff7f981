#include "AppTervalonDiary/diary/entrydue.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryDue", &EntryDue::create_zbobject);
}

EntryDue::EntryDue()
{
    EntryDue::register_zbobject();
    EntryDue::set_defaults(true);
}

void EntryDue::register_zbobject()
{
    register_objectname("EntryDue", &EntryDue::create_zbobject);
}

int EntryDue::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryDue>(out, from, "EntryDue");
}

void EntryDue::set_defaults(bool)
{
    m_autoProgress = E_Manual;
    m_totalDuration.clear();
}

void EntryDue::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryDue", out, indent);
    dump.add("m_autoProgress", m_autoProgress);
}

int EntryDue::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    owner.serialise_field<int>(in, out, prefix, "ap", m_autoProgress, int(E_Manual));
    return ZBErrC_ok;
}

std::string EntryDue::autoprogress_to_string(int kind)
{
    switch (kind) {
    case E_MatchSpent:
        return "Progress Match Time Spent";
    case E_MatchRange:
        return "Progress Match Time Range";
    default:
        return "Manual Progress";
    }
}

} // namespace Tervalon
