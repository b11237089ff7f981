#include "AppTervalonDiary/diary/entrydue.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryDue", &EntryDue::create_zbobject);
}

EntryDue::EntryDue()
{
    EntryDue::register_zbobject();
    EntryDue::set_defaults(true);
}

void EntryDue::register_zbobject()
{
    register_objectname("EntryDue", &EntryDue::create_zbobject);
}

int EntryDue::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryDue>(out, from, "EntryDue");
}

void EntryDue::set_defaults(bool)
{
    m_autoProgress = E_Manual;
    m_totalDuration.clear();
}

void EntryDue::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryDue", out, indent);
    dump.add("m_autoProgress", m_autoProgress);
}

int EntryDue::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    owner.serialise_field<int>(in, out, prefix, "ap", m_autoProgress, int(E_Manual));
    return ZBErrC_ok;
}

std::string EntryDue::autoprogress_to_string(int kind)
{
    switch (kind) {
    case E_MatchSpent:
        return "Progress Match Time Spent";
    case E_MatchRange:
        return "Progress Match Time Range";
    default:
        return "Manual Progress";
    }
}

// ---------------------------------------------------------------- the entry's pairs

namespace {
const ZBDate g_blank{ZBDate::E_Blank};
// A last step before the next minute, so that a due at a slot's end still
// lies inside the slot.
const ZBDuration g_minute(60);
// Pushes along dependencies cannot loop (loops are not resolved), but a
// damaged file must not recurse without end.
constexpr int C_MaxPushDepth = 2000;
} // namespace

const ZBDate& EntryDue::get_startafter_orig() const
{
    return get_entry() ? get_entry()->get_start().orig : g_blank;
}

void EntryDue::set_startafter_orig(const ZBDate& date)
{
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_start().orig == date)
        return;
    entry->edit_start().set_orig(date);
    entry->set_startafter_id(entry->get_id());
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
}

const ZBDate& EntryDue::get_startafter_calc() const
{
    return get_entry() ? get_entry()->get_start().calc : g_blank;
}

void EntryDue::set_startafter_calc(const ZBDate& date)
{
    if (get_entry())
        get_entry()->edit_start().set_calc(date);
}

int EntryDue::get_startafter_id() const
{
    return get_entry() ? get_entry()->get_startafter_id() : -1;
}

const ZBDate& EntryDue::get_due_orig() const
{
    return get_entry() ? get_entry()->get_due().orig : g_blank;
}

void EntryDue::set_due_orig(const ZBDate& date)
{
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_due().orig == date)
        return;
    entry->edit_due().set_orig(date);
    entry->set_due_id(entry->get_id());
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
}

const ZBDate& EntryDue::get_due_calc() const
{
    return get_entry() ? get_entry()->get_due().calc : g_blank;
}

void EntryDue::set_due_calc(const ZBDate& date)
{
    if (get_entry())
        get_entry()->edit_due().set_calc(date);
}

int EntryDue::get_due_id() const
{
    return get_entry() ? get_entry()->get_due_id() : -1;
}

ZBDuration EntryDue::get_duration_orig() const
{
    return get_entry() ? get_entry()->get_duration().orig.get_duration() : ZBDuration();
}

void EntryDue::set_duration_orig(const ZBDuration& duration)
{
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_duration().orig.get_duration() == duration)
        return;
    ZBProgress progress = entry->get_duration().orig;
    progress.set_duration(duration);
    entry->edit_duration().set_orig(progress);
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
}

ZBDuration EntryDue::get_duration_calc() const
{
    return get_entry() ? get_entry()->get_duration().calc.get_duration() : ZBDuration();
}

ZBDuration EntryDue::get_remaining_orig() const
{
    return get_entry() ? get_entry()->get_duration().orig.get_remaining() : ZBDuration();
}

ZBDuration EntryDue::get_remaining_calc() const
{
    return get_entry() ? get_entry()->get_duration().calc.get_remaining() : ZBDuration();
}

double EntryDue::get_completion_orig() const
{
    return get_entry() ? get_entry()->get_duration().orig.get_completion() : 0.0;
}

int EntryDue::set_completion_orig(double percent)
{
    if (!(percent >= 0.0 && percent <= 100.0))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Completion must be between 0 and 100, not %g.", percent);
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_duration().orig.get_completion() == percent)
        return ZBErrC_ok;
    ZBProgress progress = entry->get_duration().orig;
    progress.set_completion(percent);
    entry->edit_duration().set_orig(progress);
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
    return ZBErrC_ok;
}

void EntryDue::set_start_end(const ZBDateSlot& slot, int kind)
{
    DiaryEntry* entry = get_entry();
    if (!entry || !slot.m_start.is_ok() || !slot.m_end.is_ok())
        return;
    ZBCalcPair<ZBDate>& start = entry->edit_start();
    ZBCalcPair<ZBDate>& due = entry->edit_due();
    switch (kind) {
    case 0:
        start.set_orig(slot.m_start);
        due.set_orig(g_blank);
        break;
    case 1:
        start.set_orig(g_blank);
        due.set_orig(slot.m_end - g_minute);
        break;
    case 2:
        start.set_orig(slot.m_start);
        due.set_orig(slot.m_end - g_minute);
        break;
    case 3:
        start.set_orig(g_blank);
        due.set_orig(g_blank);
        break;
    case 4:
    case 5: {
        const ZBDuration length = slot.get_duration();
        ZBDate from = kind == 4 ? slot.m_start + length : slot.m_start - length;
        ZBDate to = from + length;
        if (to < from)
            std::swap(from, to);
        if (due.orig.is_ok())
            due.set_orig(to - g_minute);
        if (start.orig.is_ok())
            start.set_orig(from);
        break;
    }
    default:
        return;
    }
    entry->set_startafter_id(entry->get_id());
    entry->set_due_id(entry->get_id());
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
    entry->edit_erepeat().invalidate();
    entry->edit_repeat().invalidate();
}

// ---------------------------------------------------------------- push down and along

ZBDuration EntryDue::push_length() const
{
    const DiaryEntry* entry = get_entry();
    if (entry->get_derived_entrytype() == 'A')
        return entry->get_time().orig.get_duration();
    return entry->get_duration().calc.get_remaining();
}

ZBDate EntryDue::upgrade_start_after(const ZBDate& date, bool push, Diary* diary, int source)
{
    return upgrade_start_after(date, push, diary, source, 0);
}

ZBDate EntryDue::upgrade_start_after(const ZBDate& date, bool push, Diary* diary, int source, int depth)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return date;
    ZBCalcPair<ZBDate>& start = entry->edit_start();
    if (!date.is_ok() || (start.calc.is_ok() && date <= start.calc))
        return start.calc;
    // A repeating entry starting after its own due belongs to a later instance.
    if (entry->get_repeat().is_repeating() && entry->get_due().orig.is_ok() && entry->get_due().orig < date)
        return start.calc;
    start.set_calc(date);
    entry->set_startafter_id(source);
    if (push && diary && depth < C_MaxPushDepth && entry->get_nchildren() == 0 && !entry->is_complete()) {
        const ZBDate next = start.calc + push_length();
        for (int id : entry->get_depend().get_depend_on_this())
            if (DiaryEntry* other = diary->lookup_entry(id))
                other->edit_due_facet().upgrade_start_after(next, true, diary, source, depth + 1);
    }
    return start.calc;
}

ZBDate EntryDue::upgrade_due(const ZBDate& date, bool push, Diary* diary, int source)
{
    return upgrade_due(date, push, diary, source, 0);
}

ZBDate EntryDue::upgrade_due(const ZBDate& date, bool push, Diary* diary, int source, int depth)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return date;
    ZBCalcPair<ZBDate>& due = entry->edit_due();
    if (!date.is_ok() || (due.calc.is_ok() && due.calc <= date))
        return due.calc;
    if (entry->get_repeat().is_repeating() && entry->get_start().orig.is_ok() && date < entry->get_start().orig)
        return due.calc;
    due.set_calc(date);
    entry->set_due_id(source);
    if (push && diary && depth < C_MaxPushDepth && entry->get_nchildren() == 0 && !entry->is_complete()) {
        const ZBDate previous = due.calc - push_length();
        for (int id : entry->get_depend().get_full_depends())
            if (DiaryEntry* other = diary->lookup_entry(id))
                other->edit_due_facet().upgrade_due(previous, true, diary, source, depth + 1);
    }
    return due.calc;
}

int EntryDue::recalculate_push_down(const DiaryEntry* parent, Diary* diary)
{
    DiaryEntry* entry = get_entry();
    if (iszbwarn(ZBASSERT(entry != nullptr)))
        return zbpass(ZBLOC);
    const bool appointment = entry->get_derived_entrytype() == 'A';
    ZBCalcPair<ZBDate>& start = entry->edit_start();
    ZBCalcPair<ZBDate>& due = entry->edit_due();
    // An appointment's dates are its slot.
    if (appointment)
        start.set_orig(entry->get_time().orig.m_start);
    start.set_calc(start.orig);
    entry->set_startafter_id(entry->get_id());
    if (parent)
        upgrade_start_after(parent->get_start().calc, false, diary, parent->get_id());
    if (appointment)
        due.set_orig(entry->get_time().orig.m_end);
    due.set_calc(due.orig);
    entry->set_due_id(entry->get_id());
    if (parent)
        upgrade_due(parent->get_due().calc, false, diary, parent->get_id());
    entry->set_derived_muststart(g_blank);
    return ZBErrC_ok;
}

void EntryDue::push_dependencies(Diary* diary)
{
    DiaryEntry* entry = get_entry();
    if (!entry || !diary || entry->get_nchildren() > 0 || entry->is_complete())
        return;
    const EntryDepend& depend = entry->get_depend();
    const ZBDuration length = push_length();
    const ZBDate& start = entry->get_start().calc;
    if (!depend.get_depend_on_this().empty() && start.is_ok()) {
        const ZBDate next = start + length;
        for (int id : depend.get_depend_on_this())
            if (DiaryEntry* other = diary->lookup_entry(id))
                other->edit_due_facet().upgrade_start_after(next, true, diary, entry->get_id(), 1);
    }
    const ZBDate& due = entry->get_due().calc;
    if (!depend.get_full_depends().empty() && due.is_ok()) {
        const ZBDate previous = due - length;
        for (int id : depend.get_full_depends())
            if (DiaryEntry* other = diary->lookup_entry(id))
                other->edit_due_facet().upgrade_due(previous, true, diary, entry->get_id(), 1);
    }
}

// ---------------------------------------------------------------- up from the children

void EntryDue::recalculate_start_after()
{
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_start().calc.is_ok())
        return;
    // Blank sorts after every date, so the earliest is the earliest real one.
    const DiaryEntry* earliest = nullptr;
    for (const DiaryEntry* child : entry->get_children()) {
        if (child->is_complete() || !child->get_start().calc.is_ok())
            continue;
        if (!earliest || child->get_start().calc < earliest->get_start().calc)
            earliest = child;
    }
    if (earliest) {
        entry->edit_start().set_calc(earliest->get_start().calc);
        entry->set_startafter_id(earliest->get_startafter_id());
    }
}

void EntryDue::recalculate_due()
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    ZBCalcPair<ZBDate>& due = entry->edit_due();
    if (entry->get_nchildren() > 0) {
        const DiaryEntry* latest = nullptr;
        bool open = false;
        for (const DiaryEntry* child : entry->get_children()) {
            if (child->is_complete())
                continue;
            if (!child->get_due().calc.is_ok()) {
                open = true;
                break;
            }
            if (!latest || latest->get_due().calc < child->get_due().calc)
                latest = child;
        }
        if (!open && latest && (!due.calc.is_ok() || due.calc < latest->get_due().calc)) {
            due.set_calc(latest->get_due().calc);
            entry->set_due_id(latest->get_due_id());
        }
    }
    // The due that the planner derived flows back.
    const EntryPlan& plan = entry->get_plan();
    // Its own due coming back is only an older copy of what the user set.
    if (plan.get_preddue().is_ok() && plan.get_preddue_id() > 0 && plan.get_preddue_id() != entry->get_id()
        && (!due.calc.is_ok() || due.calc < plan.get_preddue())) {
        due.set_calc(plan.get_preddue());
        entry->set_due_id(plan.get_preddue_id());
    }
    if (!entry->get_muststart().is_ok() && due.calc.is_ok()) {
        // An appointment's length is its slot, whatever its progress says yet.
        const ZBDateSlot& slot = entry->get_time().orig;
        const bool timed = entry->get_derived_entrytype() == 'A' && slot.m_start.is_ok() && slot.m_end.is_ok();
        const ZBDuration remaining = timed ? slot.get_duration() : entry->get_duration().orig.get_remaining();
        entry->set_derived_muststart(due.calc - remaining);
    }
}

// ---------------------------------------------------------------- progress

bool EntryDue::count_instances(int& past, int& total) const
{
    const DiaryEntry* entry = get_entry();
    const ZBDateRepeat& repeat = entry->get_repeat();
    past = 0;
    total = 0;
    if (!repeat.is_repeating() || !repeat.get_range_end().is_ok())
        return false;
    const ZBDateSlot seed = entry->get_instance_slot();
    if (!seed.m_start.is_ok())
        return false;
    const ZBDateSlot range(repeat.get_range_start(), repeat.get_range_end());
    constexpr int maxInstances = 10000;
    std::vector<ZBDateSlot> instances;
    repeat.generate_slots(seed, range, maxInstances, entry, instances);
    total = int(instances.size());
    if (repeat.get_range_start().is_ok()) {
        repeat.generate_back_slots(seed, ZBDateSlot(repeat.get_range_start(), seed.m_start), maxInstances, entry, instances);
        for (const ZBDateSlot& slot : instances)
            past += slot.m_start.is_ok() && slot.m_start < seed.m_start && !(slot.m_start < repeat.get_range_start());
    }
    total += past;
    return true;
}

void EntryDue::recalculate_duration(bool need)
{
    DiaryEntry* entry = get_entry();
    if (!need || !entry)
        return;
    const char type = entry->get_derived_entrytype();
    ZBCalcPair<ZBProgress>& duration = entry->edit_duration();
    if (type == 'A' || type == 'J') {
        const ZBDateSlot& slot = entry->get_time().orig;
        if (slot.m_start.is_ok() && slot.m_end.is_ok())
            duration.orig.set_duration(slot.get_duration());
        if (type == 'J')
            duration.orig.set_completion(entry->get_command().get_completed() * 100.0);
    }
    duration.calc.clear();
    m_totalDuration.clear();
    if (entry->get_nchildren() == 0) {
        duration.calc = duration.orig;
        if (!entry->is_active() && entry->get_repeat().is_repeating())
            duration.calc.set_completion(100.0);
        int past = 0;
        int total = 0;
        if (!count_instances(past, total) || total < 1) {
            m_totalDuration = duration.calc;
            return;
        }
        const ZBDuration each = duration.calc.get_duration();
        ZBDuration done = each * double(past);
        if (type != 'A')
            done += duration.calc.get_completed();
        m_totalDuration.set_duration(each * double(total));
        const double totalSecs = m_totalDuration.get_duration().get_as_dseconds();
        m_totalDuration.set_completion(totalSecs > 0.0 ? done.get_as_dseconds() / totalSecs * 100.0 : 0.0);
        return;
    }
    // A parent's own completion is the user's and decides whether it is
    // complete; what its children add up to is the calculated side only.
    for (const DiaryEntry* child : entry->get_children()) {
        duration.calc.add_component(child->get_duration().calc);
        m_totalDuration.add_component(child->get_total_duration());
    }
}

ZBDuration EntryDue::total_spent(const DiaryEntry& entry, const ZBDate& from)
{
    // The running session is already among the sessions up to its last
    // update; it is counted once, up to now.
    return entry.get_spent().get_spent(ZBDateSlot(from, ZBDate(ZBDate::E_Blank)), -1);
}

void EntryDue::store_completion(double percent)
{
    DiaryEntry* entry = get_entry();
    ZBCalcPair<ZBProgress>& duration = entry->edit_duration();
    if (duration.orig.get_completion() == percent)
        return;
    ZBProgress progress = duration.orig;
    progress.set_completion(percent);
    duration.set_orig(progress);
}

int EntryDue::recalculate_autocompletion(bool need)
{
    DiaryEntry* entry = get_entry();
    if (!need || !entry || m_autoProgress == E_Manual || entry->get_nchildren() > 0)
        return ZBErrC_ok;
    const ZBDate now = ZBDateUtils::now();
    const ZBDateRepeat& repeat = entry->get_repeat();
    const ZBDuration duration = entry->get_duration().orig.get_duration();
    double percent = 0.0;
    ZBDate end = now;
    if (m_autoProgress == E_MatchSpent) {
        const ZBDuration spent = get_total_spent(ZBDate::C_Blank);
        if (duration > 0)
            percent = spent.get_as_dseconds() / duration.get_as_dseconds() * 100.0;
        else
            percent = spent > 0 ? 100.0 : 0.0;
        const ZBDate sessionsEnd = entry->get_spent().get_sessions().end();
        if (sessionsEnd.is_ok())
            end = sessionsEnd;
    } else {
        const ZBDate& due = entry->get_due().calc;
        const bool ranged = repeat.is_repeating() && repeat.get_range_end().is_ok();
        if (!due.is_ok() && !ranged) {
            store_completion(0.0);
            return ZBErrC_ok;
        }
        end = due.is_ok() ? due : repeat.get_range_end();
        ZBDate first = entry->get_start().calc;
        if (!first.is_ok())
            first = entry->get_spent().get_sessions().start();
        if (!first.is_ok())
            first = end - duration;
        if (now < first)
            percent = 0.0;
        else if (end <= now)
            percent = 100.0;
        else
            percent = (now - first).get_as_dseconds() / (end - first).get_as_dseconds() * 100.0;
    }
    // A series whose start lies past its end has nothing left to complete.
    if (repeat.is_repeating() && repeat.get_range_end().is_ok() && entry->get_start().calc.is_ok()
        && repeat.get_range_end() < entry->get_start().calc) {
        store_completion(std::min(percent, 100.0));
        return ZBErrC_ok;
    }
    if (percent >= 100.0) {
        if (!entry->is_complete() && iszbwarn(entry->mark_complete(end.is_ok() && end <= now ? end : now)))
            return zbpass(ZBLOC);
        return ZBErrC_ok;
    }
    store_completion(percent);
    return ZBErrC_ok;
}

} // namespace Tervalon
