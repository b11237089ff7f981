#include "LibDiary/diary/zbdiary.h"
#include "LibDiary/diary/zbdentry.h"
#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbeventdata.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournaldata.h"
#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDiary/diary/zbpersondata.h"
#include "LibDiary/diary/zbpersonmgr.h"
#include "LibDiary/diary/cal/zbcaldata.h"
#include "LibDiary/diary/cal/zbcalmgr.h"
#include "LibDiary/diary/finance/zbfinancedata.h"
#include "LibDiary/diary/finance/zbfinancemgr.h"
#include "LibDiary/diary/prayer/zbprayerdata.h"
#include "LibDiary/diary/prayer/zbprayermgr.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbvarspec.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDiary", &ZBDiary::create_zbobject);

std::string child_line(const std::string& tag, const std::string& spec)
{
    return "$[" + tag + "] = ${" + spec + "}[];\n";
}

std::string type_line(const std::string& type)
{
    return "$<EntryType> = eval(\"" + type + "\");\n";
}

// The lines of a source, each with its line end.
std::vector<std::string> source_lines(const std::string& source)
{
    std::vector<std::string> lines;
    size_t from = 0;
    while (from < source.size()) {
        size_t end = source.find('\n', from);
        end = end == std::string::npos ? source.size() : end + 1;
        lines.push_back(source.substr(from, end - from));
        from = end;
    }
    return lines;
}
} // namespace

const char* const ZBDiary::C_PersonTag = "PS";
const char* const ZBDiary::C_GroupTag = "GR";
const char* const ZBDiary::C_EventTag = "EV";
const char* const ZBDiary::C_JournalTag = "JN";
const char* const ZBDiary::C_PrayerTag = "PY";
const char* const ZBDiary::C_RecordTag = "RC";

const char* const ZBDiary::C_JournalSpec = "DefaultJournal";
const char* const ZBDiary::C_EventSpec = "DefaultEvent";
const char* const ZBDiary::C_PersonSpec = "DefaultPerson";
const char* const ZBDiary::C_GroupSpec = "DefaultGroup";
const char* const ZBDiary::C_PrayerSpec = "DefaultPrayer";
const char* const ZBDiary::C_PrayerUpdateSpec = "PrayerUpdate";
const char* const ZBDiary::C_PrayerPersonSpec = "PrayerPerson";
const char* const ZBDiary::C_PrayerGroupSpec = "PrayerGroup";

// Blocks and managers are made in fan-out order: a manager may look at the
// blocks made before it from its constructor on.
ZBDiary::ZBDiary()
{
    ZBDiary::register_zbobject();
    m_personData = std::make_unique<ZBPersonData>();
    m_personMgr = std::make_unique<ZBPersonMgr>(*this);
    m_journalData = std::make_unique<ZBJournalData>();
    m_journalMgr = std::make_unique<ZBJournalMgr>(*this);
    m_eventData = std::make_unique<ZBEventData>();
    m_eventMgr = std::make_unique<ZBEventMgr>(*this);
    m_prayerData = std::make_unique<ZBPrayerData>();
    m_prayerMgr = std::make_unique<ZBPrayerMgr>(*this);
    m_financeData = std::make_unique<ZBFinanceData>();
    m_financeMgr = std::make_unique<ZBFinanceMgr>(*this);
    m_calData = std::make_unique<ZBCalData>();
    m_calMgr = std::make_unique<ZBCalMgr>(*this);
    m_managers = {m_personMgr.get(), m_journalMgr.get(), m_eventMgr.get(),
                  m_prayerMgr.get(), m_financeMgr.get(), m_calMgr.get()};
}

// The background thread may be in a manager; it stops before any goes.
ZBDiary::~ZBDiary()
{
    stop_recalc_thread();
}

void ZBDiary::register_zbobject()
{
    register_objectname("ZBDiary", &ZBDiary::create_zbobject);
}

int ZBDiary::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    ZBDiary* diary = new ZBDiary();
    out = diary;
    if (from) {
        if (!dynamic_cast<const ZBDiary*>(from))
            return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to ZBDiary failed.");
        return diary->derived_assign(*from, 0);
    }
    return ZBErrC_ok;
}

void ZBDiary::set_defaults(bool all)
{
    ZBDatabase::set_defaults(all);
    m_personData->set_defaults(all);
    m_journalData->set_defaults(all);
    m_eventData->set_defaults(all);
    m_prayerData->set_defaults(all);
    m_financeData->set_defaults(all);
    m_calData->set_defaults(all);
    for (ZBDiaryMgr* manager : m_managers)
        manager->set_defaults(all);
}

void ZBDiary::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDiary", out, indent);
    for (const auto& spec : m_specSource)
        dump.add_entry("m_specSource[" + spec.first + "]", spec.second);
    dump.write_heading("Blocks and managers");
    dump.write();
    m_personData->dump(out, indent + 1);
    m_journalData->dump(out, indent + 1);
    m_eventData->dump(out, indent + 1);
    m_prayerData->dump(out, indent + 1);
    m_financeData->dump(out, indent + 1);
    m_calData->dump(out, indent + 1);
    for (const ZBDiaryMgr* manager : m_managers)
        manager->dump(out, indent + 1);
    ZBDatabase::dump(out, indent + 1);
}

int ZBDiary::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    ZBSrlObject<ZBPersonData> person(*m_personData, version);
    ZBSrlObject<ZBJournalData> journal(*m_journalData, version);
    ZBSrlObject<ZBEventData> event(*m_eventData, version);
    ZBSrlObject<ZBPrayerData> prayer(*m_prayerData, version);
    ZBSrlObject<ZBFinanceData> finance(*m_financeData, version);
    ZBSrlObject<ZBCalData> cal(*m_calData, version);
    if (iszberr(serialise_object(in, out, prefix, "( *m_personData )", person))
        || iszberr(serialise_object(in, out, prefix, "( *m_journalData )", journal))
        || iszberr(serialise_object(in, out, prefix, "( *m_eventData )", event))
        || iszberr(serialise_object(in, out, prefix, "( *m_prayerData )", prayer))
        || iszberr(serialise_object(in, out, prefix, "( *m_financeData )", finance))
        || iszberr(serialise_object(in, out, prefix, "( *m_calData )", cal)))
        return zbpass(ZBLOC);
    return ZBDatabase::serialise(in, out, prefix, version);
}

int ZBDiary::fan_out(const char* step, const std::function<int(ZBDiaryMgr&)>& call)
{
    for (ZBDiaryMgr* manager : m_managers) {
        if (m_observer)
            m_observer(step, *manager);
        if (iszbwarn(call(*manager)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int ZBDiary::initialise(bool created)
{
    if (iszbwarn(ZBDatabase::initialise(created)))
        return zbpass(ZBLOC);
    if (created) {
        for (const std::string& name : default_spec_names())
            set_spec_source(name, default_spec_source(name));
        if (iszbwarn(create_default_spec()))
            return zbpass(ZBLOC);
    } else if (missing_default_spec()) {
        // A file that has lost a default spec gets it back as new, so that
        // the specs naming it (the top level above all) parse again; the
        // others keep the user's text with any missing child line added. A
        // spec of the user's that does not parse does not stop the load.
        create_default_spec();
    } else if (iszbwarn(update_specs())) {
        return zbpass(ZBLOC);
    }
    return fan_out("initialise", [](ZBDiaryMgr& manager) { return manager.initialise(); });
}

int ZBDiary::recalculate(E_RecalcLevel level)
{
    if (iszbwarn(ZBDatabase::recalculate(level)))
        return zbpass(ZBLOC);
    return fan_out("recalculate", [level](ZBDiaryMgr& manager) { return manager.recalculate(level); });
}

void ZBDiary::containers_resolved()
{
    ZBDatabase::containers_resolved();
    // The lists of people and groups are rebuilt on their next use.
    m_personData->m_builtObjects = -1;
}

int ZBDiary::upgrade_appfileversion()
{
    const bool older = get_app_file_version() < current_appfileversion();
    if (older && iszbwarn(check_all_read()))
        return zbpass(ZBLOC);
    if (iszbwarn(ZBDatabase::upgrade_appfileversion()))
        return zbpass(ZBLOC);
    if (!older)
        return ZBErrC_ok;
    if (iszbwarn(update_specs()))
        return zbpass(ZBLOC);
    return fan_out("upgrade", [](ZBDiaryMgr& manager) { return manager.initialise(); });
}

// An upgrade writes the file in the present form, which leaves out what this
// version did not understand. So an older file is upgraded only when every
// field of every record was read; otherwise it is refused as it is.
int ZBDiary::check_all_read() const
{
    const ZBDBObject* unread = get_nserentries() > 0 ? this : nullptr;
    for (int i = 0; !unread && i < get_nobjects(); ++i)
        if (get_object_by_index(i)->get_nserentries() > 0)
            unread = get_object_by_index(i);
    if (!unread)
        return ZBErrC_ok;
    const ZBSerialisationEntry* entry = unread->get_serentry(0);
    return zbwarnuser(ZBErrC_InvalidDatabaseVersion, ZBLOC,
                      "%s was written by an older version (data version %d) and holds data this version cannot "
                      "read (the field \"%s\" of the %s %d). The file was not changed.",
                      get_filename().c_str(), get_app_file_version(), entry->m_tag.c_str(),
                      unread->get_class_name().c_str(), unread->get_id());
}

int ZBDiary::remap_id(int from, int to)
{
    if (iszbwarn(ZBDatabase::remap_id(from, to)))
        return zbpass(ZBLOC);
    return fan_out("remap_id", [from, to](ZBDiaryMgr& manager) { return manager.remap_id(from, to); });
}

int ZBDiary::pull_db_data(const ZBDiary& other)
{
    return fan_out("pull_db_data", [&other](ZBDiaryMgr& manager) { return manager.pull_db_data(other); });
}

int ZBDiary::pull_complete()
{
    return resolve_containers();
}

// The default specs a new file is given are not the user's data.
bool ZBDiary::has_user_data() const
{
    const std::vector<std::string>& defaults = default_spec_names();
    bool any = false;
    for (int i = 0; i < get_nobjects() && !any; ++i) {
        const ZBDBObject* object = get_object_by_index(i);
        if (object->is_deleted())
            continue;
        const ZBObjectSpec* spec = dynamic_cast<const ZBObjectSpec*>(object);
        any = !spec
            || (spec->get_name() != C_DefaultSpecName && spec->get_name() != C_PrayerUpdateSpec
                && std::find(defaults.begin(), defaults.end(), spec->get_name()) == defaults.end());
    }
    for (const ZBDiaryMgr* manager : m_managers) {
        if (m_observer)
            m_observer("has_user_data", *manager);
        any = manager->has_user_data() || any;
    }
    return any;
}

int ZBDiary::update_feature(int count)
{
    if (iszbwarn(ZBDatabase::update_feature(count)))
        return zbpass(ZBLOC);
    return fan_out("update_feature", [count](ZBDiaryMgr& manager) { return manager.update_feature(count); });
}

int ZBDiary::generate_notify(std::vector<ZBNotifyItem>& out)
{
    out.clear();
    return fan_out("generate_notify", [&out](ZBDiaryMgr& manager) {
        std::vector<ZBNotifyItem> items;
        int result = manager.generate_notify(items);
        out.insert(out.end(), items.begin(), items.end());
        return result;
    });
}

std::vector<int> ZBDiary::get_people(const ZBDEntry& entry) const
{
    std::vector<int> people;
    auto add = [&people](int id) {
        if (std::find(people.begin(), people.end(), id) == people.end())
            people.push_back(id);
    };
    if (dynamic_cast<const ZBDPerson*>(get_object_by_id(entry.get_person())))
        add(entry.get_person());
    // The walk is bounded, so a damaged cycle of parents ends.
    const ZBDBObject* up = get_object_by_id(entry.get_parent_id());
    for (int steps = 0; up && up != this && steps <= get_nobjects(); ++steps) {
        if (dynamic_cast<const ZBDPerson*>(up))
            add(up->get_id());
        up = up->get_parent_id() >= 0 ? get_object_by_id(up->get_parent_id()) : nullptr;
    }
    return people;
}

int ZBDiary::generate_sequence(ZBDEntry& entry, int n, bool forward, bool keep, bool)
{
    int result = dynamic_cast<ZBDEvent*>(&entry) ? m_eventMgr->generate_sequence(entry, n, forward, keep)
                                                  : m_financeMgr->generate_sequence(entry, n, forward, keep);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return result;
}

ZBDEntry* ZBDiary::get_dentry_id(int id) const
{
    return dynamic_cast<ZBDEntry*>(get_object_by_id(id));
}

namespace {
// The constraint of a system value's kind.
int sysquant_constraint(int code)
{
    switch (code) {
    case ZBDEntry::C_SysCodeDate:
        return ZBVarSpec::E_Date;
    case ZBDEntry::C_SysCodeBool:
        return ZBVarSpec::E_Bool;
    case ZBDEntry::C_SysCodeNumber:
        return ZBVarSpec::E_Float;
    case ZBDEntry::C_SysCodeDuration:
        return ZBVarSpec::E_Duration;
    default:
        return ZBVarSpec::E_None;
    }
}
} // namespace

int ZBDiary::add_sysquants(ZBObjectSpec& spec)
{
    for (const ZBDEntry::SysQuant& quant : ZBDEntry::get_sysquants()) {
        ZBVarSpec* var = spec.get_varspec_by_name(quant.name);
        if (!var || var->is_sysvalue())
            continue;
        // A derived one (eval) keeps its expression, and what it works out
        // becomes the record's field.
        var->set_sysvalue(true);
        const int constraint = sysquant_constraint(quant.code);
        if (constraint != ZBVarSpec::E_None)
            var->set_constraint(constraint, quant.code == ZBDEntry::C_SysCodeNumber ? "%.1f" : "");
        // Associated declarations (NAME:ASSOC) follow their main one.
        for (int i = 0; i < spec.get_nassoc(quant.name); ++i)
            spec.get_assoc_by_index(quant.name, i)->set_sysvalue(true);
    }
    return ZBErrC_ok;
}

// The names and sources come from m_specSource (set by initialise) or the
// built-in defaults; the top level spec the database made gets the record
// types' child lines added to it.
int ZBDiary::create_default_spec()
{
    std::vector<std::string> names = default_spec_names();
    names.push_back(C_PrayerUpdateSpec);
    auto make_records = [this, &names]() {
        for (const std::string& name : names) {
            if (name == C_TopLevelSpecName || get_objectspec_by_name(name))
                continue;
            auto it = m_specSource.find(name);
            const std::string source = it != m_specSource.end() ? it->second : default_spec_source(name);
            if (iszbwarn(ZBDatabase::set_spec_source(name, source, false)))
                return zbpass(ZBLOC);
            if (it != m_specSource.end())
                m_specSource.erase(it);
        }
        return int(ZBErrC_ok);
    };
    // A file that has specs but lost some of the records' gets those back
    // before anything parses, so that no spec is parsed while one it names is
    // missing. A new database makes the database's own first.
    if (get_nobjectspecs() > 0 && iszbwarn(make_records()))
        return zbpass(ZBLOC);
    // The database's Default and TopLevel; its parse may find faults in a
    // user's spec, which the parse below reports again.
    ZBDatabase::create_default_spec();
    if (iszbwarn(make_records()))
        return zbpass(ZBLOC);
    m_specSource.erase(C_TopLevelSpecName);
    if (iszbwarn(update_specs()))
        return zbpass(ZBLOC);
    return parse_objectspecs(true);
}

int ZBDiary::validate_spec(const ZBDEntry& entry, const std::string& specName, const std::string& childTag) const
{
    const std::string source = get_spec_source(specName);
    if (source.empty())
        return ZBErrC_ok;
    if (source.find("$[" + childTag + "] = ") != std::string::npos)
        return ZBErrC_ok;
    return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s cannot hold %s (%s).", specName.c_str(),
                      entry.get_summary().c_str(), ZBDEntry::entrytype_to_string(entry.get_entrytype()).c_str());
}

bool ZBDiary::missing_default_spec() const
{
    if (!get_objectspec_by_name(C_DefaultSpecName) || !get_objectspec_by_name(C_PrayerUpdateSpec))
        return true;
    for (const std::string& name : default_spec_names())
        if (!get_objectspec_by_name(name))
            return true;
    return false;
}

const std::vector<std::string>& ZBDiary::default_spec_names()
{
    static const std::vector<std::string> names = {C_TopLevelSpecName, C_PersonSpec, C_GroupSpec,
                                                   C_EventSpec,        C_JournalSpec, C_PrayerSpec};
    return names;
}

std::string ZBDiary::default_spec_source(const std::string& name)
{
    if (name == C_JournalSpec)
        return type_line("Journal");
    if (name == C_EventSpec)
        return type_line("Event");
    if (name == C_PersonSpec)
        return type_line("Person") + child_line(C_JournalTag, C_JournalSpec) + child_line(C_EventTag, C_EventSpec);
    if (name == C_GroupSpec)
        return type_line("Address") + child_line(C_PersonTag, C_PersonSpec);
    if (name == C_PrayerSpec)
        return type_line("Prayer") + child_line(C_JournalTag, C_PrayerUpdateSpec);
    if (name == C_PrayerUpdateSpec)
        return type_line("Journal");
    if (name == C_TopLevelSpecName)
        return child_line(C_DefaultChildName, C_DefaultSpecName) + child_line(C_PersonTag, C_PersonSpec)
            + child_line(C_GroupTag, C_GroupSpec) + child_line(C_EventTag, C_EventSpec)
            + child_line(C_JournalTag, C_JournalSpec) + child_line(C_PrayerTag, C_PrayerSpec);
    return std::string();
}

std::string ZBDiary::get_spec_source(const std::string& name) const
{
    if (const ZBObjectSpec* spec = get_objectspec_by_name(name))
        return spec->get_text();
    auto it = m_specSource.find(name);
    return it == m_specSource.end() ? std::string() : it->second;
}

void ZBDiary::set_spec_source(const std::string& name, const std::string& source)
{
    if (get_objectspec_by_name(name))
        ZBDatabase::set_spec_source(name, source, false);
    else
        m_specSource[name] = source;
}

// A user's own lines stay; only child lines of the default that are missing are added.
int ZBDiary::update_specs()
{
    for (const std::string& name : default_spec_names()) {
        const std::string old = get_spec_source(name);
        if (old.empty() && !get_objectspec_by_name(name)) {
            set_spec_source(name, default_spec_source(name));
            continue;
        }
        std::string source = old;
        for (const std::string& line : source_lines(default_spec_source(name))) {
            if (line.compare(0, 2, "$[") != 0 || source.find(line.substr(0, line.find(" = "))) != std::string::npos)
                continue;
            if (!source.empty() && source.back() != '\n')
                source += '\n';
            source += line;
        }
        if (source != old)
            set_spec_source(name, source);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
