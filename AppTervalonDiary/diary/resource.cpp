#include "AppTervalonDiary/diary/resource.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("Resource", &Resource::create_zbobject);
}

const char* const Resource::C_ResourceTag = "R";

Resource::Resource()
{
    Resource::register_zbobject();
    Resource::set_defaults(true);
}

void Resource::register_zbobject()
{
    register_objectname("Resource", &Resource::create_zbobject);
}

int Resource::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<Resource>(out, from, "Resource");
}

void Resource::set_defaults(bool all)
{
    if (all)
        ZBDBObject::set_defaults(all);
    m_startDate = ZBDate::C_Blank;
    m_endDate = ZBDate::C_Blank;
    m_calendar.set_defaults(all);
}

void Resource::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("Resource", out, indent);
        dump.add_entry("m_userName", get_username());
        dump.add("impl->m_startDate", m_startDate);
        dump.add("impl->m_endDate", m_endDate);
    }
    m_calendar.dump(out, indent + 1);
}

int Resource::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<ZBDate>(in, out, prefix, "start", m_startDate, ZBDate::C_Blank);
    serialise_field<ZBDate>(in, out, prefix, "end", m_endDate, ZBDate::C_Blank);
    ZBSrlObject<ResourceCalendar> calendar(m_calendar, version);
    if (iszberr(serialise_object(in, out, prefix, "calendar", calendar)))
        return zbpass(ZBLOC);
    ZBDBUser::serialise_data(*this, in, out, prefix, version);
    return ZBDBObject::serialise(in, out, prefix, version);
}

std::string Resource::reserved_name(int id)
{
    switch (id) {
    case C_UnknownResourceId:
        return "<Unknown>";
    case C_ParentResourceId:
        return "<Parent>";
    case C_UnassignedResourceId:
        return "<Unassigned>";
    default:
        return std::string();
    }
}

bool Resource::has_started(const ZBDate& date, const ZBDuration& margin) const
{
    return m_startDate.is_blank() || !(date + margin < m_startDate);
}

bool Resource::still_working(const ZBDate& date, const ZBDuration& margin) const
{
    return m_endDate.is_blank() || !(m_endDate < date - margin);
}

} // namespace Tervalon

namespace Tervalon {

int Resource::allocate_times(const ZBDate& start, const ZBDate& end, const ResourceCalendar* defaultCalendar,
                             const Diary* diary)
{
    ZBDate from = start;
    ZBDate to = end;
    if (m_startDate.is_ok() && from < m_startDate)
        from = m_startDate;
    if (m_endDate.is_ok() && m_endDate < to)
        to = m_endDate;
    if (to < from) {
        // The resource does not work at all in the range.
        m_availTime = ZBDateSetGroup();
        m_workDays.clear();
        return ZBErrC_ok;
    }
    if (iszbwarn(m_calendar.allocate_times(from, to, get_id(), m_availTime, m_workDays, defaultCalendar, diary)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

} // namespace Tervalon
