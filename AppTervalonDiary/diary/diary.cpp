#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDate/date/zblocale.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

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
      m_hasPlans(false), m_sessionId(-1)
{
    Diary::register_zbobject();
    add_container(m_entries);
    add_container(m_resources);
    add_container(m_timeTypes);
    set_app_type(mode_app_type());
}

Diary::~Diary() = default;

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
    m_recalcMgr.set_initialising(true);
    m_recalcMgr.initialise();
    if (iszbwarn(ZBDiary::initialise(created))) {
        m_recalcMgr.set_initialising(false);
        return zbpass(ZBLOC);
    }
    if (m_resources.size() == 0) {
        if (iszbwarn(add_resource("Default", nullptr))) {
            m_recalcMgr.set_initialising(false);
            return zbpass(ZBLOC);
        }
        complete_operation("Initialise");
    }
    if (!m_calendar.default_created())
        setup_default_calendar();
    zblocale().set_workhours(m_settings.get_workhours());
    m_recalcMgr.set_initialising(false);
    return ZBErrC_ok;
}

void Diary::setup_default_calendar()
{
    m_calendar.set_default_created(true);
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

void Diary::force_recalculate(bool structure, bool immediate, bool, bool)
{
    m_recalcMgr.force_recalculate(structure, immediate);
}

bool Diary::is_delayed_range(int resource, const ZBDate& date) const
{
    auto it = m_delayed.find(resource);
    return it != m_delayed.end() && !(it->second < date);
}

void Diary::set_delayed_range(int resource, const ZBDate& date)
{
    auto it = m_delayed.find(resource);
    if (it == m_delayed.end() || it->second < date)
        m_delayed[resource] = date;
}

void Diary::containers_resolved()
{
    ZBDiary::containers_resolved();
}

int Diary::recalculate_entry(DiaryEntry& entry)
{
    if (iszbwarn(entry.recalculate(-1, this, 0)))
        return zbpass(ZBLOC);
    for (DiaryEntry* child : entry.get_children())
        if (iszbwarn(recalculate_entry(*child)))
            return zbpass(ZBLOC);
    // Types and slots come from the children, so they are settled on the way up.
    entry.calc_derived_entrytype();
    entry.edit_etime().recalculate_date();
    entry.update_first_plan();
    m_hasPlans = m_hasPlans || !entry.get_plan().get_planned().empty();
    return ZBErrC_ok;
}

int Diary::recalculate(E_RecalcLevel level)
{
    m_settings.refresh_settings();
    m_delayed.clear();
    m_hasPlans = false;
    for (DiaryEntry* entry : m_entries)
        if (iszbwarn(recalculate_entry(*entry)))
            return zbpass(ZBLOC);
    if (level >= E_RecalcFull)
        m_recalcMgr.done();
    return ZBDiary::recalculate(level);
}

} // namespace Tervalon
