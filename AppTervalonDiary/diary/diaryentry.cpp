#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbobjectspecchild.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("DiaryEntry", &DiaryEntry::create_zbobject);

// The order in which compare_application puts entries of different types.
int application_rank(char type)
{
    static const char order[] = "ATDPLJ";
    const char* at = std::strchr(order, type);
    return type && at ? int(at - order) : 6;
}

template <class F>
std::unique_ptr<F> copy_facet(const std::unique_ptr<F>& facet)
{
    return std::unique_ptr<F>(facet ? new F(*facet) : nullptr);
}

template <class F>
void attach_facet(const std::unique_ptr<F>& facet, DiaryEntry* entry)
{
    if (facet)
        facet->attach(entry);
}

template <class F>
const F& blank_facet()
{
    static const F blank;
    return blank;
}

// A facet that is not there reads into a default one, which the entry takes
// only when the text held some of its fields; a default facet writes nothing.
// The default one is kept from entry to entry (one a thread: the background
// planner reads its own copy): most entries hold none of the fields, and a
// read that finds none leaves it at its defaults, so a large file is read
// without making and dropping five facets an entry.
template <class F>
int serialise_lazy_facet(DiaryEntry& entry, std::unique_ptr<F>& facet, std::istream* in, std::ostream* out,
                         const std::string& prefix, int version)
{
    if (facet)
        return facet->serialise_facet(entry, in, out, prefix, version);
    if (!in)
        return ZBErrC_ok;
    static thread_local std::unique_ptr<F> scratch;
    if (!scratch)
        scratch.reset(new F());
    const int before = entry.get_nserentries();
    int result = scratch->serialise_facet(entry, in, out, prefix, version);
    if (entry.get_nserentries() != before)
        facet = std::move(scratch);
    return result;
}

bool is_blank_token(const std::string& text)
{
    std::string lower;
    for (char c : text)
        if (c != ' ')
            lower += char(std::tolower(static_cast<unsigned char>(c)));
    return lower == "blank";
}
} // namespace

const char* const DiaryEntry::C_EntryTag = "E";
const char* const DiaryEntry::C_TriggerStart = "start";
const char* const DiaryEntry::C_TriggerStop = "stop";
const char* const DiaryEntry::C_TriggerComplete = "complete";
const char* const DiaryEntry::C_TriggerReopen = "reopen";
const char* const DiaryEntry::C_CompactSeparator = "\n---\n";

DiaryEntry::DiaryEntry()
{
    DiaryEntry::register_zbobject();
    DiaryEntry::set_defaults(true);
    attach_facets();
}

DiaryEntry::DiaryEntry(const DiaryEntry& other)
    : ZBDEntry(other), m_startSource(other.m_startSource), m_dueSource(other.m_dueSource),
      m_prioritySource(other.m_prioritySource), m_entryType(other.m_entryType),
      m_needRecalculate(other.m_needRecalculate), m_notPlanned(other.m_notPlanned), m_props(other.m_props),
      m_dueFacet(copy_facet(other.m_dueFacet)), m_baseline(copy_facet(other.m_baseline)), m_erepeat(copy_facet(other.m_erepeat)),
      m_oldRepeat(other.m_oldRepeat ? new ZBDateRepeat(*other.m_oldRepeat) : nullptr), m_priorityFacet(other.m_priorityFacet), m_spent(copy_facet(other.m_spent)),
      m_etime(other.m_etime), m_plan(copy_facet(other.m_plan)), m_depend(copy_facet(other.m_depend)), m_command(copy_facet(other.m_command)),
      m_planStart(other.m_planStart), m_mustStart(other.m_mustStart)
{
    DiaryEntry::register_zbobject();
    attach_facets();
}

DiaryEntry::~DiaryEntry() = default;

DiaryEntry& DiaryEntry::operator=(const DiaryEntry& other)
{
    if (this == &other)
        return *this;
    ZBDEntry::operator=(other);
    m_startSource = other.m_startSource;
    m_dueSource = other.m_dueSource;
    m_prioritySource = other.m_prioritySource;
    m_entryType = other.m_entryType;
    m_props = other.m_props;
    m_dueFacet = copy_facet(other.m_dueFacet);
    m_baseline = copy_facet(other.m_baseline);
    m_erepeat = copy_facet(other.m_erepeat);
    m_oldRepeat.reset(other.m_oldRepeat ? new ZBDateRepeat(*other.m_oldRepeat) : nullptr);
    m_priorityFacet = other.m_priorityFacet;
    m_spent = copy_facet(other.m_spent);
    m_etime = other.m_etime;
    m_plan = copy_facet(other.m_plan);
    m_depend = copy_facet(other.m_depend);
    m_command = copy_facet(other.m_command);
    m_needRecalculate = other.m_needRecalculate;
    m_notPlanned = other.m_notPlanned;
    m_planStart = other.m_planStart;
    m_mustStart = other.m_mustStart;
    attach_facets();
    return *this;
}

void DiaryEntry::attach_facets()
{
    m_props.attach(this);
    attach_facet(m_dueFacet, this);
    attach_facet(m_baseline, this);
    attach_facet(m_erepeat, this);
    m_priorityFacet.attach(this);
    attach_facet(m_spent, this);
    m_etime.attach(this);
    attach_facet(m_plan, this);
    attach_facet(m_depend, this);
    attach_facet(m_command, this);
}

const ZBDBContainer<DiaryEntry>& DiaryEntry::get_children() const
{
    static const ZBDBContainer<DiaryEntry> none(C_EntryTag);
    return m_children ? *m_children : none;
}

ZBDBContainerBase* DiaryEntry::make_own_container(const std::string& tag)
{
    if (m_children || tag != C_EntryTag)
        return nullptr;
    m_children.reset(new ZBDBContainer<DiaryEntry>(C_EntryTag));
    return m_children.get();
}

const EntryDue& DiaryEntry::get_due_facet() const
{
    return m_dueFacet ? *m_dueFacet : blank_facet<EntryDue>();
}

EntryDue& DiaryEntry::edit_due_facet()
{
    if (!m_dueFacet) {
        m_dueFacet.reset(new EntryDue());
        m_dueFacet->attach(this);
    }
    return *m_dueFacet;
}

const EntryRepeat& DiaryEntry::get_erepeat() const
{
    return m_erepeat ? *m_erepeat : blank_facet<EntryRepeat>();
}

EntryRepeat& DiaryEntry::edit_erepeat()
{
    if (!m_erepeat) {
        m_erepeat.reset(new EntryRepeat());
        m_erepeat->attach(this);
    }
    return *m_erepeat;
}

const EntryBaseline& DiaryEntry::get_baseline() const
{
    return m_baseline ? *m_baseline : blank_facet<EntryBaseline>();
}

EntryBaseline& DiaryEntry::edit_baseline()
{
    if (!m_baseline) {
        m_baseline.reset(new EntryBaseline());
        m_baseline->attach(this);
    }
    return *m_baseline;
}

const EntrySpent& DiaryEntry::get_spent() const
{
    return m_spent ? *m_spent : blank_facet<EntrySpent>();
}

EntrySpent& DiaryEntry::edit_spent()
{
    if (!m_spent) {
        m_spent.reset(new EntrySpent());
        m_spent->attach(this);
    }
    return *m_spent;
}

const EntryPlan& DiaryEntry::get_plan() const
{
    return m_plan ? *m_plan : blank_facet<EntryPlan>();
}

EntryPlan& DiaryEntry::edit_plan()
{
    if (!m_plan) {
        m_plan.reset(new EntryPlan());
        m_plan->attach(this);
        m_plan->set_is_planned(!m_notPlanned);
    }
    return *m_plan;
}

bool DiaryEntry::is_planned() const
{
    return m_plan ? m_plan->is_planned() : !m_notPlanned;
}

const EntryDepend& DiaryEntry::get_depend() const
{
    return m_depend ? *m_depend : blank_facet<EntryDepend>();
}

EntryDepend& DiaryEntry::edit_depend()
{
    if (!m_depend) {
        m_depend.reset(new EntryDepend());
        m_depend->attach(this);
    }
    return *m_depend;
}

const EntryCommand& DiaryEntry::get_command() const
{
    return m_command ? *m_command : blank_facet<EntryCommand>();
}

EntryCommand& DiaryEntry::edit_command()
{
    if (!m_command) {
        m_command.reset(new EntryCommand());
        m_command->attach(this);
    }
    return *m_command;
}

const ZBDate& DiaryEntry::get_muststart() const
{
    if (m_plan && m_plan->get_muststart().is_ok())
        return m_plan->get_muststart();
    return m_mustStart;
}

const ZBProgress& DiaryEntry::get_total_duration() const
{
    return m_dueFacet ? m_dueFacet->get_total_duration() : m_duration.calc;
}

EntryDue& DiaryEntry::due_pass()
{
    if (m_dueFacet)
        return *m_dueFacet;
    // One a thread, as the background planner recalculates its own copy.
    static thread_local std::unique_ptr<EntryDue> shared;
    if (!shared)
        shared.reset(new EntryDue());
    shared->set_defaults(true);
    shared->attach(this);
    return *shared;
}

void DiaryEntry::keep_due_pass(EntryDue& pass, bool withTotal)
{
    if (&pass == m_dueFacet.get())
        return;
    if (withTotal && pass.get_total_duration() != m_duration.calc) {
        m_dueFacet.reset(new EntryDue(pass));
        m_dueFacet->attach(this);
    }
    pass.attach(nullptr);
}

void DiaryEntry::register_zbobject()
{
    register_objectname("DiaryEntry", &DiaryEntry::create_zbobject);
}

int DiaryEntry::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<DiaryEntry>(out, from, "DiaryEntry");
}

void DiaryEntry::set_defaults(bool all)
{
    if (all)
        ZBDBObject::set_defaults(all);
    clear_values();
    m_startSource = -1;
    m_dueSource = -1;
    m_prioritySource = -1;
    m_entryType = ZBCalcPair<char>('O');
    m_props.set_defaults(all);
    m_dueFacet.reset();
    m_baseline.reset();
    m_erepeat.reset();
    m_oldRepeat.reset();
    m_priorityFacet.set_defaults(all);
    m_spent.reset();
    m_etime.set_defaults(all);
    m_plan.reset();
    m_depend.reset();
    m_command.reset();
    m_needRecalculate = true;
    m_planStart = ZBDate::C_Blank;
}

void DiaryEntry::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("DiaryEntry", out, indent);
        dump.add("impl->m_entryType.orig", m_entryType.orig);
        dump.add("impl->m_entryType.calc", m_entryType.calc);
        dump.add("impl->m_time.orig", m_time.orig);
        dump.add("impl->m_start.orig", m_start.orig);
        dump.add("impl->m_due.orig", m_due.orig);
        dump.add("impl->m_priorityFacet.orig", m_priority.orig);
        dump.add("impl->m_needRecalculate", m_needRecalculate);
        dump.add("impl->m_planStart", m_planStart);
    }
    m_props.dump(out, indent + 1);
    get_due_facet().dump(out, indent + 1);
    get_baseline().dump(out, indent + 1);
    get_erepeat().dump(out, indent + 1);
    m_priorityFacet.dump(out, indent + 1);
    get_spent().dump(out, indent + 1);
    m_etime.dump(out, indent + 1);
    get_plan().dump(out, indent + 1);
    get_depend().dump(out, indent + 1);
    get_command().dump(out, indent + 1);
    ZBDEntry::dump(out, indent + 1);
}

int DiaryEntry::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    m_entryType.serialise(*this, in, out, prefix, "et", 'O');
    if (iszbwarn(m_props.serialise_facet(*this, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_dueFacet, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_baseline, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_erepeat, in, out, prefix, version))
        || iszbwarn(m_priorityFacet.serialise_facet(*this, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_spent, in, out, prefix, version))
        || iszbwarn(m_etime.serialise_facet(*this, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_plan, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_depend, in, out, prefix, version))
        || iszbwarn(serialise_lazy_facet(*this, m_command, in, out, prefix, version)))
        return zbpass(ZBLOC);
    if (in)
        attach_facets();
    // Then the record: title, details, dates, priority, progress, repeat rule
    // and the flags, under the record's tags.
    if (iszbwarn(ZBDEntry::serialise(in, out, prefix, version)))
        return zbpass(ZBLOC);
    if (in && iszbwarn(read_older_forms(in, prefix, version)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

// Files of older data versions kept some of the record's values in fields of
// the entry's own. They are read into the record (where the record's own
// field is absent) and so are written in the present form at the next save.
int DiaryEntry::read_older_forms(std::istream* in, const std::string& prefix, int version)
{
    if (version <= C_LastTitleVersion) {
        std::string title;
        std::string details;
        if (serialise_string(in, nullptr, prefix, "ti", title, true) == ZBErrC_ok && m_summary.empty())
            m_summary = title;
        if (serialise_string(in, nullptr, prefix, "de", details, true) == ZBErrC_ok && get_text().empty())
            set_text(details);
    }
    if (version < C_FirstRecordSlotVersion) {
        ZBCalcPair<ZBDateSlot> slot;
        if (slot.serialise(*this, in, nullptr, prefix, "ts", ZBDateSlot()) == ZBErrC_ok
            && m_time == ZBCalcPair<ZBDateSlot>())
            m_time = slot;
    }
    if (version < C_FirstRecordRepeatVersion)
        return read_older_repeat(in, prefix);
    return ZBErrC_ok;
}

// The old rule was two date expressions, a range and a list of days left
// out. A task's repeat expression gave its due dates and the other its
// start-after; for any other entry the two were the other way round.
int DiaryEntry::read_older_repeat(std::istream* in, const std::string& prefix)
{
    bool repeating = false;
    std::string startExp;
    std::string repeatExp;
    std::string exclude;
    ZBCalcPair<ZBDateSlot> range;
    serialise_field<bool>(in, nullptr, prefix, "rp", repeating, false);
    serialise_string(in, nullptr, prefix, "rs", startExp, true);
    serialise_string(in, nullptr, prefix, "rd", repeatExp, true);
    range.serialise(*this, in, nullptr, prefix, "rr", ZBDateSlot());
    serialise_string(in, nullptr, prefix, "er", exclude, true);
    if (!repeating || get_repeat().is_repeating())
        return ZBErrC_ok;
    ZBDateRepeat rule;
    rule.set_type(ZBDateRepeat::E_Expression);
    if (m_entryType.orig == 'T') {
        rule.set_exp(repeatExp);
        rule.set_offset_exp(startExp);
    } else {
        rule.set_offset_exp(repeatExp);
        rule.set_exp(startExp);
    }
    if (iszbwarn(rule.set_range_start(range.orig.m_start, false)) || iszbwarn(rule.set_range_end(range.orig.m_end, false))
        || iszbwarn(rule.set_exclude(exclude)))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The repeat of the entry \"%s\" (%d) cannot be read.",
                          m_summary.c_str(), get_id());
    edit_repeat() = rule;
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- types

void DiaryEntry::set_entrytype(char letter)
{
    m_entryType.set_orig(letter);
    calc_derived_entrytype();
    if (m_repeat)
        m_repeat->initialise(this);
}

void DiaryEntry::prepare_repeat(ZBDateRepeat& rule)
{
    rule.initialise(this);
}

void DiaryEntry::calc_derived_entrytype()
{
    char type = m_entryType.orig;
    if (type == 'O' && get_nchildren() > 0) {
        type = get_child_no(0)->get_derived_entrytype();
        for (const DiaryEntry* child : get_children())
            if (child->get_derived_entrytype() != type) {
                type = 'O';
                break;
            }
    }
    m_entryType.set_calc(type);
}

bool DiaryEntry::has_depend() const
{
    return get_derived_entrytype() == 'A' || get_derived_entrytype() == 'T';
}

int DiaryEntry::get_capability() const
{
    switch (get_derived_entrytype()) {
    case 'T':
        return 3;
    case 'A':
        return 2;
    default:
        return 0;
    }
}

int DiaryEntry::type_priority(char letter)
{
    static const char order[] = "PDLOTAYNJRM";
    const char* at = letter ? std::strchr(order, letter) : nullptr;
    return at ? int(at - order) + 1 : 12;
}

int DiaryEntry::get_sequence(char letter, int index)
{
    if (!std::strchr("apTrsAJPDLOYNRM", letter) || !letter)
        return 0;
    return letter * C_SeqFactor + index;
}

// ---------------------------------------------------------------- values

std::string DiaryEntry::get_sysvalue(const std::string& tag) const
{
    if (tag == C_SysChildren)
        return std::to_string(get_nchildren());
    if (tag == C_SysIsActive)
        return is_active() ? "1" : "0";
    if (tag == C_SysResource || tag == C_SysTimeType) {
        const Diary* diary = get_diary();
        if (!diary)
            return std::string();
        if (tag == C_SysTimeType)
            return diary->get_timetype_name_by_id(m_props.get_timetype_calc());
        const Resource* resource = diary->get_resource_by_id(m_props.get_resource_calc());
        return resource ? resource->get_username() : std::string();
    }
    if (tag == C_SysSpent)
        return get_spent().get_time_spent().to_string();
    const EntryBaseline& baseline = get_baseline();
    if (tag == C_SysBaselineDuration)
        return baseline.get_calc_duration().to_string();
    if (tag == C_SysBaselineStart)
        return baseline.get_calc_startend().m_start.to_string();
    if (tag == C_SysBaselineEnd)
        return baseline.get_calc_startend().m_end.to_string();
    if (tag == C_SysBaselineProgress)
        return baseline.get_progressive() ? "1" : "0";
    if (tag == C_SysBaselineAuto)
        return EntryBaseline::btype_to_string(baseline.get_autobaseline());
    return ZBDEntry::get_sysvalue(tag);
}

// A spec's "$<EntryType> = eval(...)" arrives here: the entry becomes that
// type. Only a change of type rederives what hangs on it.
int DiaryEntry::set_sysvalue(const std::string& tag, const std::string& value)
{
    if (tag == C_SysBaselineAuto || tag == C_SysBaselineProgress || tag == C_SysBaselineDuration)
        return set_baseline_value(tag, zb_trim(value));
    if (tag != C_SysEntryType)
        return ZBDEntry::set_sysvalue(tag, value);
    const int type = string_to_entrytype(value);
    if (type == E_Object && zb_compare_nocase(zb_trim(value), entrytype_to_string(E_Object)) != 0)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: Invalid entry type: %s", tag.c_str(), value.c_str());
    if (char(type) == m_entryType.orig)
        return ZBErrC_ok;
    set_entrytype(char(type));
    clear_predicted(true);
    return ZBErrC_ok;
}

// A bad value is refused before anything changes.
int DiaryEntry::set_baseline_value(const std::string& tag, const std::string& value)
{
    if (tag == C_SysBaselineAuto) {
        if (!EntryBaseline::is_btype(value))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                              "%s: Invalid value: %s (None, Hours, HoursDate, FollowHours or FollowHoursDate)",
                              tag.c_str(), value.c_str());
        edit_baseline().set_autobaseline(EntryBaseline::string_to_btype(value));
    } else if (tag == C_SysBaselineProgress) {
        if (value != "0" && value != "1")
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: Invalid value: %s (0 or 1)", tag.c_str(), value.c_str());
        edit_baseline().set_progressive(value == "1");
    } else {
        ZBDuration duration;
        if (iszbwarn(duration.from_string(value)))
            return zbpass(ZBLOC);
        if (duration.is_negative())
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: Invalid value: %s", tag.c_str(), value.c_str());
        edit_baseline().set_duration(duration);
    }
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- tree

DiaryEntry* DiaryEntry::get_parent_entry() const
{
    return dynamic_cast<DiaryEntry*>(get_parent());
}

Diary* DiaryEntry::get_diary() const
{
    return dynamic_cast<Diary*>(get_database());
}

std::vector<int> DiaryEntry::get_child_ids(bool recursive) const
{
    std::vector<int> ids;
    for (const DiaryEntry* child : get_children()) {
        ids.push_back(child->get_id());
        if (recursive) {
            std::vector<int> more = child->get_child_ids(true);
            ids.insert(ids.end(), more.begin(), more.end());
        }
    }
    return ids;
}

bool DiaryEntry::has_entrytype_child(char letter) const
{
    for (const DiaryEntry* child : get_children())
        if (child->get_derived_entrytype() == letter || child->has_entrytype_child(letter))
            return true;
    return false;
}

bool DiaryEntry::has_repeating_child() const
{
    for (const DiaryEntry* child : get_children())
        if (child->get_repeat().is_repeating() || child->has_repeating_child())
            return true;
    return false;
}

int DiaryEntry::query_entries(const ZBDateSlot& slot, ZBPtrArray<DiaryEntry>& result, int order, int depth) const
{
    if (depth < 0)
        return ZBErrC_ok;
    if (result.is_managed())
        return zberror(ZBErrC_ArrayEmpty, ZBLOC, "Array is managed, should not be managed...");
    for (DiaryEntry* child : get_children()) {
        if (slot.m_start.is_zero() || slot.within(child->get_etime().get_calc_date().m_start))
            result.push_back(child);
        if (depth > 0)
            child->query_entries(slot, result, E_SortNone, depth - 1);
    }
    if (order != E_SortNone)
        return sort_entries(result, order);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- state

bool DiaryEntry::is_active() const
{
    if (is_complete())
        return false;
    if (get_depend().get_activedepends() > 0)
        return false;
    if (get_nchildren() == 0) {
        const ZBDate& start = m_start.calc;
        return start.is_blank() || !(ZBDateUtils::now() < start);
    }
    for (const DiaryEntry* child : get_children())
        if (child->is_active())
            return true;
    return false;
}

void DiaryEntry::upgrade_active_depend(Diary& diary)
{
    // An entry that never had dependencies resolved waits for nothing.
    if (!m_depend)
        return;
    // Zero first, so that a loop back to this entry finds it settled.
    edit_depend().set_activedepends(0);
    for (int id : get_depend().get_full_depends()) {
        DiaryEntry* other = diary.get_entry_id(id);
        if (!other)
            continue;
        if (other->get_depend().get_activedepends() < 0)
            other->upgrade_active_depend(diary);
        if (other->is_active() || other->get_depend().get_activedepends() > 0) {
            edit_depend().set_activedepends(1);
            return;
        }
    }
}

void DiaryEntry::changed()
{
    mark_changed(ZBLOC, true);
}

int DiaryEntry::run_trigger(const std::string& trigger)
{
    int result = run_trigger_script(trigger);
    return iszberr(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int DiaryEntry::set_completion(double percent, bool quiet)
{
    // 100 or more is done; only a value below 0 (or not a number) is refused.
    if (!(percent >= 0.0))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Completion must be 0 or more, not %g.", percent);
    if (percent >= 100.0) {
        if (!is_complete() && iszbwarn(mark_complete(ZBDateUtils::now())))
            return zbpass(ZBLOC);
    } else {
        const bool reopening = is_complete();
        if (get_derived_entrytype() == 'T')
            m_time.set_orig(ZBDateSlot());
        if (reopening)
            run_trigger(C_TriggerReopen);
        ZBProgress progress = m_duration.orig;
        progress.set_completion(percent);
        m_duration.set_orig(progress);
    }
    clear_predicted(true);
    if (!quiet)
        changed();
    return ZBErrC_ok;
}

ZBDateSlot DiaryEntry::get_instance_slot() const
{
    if (get_derived_entrytype() == 'T')
        return ZBDateSlot(m_start.orig.is_ok() ? m_start.orig : m_due.orig, m_due.orig);
    return m_time.orig;
}

void DiaryEntry::move_instance(const ZBDate& start, const ZBDate& end)
{
    if (get_derived_entrytype() == 'T') {
        // A task's rule gives its due dates; a start-after keeps its distance before the due.
        if (m_start.orig.is_ok() && m_due.orig.is_ok())
            m_start.set_orig(m_start.orig + (start - m_due.orig));
        m_due.set_orig(start);
        return;
    }
    ZBDate finish = end;
    if (!finish.is_ok() || !(start < finish))
        finish = m_time.orig.m_end.is_ok() && m_time.orig.m_start.is_ok() ? start + m_time.orig.get_duration() : start;
    m_time.set_orig(ZBDateSlot(start, finish));
}

int DiaryEntry::mark_complete(const ZBDate& date)
{
    // The work stops with the completion, at its date; its time is kept.
    if (m_spent)
        m_spent->stop_session(date);
    if (Diary* diary = get_diary())
        if (diary->get_session_id() == get_id())
            diary->set_session_id(-1);

    // The instance just done ends at its own end (a task's due, or its
    // start-after when that is still to come); the slot of the next one may
    // run on from there.
    const ZBDateSlot instance = m_time.orig;
    ZBDate base = instance.m_end.is_ok() ? instance.m_end : instance.m_start;
    if (get_derived_entrytype() == 'T') {
        base = m_due.orig;
        if (m_start.orig.is_ok() && date < m_start.orig)
            base = m_start.orig;
    }
    m_time.set_orig(ZBDateSlot(date, date));
    edit_spent().set_closed(date);

    bool moved = false;
    if (get_repeat().is_repeating()) {
        ZBDateRepeat& rule = edit_repeat();
        const ZBDateSlot current = m_erepeat ? m_erepeat->get_current_repeat() : get_instance_slot();
        if (m_erepeat)
            m_erepeat->invalidate();
        rule.invalidate();
        // The series goes on from the day the work was done: the next
        // instance is the first one after the completion.
        const ZBDate next = rule.next_date(date, this);
        if (next.is_ok() && date < next) {
            ZBDateSlot slot = rule.generate_slot(base, next, ZBDate::C_Blank, this);
            if (slot == current && slot.m_start < date) {
                const ZBDate from = slot.m_end.is_ok() ? slot.m_end : slot.m_start;
                const ZBDate further = rule.next_date(from, this);
                slot = further.is_ok() && from < further
                           ? rule.generate_slot(base, further, ZBDate::C_Blank, this)
                           : ZBDateSlot();
            }
            if (slot.m_start.is_ok()) {
                if (get_derived_entrytype() != 'T')
                    m_time.set_orig(instance);
                edit_erepeat().set_next_repeat(slot.m_start, slot.m_end);
                ZBProgress progress = m_duration.orig;
                progress.set_completion(0.0);
                m_duration.set_orig(progress);
                ZBDate now = ZBDateUtils::now();
                if (m_plan)
                    m_plan->remove_plans(m_start.orig.is_ok() && now < m_start.orig ? m_start.orig : now);
                if (m_command)
                    m_command->reset_executed();
                moved = true;
            }
        }
    }
    if (!moved) {
        if (m_plan)
            m_plan->remove_plans(ZBDate::C_Blank);
        ZBProgress progress = m_duration.orig;
        progress.set_completion(100.0);
        m_duration.set_orig(progress);
    }
    trigger_update_vars();
    run_trigger(C_TriggerComplete);
    m_priorityFacet.set_nondue_priority(m_priority.orig);
    changed();
    clear_predicted(true);
    return ZBErrC_ok;
}

void DiaryEntry::clear_predicted(bool force)
{
    if (m_erepeat)
        m_erepeat->invalidate();
    if (m_plan)
        m_plan->clear_predicted();
    m_needRecalculate = true;
    if (force)
        if (Diary* diary = get_diary())
            diary->force_recalculate(true, true, false, false);
}

namespace {
// Reads one postpone text against the current value; false with the error
// reported when the text is not a date.
bool postpone_date(const std::string& text, const ZBDate& current, ZBDate& result)
{
    if (text.empty()) {
        result = current;
        return true;
    }
    if (is_blank_token(text)) {
        result = ZBDate::C_Blank;
        return true;
    }
    std::string full = text;
    const size_t at = text.find_first_not_of(' ');
    const char first = at == std::string::npos ? 0 : text[at];
    ZBDate base = current.is_ok() ? current : ZBDateUtils::now();
    // The date parser goes back with "+-": a leading "-" alone would be read
    // as part of the date in front of it.
    if (first == '+')
        full = base.to_string("%D %T ") + text;
    else if (first == '-')
        full = base.to_string("%D %T ") + "+" + text.substr(at);
    if (iszbwarn(ZBDateParser::read_checked(full, &base, nullptr, result)))
        return false;
    if (!result.is_ok())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid date value: %s", text.c_str()), false;
    result.set_timezone(ZBDate::C_DefaultTime);
    return true;
}
} // namespace

int DiaryEntry::postpone(const std::string& startText, const std::string& endText, int sequence)
{
    ZBDateSet* set = nullptr;
    int index = -1;
    ZBDate start;
    ZBDate end;
    const char type = get_derived_entrytype();
    if (sequence >= 1) {
        const char letter = char(get_type_seq(sequence));
        index = get_index_seq(sequence);
        set = letter == 'p' ? &edit_plan().edit_planned() : letter == 's' ? &edit_spent().edit_sessions() : nullptr;
        if (!set || index >= set->size())
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no session %d to postpone.", sequence);
        start = (*set)[index]->m_start;
        end = (*set)[index]->m_end;
    } else if (type == 'T') {
        start = m_start.orig;
        end = m_due.orig;
    } else {
        start = m_time.orig.m_start;
        end = m_time.orig.m_end;
    }
    ZBDate newStart;
    ZBDate newEnd;
    if (!postpone_date(startText, start, newStart))
        return zbpass(ZBLOC);
    // A relative end moves with a moved start when the end is read from the end.
    if (!postpone_date(endText, end, newEnd))
        return zbpass(ZBLOC);

    if (set) {
        const int resource = (*set)[index]->m_type;
        set->erase(index);
        set->add(ZBDateSlot(newStart, newEnd, true), resource);
    } else if (type == 'T') {
        m_start.set_orig(newStart);
        m_due.set_orig(newEnd);
    } else {
        if (!startText.empty() && endText.empty() && start.is_ok() && end.is_ok())
            newEnd = newStart + (end - start);
        m_time.set_orig(ZBDateSlot(newStart, newEnd.is_ok() ? newEnd : newStart, true));
    }
    changed();
    clear_predicted(true);
    return ZBErrC_ok;
}

void DiaryEntry::save_baseline(bool withDates)
{
    edit_baseline().set_duration(m_duration.orig.get_duration());
    if (withDates)
        edit_baseline().set_start_end(m_etime.get_calc_date());
}

void DiaryEntry::delete_resource(int id, int replacement)
{
    if (m_props.get_resource_orig() == id)
        m_props.set_resource_orig(replacement);
    if (m_props.get_resource_calc() == id)
        m_props.set_resource_calc(replacement);
}

// A child this entry's spec requires (its container declared with no suffix
// or with "[+]") is part of what the entry is, and is not folded away unasked.
bool DiaryEntry::is_mandatory_child(const DiaryEntry& child) const
{
    const ZBDatabase* db = get_database();
    const ZBObjectSpec* spec = db && get_specid() >= 0 ? db->get_objectspec_by_id(get_specid()) : nullptr;
    if (!spec)
        return false;
    const ZBObjectSpecChild* declared = spec->get_child_by_name(child.get_member_tag());
    return declared && declared->m_mandatory;
}

namespace {
// A finished entry's calculated priority carries the offset for its state;
// the fold keeps the highest that the user gave it or the entries folded in.
double folded_priority(const DiaryEntry& entry)
{
    double priority = entry.get_priority().orig;
    for (const DiaryEntry* child : entry.get_children())
        priority = std::max(priority, folded_priority(*child));
    return priority;
}
} // namespace

int DiaryEntry::compact(Diary* diary, bool force)
{
    for (DiaryEntry* child : std::vector<DiaryEntry*>(get_children().begin(), get_children().end()))
        if (iszbwarn(child->compact(diary, false)))
            return zbpass(ZBLOC);
    if (!is_complete() || !diary)
        return ZBErrC_ok;
    if (m_depend)
        m_depend->clear_depends();
    for (const DiaryEntry* child : get_children()) {
        const char type = child->get_derived_entrytype();
        if ((!force && is_mandatory_child(*child)) || (type != 'T' && type != 'A') || child->get_preserve())
            return ZBErrC_ok;
    }
    bool grandchild = false;
    for (const DiaryEntry* child : get_children())
        grandchild = grandchild || child->get_nchildren() > 0;
    if (grandchild) {
        for (DiaryEntry* child : std::vector<DiaryEntry*>(get_children().begin(), get_children().end()))
            if (iszbwarn(child->compact(diary, true)))
                return zbpass(ZBLOC);
        for (const DiaryEntry* child : get_children())
            if (child->get_nchildren() > 0)
                return ZBErrC_ok;
    }
    if (get_nchildren() == 0)
        return ZBErrC_ok;
    const ZBDuration baselineDuration = get_baseline().get_duration().orig;
    const ZBDateSlot baselineSlot = get_baseline().get_start_end().orig;
    const double priority = folded_priority(*this);
    const ZBProgress progress = m_duration.calc;
    const ZBDateSlot slot = m_etime.get_calc_date();
    const ZBDate startAfter = m_start.calc;
    const ZBDate due = m_due.calc;
    edit_spent().edit_sessions().set_keepduration(true);
    std::vector<int> fold;
    for (const DiaryEntry* child : get_children()) {
        edit_spent().edit_sessions().add(child->get_spent().get_sessions());
        if (!child->get_text().empty())
            set_text(get_text() + C_CompactSeparator + child->get_text());
        fold.push_back(child->get_id());
    }
    for (int id : fold)
        if (iszbwarn(diary->delete_object(id, std::string())))
            return zbpass(ZBLOC);
    const char type = get_entrytype();
    if (type == 'A' || type == 'J') {
        m_time.set_orig(slot);
    } else if (type == 'T') {
        m_duration.set_orig(progress);
        m_start.set_orig(startAfter);
        m_due.set_orig(due);
        edit_baseline().set_duration(baselineDuration);
        edit_baseline().set_start_end(baselineSlot);
    }
    m_priority.set_orig(priority);
    changed();
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- orderings

int DiaryEntry::compare_application(const DiaryEntry& a, const DiaryEntry& b)
{
    const char ta = a.get_derived_entrytype();
    const char tb = b.get_derived_entrytype();
    if (ta != tb)
        return application_rank(ta) > application_rank(tb);
    if (ta == 'T') {
        const double pa = a.get_priority().calc;
        const double pb = b.get_priority().calc;
        if (pa != pb)
            return pa < pb;
        if (b.is_complete()) {
            const ZBDate& ea = a.get_etime().get_calc_date().m_end;
            const ZBDate& eb = b.get_etime().get_calc_date().m_end;
            if (ea != eb)
                return ea < eb;
        } else if (!b.is_active()) {
            const ZBDate& sa = a.get_start().calc;
            const ZBDate& sb = b.get_start().calc;
            if (sa != sb)
                return sb < sa;
        } else {
            const ZBDate& da = a.get_due().calc;
            const ZBDate& db = b.get_due().calc;
            if (da != db)
                return db < da;
        }
        return a.get_id() > b.get_id();
    }
    if (ta == 'A') {
        if (a.is_complete() != b.is_complete())
            return a.is_complete();
        return b.get_etime().get_calc_date().m_start < a.get_etime().get_calc_date().m_start;
    }
    if (ta == 'D' || ta == 'P' || ta == 'L')
        return b.get_summary() < a.get_summary();
    return a.get_etime().get_calc_date().m_start < b.get_etime().get_calc_date().m_start;
}

int DiaryEntry::compare_alphabetical(const DiaryEntry& a, const DiaryEntry& b)
{
    return b.get_summary() < a.get_summary();
}

int DiaryEntry::compare_start_date(const DiaryEntry& a, const DiaryEntry& b)
{
    const ZBDate& sa = a.get_etime().get_calc_date().m_start;
    const ZBDate& sb = b.get_etime().get_calc_date().m_start;
    if (sa != sb)
        return sb < sa;
    return compare_application(a, b);
}

int DiaryEntry::compare_due_date(const DiaryEntry& a, const DiaryEntry& b)
{
    const ZBDate& da = a.get_due().calc;
    const ZBDate& db = b.get_due().calc;
    if (da != db)
        return db < da;
    return compare_application(a, b);
}

int DiaryEntry::compare_display_order(const DiaryEntry& a, const DiaryEntry& b)
{
    const int oa = a.get_priority_facet().get_display_order();
    const int ob = b.get_priority_facet().get_display_order();
    if (oa != ob)
        return oa > ob;
    return compare_application(a, b);
}

int DiaryEntry::compare_priority(const DiaryEntry& a, const DiaryEntry& b)
{
    const double pa = a.get_priority().calc;
    const double pb = b.get_priority().calc;
    if (pa != pb)
        return pa < pb;
    return compare_display_order(a, b);
}

int DiaryEntry::compare_child_priority(const DiaryEntry& a, const DiaryEntry& b)
{
    const double pa = a.get_priority_facet().get_max_child_priority();
    const double pb = b.get_priority_facet().get_max_child_priority();
    if (std::fabs(pa - pb) > 1e-8)
        return pa < pb;
    return a.get_id() > b.get_id();
}

int DiaryEntry::compare_plan(const DiaryEntry& a, const DiaryEntry& b)
{
    if (a.get_priority().calc > EntryPriority::C_PriorityUrgent || b.get_priority().calc > EntryPriority::C_PriorityUrgent
        || !a.m_planStart.is_ok() || !b.m_planStart.is_ok())
        return compare_priority(a, b);
    return b.m_planStart < a.m_planStart;
}

int DiaryEntry::compare_type(const DiaryEntry& a, const DiaryEntry& b)
{
    if (a.get_entrytype() != b.get_entrytype())
        return type_priority(a.get_derived_entrytype()) > type_priority(b.get_derived_entrytype());
    return compare_alphabetical(a, b);
}

int DiaryEntry::sort_entries(ZBPtrArray<DiaryEntry>& entries, int order)
{
    ZBPtrArray<DiaryEntry>::CompareFn compare = nullptr;
    switch (order) {
    case E_SortApplication:
        compare = &compare_application;
        break;
    case E_SortAlphabetical:
        compare = &compare_alphabetical;
        break;
    case E_SortStartDate:
        compare = &compare_start_date;
        break;
    case E_SortDisplayOrder:
        compare = &compare_display_order;
        break;
    case E_SortDueDate:
        compare = &compare_due_date;
        break;
    case E_SortPriority:
        compare = &compare_priority;
        break;
    case E_SortChildPriority:
        compare = &compare_child_priority;
        break;
    default:
        return ZBErrC_ok;
    }
    return entries.sort(compare);
}

// ---------------------------------------------------------------- recalculation

int DiaryEntry::recalculate_push_down(Diary* diary)
{
    DiaryEntry* parent = get_parent_entry();
    EntryDue& due = due_pass();
    const int result = due.recalculate_push_down(parent, diary);
    keep_due_pass(due, false);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    int resource = parent ? parent->get_props().get_resource_calc() : m_props.get_resource_orig();
    // A top-level entry left to its parent, or naming a resource that is gone,
    // is booked against the first resource.
    if (diary && (resource < 0 || !diary->get_resource_by_id(resource)))
        resource = diary->get_default_resource_id();
    m_props.upgrade_resource(resource);
    if (diary && m_props.get_resource_calc() >= 0 && !diary->get_resource_by_id(m_props.get_resource_calc()))
        m_props.set_resource_calc(resource);
    m_props.upgrade_time_type(parent ? parent->get_props().get_timetype_calc() : TimeType::C_UnassignedTimeTypeId);
    m_priorityFacet.reset_initial_priority();
    return ZBErrC_ok;
}

int DiaryEntry::recalculate(int phase, Diary* diary, int cycle)
{
    const bool all = phase < 0;
    if (phase == 1 || all) {
        calc_derived_entrytype();
        // The series settles on its instance before its dates are pushed down.
        if (get_repeat().is_repeating() && iszbwarn(edit_erepeat().update()))
            return zbpass(ZBLOC);
        if (iszbwarn(recalculate_push_down(diary)))
            return zbpass(ZBLOC);
        if (m_depend)
            m_depend->set_activedepends(-1);
    }
    if (phase == 4 || all) {
        if (diary) {
            if (get_depend().get_activedepends() < 0)
                upgrade_active_depend(*diary);
            // A task already past its latest start or its due delays what its
            // resource does until that due.
            const ZBDate& mustStart = get_muststart();
            const ZBDate now = ZBDateUtils::now();
            if (get_nchildren() == 0 && !is_complete() && get_derived_entrytype() == 'T' && m_due.calc.is_ok()
                && ((mustStart.is_ok() && mustStart <= now) || m_due.calc <= now))
                diary->set_delayed_range(m_props.get_resource_calc(), m_due.calc);
        } else if (m_depend && m_depend->get_activedepends() < 0) {
            m_depend->set_activedepends(0);
        }
        m_priorityFacet.calc_initial_priority(diary);
    }
    if (!all)
        for (DiaryEntry* child : get_children())
            if (iszbwarn(child->recalculate(phase, diary, cycle)))
                return zbpass(ZBLOC);
    if (phase == 0)
        recalculate_recalculate(cycle);
    const bool need = m_needRecalculate;
    if (phase == 2) {
        EntryDue& due = due_pass();
        due.push_dependencies(diary);
        keep_due_pass(due, false);
    }
    if (phase == 3 || all) {
        calc_derived_entrytype();
        EntryDue& due = due_pass();
        due.recalculate_start_after();
        due.recalculate_due();
        recalculate_spent(need);
        const int result = due.recalculate_autocompletion(need);
        if (!iszbwarn(result)) {
            m_etime.recalculate_date();
            due.recalculate_duration(need);
        }
        keep_due_pass(due, !iszbwarn(result));
        if (iszbwarn(result))
            return zbpass(ZBLOC);
        // Most entries keep the shared plan facet: the state lives here until
        // the entry has a plan of its own.
        if (need) {
            if (m_plan)
                m_plan->recalculate_isplanned(need);
            else
                m_notPlanned = !EntryPlan::calc_isplanned(*this);
        }
    }
    if (phase == 5 || all) {
        if (m_plan || EntryPlan::calc_overrun(*this))
            edit_plan().recalculate_overruns();
        m_priorityFacet.recalculate_priority(diary);
        m_props.update_alerts(diary, false);
        recalculate_baseline();
        update_first_plan();
        // A new entry is filled in after it is made, often without a mark;
        // its first pass in the tree does everything again.
        if (!all)
            m_needRecalculate = false;
        m_lastRecalculate = get_last_update();
    }
    return ZBErrC_ok;
}

void DiaryEntry::recalculate_spent(bool need)
{
    if (!need)
        return;
    // Most entries have no time of their own or below: no facet is made for them.
    bool any = m_spent != nullptr;
    for (const DiaryEntry* child : get_children())
        any = any || !child->get_spent().get_time_spent().is_zero();
    if (!any && get_nchildren() == 0 && get_derived_entrytype() == 'J')
        any = m_time.orig.m_start.is_ok() && m_time.orig.m_start < m_time.orig.m_end;
    if (any)
        edit_spent().recalculate_spent(need);
}

void DiaryEntry::recalculate_baseline()
{
    ZBDuration duration;
    ZBDateSlot slot;
    if (get_nchildren() > 0) {
        // A parent's baseline holds only when every child has one.
        bool noHours = false;
        bool noStart = false;
        for (const DiaryEntry* child : get_children()) {
            const EntryBaseline& baseline = child->get_baseline();
            if (baseline.get_calc_duration().is_zero())
                noHours = true;
            else
                duration += baseline.get_calc_duration();
            const ZBDateSlot& own = baseline.get_calc_startend();
            if (!own.m_start.is_ok() || own.m_start.is_zero())
                noStart = true;
            else if (!slot.m_start.is_ok() || own.m_start < slot.m_start)
                slot.m_start = own.m_start;
            if (own.m_end.is_ok() && !own.m_end.is_zero() && (!slot.m_end.is_ok() || slot.m_end < own.m_end))
                slot.m_end = own.m_end;
        }
        if (noHours)
            duration = ZBDuration();
        if (noStart)
            slot = ZBDateSlot();
    }
    if (!m_baseline && duration.is_zero() && !slot.m_end.is_ok())
        return;
    EntryBaseline& baseline = edit_baseline();
    // Work done is the time recorded in sessions; without any, the done part of the length.
    const ZBDuration remaining = m_duration.calc.get_remaining();
    ZBDuration completed = get_spent().get_time_spent();
    if (completed.is_zero())
        completed = m_duration.calc.get_duration() - remaining;
    baseline.update_calcs(completed, remaining, m_etime.get_calc_date().m_end, duration, slot);
    if (baseline.auto_save(m_duration.calc.get_duration(), m_etime.get_calc_date()) == ZBErrC_okHandled)
        changed();
}

void DiaryEntry::recalculate_recalculate(int cycle)
{
    if (m_needRecalculate)
        return;
    const ZBDateRepeat& rule = get_repeat();
    const ZBDate& rangeEnd = rule.get_range_end();
    const char type = get_derived_entrytype();
    bool need = get_id() % 10 == cycle % 10 || has_changed_since(m_lastRecalculate) || (type == 'T' && !is_complete());
    if (!need && rule.is_repeating()) {
        if (type == 'T')
            need = !rangeEnd.is_ok() || m_due.calc < rangeEnd;
        else if (type == 'A')
            need = !rangeEnd.is_ok() || m_etime.get_calc_date().m_end < rangeEnd;
    }
    for (const DiaryEntry* child : get_children()) {
        if (need)
            break;
        need = child->m_needRecalculate;
    }
    m_needRecalculate = need;
}

void DiaryEntry::load_predicted(const Diary& copy, long stamp)
{
    if (!has_changed_since(stamp)) {
        const DiaryEntry* other = copy.get_entry_id(get_id());
        if (!other) {
            edit_plan().load_predicted(nullptr);
        } else {
            edit_plan().load_predicted(other->m_plan.get() ? other->m_plan.get() : &other->get_plan());
            // The planner's start and due, as it pushed them along the dependencies.
            m_start.calc = other->m_start.calc;
            m_due.calc = other->m_due.calc;
            // The instances the planner worked from, when the rule is still
            // the one it worked on, so that the views need not make them again.
            if (get_repeat().is_repeating() && get_repeat() == other->get_repeat())
                edit_repeat().load_slots(other->get_repeat());
            if (other->m_depend || m_depend)
                edit_depend().upload(other->get_depend());
        }
    }
    for (DiaryEntry* child : get_children())
        child->load_predicted(copy, stamp);
    update_first_plan();
}

void DiaryEntry::update_first_plan()
{
    if (get_derived_entrytype() == 'A') {
        m_planStart = m_etime.get_calc_date().m_start;
        return;
    }
    ZBDate first = ZBDate::C_Blank;
    for (const ZBDateSet* set : {&get_plan().get_planned(), &get_plan().get_predicted()}) {
        if (set->empty())
            continue;
        ZBDate start = set->start();
        if (start.is_ok() && !start.is_zero() && (!first.is_ok() || start < first))
            first = start;
    }
    m_planStart = first;
}

// ---------------------------------------------------------------- fixed plans and clashes

void DiaryEntry::get_calendar_slots(const ZBDateSlot& range, std::vector<ZBDateSlot>& out) const
{
    const ZBDateSlot& own = m_time.calc;
    if (get_repeat().is_repeating()) {
        if (range.m_start.is_ok() && range.m_end.is_ok())
            // Bounded: an appointment every minute for years is not a calendar.
            get_repeat().generate_slots(own, range, 100000, nullptr, out);
        return;
    }
    if (own.m_start.is_ok() && own.m_end.is_ok()
        && (!range.m_start.is_ok() || !range.m_end.is_ok() || ZBDateSlot::intersects(own, range)))
        out.push_back(own);
}

void DiaryEntry::remove_fixed(ZBDateSet& set, const ZBDateSlot& slot, int resource, bool withSpent) const
{
    get_plan().remove_fixed(set, resource);
    if (withSpent) {
        const ZBDateSet& sessions = get_spent().get_sessions();
        for (int i = 0; i < sessions.size(); ++i)
            if (resource < 0 || sessions[i]->m_type == resource)
                set.subtract(sessions[i]->slot(), -1);
    }
    if (get_derived_entrytype() == 'A' && get_nchildren() == 0 && m_props.get_timetype_calc() >= 0
        && (resource < 0 || m_props.get_resource_calc() == resource)) {
        if (m_time.orig.m_start.is_ok() && m_time.orig.m_end.is_ok() && m_time.orig.m_start < m_time.orig.m_end)
            set.subtract(m_time.orig, -1);
        std::vector<ZBDateSlot> instances;
        if (get_repeat().is_repeating() && slot.m_start.is_ok() && slot.m_end.is_ok())
            get_repeat().generate_slots(m_time.calc, slot, 100000, nullptr, instances);
        for (const ZBDateSlot& instance : instances)
            if (instance.m_start < instance.m_end)
                set.subtract(instance, -1);
    }
    for (const DiaryEntry* child : get_children())
        if (!child->is_deleted())
            child->remove_fixed(set, slot, resource, withSpent);
}

int DiaryEntry::check_clashing(ZBCalendar& calendar, const ZBDateSlot& slot, int resource) const
{
    const ZBDateSet& planned = get_plan().get_planned();
    for (int i = 0; i < planned.size(); ++i) {
        const ZBDateSetEntry& session = *planned[i];
        // A session typed with no resource of its own books the entry's.
        const Diary* diary = get_diary();
        const bool known = diary && diary->get_resource_by_id(session.m_type);
        const int owner = known ? session.m_type : m_props.get_resource_calc();
        if (owner != resource || session.m_start == session.m_end)
            continue;
        if (slot.m_start.is_ok() && slot.m_end.is_ok() && !ZBDateSlot::intersects(session.slot(), slot))
            continue;
        ZBCalendarEntry* item =
            new ZBCalendarEntry(ZBId(get_id(), get_sequence('p', i)), session.slot(), get_summary());
        item->set_datatype(EntryPlan::C_CalendarPlanned);
        if (iszbwarn(calendar.add_entry(item)))
            return zbpass(ZBLOC);
    }
    const int timeType = m_props.get_timetype_orig();
    if (get_derived_entrytype() == 'A' && get_nchildren() == 0 && m_props.get_resource_calc() == resource
        && timeType != TimeType::C_FreeTimeTypeId && timeType != TimeType::C_UnknownTimeTypeId
        && timeType != TimeType::C_UnassignedTimeTypeId) {
        std::vector<ZBDateSlot> found;
        get_calendar_slots(slot, found);
        for (const ZBDateSlot& instance : found) {
            if (!(instance.m_start < instance.m_end))
                continue;
            ZBCalendarEntry* item = new ZBCalendarEntry(ZBId(get_id()), instance, get_summary());
            if (iszbwarn(calendar.add_entry(item)))
                return zbpass(ZBLOC);
        }
    }
    for (const DiaryEntry* child : get_children())
        if (!child->is_deleted() && iszbwarn(child->check_clashing(calendar, slot, resource)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

} // namespace Tervalon
