#include "AppTervalonDiary/diary/daytypeentry.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbduration.h"
#include "LibObject/object/zbdump.h"

#include <cstdio>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("DayTypeEntry", &DayTypeEntry::create_zbobject);
}

DayTypeEntry::DayTypeEntry()
{
    DayTypeEntry::register_zbobject();
    DayTypeEntry::set_defaults(true);
}

DayTypeEntry::DayTypeEntry(int start, int end, int timeType, const std::string& comment) : DayTypeEntry()
{
    m_start = start;
    m_end = end;
    m_timeType = timeType;
    m_comment = comment;
}

void DayTypeEntry::register_zbobject()
{
    register_objectname("DayTypeEntry", &DayTypeEntry::create_zbobject);
}

int DayTypeEntry::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<DayTypeEntry>(out, from, "DayTypeEntry");
}

void DayTypeEntry::set_defaults(bool)
{
    m_start = 0;
    m_end = 0;
    m_timeType = -1;
    m_comment.clear();
}

bool DayTypeEntry::operator==(const DayTypeEntry& other) const
{
    return m_start == other.m_start && m_end == other.m_end && m_timeType == other.m_timeType &&
           m_comment == other.m_comment;
}

void DayTypeEntry::dump(std::ostream& out, int indent) const
{
    ZBDump dump("DayTypeEntry", out, indent);
    dump.add("m_start", m_start);
    dump.add("m_end", m_end);
    dump.add("m_timeType", m_timeType);
    dump.add_entry("m_comment", m_comment);
}

int DayTypeEntry::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "start", m_start, 0);
    serialise_field<int>(in, out, prefix, "end", m_end, 0);
    serialise_field<int>(in, out, prefix, "timeType", m_timeType, -1);
    serialise_string(in, out, prefix, "comment", m_comment, true);
    return ZBObject::serialise(in, out, prefix, version);
}

std::string DayTypeEntry::offset_to_string(int seconds)
{
    char text[32];
    if (seconds % 60)
        std::snprintf(text, sizeof(text), "%d:%02d:%02d", seconds / 3600, seconds / 60 % 60, seconds % 60);
    else
        std::snprintf(text, sizeof(text), "%d:%02d", seconds / 3600, seconds / 60 % 60);
    return text;
}

int DayTypeEntry::string_to_offset(const std::string& text)
{
    // Both readings are made on the same day, so what is left is the time of day.
    const ZBDate base = ZBDateUtils::now();
    const ZBDate at = ZBDateUtils::read_date(text, &base);
    const ZBDate midnight = ZBDateUtils::read_date("12AM", &base);
    if (!at.is_ok() || !midnight.is_ok())
        return 0;
    const std::int64_t seconds = (at - midnight).get_as_seconds();
    return seconds < 0 || seconds > ZBDate::C_DaySecs ? 0 : int(seconds);
}

int DayTypeEntry::compare_start(const DayTypeEntry& a, const DayTypeEntry& b)
{
    if (a.m_start != b.m_start)
        return a.m_start > b.m_start;
    return a.m_end > b.m_end;
}

} // namespace Tervalon
