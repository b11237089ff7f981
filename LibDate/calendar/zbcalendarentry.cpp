#include "LibDate/calendar/zbcalendarentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBCalendarEntry", &ZBCalendarEntry::create_zbobject);
}

ZBCalendarEntry::ZBCalendarEntry()
{
    ZBCalendarEntry::register_zbobject();
    ZBCalendarEntry::set_defaults(true);
}

ZBCalendarEntry::ZBCalendarEntry(const ZBId& id, const ZBDateSlot& time, const std::string& summary)
    : ZBCalendarEntry()
{
    m_id = id;
    set_time(time);
    m_summary = summary;
}

void ZBCalendarEntry::register_zbobject()
{
    register_objectname("ZBCalendarEntry", &ZBCalendarEntry::create_zbobject);
}

int ZBCalendarEntry::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBCalendarEntry>(out, from, "ZBCalendarEntry");
}

void ZBCalendarEntry::set_defaults(bool)
{
    m_id = ZBId();
    m_dataType = 0;
    m_grouping = 0;
    m_time = ZBDateSlot();
    m_summary.clear();
    m_details.clear();
    m_image.clear();
    m_group = 0;
    m_viewType = 0;
    m_priority = 0.0;
    m_highlighted = false;
}

void ZBCalendarEntry::set_time(const ZBDateSlot& time)
{
    m_time = time;
    if (m_time.m_start.is_ok() && m_time.m_end.is_ok() && m_time.m_end < m_time.m_start)
        std::swap(m_time.m_start, m_time.m_end);
}

bool ZBCalendarEntry::less_than(const ZBCalendarEntry& other) const
{
    if (m_time.m_start != other.m_time.m_start)
        return m_time.m_start < other.m_time.m_start;
    if (m_time.m_end != other.m_time.m_end)
        return m_time.m_end < other.m_time.m_end;
    return m_id < other.m_id;
}

int compare_calendar_entries(const ZBCalendarEntry& a, const ZBCalendarEntry& b)
{
    return a.greater_than(b) ? 1 : 0;
}

int ZBCalendarEntry::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int)
{
    const ZBId noId;
    const ZBDateSlot noTime;
    serialise_field<ZBId>(in, out, prefix, "id", m_id, noId);
    serialise_field<int>(in, out, prefix, "dt", m_dataType, 0);
    serialise_field<int>(in, out, prefix, "gp", m_grouping, 0);
    serialise_field<ZBDateSlot>(in, out, prefix, "tm", m_time, noTime);
    serialise_string(in, out, prefix, "s", m_summary, true);
    serialise_string(in, out, prefix, "d", m_details, true);
    serialise_string(in, out, prefix, "im", m_image, true);
    serialise_field<int>(in, out, prefix, "g", m_group, 0);
    serialise_field<int>(in, out, prefix, "vt", m_viewType, 0);
    serialise_field<double>(in, out, prefix, "p", m_priority, 0.0);
    serialise_field<bool>(in, out, prefix, "h", m_highlighted, false);
    return ZBErrC_ok;
}

void ZBCalendarEntry::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBCalendarEntry", out, indent);
    dump.add("m_id", m_id.m_id);
    dump.add("m_seq", m_id.m_seq);
    dump.add("m_dataType", m_dataType);
    dump.add("m_grouping", m_grouping);
    dump.add("m_time", m_time.to_string());
    dump.add("m_summary", m_summary);
    dump.add("m_group", m_group);
    dump.add("m_viewType", m_viewType);
    dump.add("m_priority", m_priority);
    dump.add("m_highlighted", m_highlighted);
}

} // namespace Tervalon
