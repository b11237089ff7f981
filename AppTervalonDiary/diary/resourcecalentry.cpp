#include "AppTervalonDiary/diary/resourcecalentry.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbsrlvaluevector.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ResourceCalEntry", &ResourceCalEntry::create_zbobject);
}

ResourceCalEntry::ResourceCalEntry()
{
    ResourceCalEntry::register_zbobject();
    ResourceCalEntry::set_defaults(true);
}

void ResourceCalEntry::register_zbobject()
{
    register_objectname("ResourceCalEntry", &ResourceCalEntry::create_zbobject);
}

int ResourceCalEntry::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ResourceCalEntry>(out, from, "ResourceCalEntry");
}

void ResourceCalEntry::set_defaults(bool)
{
    m_date = ZBDateSlot();
    m_dayType = -1;
    m_dayApplic.assign(7, 1);
    m_comment.clear();
}

bool ResourceCalEntry::operator==(const ResourceCalEntry& other) const
{
    return m_date == other.m_date && m_dayType == other.m_dayType && m_dayApplic == other.m_dayApplic &&
           m_comment == other.m_comment;
}

void ResourceCalEntry::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ResourceCalEntry", out, indent);
    dump.add("m_date", m_date);
    dump.add("m_dayType", m_dayType);
    for (size_t i = 0; i < m_dayApplic.size(); ++i)
        dump.add("m_dayApplic", m_dayApplic[i], int(i));
    dump.add_entry("m_comment", m_comment);
}

int ResourceCalEntry::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<ZBDateSlot>(in, out, prefix, "date", m_date, ZBDateSlot());
    serialise_field<int>(in, out, prefix, "dayType", m_dayType, -1);
    // Every weekday is the default, and is left out of the file.
    std::vector<int> applic = m_dayApplic;
    if (out && std::all_of(applic.begin(), applic.end(), [](int on) { return on != 0; }))
        applic.clear();
    ZBSrlValueVector<int> binder(applic);
    serialise_value(in, out, prefix, "dayApplic", binder);
    if (in) {
        applic.resize(7, 1);
        m_dayApplic = applic;
    }
    serialise_string(in, out, prefix, "comment", m_comment, true);
    return ZBObject::serialise(in, out, prefix, version);
}

bool ResourceCalEntry::get_day_applic(int day) const
{
    if (day < 0 || day > 6)
        return true;
    return m_dayApplic[size_t(day)] != 0;
}

void ResourceCalEntry::set_day_applic(int day, bool on)
{
    if (day >= 0 && day <= 6)
        m_dayApplic[size_t(day)] = on ? 1 : 0;
}

int ResourceCalEntry::compare_start(const ResourceCalEntry& a, const ResourceCalEntry& b)
{
    return b.m_date.m_start < a.m_date.m_start;
}

} // namespace Tervalon
