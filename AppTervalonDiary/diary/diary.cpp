#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/journalcheck.h"
#include "AppTervalonDiary/diary/timeallocator.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>
#include <unordered_set>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("Diary", &Diary::create_zbobject);
}

Diary::E_Mode Diary::m_appMode = Diary::E_ModeDiary;
int Diary::ZBErrC_CircularDependancy =
    ZBError::allocate_code("ZBErrC_CircularDependancy", "The entries contain a circular dependancy.");
int Diary::ZBErrC_InUse = ZBError::allocate_code("ZBErrC_InUse", "The item is still in use.");

std::string Diary::mode_app_type()
{
    switch (m_appMode) {
    case E_ModeProject:
        return "TervalonProject";
    case E_ModeNotes:
        return "TervalonNotes";
    default:
        return "TervalonDiary";
    }
}

Diary::Diary()
    : m_entries(DiaryEntry::C_EntryTag), m_resources(Resource::C_ResourceTag), m_timeTypes(TimeType::C_TimeTypeTag),
      m_journalChecks(JournalCheck::C_JournalCheckTag),
      m_hasPlans(false), m_sessionId(-1), m_recalcParent(nullptr), m_recalcCycle(0)
{
    Diary::register_zbobject();
    add_container(m_entries);
    add_container(m_resources);
    add_container(m_timeTypes);
    add_container(m_journalChecks);
    set_app_type(mode_app_type());
}

// The thread works on this class's parts; it stops before any of them goes.
Diary::~Diary()
{
    stop_recalc_thread();
}

void Diary::register_zbobject()
{
    register_objectname("Diary", &Diary::create_zbobject);
}

int Diary::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    if (from)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "A diary cannot be copied.");
    out = new Diary();
    return ZBErrC_ok;
}

void Diary::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("Diary", out, indent);
        dump.add("impl->m_hasPlans", m_hasPlans);
        dump.add("impl->m_sessionId", m_sessionId);
        dump.add("entries", m_entries.size());
        dump.add("resources", m_resources.size());
        dump.add("time types", m_timeTypes.size());
    }
    m_settings.dump(out, indent + 1);
    m_calendar.dump(out, indent + 1);
    ZBDiary::dump(out, indent + 1);
}

int Diary::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszbwarn(m_settings.serialise_settings(*this, in, out, prefix, version, is_project())))
        return zbpass(ZBLOC);
    ZBSrlObject<DiaryImport> import(m_diaryImport, version);
    if (iszberr(serialise_object(in, out, prefix, "diaryImport", import)))
        return zbpass(ZBLOC);
    ZBSrlObject<ResourceCalendar> calendar(m_calendar, version);
    if (iszberr(serialise_object(in, out, prefix, "calendar", calendar)))
        return zbpass(ZBLOC);
    serialise_string(in, out, prefix, "userData", m_userData, true);
    return ZBDiary::serialise(in, out, prefix, version);
}

int Diary::initialise(bool created)
{
    m_recalcMgr.set_diary_initialising(true);
    m_recalcMgr.initialise(*this);
    if (iszbwarn(ZBDiary::initialise(created))) {
        m_recalcMgr.set_diary_initialising(false);
        return zbpass(ZBLOC);
    }
    // An empty lookahead turns planning off; a new file plans a year ahead.
    if (created && m_settings.get_lookahead().empty())
        m_settings.set_lookahead(C_DefaultLookahead);
    if (m_resources.size() == 0) {
        if (iszbwarn(add_resource("Default", nullptr))) {
            m_recalcMgr.set_diary_initialising(false);
            return zbpass(ZBLOC);
        }
        complete_operation("Initialise");
    }
    setup_default_calendar();
    // The locale is shared with the recalculation thread: a change installs a
    // changed copy rather than writing to the one in use.
    double hours = m_settings.get_workhours();
    if (!(hours > 0 && hours <= 24))
        hours = 8.0;
    if (zblocale().get_workhours() != hours)
        update_zblocale([hours](ZBLocale& locale) { locale.set_workhours(hours); });
    m_recalcMgr.set_diary_initialising(false);
    return ZBErrC_ok;
}

namespace {
// A calendar marked as set up but holding nothing was written before
// calendars had day types: it is set up afresh.
bool needs_defaults(const ResourceCalendar& calendar)
{
    if (!calendar.default_created())
        return true;
    if (calendar.get_ndaytypes() > 0 || calendar.get_nentries() > 0)
        return false;
    for (int day = 0; day < 7; ++day)
        if (calendar.get_standard_day(day) != ResourceCalendar::C_DefaultStdDay)
            return false;
    return true;
}
} // namespace

void Diary::setup_default_calendar()
{
    TimeType* work = get_timetype_by_name(TimeType::C_DefaultName);
    if (!work) {
        if (iszbwarn(add_timetype(TimeType::C_DefaultName, &work)))
            return;
        complete_operation("Create Time Type");
    }
    const bool multiUser = is_multi_user();
    if (needs_defaults(m_calendar))
        m_calendar.setup_defaults(true, multiUser, work->get_id());
    for (Resource* resource : m_resources)
        if (needs_defaults(resource->get_calendar()))
            resource->edit_calendar().setup_defaults(false, multiUser, work->get_id());
}

bool Diary::is_multi_user() const
{
    return m_settings.has_feature(DiarySettings::C_FeatureMultiUser);
}

const Resource* Diary::resource_or_first(int id) const
{
    const Resource* resource = get_resource_by_id(id);
    return resource ? resource : (m_resources.size() ? m_resources.get(0) : nullptr);
}

int Diary::allocate_times(Resource& resource, const ZBDate& start, const ZBDate& end)
{
    if (iszbwarn(resource.allocate_times(start, end, &m_calendar, this)))
        return zbpass(ZBLOC);
    ZBDateSetGroup& group = resource.edit_avail_time();
    const ZBDateSlot range(start, end);
    ZBDateSet taken;
    std::vector<std::pair<std::string, std::vector<ZBDateSlot>>> moved;
    ZBDateSet planned;
    for (int i = 0; i < get_nobjects(); ++i) {
        const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
        if (!entry || entry->is_deleted() || entry->get_props().get_resource_calc() != resource.get_id())
            continue;
        if (entry->get_derived_entrytype() == 'T') {
            if (!entry->get_plan().get_planned().empty())
                planned.add(entry->get_plan().get_planned());
            continue;
        }
        if (entry->get_derived_entrytype() != 'A' || entry->get_nchildren() > 0)
            continue;
        const int timeType = entry->get_props().get_timetype_calc();
        if (timeType == TimeType::C_FreeTimeTypeId)
            continue;
        std::vector<ZBDateSlot> instances;
        if (entry->get_repeat().is_repeating()) {
            // Bounded: an appointment every minute for years is not a calendar.
            entry->get_repeat().generate_slots(entry->get_time().calc, range, 100000, nullptr, instances);
        } else if (entry->get_time().calc.is_ok()) {
            instances.push_back(entry->get_time().calc);
        }
        for (const ZBDateSlot& slot : instances)
            if (slot.m_start < slot.m_end)
                taken.bulk_add(slot, resource.get_id());
        // An appointment of a real time type keeps its time for that kind of work.
        const TimeType* own = timeType >= 0 ? get_timetype_by_id(timeType) : nullptr;
        if (own && !instances.empty())
            moved.emplace_back(own->get_name(), std::move(instances));
    }
    taken.finish_bulk_add();
    group.subtract(taken);
    for (const auto& appointment : moved) {
        ZBDateSet* set = ResourceCalendar::get_group_set(group, appointment.first, true);
        for (const ZBDateSlot& slot : appointment.second)
            if (slot.m_start < slot.m_end)
                set->add(slot, resource.get_id());
    }
    group.subtract(planned);
    return ZBErrC_ok;
}

int Diary::allocate_times(const ZBDate& start, const ZBDate& end)
{
    for (int i = 0; i < m_resources.size(); ++i) {
        if (i > 0 && !is_multi_user())
            break;
        if (iszbwarn(allocate_times(*m_resources.get(i), start, end)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

bool Diary::validate_calendars(std::string& text) const
{
    auto check = [&](const ResourceCalendar& calendar, const std::string& owner) {
        for (int i = 0; i < calendar.get_ndaytypes(); ++i) {
            DayType copy = *calendar.get_daytype_by_index(i);
            std::string fault;
            if (!copy.validate(fault)) {
                text = owner + ", " + copy.get_name() + ": " + fault;
                return false;
            }
        }
        return true;
    };
    if (!check(m_calendar, "Default calendar"))
        return false;
    for (const Resource* resource : m_resources)
        if (!check(resource->get_calendar(), resource->get_username()))
            return false;
    return true;
}

int Diary::get_free_time(ZBDateSet& set, const ZBDateSlot& slot, int entryId, bool combined,
                         const ZBDuration& margin) const
{
    set.clear();
    const DiaryEntry* entry = get_entry_id(entryId);
    if (!entry) {
        set.add(slot, 0);
        return ZBErrC_ok;
    }
    const Resource* resource = resource_or_first(entry->get_props().get_resource_calc());
    if (!resource)
        return ZBErrC_ok;
    const ZBDateSetGroup& group = resource->get_avail_time();
    if (combined) {
        if (iszbwarn(group.get_combined(set)))
            return zbpass(ZBLOC);
    } else {
        const std::string name = get_timetype_name_by_id(entry->get_props().get_timetype_calc());
        const ZBDateSet* own = nullptr;
        for (int i = 0; i < group.get_ndatesets() && !own; ++i)
            if (group.get_dateset_name_by_index(i) == name)
                own = group.get_dateset_by_index(i);
        if (!own && group.get_ndatesets() > 0)
            own = group.get_dateset_by_index(0);
        if (own)
            set.add(*own);
    }
    const ZBDate from = slot.m_start - margin;
    set.subtract(ZBDateSlot(ZBDate(ZBDate::E_Zero), from), -1);
    ZBDate limit = ZBDateUtils::read_date("now +10y");
    if (slot.m_end.is_ok() && slot.m_end < limit)
        limit = slot.m_end;
    if (!set.empty() && limit < set.end())
        set.subtract(ZBDateSlot(limit, set.end()), -1);
    return ZBErrC_ok;
}

ZBDuration Diary::get_leave_days(const ZBDateSlot& slot, int resourceId) const
{
    const Resource* resource = resource_or_first(resourceId);
    if (!resource || !slot.is_ok())
        return ZBDuration();
    ZBDateSetGroup group;
    WorkDayList days;
    ZBDateSetGroup usual;
    WorkDayList usualDays;
    resource->get_calendar().allocate_times(slot.m_start, slot.m_end, resource->get_id(), group, days, &m_calendar,
                                            this);
    // The same calendar with no exceptions says what the weekdays would be.
    ResourceCalendar plain = resource->get_calendar();
    while (plain.get_nentries() > 0)
        plain.delete_entry(0);
    ResourceCalendar plainDefault = m_calendar;
    while (plainDefault.get_nentries() > 0)
        plainDefault.delete_entry(0);
    plain.allocate_times(slot.m_start, slot.m_end, resource->get_id(), usual, usualDays, &plainDefault, this);
    const std::vector<int> off = days.get_nonworking_days(-1);
    const std::vector<int> usuallyOff = usualDays.get_nonworking_days(-1);
    std::int64_t leave = 0;
    for (int day : off)
        if (!std::binary_search(usuallyOff.begin(), usuallyOff.end(), day))
            ++leave;
    return ZBDuration(leave, 0, 0);
}

ZBDuration Diary::get_avail_time(const ZBDateSlot& slot, int resourceId) const
{
    const Resource* resource = resource_or_first(resourceId);
    if (!resource || !slot.is_ok())
        return ZBDuration();
    ZBDateSetGroup group;
    WorkDayList days;
    resource->get_calendar().allocate_times(slot.m_start, slot.m_end, resource->get_id(), group, days, &m_calendar,
                                            this);
    ZBDateSet combined;
    group.get_combined(combined);
    return combined.query_range(slot, -1);
}

ZBDuration Diary::get_free_time(const ZBDateSlot& slot, int resourceId) const
{
    const Resource* resource = resource_or_first(resourceId);
    if (!resource || !slot.is_ok())
        return ZBDuration();
    ZBDateSet combined;
    resource->get_avail_time().get_combined(combined);
    return combined.query_range(slot, -1);
}

int Diary::create_object(ZBDBObject* parent, const std::string& tag, int specId, ZBDBObject** out)
{
    DiaryEntry* parentEntry = dynamic_cast<DiaryEntry*>(parent);
    if (parent && !parentEntry && parent != this)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to DiaryEntry failed.");
    if (!tag.empty() && tag != DiaryEntry::C_EntryTag)
        return ZBDiary::create_object(parent, tag, specId, out);
    DiaryEntry* entry = nullptr;
    if (iszbwarn(create_entry(parentEntry, 'O', std::string(), &entry)))
        return zbpass(ZBLOC);
    // The spec takes effect at once: a type it fixes ("$<EntryType> =
    // eval(...)") holds from the entry's first moment.
    const ZBObjectSpec* spec = specId >= 0 ? get_objectspec_by_id(specId) : nullptr;
    if (spec && spec->is_parsed() && !spec->is_base_only()) {
        if (iszbwarn(apply_objectspec_to_db(*entry, specId, false)))
            return zbpass(ZBLOC);
    } else if (specId >= 0) {
        entry->set_specid(specId);
    }
    if (out)
        *out = entry;
    return ZBErrC_ok;
}

int Diary::create_entry(DiaryEntry* parent, char type, const std::string& title, DiaryEntry** out)
{
    if (out)
        *out = nullptr;
    DiaryEntry* entry = new DiaryEntry();
    entry->set_summary(title);
    entry->set_entrytype(type);
    ZBDBObject* holder = parent ? static_cast<ZBDBObject*>(parent) : static_cast<ZBDBObject*>(this);
    if (iszbwarn(add_object(entry, holder, DiaryEntry::C_EntryTag, std::string(), -1, std::string()))) {
        delete entry; // refused, so still ours
        return zbpass(ZBLOC);
    }
    entry->recalculate(-1, this, 0);
    if (parent && parent->get_nchildren() == 1)
        entry->edit_time().set_orig(parent->get_time().orig);
    if (parent)
        parent->calc_derived_entrytype();
    force_recalculate(true, false, false, false);
    if (out)
        *out = entry;
    return ZBErrC_ok;
}

DiaryEntry* Diary::get_entry_id(int id) const
{
    ZBDBObject* object = get_object_by_id(id);
    if (!object || object->is_deleted())
        return nullptr;
    return dynamic_cast<DiaryEntry*>(object);
}

void Diary::get_all_entries(std::vector<DiaryEntry*>& out) const
{
    out.clear();
    // An explicit stack: a deep tree from another device must not run out of stack.
    std::vector<DiaryEntry*> pending;
    for (int i = m_entries.size() - 1; i >= 0; --i)
        pending.push_back(m_entries.get(i));
    while (!pending.empty()) {
        DiaryEntry* entry = pending.back();
        pending.pop_back();
        if (!entry || entry->is_deleted())
            continue;
        out.push_back(entry);
        for (int i = entry->get_nchildren() - 1; i >= 0; --i)
            pending.push_back(entry->get_child_no(i));
    }
}

int Diary::query_entries(const ZBDateSlot& slot, ZBPtrArray<DiaryEntry>& result, int order, int depth) const
{
    if (depth < 0)
        return ZBErrC_ok;
    if (result.is_managed())
        return zberror(ZBErrC_ArrayEmpty, ZBLOC, "Array is managed, should not be managed...");
    for (DiaryEntry* entry : m_entries) {
        if (slot.m_start.is_zero() || slot.within(entry->get_time().calc.m_start))
            result.push_back(entry);
        if (depth > 0)
            entry->query_entries(slot, result, DiaryEntry::E_SortNone, depth - 1);
    }
    return DiaryEntry::sort_entries(result, order);
}

std::vector<std::string> Diary::get_system_references(const std::string& name) const
{
    std::vector<std::string> result;
    if (name == "PEOPLE") {
        for (int i = 0; i < get_nobjects(); ++i) {
            const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
            if (entry && !entry->is_deleted() && entry->get_entrytype() == 'P')
                result.push_back(entry->get_summary());
        }
    } else if (name == "RESOURCES") {
        for (const Resource* resource : m_resources)
            result.push_back(resource->get_username());
    }
    return result;
}

Resource* Diary::get_resource_by_name(const std::string& name) const
{
    for (Resource* resource : m_resources)
        if (resource->get_username() == name)
            return resource;
    return nullptr;
}

int Diary::add_resource(const std::string& name, Resource** out)
{
    Resource* resource = new Resource();
    resource->set_username(name);
    if (iszbwarn(add_object(resource, this, Resource::C_ResourceTag, std::string(), -1, std::string()))) {
        delete resource; // refused, so still ours
        return zbpass(ZBLOC);
    }
    if (out)
        *out = resource;
    return ZBErrC_ok;
}

std::string Diary::resource_used(int id) const
{
    for (int i = 0; i < get_nobjects(); ++i) {
        const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted() && entry->get_props().get_resource_orig() == id)
            return entry->get_summary();
    }
    return std::string();
}

int Diary::delete_resource(int id)
{
    Resource* resource = get_resource_by_id(id);
    if (!resource)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource %d.", id);
    const std::string user = resource_used(id);
    if (!user.empty())
        return zbwarnuser(ZBErrC_InUse, ZBLOC, "The %s resource is used by the entry \"%s\".",
                          resource->get_username().c_str(), user.c_str());
    const int replacement = id == get_default_resource_id() && m_resources.size() > 1
                                ? m_resources.get(1)->get_id()
                                : Resource::C_ParentResourceId;
    for (int i = 0; i < get_nobjects(); ++i)
        if (DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i)))
            entry->delete_resource(id, replacement);
    if (iszbwarn(delete_object(id, "Delete Resource")))
        return zbpass(ZBLOC);
    force_recalculate(true, false, false, false);
    return ZBErrC_ok;
}

TimeType* Diary::get_timetype_by_name(const std::string& name) const
{
    for (TimeType* type : m_timeTypes)
        if (type->get_name() == name)
            return type;
    return nullptr;
}

std::string Diary::get_timetype_name_by_id(int id) const
{
    std::string reserved = TimeType::reserved_name(id);
    if (!reserved.empty())
        return reserved;
    const TimeType* type = get_timetype_by_id(id);
    return type ? type->get_name() : TimeType::reserved_name(TimeType::C_UnknownTimeTypeId);
}

int Diary::add_timetype(const std::string& name, TimeType** out)
{
    TimeType* type = new TimeType();
    type->set_name(name);
    if (iszbwarn(add_object(type, this, TimeType::C_TimeTypeTag, std::string(), -1, std::string()))) {
        delete type; // refused, so still ours
        return zbpass(ZBLOC);
    }
    if (out)
        *out = type;
    return ZBErrC_ok;
}

int Diary::add_journalcheck(const std::string& name, JournalCheck** out)
{
    JournalCheck* check = new JournalCheck();
    check->set_name(name);
    if (iszbwarn(add_object(check, this, JournalCheck::C_JournalCheckTag, std::string(), -1, std::string()))) {
        delete check; // refused, so still ours
        return zbpass(ZBLOC);
    }
    if (out)
        *out = check;
    return ZBErrC_ok;
}

bool Diary::timetype_is_used(int id, std::string& text) const
{
    const std::string name = get_timetype_name_by_id(id);
    std::string detail;
    if (m_calendar.timetype_is_used(id, detail)) {
        text = "The " + name + " time type is used by the default calendar";
        return true;
    }
    for (const Resource* resource : m_resources)
        if (resource->get_calendar().timetype_is_used(id, detail)) {
            text = "The " + name + " time type is used by " + resource->get_username();
            return true;
        }
    for (int i = 0; i < get_nobjects(); ++i) {
        const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted() && entry->get_props().get_timetype_orig() == id) {
            text = "The " + name + " time type is used by the entry \"" + entry->get_summary() + "\"";
            return true;
        }
    }
    return false;
}

int Diary::delete_timetype(int id)
{
    if (!get_timetype_by_id(id))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no time type %d.", id);
    std::string text;
    if (timetype_is_used(id, text))
        return zbwarnuser(ZBErrC_InUse, ZBLOC, "%s.", text.c_str());
    if (iszbwarn(delete_object(id, "Delete Time Type")))
        return zbpass(ZBLOC);
    force_recalculate(true, false, false, false);
    return ZBErrC_ok;
}

void Diary::force_recalculate(bool avail, bool idle, bool foreground, bool immediate)
{
    m_recalcMgr.force(avail, idle, false, foreground, immediate);
}

bool Diary::is_recalc_stopping() const
{
    return is_stopping() || (m_recalcParent && m_recalcParent->is_stopping());
}

void Diary::background_recalculate()
{
    m_recalcMgr.background_recalculate(*this);
}

int Diary::pull_complete()
{
    m_recalcMgr.force(true, true, true, false, true);
    if (iszbwarn(ZBDiary::pull_complete()))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

bool Diary::is_delayed_range(int resource, const ZBDate& date) const
{
    auto it = m_delayed.find(resource);
    return date.is_ok() && it != m_delayed.end() && !(it->second < date);
}

void Diary::set_delayed_range(int resource, const ZBDate& date)
{
    auto it = m_delayed.find(resource);
    if (it == m_delayed.end() || it->second < date)
        m_delayed[resource] = date;
}

DiaryEntry* Diary::lookup_entry(int id) const
{
    if (!m_entryTable.empty())
        return id >= 0 && size_t(id) < m_entryTable.size() ? m_entryTable[size_t(id)] : nullptr;
    return get_entry_id(id);
}

int Diary::calculate_dependencies()
{
    get_checker().clear_error(ZBErrC_CircularDependancy);
    std::vector<DiaryEntry*> all;
    all.reserve(size_t(get_nobjects()));
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted()) {
            entry->edit_depend().clear_intermediate();
            all.push_back(entry);
        }
    }
    // Ids are given out in order, so a table by id is small; a damaged file
    // with a few huge ids falls back to the map.
    m_entryTable.clear();
    if (next_id() >= 0 && next_id() < 4 * get_nobjects() + 1024) {
        m_entryTable.assign(size_t(next_id()) + 1, nullptr);
        for (DiaryEntry* entry : all)
            if (entry->get_id() >= 0 && entry->get_id() <= next_id())
                m_entryTable[size_t(entry->get_id())] = entry;
    }
    for (DiaryEntry* entry : all)
        entry->edit_depend().calc_title_blocks(*this);
    for (DiaryEntry* entry : all)
        entry->edit_depend().calc_base_depends(*this);
    for (DiaryEntry* entry : m_entries)
        entry->edit_depend().calculate_leaf_nodes(*this);
    for (DiaryEntry* entry : m_entries)
        entry->edit_depend().push_down_direct(std::vector<int>(), *this);
    std::vector<int> chain;
    std::unordered_set<int> inChain;
    for (DiaryEntry* entry : m_entries)
        entry->edit_depend().distribute_depends(*this, chain, inChain);
    for (DiaryEntry* entry : m_entries)
        entry->edit_depend().finalise_depends(*this);
    m_entryTable.clear();
    return ZBErrC_ok;
}

std::vector<const ZBDBCheckItem*> Diary::get_circular_dependencies() const
{
    std::vector<const ZBDBCheckItem*> result;
    for (int i = 0; i < get_checker().get_nitems(); ++i)
        if (get_checker().get_item_by_index(i)->get_error_code() == ZBErrC_CircularDependancy)
            result.push_back(get_checker().get_item_by_index(i));
    return result;
}

void Diary::containers_resolved()
{
    ZBDiary::containers_resolved();
    find_running_session();
}

void Diary::build_entry_table()
{
    // Ids are given out in order, so a table by id is small; a damaged file
    // with a few huge ids falls back to the map.
    m_entryTable.clear();
    if (next_id() < 0 || next_id() >= 4 * get_nobjects() + 1024)
        return;
    m_entryTable.assign(size_t(next_id()) + 1, nullptr);
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted() && entry->get_id() >= 0 && entry->get_id() <= next_id())
            m_entryTable[size_t(entry->get_id())] = entry;
    }
}

void Diary::repair_orig_ids()
{
    // A diary with one resource books everything against it; entries without
    // a time type take the first one. Appointments keep blocking their time.
    auto missing = [](int id) { return id == -1 || id == -2 || id == -3; };
    const int resource = m_resources.size() == 1 ? m_resources.get(0)->get_id() : -1;
    const int timeType = m_timeTypes.size() > 0 ? m_timeTypes.get(0)->get_id() : -1;
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (!entry || entry->is_deleted())
            continue;
        EntryProperties& props = entry->edit_props();
        const int own = props.get_resource_orig();
        if (resource >= 0 && (missing(own) || !get_resource_by_id(own)) && own != resource) {
            props.set_resource_orig(resource, false);
            entry->mark_changed(ZBLOC, true);
        }
        if (timeType >= 0 && missing(props.get_timetype_orig()) && entry->get_entrytype() != 'A'
            && entry->get_derived_entrytype() != 'A') {
            props.set_timetype_orig(timeType);
            entry->mark_changed(ZBLOC, true);
        }
    }
}

void Diary::calc_priority_order()
{
    // Post-order, so that each entry sees its children's highest value.
    std::vector<DiaryEntry*> stack(m_entries.begin(), m_entries.end());
    std::vector<DiaryEntry*> order;
    while (!stack.empty()) {
        DiaryEntry* entry = stack.back();
        stack.pop_back();
        order.push_back(entry);
        for (DiaryEntry* child : entry->get_children())
            stack.push_back(child);
    }
    for (auto it = order.rbegin(); it != order.rend(); ++it)
        (*it)->edit_priority_facet().reset_priority_order();

    int live = 0;
    for (int i = 0; i < get_nobjects(); ++i)
        live += !get_object_by_index(i)->is_deleted();
    double n = double(live);
    double step = 0.1;
    while (n > 1.0) {
        n /= 10.0;
        step /= 10.0;
    }
    ZBPtrArray<DiaryEntry> top;
    top.set_managed(false);
    for (DiaryEntry* entry : m_entries)
        top.push_back(entry);
    DiaryEntry::sort_entries(top, DiaryEntry::E_SortChildPriority);
    double counter = 0.0;
    for (int i = top.size() - 1; i >= 0; --i)
        top.at(i)->edit_priority_facet().push_priority_order(counter, step);
}

void Diary::calc_display_order()
{
    for (int i = 0; i < get_nobjects(); ++i)
        if (DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i)))
            entry->edit_priority_facet().reset_display_order();
    ZBPtrArray<DiaryEntry> top;
    top.set_managed(false);
    for (DiaryEntry* entry : m_entries)
        top.push_back(entry);
    const int order = m_settings.get_sortorder();
    DiaryEntry::sort_entries(top, order);
    int counter = 0;
    for (int i = 0; i < top.size(); ++i)
        top.at(i)->edit_priority_facet().push_display_order(order, counter);
}

int Diary::recalculate_entries()
{
    const int cycle = m_recalcCycle;
    m_delayed.clear();
    build_entry_table();
    int result = ZBErrC_ok;
    for (int phase = 0; phase < C_RecalculatePhases && !iszbwarn(result); ++phase) {
        // The tie-breakers need this pass's dates and who waits on what, so
        // they are worked out just before the priorities; one pass settles.
        if (phase == 4) {
            for (int i = 0; i < get_nobjects(); ++i) {
                DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
                if (entry && !entry->is_deleted() && entry->get_depend().get_activedepends() < 0)
                    entry->upgrade_active_depend(*this);
            }
            calc_priority_order();
        }
        for (DiaryEntry* entry : m_entries)
            if (iszbwarn(entry->recalculate(phase, this, cycle))) {
                result = zbpass(ZBLOC);
                break;
            }
    }
    m_entryTable.clear();
    ++m_recalcCycle;
    return result;
}

int Diary::full_recalculate()
{
    // The entry phases give the planner its dates and priorities; they run
    // again after it so that its results reach dates, priorities and alerts.
    if (iszbwarn(calculate_dependencies()) || iszbwarn(recalculate(E_RecalcQuick)))
        return zbpass(ZBLOC);
    if (is_recalc_stopping())
        return ZBErrC_ok;
    if (iszbwarn(calculate_time_allocation()) || iszbwarn(recalculate(E_RecalcQuick)))
        return zbpass(ZBLOC);
    // The views follow a finished pass.
    m_recalcMgr.force(false, false, true, false, false);
    return ZBErrC_ok;
}

int Diary::calculate_time_allocation()
{
    TimeAllocator allocator;
    // A background pass whose diary is going away stops between stages.
    allocator.set_stopping([this] { return is_recalc_stopping(); });
    if (iszbwarn(allocator.start(*this)) || iszbwarn(allocator.allocate(*this)) || iszbwarn(allocator.complete(*this)))
        return zbpass(ZBLOC);
    if (iszbwarn(check_clashing()))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

std::vector<DiaryEntry*> Diary::get_display_list() const
{
    std::vector<DiaryEntry*> result;
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted())
            result.push_back(entry);
    }
    std::stable_sort(result.begin(), result.end(), [](const DiaryEntry* a, const DiaryEntry* b) {
        return a->get_priority_facet().get_displayorder() < b->get_priority_facet().get_displayorder();
    });
    return result;
}

int Diary::recalculate(E_RecalcLevel level)
{
    m_settings.refresh_settings();
    m_hasPlans = false;
    if (m_entries.size() > 0) {
        for (int i = 0; i < get_nobjects() && !m_hasPlans; ++i)
            if (DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i)))
                m_hasPlans = !entry->is_deleted() && !entry->get_plan().get_planned().empty();
        // With planning off (no lookahead) there is no free time to keep.
        if (!m_settings.get_lookahead().empty()) {
            const ZBDateSlot lookahead = m_settings.get_lookahead_date(false);
            if (iszbwarn(m_recalcMgr.recalculate_available(*this, lookahead.m_start, lookahead.m_end)))
                return zbpass(ZBLOC);
        }
        repair_orig_ids();
        update_session();
        // What the thread finished goes in before the entries are worked over.
        if (iszbwarn(m_recalcMgr.load_background(*this)))
            return zbpass(ZBLOC);
        if (iszbwarn(recalculate_entries()))
            return zbpass(ZBLOC);
        calc_display_order();
    }
    if (iszbwarn(ZBDiary::recalculate(level)))
        return zbpass(ZBLOC);
    if (m_entries.size() > 0 && iszbwarn(m_recalcMgr.schedule_recalculate(*this)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- repeating entries

int Diary::generate_sequence(ZBDEntry& entry, int n, bool setDates, bool chain, bool notify)
{
    if (!dynamic_cast<DiaryEntry*>(&entry))
        return ZBDiary::generate_sequence(entry, n, setDates, chain, notify);
    if (iszbwarn(EntryRepeat::create_sequence(this, &entry, n, setDates, chain, nullptr)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void Diary::reset_repeating()
{
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (!entry || !entry->get_repeat().is_repeating())
            continue;
        entry->edit_repeat().invalidate();
        entry->edit_erepeat().invalidate();
    }
}

int Diary::times_from_repeat(DiaryEntry& entry, std::vector<ZBDateSlot>& out)
{
    out.clear();
    EntryRepeat& bridge = entry.edit_erepeat();
    if (!bridge.has_slots() && iszbwarn(bridge.generate_slots(false, m_settings.get_lookahead_date(true),
                                                              EntryRepeat::C_MaxInstances)))
        return zbpass(ZBLOC);
    if (bridge.get_slots().size() < 2)
        return ZBErrC_ok;
    const ZBDateSlot& current = bridge.get_slots().front();
    const ZBDuration length = current.is_ok() ? current.get_duration() : ZBDuration();
    const ZBDuration reach = bridge.separation() + length;
    const ZBDate now = ZBDateUtils::now();
    const ZBDateSlot range(now - reach, now + reach);
    if (iszbwarn(bridge.generate_slots(false, range, EntryRepeat::C_MaxInstances)))
        return zbpass(ZBLOC);
    for (const ZBDateSlot& slot : bridge.get_slots())
        if (ZBDateSlot::intersects(slot, range))
            out.push_back(slot);
    return ZBErrC_ok;
}

} // namespace Tervalon

// ---------------------------------------------------------------- fixed plans and clashes

namespace Tervalon {

int Diary::check_clashing()
{
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->get_plan().get_clashing().empty())
            entry->edit_plan().clear_clashing();
    }
    const ZBDateSlot slot = m_settings.get_lookahead_date(true);
    for (const Resource* resource : m_resources) {
        ZBCalendar calendar;
        for (const DiaryEntry* entry : m_entries)
            if (iszbwarn(entry->check_clashing(calendar, slot, resource->get_id())))
                return zbpass(ZBLOC);
        if (iszbwarn(calendar.sort()))
            return zbpass(ZBLOC);
        // Sorted by start, so whatever overlaps an item follows it before the
        // first one that starts at or after its end; every such pair counts,
        // not only neighbours, as one long item can cover several short ones.
        for (int i = 0; i < calendar.get_nentries(); ++i) {
            const ZBCalendarEntry* first = calendar.get_entry_no(i);
            for (int j = i + 1; j < calendar.get_nentries(); ++j) {
                const ZBCalendarEntry* second = calendar.get_entry_no(j);
                if (!(second->get_time().m_start < first->get_time().m_end))
                    break;
                if (second->get_id().m_id == first->get_id().m_id
                    || !ZBDateSlot::intersects(first->get_time(), second->get_time()))
                    continue;
                if (DiaryEntry* entry = get_entry_id(first->get_id().m_id))
                    entry->edit_plan().add_clashing(second->get_summary());
            }
        }
    }
    return ZBErrC_ok;
}

void Diary::remove_fixed(ZBDateSet& set, const ZBDateSlot& slot, int resource, bool withSpent) const
{
    for (const DiaryEntry* entry : m_entries)
        entry->remove_fixed(set, slot, resource, withSpent);
}

int Diary::lock_plans(const ZBDateSlot& slot, int* count)
{
    for (DiaryEntry* entry : m_entries)
        if (!entry->get_plan().get_predicted().empty() || entry->get_nchildren() > 0)
            if (iszbwarn(entry->edit_plan().lock_plans(slot, count)))
                return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int Diary::clear_plans(const ZBDateSlot& slot, int* count)
{
    for (DiaryEntry* entry : m_entries)
        if (!entry->get_plan().get_planned().empty() || entry->get_nchildren() > 0)
            if (iszbwarn(entry->edit_plan().clear_plans(slot, count)))
                return zbpass(ZBLOC);
    return ZBErrC_ok;
}

ZBDuration Diary::get_planned_time(const ZBDateSlot& slot, int resource) const
{
    ZBDuration total;
    for (int i = 0; i < get_nobjects(); ++i) {
        const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
        if (entry && !entry->is_deleted())
            total += entry->get_plan().get_planned_time(slot, resource);
    }
    return total;
}

namespace {
// The index in set of the session with this slot and type; -1 when gone.
int find_session(const ZBDateSet& set, const ZBDateSetEntry& session)
{
    for (int i = 0; i < set.size(); ++i)
        if (*set[i] == session)
            return i;
    return -1;
}
} // namespace

int Diary::move_plan(int entryId, int sequence, bool up, ZBCalendar* calendar)
{
    DiaryEntry* entry = get_entry_id(entryId);
    if (!entry)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Could not find the entry in the diary.");
    const int index = DiaryEntry::get_index_seq(sequence);
    if (sequence < 1 || DiaryEntry::get_type_seq(sequence) != 'p')
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No plan selected.");
    if (index >= entry->get_plan().get_planned().size())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No planned time for this task.");
    const ZBDateSetEntry mine = *entry->get_plan().get_planned()[index];

    ZBCalendar all;
    if (!calendar) {
        calendar = &all;
        for (int i = 0; i < get_nobjects(); ++i) {
            const DiaryEntry* other = dynamic_cast<const DiaryEntry*>(get_object_by_index(i));
            if (other && !other->is_deleted() && !other->get_plan().get_planned().empty())
                if (iszbwarn(other->get_plan().detailed_query(ZBDateSlot(), all, -1)))
                    return zbpass(ZBLOC);
        }
    }
    if (iszbwarn(calendar->sort()))
        return zbpass(ZBLOC);
    // The nearest plan that starts before (up) or after (down) this one.
    const ZBCalendarEntry* neighbour = nullptr;
    for (int i = 0; i < calendar->get_nentries(); ++i) {
        const ZBCalendarEntry* item = calendar->get_entry_no(i);
        if (item->get_datatype() != EntryPlan::C_CalendarPlanned
            || DiaryEntry::get_type_seq(item->get_id().m_seq) != 'p'
            || (item->get_id().m_id == entryId && item->get_id().m_seq == sequence))
            continue;
        const ZBDate& start = item->get_time().m_start;
        if (up ? start < mine.m_start : mine.m_start < start) {
            if (!neighbour || (up ? neighbour->get_time().m_start < start : start < neighbour->get_time().m_start))
                neighbour = item;
        }
    }
    if (!neighbour)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, up ? "There is no plan before this one."
                                                         : "There is no plan after this one.");
    DiaryEntry* otherEntry = get_entry_id(neighbour->get_id().m_id);
    const int otherIndex = DiaryEntry::get_index_seq(neighbour->get_id().m_seq);
    if (!otherEntry || otherIndex >= otherEntry->get_plan().get_planned().size())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The plan to swap with is no longer there.");
    const ZBDateSetEntry theirs = *otherEntry->get_plan().get_planned()[otherIndex];

    // The earlier session's start and the later one's end stay where they
    // are; the two lengths swap order between them.
    const bool mineFirst = mine.m_start < theirs.m_start;
    const ZBDateSetEntry& early = mineFirst ? mine : theirs;
    const ZBDateSetEntry& late = mineFirst ? theirs : mine;
    const ZBDateSlot lateMoved(early.m_start, early.m_start + late.get_duration(), true);
    const ZBDateSlot earlyMoved(late.m_end - early.get_duration(), late.m_end, true);
    DiaryEntry* earlyEntry = mineFirst ? entry : otherEntry;
    DiaryEntry* lateEntry = mineFirst ? otherEntry : entry;

    ZBDateSet& earlySet = earlyEntry->edit_plan().edit_planned();
    const int at = find_session(earlySet, early);
    if (at >= 0)
        earlySet.erase(at);
    ZBDateSet& lateSet = lateEntry->edit_plan().edit_planned();
    const int lateAt = find_session(lateSet, late);
    if (lateAt >= 0)
        lateSet.erase(lateAt);
    lateSet.add(lateMoved, late.m_type);
    earlyEntry->edit_plan().edit_planned().add(earlyMoved, early.m_type);
    return ZBErrC_ok;
}

int Diary::add_sysquants(ZBObjectSpec& spec)
{
    if (iszbwarn(ZBDiary::add_sysquants(spec)))
        return zbpass(ZBLOC);
    if (ZBVarSpec* var = spec.get_varspec_by_name(ZBDEntry::C_SysBaselineAuto)) {
        std::string choices;
        for (int kind = EntryBaseline::E_None; kind <= EntryBaseline::E_FollowHoursDate; ++kind)
            choices += (kind ? "|" : "") + EntryBaseline::btype_to_string(kind);
        var->set_constraint(ZBVarSpec::E_Choice, choices);
    }
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- the running session

void Diary::find_running_session()
{
    // One session runs in a diary. A file that holds more (a merge of two
    // copies) keeps the latest one running; the others end where their time
    // was last recorded, which is already among their sessions.
    m_sessionId = -1;
    DiaryEntry* running = nullptr;
    for (int i = 0; i < get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(get_object_by_index(i));
        if (!entry || !entry->get_spent().has_running_session())
            continue;
        if (entry->is_deleted()) {
            entry->edit_spent().drop_running_session();
            continue;
        }
        if (running && !(running->get_spent().get_current_session().m_start < entry->get_spent().get_current_session().m_start)) {
            entry->edit_spent().drop_running_session();
            continue;
        }
        if (running)
            running->edit_spent().drop_running_session();
        running = entry;
    }
    if (running)
        m_sessionId = running->get_id();
}

DiaryEntry* Diary::get_session_entry() const
{
    if (m_sessionId < 0)
        return nullptr;
    DiaryEntry* entry = get_entry_id(m_sessionId);
    return entry && !entry->is_deleted() && entry->get_spent().has_running_session() ? entry : nullptr;
}

ZBDateSetEntry Diary::get_current_session() const
{
    const DiaryEntry* entry = get_session_entry();
    return entry ? entry->get_spent().get_current_session() : ZBDateSetEntry(ZBDateSlot(), -1);
}

int Diary::start_session(int entryId, int resource)
{
    stop_session();
    DiaryEntry* entry = get_entry_id(entryId);
    if (!entry || entry->is_deleted())
        return ZBErrC_ok;
    if (resource < 0 || !get_resource_by_id(resource))
        resource = entry->get_props().get_resource_calc();
    if (resource < 0 || !get_resource_by_id(resource))
        resource = get_default_resource_id();
    entry->edit_spent().start_session(resource);
    m_sessionId = entryId;
    return ZBErrC_ok;
}

void Diary::stop_session()
{
    if (DiaryEntry* entry = get_session_entry())
        entry->edit_spent().stop_session();
    m_sessionId = -1;
}

void Diary::update_session()
{
    if (DiaryEntry* entry = get_session_entry())
        entry->edit_spent().update_session();
}

} // namespace Tervalon
