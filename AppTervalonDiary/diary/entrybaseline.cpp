#include "AppTervalonDiary/diary/entrybaseline.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryBaseline", &EntryBaseline::create_zbobject);
}

EntryBaseline::EntryBaseline()
{
    EntryBaseline::register_zbobject();
    EntryBaseline::set_defaults(true);
}

void EntryBaseline::register_zbobject()
{
    register_objectname("EntryBaseline", &EntryBaseline::create_zbobject);
}

int EntryBaseline::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryBaseline>(out, from, "EntryBaseline");
}

void EntryBaseline::set_defaults(bool)
{
    m_duration = ZBCalcPair<ZBDuration>();
    m_startEnd = ZBCalcPair<ZBDateSlot>();
    m_progressive = false;
    m_autoEntryBaseline = 0;
}

void EntryBaseline::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryBaseline", out, indent);
    dump.add("m_duration", m_duration.orig);
    dump.add("m_startEnd", m_startEnd.orig);
    dump.add("m_progressive", m_progressive);
    dump.add("m_autoEntryBaseline", m_autoEntryBaseline);
}

int EntryBaseline::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    m_duration.serialise(owner, in, out, prefix, "bd", ZBDuration());
    m_startEnd.serialise(owner, in, out, prefix, "st", ZBDateSlot());
    owner.serialise_field<bool>(in, out, prefix, "pg", m_progressive, false);
    owner.serialise_field<int>(in, out, prefix, "ab", m_autoEntryBaseline, 0);
    return ZBErrC_ok;
}

namespace {
const char* const g_btypes[] = {"None", "Hours", "HoursDate", "FollowHours", "FollowHoursDate"};
}

std::string EntryBaseline::btype_to_string(int kind)
{
    return kind >= 0 && kind < 5 ? g_btypes[kind] : g_btypes[0];
}

int EntryBaseline::string_to_btype(const std::string& text)
{
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '4')
        return text[0] - '0';
    for (int i = 0; i < 5; ++i)
        if (text == g_btypes[i])
            return i;
    return 0;
}

} // namespace Tervalon
