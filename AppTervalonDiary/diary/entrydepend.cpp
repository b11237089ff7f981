#include "AppTervalonDiary/diary/entrydepend.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryDepend", &EntryDepend::create_zbobject);
}

EntryDepend::EntryDepend()
{
    EntryDepend::register_zbobject();
    EntryDepend::set_defaults(true);
}

void EntryDepend::register_zbobject()
{
    register_objectname("EntryDepend", &EntryDepend::create_zbobject);
}

int EntryDepend::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryDepend>(out, from, "EntryDepend");
}

void EntryDepend::set_defaults(bool)
{
    m_dependId.clear();
    m_dependTitle.clear();
    m_preventOthers = false;
    m_preventDepend = false;
    m_activeDepends = 0;
    m_dependOnThis.clear();
}

void EntryDepend::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryDepend", out, indent);
    for (size_t i = 0; i < m_dependId.size(); ++i)
        dump.add("m_dependId", m_dependId[i], int(i));
    for (size_t i = 0; i < m_dependTitle.size(); ++i)
        dump.add_entry("m_dependTitle", m_dependTitle[i], int(i));
    dump.add("m_preventOthers", m_preventOthers);
    dump.add("m_preventDepend", m_preventDepend);
}

int EntryDepend::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    ZBSrlValueVector<int> ids(m_dependId);
    owner.serialise_value(in, out, prefix, "dp", ids);
    owner.serialise_string_vector(in, out, prefix, "dt", m_dependTitle);
    owner.serialise_field<bool>(in, out, prefix, "dpo", m_preventOthers, false);
    owner.serialise_field<bool>(in, out, prefix, "dpd", m_preventDepend, false);
    return ZBErrC_ok;
}

} // namespace Tervalon
