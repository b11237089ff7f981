#include "AppTervalonDiary/diary/daytype.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/resourcecalendar.h"
#include "AppTervalonDiary/diary/workdaylist.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/dateset/zbdatesetgroup.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbsrlobjectarray.h"
#include "LibObject/object/zbsrlvaluevector.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("DayType", &DayType::create_zbobject);
} // namespace

const char* const DayType::C_StandardWorkDay = "Standard Work Day";
const char* const DayType::C_Weekend = "Weekend";
const char* const DayType::C_OnLeave = "On Leave";
const char* const DayType::C_PublicHoliday = "Public Holiday";

DayType::DayType()
{
    DayType::register_zbobject();
    DayType::set_defaults(true);
}

DayType::DayType(const std::string& name) : DayType()
{
    m_name = name;
}

void DayType::register_zbobject()
{
    register_objectname("DayType", &DayType::create_zbobject);
}

int DayType::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<DayType>(out, from, "DayType");
}

void DayType::set_defaults(bool)
{
    m_id = -1;
    m_name.clear();
    m_entry.clear();
    m_reference.clear();
}

ZBDate DayType::clock_time(const ZBDateDetails& day, int seconds)
{
    ZBDateDetails at = day;
    at.m_hour = 0;
    at.m_minute = 0;
    at.m_second = seconds;
    at.m_micro = 0;
    at.recalculate();
    return at.get_date(day.get_timezone());
}

bool DayType::operator==(const DayType& other) const
{
    return m_id == other.m_id && m_name == other.m_name && m_entry == other.m_entry &&
           m_reference == other.m_reference;
}

void DayType::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("DayType", out, indent);
        dump.add("m_id", m_id);
        dump.add_entry("m_name", m_name);
        for (size_t i = 0; i < m_reference.size(); ++i)
            dump.add("m_reference", m_reference[i], int(i));
    }
    for (const DayTypeEntry* entry : m_entry)
        entry->dump(out, indent + 1);
}

int DayType::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "id", m_id, -1);
    serialise_string(in, out, prefix, "name", m_name, true);
    ZBSrlObjectArray<DayTypeEntry> entries(m_entry, version);
    if (iszberr(serialise_object(in, out, prefix, "entry", entries)))
        return zbpass(ZBLOC);
    ZBSrlValueVector<int> refs(m_reference);
    serialise_value(in, out, prefix, "ref", refs);
    if (in) {
        // A link has a day type for every weekday or is no link at all.
        if (!m_reference.empty())
            m_reference.resize(7, -1);
        sort();
    }
    return ZBObject::serialise(in, out, prefix, version);
}

int DayType::add_entry(DayTypeEntry* entry)
{
    if (!entry)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Assertion Failed: nentry != nullptr");
    m_entry.push_back(entry);
    sort();
    return ZBErrC_ok;
}

int DayType::delete_entry(int index)
{
    if (index < 0 || index >= m_entry.size())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Index %d is out of range.", index);
    return m_entry.remove(index);
}

void DayType::sort()
{
    m_entry.sort(&DayTypeEntry::compare_start);
}

int DayType::get_reference(int weekday) const
{
    return weekday >= 0 && weekday < int(m_reference.size()) ? m_reference[size_t(weekday)] : -1;
}

void DayType::set_reference(int weekday, int id)
{
    if (weekday < 0 || weekday > 6)
        return;
    if (m_reference.empty())
        m_reference.assign(7, -1);
    m_reference[size_t(weekday)] = id;
}

void DayType::enable_references(bool on, const ResourceCalendar& calendar)
{
    if (!on) {
        m_reference.clear();
        return;
    }
    if (!m_reference.empty())
        return;
    m_reference.assign(7, -1);
    for (int day = 0; day < 7; ++day) {
        const int standard = calendar.get_standard_day(day);
        // A link to itself would lead nowhere.
        m_reference[size_t(day)] = standard == m_id ? -1 : standard;
    }
}

bool DayType::daytype_is_used(int id) const
{
    return std::find(m_reference.begin(), m_reference.end(), id) != m_reference.end();
}

int DayType::total_for_timetype(int id) const
{
    int total = 0;
    for (const DayTypeEntry* entry : m_entry)
        if (entry->get_timetype() == id)
            total += entry->get_duration();
    return total;
}

bool DayType::validate(std::string& text)
{
    sort();
    for (int i = 0; i + 1 < m_entry.size(); ++i) {
        if (m_entry.at(i)->get_end() > m_entry.at(i + 1)->get_start()) {
            text = "Time slot " + std::to_string(i + 2) + " overlaps time slot " + std::to_string(i + 1);
            return false;
        }
    }
    return true;
}

void DayType::import(const DayType& other)
{
    m_entry = other.m_entry;
    m_reference = other.m_reference;
}

void DayType::populate(const Diary* diary, const ZBDate& dayStart, const ZBDateDetails& details, int resourceId,
                       ZBDateSetGroup& group, WorkDayList& workDays) const
{
    (void)dayStart;
    workDays.add_entry(details, -1);
    for (const DayTypeEntry* entry : m_entry) {
        if (entry->get_duration() <= 0)
            continue;
        std::string name;
        if (diary) {
            const TimeType* type = diary->get_timetype_by_id(entry->get_timetype());
            if (!type)
                continue;
            name = type->get_name();
        } else {
            name = std::to_string(entry->get_timetype());
        }
        ZBDateSet* set = ResourceCalendar::get_group_set(group, name, true);
        set->bulk_add(ZBDateSlot(clock_time(details, entry->get_start()), clock_time(details, entry->get_end())),
                      resourceId);
        workDays.add_entry(details, entry->get_timetype());
    }
}

} // namespace Tervalon
