#include "AppTervalonDiary/diary/resourcecalendar.h"
#include "AppTervalonDiary/diary/workdaylist.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/dateset/zbdatesetgroup.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbsrlobjectarray.h"
#include "LibObject/object/zbsrlvaluevector.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ResourceCalendar", &ResourceCalendar::create_zbobject);

} // namespace

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
    m_dayType.clear();
    m_entry.clear();
    m_defaultCreated = false;
}

bool ResourceCalendar::operator==(const ResourceCalendar& other) const
{
    return m_standardDay == other.m_standardDay && m_dayType == other.m_dayType && m_entry == other.m_entry &&
           m_defaultCreated == other.m_defaultCreated;
}

void ResourceCalendar::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("ResourceCalendar", out, indent);
        for (size_t i = 0; i < m_standardDay.size(); ++i)
            dump.add("impl->m_standardDay", m_standardDay[i], int(i));
        dump.add("impl->m_defaultCreated", m_defaultCreated);
    }
    for (const DayType* type : m_dayType)
        type->dump(out, indent + 1);
    for (const ResourceCalEntry* entry : m_entry)
        entry->dump(out, indent + 1);
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
    ZBSrlObjectArray<DayType> types(m_dayType, version);
    if (iszberr(serialise_object(in, out, prefix, "dayType", types)))
        return zbpass(ZBLOC);
    ZBSrlObjectArray<ResourceCalEntry> entries(m_entry, version);
    if (iszberr(serialise_object(in, out, prefix, "nonstandard", entries)))
        return zbpass(ZBLOC);
    serialise_field<bool>(in, out, prefix, "defaultCreated", m_defaultCreated, false);
    if (in) {
        sort_daytypes();
        sort_entries();
    }
    return ZBObject::serialise(in, out, prefix, version);
}

// ---------------------------------------------------------------- day types

const DayType* ResourceCalendar::get_daytype_by_id(int id) const
{
    for (const DayType* type : m_dayType)
        if (type->get_id() == id)
            return type;
    return nullptr;
}

DayType* ResourceCalendar::edit_daytype_by_id(int id)
{
    return const_cast<DayType*>(get_daytype_by_id(id));
}

const DayType* ResourceCalendar::get_daytype_by_name(const std::string& name) const
{
    for (const DayType* type : m_dayType)
        if (type->get_name() == name)
            return type;
    return nullptr;
}

DayType* ResourceCalendar::edit_daytype_by_name(const std::string& name)
{
    return const_cast<DayType*>(get_daytype_by_name(name));
}

int ResourceCalendar::add_daytype(DayType* type)
{
    if (!type)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Assertion Failed: nentry != nullptr");
    int id = 0;
    for (const DayType* other : m_dayType)
        id = std::max(id, other->get_id() + 1);
    type->set_id(id);
    m_dayType.push_back(type);
    sort_daytypes();
    return ZBErrC_ok;
}

int ResourceCalendar::delete_daytype(int index)
{
    if (index < 0)
        return ZBErrC_ok;
    if (index >= m_dayType.size())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Element %d out of bounds (%d items)", index, m_dayType.size());
    return m_dayType.remove(index);
}

void ResourceCalendar::sort_daytypes()
{
    m_dayType.sort(&DayType::compare_name);
}

bool ResourceCalendar::daytype_is_used(const DayType& type) const
{
    const int id = type.get_id();
    if (std::find(m_standardDay.begin(), m_standardDay.end(), id) != m_standardDay.end())
        return true;
    for (const ResourceCalEntry* entry : m_entry)
        if (entry->get_daytype() == id)
            return true;
    for (const DayType* other : m_dayType)
        if (other != &type && other->daytype_is_used(id))
            return true;
    return false;
}

bool ResourceCalendar::timetype_is_used(int id, std::string& text) const
{
    for (const DayType* type : m_dayType)
        for (int i = 0; i < type->get_nentries(); ++i)
            if (type->get_entry_by_index(i)->get_timetype() == id) {
                text = type->get_name();
                return true;
            }
    return false;
}

int ResourceCalendar::get_standard_day(int weekday) const
{
    return weekday >= 0 && weekday < int(m_standardDay.size()) ? m_standardDay[size_t(weekday)] : C_DefaultStdDay;
}

void ResourceCalendar::set_standard_day(int weekday, int id)
{
    if (weekday < 0 || weekday > 6)
        return;
    m_standardDay.resize(7, C_DefaultStdDay);
    m_standardDay[size_t(weekday)] = id;
}

// ---------------------------------------------------------------- exceptions

int ResourceCalendar::add_entry(ResourceCalEntry* entry)
{
    if (!entry)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Assertion Failed: nentry != nullptr");
    m_entry.push_back(entry);
    sort_entries();
    return ZBErrC_ok;
}

int ResourceCalendar::delete_entry(int index)
{
    if (index < 0)
        return ZBErrC_ok;
    if (index >= m_entry.size())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Element %d out of bounds (%d items)", index, m_entry.size());
    return m_entry.remove(index);
}

void ResourceCalendar::sort_entries()
{
    m_entry.sort(&ResourceCalEntry::compare_start);
}

// ---------------------------------------------------------------- defaults

void ResourceCalendar::setup_defaults(bool isDefault, bool multiUser, int workTimeType)
{
    m_standardDay.resize(7, C_DefaultStdDay);
    if (multiUser && !isDefault) {
        // Everything but leave comes from the diary's default calendar.
        if (!get_daytype_by_name(DayType::C_OnLeave))
            add_daytype(new DayType(DayType::C_OnLeave));
        m_defaultCreated = true;
        return;
    }
    if (!get_daytype_by_name(DayType::C_StandardWorkDay)) {
        DayType* work = new DayType(DayType::C_StandardWorkDay);
        work->add_entry(new DayTypeEntry(32400, 61200, workTimeType));
        add_daytype(work);
    }
    if (!get_daytype_by_name(DayType::C_Weekend))
        add_daytype(new DayType(DayType::C_Weekend));
    if (!get_daytype_by_name(DayType::C_PublicHoliday))
        add_daytype(new DayType(DayType::C_PublicHoliday));
    if (!multiUser && !get_daytype_by_name(DayType::C_OnLeave))
        add_daytype(new DayType(DayType::C_OnLeave));
    const int workDay = get_daytype_by_name(DayType::C_StandardWorkDay)->get_id();
    const int weekend = get_daytype_by_name(DayType::C_Weekend)->get_id();
    for (int day = 0; day < 7; ++day)
        if (m_standardDay[size_t(day)] == C_DefaultStdDay)
            m_standardDay[size_t(day)] = day < 5 ? workDay : weekend;
    m_defaultCreated = true;
}

// ---------------------------------------------------------------- expanding

ZBDateSet* ResourceCalendar::get_group_set(ZBDateSetGroup& group, const std::string& name, bool create)
{
    for (int i = 0; i < group.get_ndatesets(); ++i)
        if (group.get_dateset_name_by_index(i) == name)
            return group.get_dateset_by_index(i);
    return create ? group.add_dateset(name) : nullptr;
}

const DayType* ResourceCalendar::find_daytype(const ZBDate& dayStart, const ZBDateSlot& test, int weekday,
                                              const ResourceCalendar* defaultCalendar) const
{
    (void)dayStart;
    const ResourceCalendar* where = nullptr;
    int id = C_DefaultStdDay;
    auto search_exceptions = [&](const ResourceCalendar& calendar) {
        const ResourceCalEntry* found = nullptr;
        for (const ResourceCalEntry* entry : calendar.m_entry) {
            if (test.m_end < entry->get_date().m_start)
                break; // sorted by start: none further on can reach this day
            if (!entry->get_day_applic(weekday) || !ZBDateSlot::intersects(entry->get_date(), test))
                continue;
            // Of several, the one that starts last wins; equal starts: the later in order.
            if (!found || !(entry->get_date().m_start < found->get_date().m_start))
                found = entry;
        }
        if (found) {
            where = &calendar;
            id = found->get_daytype();
        }
        return found != nullptr;
    };
    if (!search_exceptions(*this) && !(defaultCalendar && defaultCalendar != this && search_exceptions(*defaultCalendar))) {
        if (get_standard_day(weekday) != C_DefaultStdDay) {
            where = this;
            id = get_standard_day(weekday);
        } else if (defaultCalendar && defaultCalendar->get_standard_day(weekday) != C_DefaultStdDay) {
            where = defaultCalendar;
            id = defaultCalendar->get_standard_day(weekday);
        }
    }
    if (!where)
        return nullptr;
    const DayType* type = where->get_daytype_by_id(id);
    for (int hop = 0; type && type->has_references() && hop < C_MaxReferences; ++hop)
        type = where->get_daytype_by_id(type->get_reference(weekday));
    return type;
}

int ResourceCalendar::allocate_times(const ZBDate& start, const ZBDate& end, int resourceId, ZBDateSetGroup& group,
                                     WorkDayList& workDays, const ResourceCalendar* defaultCalendar,
                                     const Diary* diary) const
{
    group = ZBDateSetGroup();
    workDays.clear();
    if (!start.is_ok() || !end.is_ok() || end < start)
        return ZBErrC_ok;
    ZBDateDetails day(start, zblocale().get_timezone());
    day.m_hour = 0;
    day.m_minute = 0;
    day.m_second = 0;
    day.m_micro = 0;
    day.recalculate();
    const ZBDate firstDay = day.get_date(day.get_timezone());
    ZBDate lastDayEnd = firstDay;
    // Two days more than the range can hold bound the walk, whatever the clock does.
    const std::int64_t maxDays = (end - start).get_days() + 2;
    for (std::int64_t n = 0; n <= maxDays; ++n) {
        const ZBDate dayStart = day.get_date(day.get_timezone());
        if (end < dayStart)
            break;
        // The last hour of a day does not count, so an exception that starts
        // at 23:00 or ends at midnight changes one day only.
        const ZBDateSlot test(dayStart, DayType::clock_time(day, 82799));
        const int weekday = (day.m_dayWeek + 6) % 7;
        if (const DayType* type = find_daytype(dayStart, test, weekday, defaultCalendar))
            type->populate(diary, dayStart, day, resourceId, group, workDays);
        lastDayEnd = DayType::clock_time(day, ZBDate::C_DaySecs - 1);
        day.m_dayMonth += 1;
        day.recalculate();
    }
    if (iszbwarn(group.finish_bulk_add()))
        return zbpass(ZBLOC);
    if (firstDay < start)
        group.subtract(ZBDateSlot(firstDay, start));
    if (end < lastDayEnd)
        group.subtract(ZBDateSlot(end, lastDayEnd));
    return ZBErrC_ok;
}

} // namespace Tervalon
