#include "AppTervalonDiary/diary/entryrepeat.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryRepeat", &EntryRepeat::create_zbobject);
}

EntryRepeat::EntryRepeat()
{
    EntryRepeat::register_zbobject();
    EntryRepeat::set_defaults(true);
}

void EntryRepeat::register_zbobject()
{
    register_objectname("EntryRepeat", &EntryRepeat::create_zbobject);
}

int EntryRepeat::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryRepeat>(out, from, "EntryRepeat");
}

void EntryRepeat::set_defaults(bool)
{
    m_current = ZBDateSlot();
    m_valid = false;
}

void EntryRepeat::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryRepeat", out, indent);
    dump.add("m_current", m_current);
    dump.add("m_valid", m_valid);
}

int EntryRepeat::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)owner;
    (void)in;
    (void)out;
    (void)prefix;
    (void)version;
    return ZBErrC_ok;
}

ZBDateSlot EntryRepeat::get_current_repeat() const
{
    if (m_valid)
        return m_current;
    const DiaryEntry* entry = get_entry();
    return entry ? entry->get_instance_slot() : ZBDateSlot();
}

void EntryRepeat::set_next_repeat(const ZBDate& start, const ZBDate& end)
{
    m_current = ZBDateSlot(start, end);
    m_valid = true;
    if (DiaryEntry* entry = get_entry())
        entry->move_instance(start, end);
}

} // namespace Tervalon
