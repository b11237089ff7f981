#include "AppTervalonDiary/diary/entryrepeat.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryRepeat", &EntryRepeat::create_zbobject);

// Whether two dates fall on the same day as the user reads them.
bool same_day(const ZBDate& a, const ZBDate& b)
{
    return a.is_ok() && b.is_ok() && a.to_string("%D") == b.to_string("%D");
}

int cast_entry(ZBDatabase* db, ZBDBObject* object, Diary*& diary, DiaryEntry*& entry)
{
    diary = dynamic_cast<Diary*>(db);
    if (!diary)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to Diary failed.");
    entry = dynamic_cast<DiaryEntry*>(object);
    if (!entry)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to DiaryEntry failed.");
    if (!entry->get_repeat().is_repeating() || entry->get_repeat().is_manual())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The entry \"%s\" (%d) does not repeat.",
                          entry->get_summary().c_str(), entry->get_id());
    return ZBErrC_ok;
}

// A copy of entry placed beside it, standing alone, with no rule. A copy of
// the current instance keeps its plans and the work done so far; one of a
// later instance starts with none.
int add_copy(Diary& diary, const DiaryEntry& entry, bool later, DiaryEntry*& out)
{
    out = nullptr;
    ZBDBObject* object = nullptr;
    if (iszbwarn(diary.clone_object(entry.get_id(), object)))
        return zbpass(ZBLOC);
    DiaryEntry* copy = dynamic_cast<DiaryEntry*>(object);
    if (!copy) {
        delete object;
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to DiaryEntry failed.");
    }
    copy->edit_repeat().clear_repeat();
    copy->clear_predicted(false);
    if (later) {
        if (!copy->get_plan().get_planned().empty())
            copy->edit_plan().edit_planned().clear();
        // Facets are made on first edit; one the series never had stays unmade.
        if (!copy->get_spent().get_sessions().empty() || copy->get_spent().get_closed().is_ok()) {
            copy->edit_spent().edit_sessions().clear();
            copy->edit_spent().set_closed(ZBDate(ZBDate::E_Blank));
        }
        if (!copy->get_command().get_exec_command().empty())
            copy->edit_command().reset_executed();
        ZBProgress progress = copy->get_duration().orig;
        progress.set_completion(0.0);
        copy->edit_duration().set_orig(progress);
    }
    ZBDBObject* parent = entry.get_parent() ? entry.get_parent() : static_cast<ZBDBObject*>(&diary);
    if (iszbwarn(diary.add_object(copy, parent, DiaryEntry::C_EntryTag, entry.get_member_tag(), entry.get_specid(),
                                  std::string()))) {
        delete copy;
        return zbpass(ZBLOC);
    }
    out = copy;
    return ZBErrC_ok;
}
} // namespace

EntryRepeat::EntryRepeat()
{
    EntryRepeat::register_zbobject();
    EntryRepeat::set_defaults(true);
}

void EntryRepeat::register_zbobject()
{
    register_objectname("EntryRepeat", &EntryRepeat::create_zbobject);
}

int EntryRepeat::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryRepeat>(out, from, "EntryRepeat");
}

void EntryRepeat::set_defaults(bool)
{
    m_current = ZBDateSlot();
    m_valid = false;
    clear_slots();
}

void EntryRepeat::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryRepeat", out, indent);
    dump.add("m_current", m_current);
    dump.add("m_valid", m_valid);
    dump.add("m_slots", int(m_slots.size()));
    dump.add("m_pastSlots", int(m_pastSlots.size()));
}

int EntryRepeat::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // Older files kept the rule in fields of the entry; the entry reads them
    // into its rule, as they belong to the record rather than to this bridge.
    (void)owner;
    (void)in;
    (void)out;
    (void)prefix;
    (void)version;
    return ZBErrC_ok;
}

void EntryRepeat::invalidate()
{
    m_valid = false;
    clear_slots();
}

void EntryRepeat::clear_slots()
{
    m_slots.clear();
    m_pastSlots.clear();
    m_generated = false;
    m_generatedAll = false;
    m_generatedRange = ZBDateSlot();
    m_generatedLimit = 0;
}

// ---------------------------------------------------------------- generating

int EntryRepeat::generate_slots(bool all, const ZBDateSlot& range, int limit)
{
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return zberror(ZBErrC_NullPointer, ZBLOC, "Assertion Failed: get_entry( ) != nullptr");
    if (m_generated && m_generatedAll == all && m_generatedRange == range && m_generatedLimit == limit)
        return ZBErrC_ok;
    clear_slots();
    m_generated = true;
    m_generatedAll = all;
    m_generatedRange = range;
    m_generatedLimit = limit;
    if (limit <= 0)
        return ZBErrC_ok;

    const char type = entry->get_derived_entrytype();
    const bool task = type == 'T';
    ZBDateSlot window = range;
    if (task) {
        if (entry->get_start().calc.is_ok())
            window.m_start = entry->get_start().calc;
        if (entry->get_due().calc.is_ok())
            window.m_end = entry->get_due().calc;
        if (window.m_start.is_ok() && window.m_end.is_ok() && window.m_end < window.m_start)
            std::swap(window.m_start, window.m_end);
    } else if (type == 'A' && entry->get_time().calc.is_ok()) {
        window = entry->get_time().calc;
    }

    const ZBDateRepeat& rule = entry->get_repeat();
    if (!rule.is_repeating() || rule.is_manual()) {
        m_slots.push_back(window);
        return ZBErrC_ok;
    }

    // The rule steps from the current instance in its own form: a task's
    // dates are its due dates, an appointment's its starts.
    ZBDateSlot seed;
    if (task && entry->get_due().calc.is_ok()) {
        // From the rule's own date: a due a parent brought forward is not one.
        const ZBDate& due = entry->get_due().orig.is_ok() ? entry->get_due().orig : window.m_end;
        seed = ZBDateSlot(due, due);
    }
    else if (!task && entry->get_time().calc.m_start.is_ok())
        seed = window;
    std::vector<ZBDateSlot> found;
    if (iszbwarn(rule.generate_slots(seed, range, limit, entry, found)))
        return zbpass(ZBLOC);

    const ZBDateSlot& own = entry->get_time().orig;
    const ZBDuration length = own.m_start.is_ok() && own.m_end.is_ok() && own.m_start < own.m_end
                                  ? own.m_end - own.m_start
                                  : ZBDuration();
    const ZBDate& startOrig = entry->get_start().orig;
    const ZBDate& dueOrig = entry->get_due().orig;
    const bool hasLead = startOrig.is_ok() && dueOrig.is_ok() && startOrig < dueOrig;
    // An appointment's instance ends where the rule says only when the rule
    // gives it an end of its own; "until the next one" would book the whole
    // period, so such a rule keeps the entry's length.
    ZBDuration offset;
    int offsetDays = 0;
    const int offsetKind = rule.get_offset_details(offset, offsetDays);
    const bool ruleEnds = offsetKind != ZBDateRepeat::E_OffLast && offsetKind != ZBDateRepeat::E_OffBlank;
    auto appointment = [&](const ZBDateSlot& step) {
        if (length > ZBDuration() && (!ruleEnds || !(step.m_start < step.m_end)))
            return ZBDateSlot(step.m_start, step.m_start + length);
        return step;
    };
    const ZBDuration lead = hasLead ? dueOrig - startOrig : ZBDuration();

    m_slots.reserve(found.size());
    size_t first = 0;
    ZBDate previous = window.m_start;
    if (seed.m_start.is_ok()) {
        m_slots.push_back(window);
        previous = task ? window.m_end : window.m_start;
        first = 1;
    }
    for (size_t i = first; i < found.size(); ++i) {
        const ZBDateSlot& step = found[i];
        if (task) {
            m_slots.emplace_back(hasLead ? step.m_start - lead : previous, step.m_start);
            previous = step.m_start;
        } else {
            m_slots.push_back(appointment(step));
        }
    }

    if (all && range.m_start.is_ok()) {
        std::vector<ZBDateSlot> back;
        const ZBDate stop = seed.m_start.is_ok() ? seed.m_start : (found.empty() ? range.m_end : found.front().m_start);
        // A rule that steps from wherever it starts lines up with the series
        // only from the series' begin.
        ZBDate from = range.m_start;
        if (rule.get_range_start().is_ok() && range.m_start < rule.get_range_start())
            from = rule.get_range_start();
        if (iszbwarn(rule.generate_back_slots(ZBDateSlot(stop, stop), ZBDateSlot(from, stop), limit, entry, back)))
            return zbpass(ZBLOC);
        m_pastSlots.reserve(back.size());
        for (size_t i = 0; i < back.size(); ++i) {
            const ZBDateSlot& step = back[i];
            if (task) {
                // Nearest first, so the instance before this one comes next.
                const ZBDate before = i + 1 < back.size() ? back[i + 1].m_start : ZBDate(ZBDate::E_Blank);
                m_pastSlots.emplace_back(hasLead ? step.m_start - lead : before, step.m_start);
            } else {
                m_pastSlots.push_back(appointment(step));
            }
        }
    }
    return ZBErrC_ok;
}

bool EntryRepeat::slot_match(const ZBDateSlot& slot) const
{
    for (const ZBDateSlot& instance : m_slots)
        if (instance.m_end.is_ok() && slot.within(instance.m_end))
            return true;
    return false;
}

ZBDuration EntryRepeat::separation() const
{
    if (m_slots.size() < 2 || !m_slots[0].m_end.is_ok() || !m_slots[1].m_end.is_ok())
        return ZBDuration();
    return m_slots[1].m_end - m_slots[0].m_end;
}

// ---------------------------------------------------------------- the current instance

ZBDateSlot EntryRepeat::get_current_repeat() const
{
    if (m_valid)
        return m_current;
    const DiaryEntry* entry = get_entry();
    return entry ? entry->get_instance_slot() : ZBDateSlot();
}

void EntryRepeat::set_next_repeat(const ZBDate& start, const ZBDate& end)
{
    m_current = ZBDateSlot(start, end);
    m_valid = true;
    if (DiaryEntry* entry = get_entry())
        entry->move_instance(start, end);
}

int EntryRepeat::update()
{
    DiaryEntry* entry = get_entry();
    if (!entry || !entry->get_repeat().is_repeating())
        return ZBErrC_ok;
    const ZBDateRepeat& rule = entry->get_repeat();
    const bool task = entry->get_derived_entrytype() == 'T';
    const ZBDate now = ZBDateUtils::now();
    bool changed = false;

    if (rule.get_range_start().is_ok() && now < rule.get_range_start()) {
        std::vector<ZBDateSlot> first;
        if (iszbwarn(rule.generate_slots(ZBDateSlot(), ZBDateSlot(rule.get_range_start(), ZBDate(ZBDate::E_Blank)), 1,
                                         entry, first)))
            return zbpass(ZBLOC);
        const ZBDate& standing = task ? entry->get_due().orig : entry->get_time().orig.m_start;
        if (!first.empty() && standing != first.front().m_start) {
            set_next_repeat(first.front().m_start, first.front().m_end);
            changed = true;
        }
    }

    const ZBDate& end = rule.get_range_end();
    ZBDate at = entry->get_time().orig.m_start;
    if (task)
        at = entry->get_due().orig.is_ok() ? entry->get_due().orig : entry->get_start().orig;
    ZBProgress progress = entry->get_duration().orig;
    if (end.is_ok() && at.is_ok() && end < at) {
        // The series has run out: its last instance was the one done.
        if (progress.get_completion() < 100.0) {
            progress.set_completion(100.0);
            entry->edit_duration().set_orig(progress);
            changed = true;
        }
    } else if (progress.get_completion() >= 100.0) {
        progress.set_completion(0.0);
        entry->edit_duration().set_orig(progress);
        if (!entry->get_command().get_exec_command().empty())
            entry->edit_command().reset_executed();
        changed = true;
    }
    if (changed) {
        invalidate();
        entry->mark_changed(ZBLOC, true);
    }
    return ZBErrC_ok;
}

ZBDateSlot EntryRepeat::previous_slot(bool completed) const
{
    const DiaryEntry* entry = get_entry();
    if (!entry || !entry->get_repeat().is_repeating())
        return ZBDateSlot();
    ZBDate closed;
    if (completed)
        closed = entry->get_spent().get_closed();
    if (!closed.is_ok())
        closed = entry->get_derived_entrytype() == 'T' ? entry->get_time().orig.m_end : entry->get_time().orig.m_start;
    if (!closed.is_ok())
        return ZBDateSlot();
    // A working copy, so that the entry's own rule keeps what it generated.
    ZBDateRepeat rule = entry->get_repeat();
    // Rules step forward only: walk from far enough back to hold two periods.
    const int days = std::max(1, std::min(rule.days_between(), 3650));
    ZBDate from = closed - ZBDuration(std::int64_t(days) * 2 * ZBDate::C_DaySecs);
    if (rule.get_range_start().is_ok() && from < rule.get_range_start())
        from = rule.get_range_start();
    std::vector<ZBDateSlot> back;
    rule.generate_back_slots(ZBDateSlot(closed, closed), ZBDateSlot(from, closed), 1, entry, back);
    return back.empty() ? ZBDateSlot() : back.front();
}

// ---------------------------------------------------------------- breaking instances out

ZBDate EntryRepeat::key_date(const DiaryEntry& entry, const ZBDateSlot& slot)
{
    return entry.get_derived_entrytype() == 'T' ? slot.m_end : slot.m_start;
}

void EntryRepeat::apply_instance(DiaryEntry& target, const ZBDateSlot& slot, bool withStart)
{
    if (target.get_derived_entrytype() == 'T') {
        if (withStart && slot.m_start.is_ok())
            target.edit_start().set_orig(slot.m_start);
        if (slot.m_end.is_ok())
            target.edit_due().set_orig(slot.m_end);
    } else {
        target.edit_time().set_orig(slot);
    }
}

int EntryRepeat::regenerate(DiaryEntry& entry, const ZBDate& date)
{
    const Diary* diary = entry.get_diary();
    ZBDateSlot range = diary ? diary->get_settings().get_lookahead_date(false) : ZBDateSlot();
    if (!range.m_start.is_ok())
        range = ZBDateSlot(ZBDateUtils::now(), ZBDate(ZBDate::E_Blank));
    // An instance asked for beyond the planning horizon is still found.
    if (date.is_ok() && range.m_end.is_ok() && range.m_end < date)
        range.m_end = date + ZBDuration(std::int64_t(ZBDate::C_DaySecs));
    // The working values come from the entry as it stands now.
    entry.recalculate(-1, entry.get_diary(), 0);
    EntryRepeat& bridge = entry.edit_erepeat();
    bridge.invalidate();
    if (iszbwarn(bridge.generate_slots(false, range, C_MaxInstances)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int EntryRepeat::create_instance(ZBDatabase* db, ZBDBObject* object, const ZBDate& date, int sequence, int* out)
{
    if (out)
        *out = -1;
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(cast_entry(db, object, diary, entry)) || iszbwarn(regenerate(*entry, date)))
        return zbpass(ZBLOC);
    const std::vector<ZBDateSlot> instances = entry->get_erepeat().get_slots();
    int found = -1;
    if (date.is_ok()) {
        // The instance on the day the user named, else the one whose span holds it.
        for (int i = 0; i < int(instances.size()) && found < 0; ++i)
            if (same_day(key_date(*entry, instances[i]), date))
                found = i;
        for (int i = 0; i < int(instances.size()) && found < 0; ++i)
            if (instances[i].m_start.is_ok() && instances[i].m_end.is_ok() && instances[i].m_start < date && date <= instances[i].m_end)
                found = i;
    } else if (sequence >= 0 && sequence < int(instances.size())) {
        found = sequence;
    }
    if (found < 0) {
        if (date.is_ok())
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The entry \"%s\" (%d) has no instance on %s.",
                              entry->get_summary().c_str(), entry->get_id(), date.to_string("%C").c_str());
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The entry \"%s\" (%d) has no instance %d.",
                          entry->get_summary().c_str(), entry->get_id(), sequence);
    }
    const ZBDateSlot slot = instances[found];
    const ZBDate key = key_date(*entry, slot);
    const bool withStart = entry->get_start().orig.is_ok();
    // The last instance of the series: the rule gives none after it.
    const ZBDateRepeat& rule = entry->get_repeat();
    const ZBDate next = rule.next_date(key, entry);
    const bool last = !(next.is_ok() && key < next) || (rule.get_range_end().is_ok() && rule.get_range_end() < next);

    if (found == 0 && last) {
        // The only instance left: the series itself becomes the entry.
        entry->edit_repeat().clear_repeat();
        entry->clear_predicted(false);
        entry->mark_changed(ZBLOC, true);
        if (out)
            *out = entry->get_id();
        return ZBErrC_ok;
    }
    DiaryEntry* copy = nullptr;
    if (iszbwarn(add_copy(*diary, *entry, found > 0, copy)))
        return zbpass(ZBLOC);
    if (found > 0) {
        apply_instance(*copy, slot, withStart);
        entry->edit_repeat().exclude_day(key);
        if (last && found == 1) {
            // Only the current instance is left in the series.
            entry->edit_repeat().clear_repeat();
        }
    } else {
        // The series moves on to its next instance; the plans made for the
        // one that left went with it.
        const ZBDateSlot& next = instances.size() > 1 ? instances[1] : slot;
        apply_instance(*entry, next, withStart);
        if (!entry->get_plan().get_planned().empty())
            entry->edit_plan().remove_plans(next.m_start.is_ok() ? next.m_start : key_date(*entry, next));
        // So did the time spent on it since the series was last done; what
        // was spent before stays with the series' history.
        const ZBDateSet& spent = entry->get_spent().get_sessions();
        if (!spent.empty()) {
            const ZBDate closed = entry->get_spent().get_closed();
            const ZBDate from = closed.is_ok() ? closed : spent.start();
            const ZBDate to = std::max(spent.end(), from) + ZBDuration(1);
            entry->edit_spent().edit_sessions().subtract(ZBDateSlot(from, to), -1);
            if (closed.is_ok())
                copy->edit_spent().edit_sessions().subtract(ZBDateSlot(spent.start(), closed), -1);
        }
    }
    copy->recalculate(-1, diary, 0);
    entry->clear_predicted(false);
    entry->mark_changed(ZBLOC, true);
    diary->force_recalculate(true, false, false, false);
    if (out)
        *out = copy->get_id();
    return ZBErrC_ok;
}

int EntryRepeat::create_sequence(ZBDatabase* db, ZBDBObject* object, int count, bool setDates, bool chain,
                                 std::vector<int>* out)
{
    if (out)
        out->clear();
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(cast_entry(db, object, diary, entry)))
        return zbpass(ZBLOC);
    if (count < 1 || count > C_MaxInstances)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The number of entries must be from 1 to %d, not %d.",
                          C_MaxInstances, count);
    if (iszbwarn(regenerate(*entry, ZBDate(ZBDate::E_Blank))))
        return zbpass(ZBLOC);
    const std::vector<ZBDateSlot> instances = entry->get_erepeat().get_slots();
    // Refused before anything changes: dates for every copy, or none.
    if (setDates && int(instances.size()) < count)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                          "The entry \"%s\" (%d) has only %d instances to give dates to %d entries.",
                          entry->get_summary().c_str(), entry->get_id(), int(instances.size()), count);
    const bool withStart = entry->get_start().orig.is_ok();
    entry->edit_repeat().clear_repeat();
    entry->clear_predicted(false);
    entry->mark_changed(ZBLOC, true);
    if (out)
        out->push_back(entry->get_id());
    int previous = entry->get_id();
    for (int i = 1; i < count; ++i) {
        DiaryEntry* copy = nullptr;
        if (iszbwarn(add_copy(*diary, *entry, true, copy)))
            return zbpass(ZBLOC);
        if (setDates)
            apply_instance(*copy, instances[i], withStart);
        if (chain)
            copy->edit_depend().add_depend(previous);
        copy->recalculate(-1, diary, 0);
        previous = copy->get_id();
        if (out)
            out->push_back(previous);
    }
    diary->force_recalculate(true, false, false, false);
    return ZBErrC_ok;
}

} // namespace Tervalon
