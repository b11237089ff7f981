#include "AppTervalonDiary/diary/resourcecalendar.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ResourceCalendar", &ResourceCalendar::create_zbobject);
}

ResourceCalendar::ResourceCalendar()
{
    ResourceCalendar::register_zbobject();
    ResourceCalendar::set_defaults(true);
}

void ResourceCalendar::register_zbobject()
{
    register_objectname("ResourceCalendar", &ResourceCalendar::create_zbobject);
}

int ResourceCalendar::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ResourceCalendar>(out, from, "ResourceCalendar");
}

void ResourceCalendar::set_defaults(bool)
{
    m_standardDay.assign(7, C_DefaultStdDay);
    m_defaultCreated = false;
    m_timeTypes.clear();
}

void ResourceCalendar::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ResourceCalendar", out, indent);
    for (size_t i = 0; i < m_standardDay.size(); ++i)
        dump.add("impl->m_standardDay", m_standardDay[i], int(i));
    dump.add("impl->m_defaultCreated", m_defaultCreated);
}

int ResourceCalendar::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    std::vector<int> days = m_standardDay;
    if (out && std::all_of(days.begin(), days.end(), [](int day) { return day == C_DefaultStdDay; }))
        days.clear();
    ZBSrlValueVector<int> binder(days);
    serialise_value(in, out, prefix, "standardDay", binder);
    if (in) {
        days.resize(7, C_DefaultStdDay);
        m_standardDay = days;
    }
    serialise_field<bool>(in, out, prefix, "defaultCreated", m_defaultCreated, false);
    ZBSrlValueVector<int> types(m_timeTypes);
    serialise_value(in, out, prefix, "timeTypes", types);
    return ZBObject::serialise(in, out, prefix, version);
}

int ResourceCalendar::get_standard_day(int weekday) const
{
    return weekday >= 0 && weekday < 7 ? m_standardDay[size_t(weekday)] : C_DefaultStdDay;
}

void ResourceCalendar::set_standard_day(int weekday, int id)
{
    if (weekday >= 0 && weekday < 7)
        m_standardDay[size_t(weekday)] = id;
}

bool ResourceCalendar::timetype_is_used(int id, std::string& text) const
{
    if (std::find(m_timeTypes.begin(), m_timeTypes.end(), id) == m_timeTypes.end())
        return false;
    (void)text;
    return true;
}

} // namespace Tervalon
