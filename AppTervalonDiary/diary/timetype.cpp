#include "AppTervalonDiary/diary/timetype.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("TimeType", &TimeType::create_zbobject);
}

const char* const TimeType::C_TimeTypeTag = "TT";
const char* const TimeType::C_DefaultName = "Work";

TimeType::TimeType()
{
    TimeType::register_zbobject();
    TimeType::set_defaults(true);
}

void TimeType::register_zbobject()
{
    register_objectname("TimeType", &TimeType::create_zbobject);
}

int TimeType::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<TimeType>(out, from, "TimeType");
}

void TimeType::set_defaults(bool all)
{
    if (all)
        ZBDBObject::set_defaults(all);
    m_name = C_DefaultName;
}

void TimeType::dump(std::ostream& out, int indent) const
{
    ZBDump dump("TimeType", out, indent);
    dump.add_entry("m_name", m_name);
}

int TimeType::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<std::string>(in, out, prefix, "name", m_name, std::string(C_DefaultName));
    return ZBDBObject::serialise(in, out, prefix, version);
}

std::string TimeType::reserved_name(int id)
{
    switch (id) {
    case C_UnknownTimeTypeId:
        return "<Unknown>";
    case C_ParentTimeTypeId:
        return "<Parent>";
    case C_UnassignedTimeTypeId:
        return "<Unassigned>";
    case C_BlockingTimeTypeId:
        return "<Blocking>";
    case C_FreeTimeTypeId:
        return "<Free>";
    default:
        return std::string();
    }
}

} // namespace Tervalon
