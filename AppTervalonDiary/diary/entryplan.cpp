#include "AppTervalonDiary/diary/entryplan.h"
#include "LibDate/date/zbdateutils.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryPlan", &EntryPlan::create_zbobject);
}

EntryPlan::EntryPlan()
{
    EntryPlan::register_zbobject();
    EntryPlan::set_defaults(true);
}

void EntryPlan::register_zbobject()
{
    register_objectname("EntryPlan", &EntryPlan::create_zbobject);
}

int EntryPlan::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryPlan>(out, from, "EntryPlan");
}

void EntryPlan::set_defaults(bool)
{
    m_planned.clear();
    m_isPlanned = true;
    m_likelyOverdue = false;
    clear_predicted(true);
}

void EntryPlan::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryPlan", out, indent);
    dump.add("m_isPlanned", m_isPlanned);
    dump.add("m_predictedTrans", m_predictedTrans);
}

int EntryPlan::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    return serialise_set(owner, in, out, prefix, "pl", m_planned, version);
}

// ---------------------------------------------------------------- predictions

void EntryPlan::clear_predicted(bool all)
{
    m_predicted.clear();
    m_predictedTrans = false;
    m_totalPlan = ZBDuration();
    m_mustStart = ZBDate::C_Blank;
    m_plannedStart = ZBDate::C_Blank;
    m_predStart = ZBDate::C_Blank;
    m_predStartId = -1;
    m_predDue = ZBDate::C_Blank;
    m_predDueId = -1;
    m_preTime = ZBDuration();
    m_problemDate.clear();
    if (all)
        m_clash.clear();
}

void EntryPlan::load_predicted(const EntryPlan* other)
{
    if (!other) {
        m_predictedTrans = true;
        m_totalPlan = m_planned.duration() + m_predicted.duration();
        return;
    }
    m_predicted = other->m_predicted;
    m_plannedStart = other->m_plannedStart;
    m_mustStart = other->m_mustStart;
    m_clash = other->m_clash;
    m_predStart = other->m_predStart;
    m_predStartId = other->m_predStartId;
    m_predDue = other->m_predDue;
    m_predDueId = other->m_predDueId;
    m_preTime = other->m_preTime;
    m_problemDate = other->m_problemDate;
    m_predictedTrans = other->m_predictedTrans;
    m_totalPlan = m_planned.duration() + m_predicted.duration();
}

void EntryPlan::add_predicted(const ZBDate& plannedStart, const ZBDate& mustStart, const ZBDateSet& allocated,
                              const ZBDate& start, int startSource, const ZBDate& due, int dueSource,
                              const ZBDuration& preTime)
{
    if (mustStart.is_ok() && (!m_mustStart.is_ok() || mustStart < m_mustStart))
        m_mustStart = mustStart;
    if (plannedStart.is_ok() && (!m_plannedStart.is_ok() || plannedStart < m_plannedStart))
        m_plannedStart = plannedStart;
    if (!allocated.empty())
        m_predicted.add(allocated);
    if (startSource >= 0 && start.is_ok() && (!m_predStart.is_ok() || m_predStart < start)) {
        m_predStart = start;
        m_predStartId = startSource;
    }
    if (dueSource >= 0 && due.is_ok() && (!m_predDue.is_ok() || m_predDue < due)) {
        m_predDue = due;
        m_predDueId = dueSource;
    }
    m_totalPlan = m_planned.duration() + m_predicted.duration();
    m_predictedTrans = true;
    m_preTime = preTime;
    if (due.is_ok() && !allocated.empty() && due < allocated.end())
        m_problemDate.push_back(due);
}

} // namespace Tervalon

namespace Tervalon {

// ---------------------------------------------------------------- fixed plans

namespace {
bool is_ok_slot(const ZBDateSlot& slot)
{
    return slot.m_start.is_ok() && slot.m_end.is_ok() && slot.m_start < slot.m_end;
}

// The resource a locked session books: the entry's own, where it has one.
int lock_resource(const DiaryEntry* entry, int predicted)
{
    const int resource = entry ? entry->get_props().get_resource_calc() : -1;
    return resource >= 0 ? resource : predicted;
}

void changed(DiaryEntry* entry)
{
    if (!entry)
        return;
    entry->mark_changed(ZBLOC, true);
    if (Diary* diary = entry->get_diary())
        diary->force_recalculate(true, true, false, false);
}
} // namespace

bool EntryPlan::in_slot(const ZBDateSlot& session, const ZBDateSlot& slot)
{
    return !is_ok_slot(slot) || ZBDateSlot::intersects(session, slot);
}

bool EntryPlan::has_plans() const
{
    if (!m_planned.empty())
        return true;
    return get_entry() && has_plans(*get_entry());
}

bool EntryPlan::has_plans(const DiaryEntry& entry)
{
    if (!entry.get_plan().get_planned().empty())
        return true;
    for (const DiaryEntry* child : entry.get_children())
        if (!child->is_deleted() && has_plans(*child))
            return true;
    return false;
}

ZBDateSet& EntryPlan::edit_planned()
{
    if (DiaryEntry* entry = get_entry()) {
        entry->mark_changed(ZBLOC, true);
        entry->clear_predicted(true);
    }
    return m_planned;
}

ZBDuration EntryPlan::get_planned_time(const ZBDateSlot& slot, int resource) const
{
    const int type = resource < 0 ? -1 : resource;
    if (!is_ok_slot(slot)) {
        ZBDuration total;
        for (int i = 0; i < m_planned.size(); ++i)
            if (m_planned[i]->matches(type))
                total += m_planned[i]->get_duration();
        return total;
    }
    return m_planned.query_range(slot, type);
}

ZBDuration EntryPlan::get_unplanned_time(const ZBDate& date) const
{
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return ZBDuration();
    const ZBProgress& length = entry->get_duration().calc;
    const ZBDate& startAfter = entry->get_start().calc;
    const ZBDate& dueDate = entry->get_due().calc;
    const bool repeating = entry->get_repeat().is_repeating();
    const ZBDuration day{std::int64_t(ZBDate::C_DaySecs)};
    ZBDuration wanted;
    ZBDuration planned;
    if (!repeating || !dueDate.is_ok() || date < dueDate) {
        wanted = length.get_remaining();
        // Work that cannot begin for more than a day, or the next instance
        // of a repeat that is done for now, needs its whole length.
        if (startAfter.is_ok() && date.is_ok() && startAfter - date > day)
            wanted = length.get_duration();
        else if (wanted <= 0 && repeating && startAfter.is_ok() && date < startAfter)
            wanted = length.get_duration();
        const ZBDate from = startAfter.is_ok() ? startAfter : ZBDate(ZBDate::E_Zero);
        const ZBDate to = dueDate.is_ok() ? dueDate : (m_planned.empty() ? from : m_planned.end());
        planned = from < to ? m_planned.query_range(ZBDateSlot(from, to), -1) : ZBDuration();
    } else {
        wanted = length.get_duration();
        // The instance that holds date: the rule's found around it.
        std::vector<ZBDateSlot> found;
        const ZBDateSlot around(date - ZBDuration(400 * std::int64_t(ZBDate::C_DaySecs)), date + day);
        entry->get_repeat().generate_slots(entry->get_instance_slot(), around, 10000, nullptr, found);
        for (const ZBDateSlot& slot : found)
            if (slot.m_start.is_ok() && slot.m_end.is_ok() && !(date < slot.m_start) && !(slot.m_end < date)) {
                if (slot.m_start < slot.m_end)
                    planned = m_planned.query_range(slot, -1);
                break;
            }
    }
    const ZBDuration left = wanted - planned;
    return left > 0 ? left : ZBDuration();
}

int EntryPlan::lock_plan(int sequence)
{
    const int index = DiaryEntry::get_index_seq(sequence);
    if (DiaryEntry::get_type_seq(sequence) != 'r' || sequence < 1)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No predicted session selected.");
    if (index >= m_predicted.size())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no predicted session %d.", index);
    const ZBDateSetEntry session = *m_predicted[index];
    m_predicted.erase(index);
    m_planned.add(session.slot(), lock_resource(get_entry(), session.m_type));
    changed(get_entry());
    return ZBErrC_ok;
}

int EntryPlan::lock_plans(const ZBDateSlot& slot, int* count)
{
    DiaryEntry* entry = get_entry();
    if (entry)
        for (DiaryEntry* child : entry->get_children())
            if (!child->is_deleted() && (!child->get_plan().get_predicted().empty() || child->get_nchildren() > 0))
                if (iszbwarn(child->edit_plan().lock_plans(slot, count)))
                    return zbpass(ZBLOC);
    int moved = 0;
    for (int i = 0; i < m_predicted.size();) {
        const ZBDateSetEntry session = *m_predicted[i];
        if (!in_slot(session.slot(), slot)) {
            ++i;
            continue;
        }
        m_predicted.erase(i);
        m_planned.add(session.slot(), lock_resource(entry, session.m_type));
        ++moved;
    }
    if (moved) {
        changed(entry);
        if (count)
            *count += moved;
    }
    return ZBErrC_ok;
}

int EntryPlan::clear_plans(const ZBDateSlot& slot, int* count)
{
    DiaryEntry* entry = get_entry();
    if (entry)
        for (DiaryEntry* child : entry->get_children())
            if (!child->is_deleted() && (!child->get_plan().get_planned().empty() || child->get_nchildren() > 0))
                if (iszbwarn(child->edit_plan().clear_plans(slot, count)))
                    return zbpass(ZBLOC);
    int erased = 0;
    for (int i = 0; i < m_planned.size();) {
        if (in_slot(m_planned[i]->slot(), slot)) {
            m_planned.erase(i);
            ++erased;
        } else {
            ++i;
        }
    }
    if (erased) {
        changed(entry);
        if (count)
            *count += erased;
    }
    return ZBErrC_ok;
}

void EntryPlan::remove_plans(const ZBDate& date)
{
    if (date.is_blank()) {
        m_planned.clear();
        return;
    }
    for (int i = 0; i < m_planned.size();)
        if (!(date < m_planned[i]->m_end))
            m_planned.erase(i);
        else
            ++i;
}

void EntryPlan::rationalise_plans(int resource)
{
    const DiaryEntry* entry = get_entry();
    if (!entry || m_planned.empty())
        return;
    const ZBDate& due = entry->get_due().calc;
    auto counts = [&](const ZBDateSetEntry& session) {
        return (resource < 0 || session.m_type == resource) && (!due.is_ok() || session.m_start < due);
    };
    ZBDuration planned;
    for (int i = 0; i < m_planned.size(); ++i)
        if (counts(*m_planned[i]))
            planned += m_planned[i]->get_duration();
    ZBDuration surplus = planned - entry->get_duration().orig.get_remaining();
    for (int i = 0; surplus > 0 && i < m_planned.size();) {
        const ZBDateSetEntry& session = *m_planned[i];
        if (!counts(session)) {
            ++i;
            continue;
        }
        // Only whole sessions go; a session bigger than what is left over
        // stays, and so does everything behind it.
        if (surplus < session.get_duration())
            break;
        surplus -= session.get_duration();
        m_planned.erase(i);
    }
}

ZBDate EntryPlan::first_planned() const
{
    return m_planned.empty() ? ZBDate(ZBDate::E_Blank) : m_planned[0]->m_start;
}

ZBDate EntryPlan::end_first_planned() const
{
    return m_planned.empty() ? ZBDate(ZBDate::E_Blank) : m_planned[0]->m_end;
}

void EntryPlan::add_clashing(const std::string& title)
{
    if (std::find(m_clash.begin(), m_clash.end(), title) == m_clash.end())
        m_clash.push_back(title);
}

void EntryPlan::recalculate_isplanned(bool need)
{
    if (need && get_entry())
        m_isPlanned = calc_isplanned(*get_entry());
}

bool EntryPlan::calc_isplanned(const DiaryEntry& entry)
{
    if (entry.get_nchildren() > 0) {
        for (const DiaryEntry* child : entry.get_children())
            if (!child->is_deleted() && !child->is_planned())
                return false;
        return true;
    }
    if (entry.is_complete())
        return true;
    const ZBDate now = ZBDateUtils::now();
    const ZBDateSet& planned = entry.get_plan().get_planned();
    ZBDuration time;
    if (!planned.empty()) {
        const ZBDate& due = entry.get_due().calc;
        // Plans after the due date do not make it in time.
        if (due.is_ok() && due < planned.end())
            time = now < due ? planned.query_range(ZBDateSlot(now, due), -1) : ZBDuration();
        else
            time = planned.duration();
    }
    const ZBDuration remaining = entry.get_duration().orig.get_remaining();
    const ZBDate& startAfter = entry.get_start().calc;
    if (remaining > 0)
        return !(time < remaining);
    if (startAfter.is_ok() && now < startAfter)
        return !(time < entry.get_duration().orig.get_duration());
    return true;
}

void EntryPlan::recalculate_overruns()
{
    if (get_entry())
        m_likelyOverdue = calc_overrun(*get_entry());
}

bool EntryPlan::calc_overrun(const DiaryEntry& entry)
{
    const ZBDate& due = entry.get_due().calc;
    if (entry.get_nchildren() > 0) {
        for (const DiaryEntry* child : entry.get_children())
            if (!child->is_deleted() && child->get_plan().could_overrun())
                return true;
        return false;
    }
    if (entry.get_derived_entrytype() != 'T' || entry.is_complete())
        return false;
    const EntryPlan& plan = entry.get_plan();
    // Work the planner could not book at all (its resource has no time, or
    // it waits in a loop) is late whether or not it has a due date.
    if (!due.is_ok())
        return plan.m_predictedTrans
               && plan.get_planned().duration() + plan.get_predicted().duration() < entry.get_duration().orig.get_remaining();
    const ZBDate now = ZBDateUtils::now();
    if (!entry.get_repeat().is_repeating()) {
        const ZBDate& end = entry.get_time().calc.m_end;
        if (end.is_ok() && due < end)
            return true;
    } else if (!plan.get_planned().empty() || !plan.get_predicted().empty()) {
        const ZBDuration fixed =
            now < due ? plan.get_planned().query_range(ZBDateSlot(now, due), -1) : ZBDuration();
        ZBDuration required = entry.get_duration().orig.get_remaining();
        const ZBDate& startAfter = entry.get_start().calc;
        if (!(required > 0) && startAfter.is_ok() && now < startAfter)
            required = entry.get_duration().orig.get_duration();
        if (fixed < required) {
            const ZBDate end = plan.get_predicted().time_after(required - fixed);
            if (end.is_ok() && due < end)
                return true;
        }
    }
    if (plan.m_predictedTrans) {
        const ZBDuration total = plan.get_planned().duration() + plan.get_predicted().duration();
        if (total < entry.get_duration().orig.get_remaining())
            return true;
    }
    return false;
}

bool EntryPlan::should_start() const
{
    const DiaryEntry* entry = get_entry();
    if (m_planned.empty() || !entry || entry->get_spent().has_running_session())
        return false;
    const ZBDate first = m_planned.start();
    return first.is_ok() && !(ZBDateUtils::now() < first);
}

bool EntryPlan::range_overrun(const ZBDateSlot& slot) const
{
    const DiaryEntry* entry = get_entry();
    if (!entry || !is_ok_slot(slot))
        return false;
    const ZBDate& due = entry->get_due().calc;
    if (m_likelyOverdue && due.is_ok() && slot.within(due))
        return true;
    for (const ZBDate& date : m_problemDate)
        if (slot.within(date))
            return true;
    return false;
}

void EntryPlan::remove_fixed(ZBDateSet& set, int resource) const
{
    for (int i = 0; i < m_planned.size(); ++i)
        if (resource < 0 || m_planned[i]->m_type == resource)
            set.subtract(m_planned[i]->slot(), -1);
}

int EntryPlan::detailed_query(const ZBDateSlot& slot, ZBCalendar& calendar, int resource) const
{
    const DiaryEntry* entry = get_entry();
    const int id = entry ? entry->get_id() : -1;
    const std::string title = entry ? entry->get_summary() : std::string();
    const int entryResource = entry ? entry->get_props().get_resource_calc() : -1;
    const struct {
        const ZBDateSet& set;
        char letter;
        int type;
    } kinds[] = {{m_planned, 'p', C_CalendarPlanned}, {m_predicted, 'r', C_CalendarPredicted}};
    for (const auto& kind : kinds)
        for (int i = 0; i < kind.set.size(); ++i) {
            const ZBDateSetEntry& session = *kind.set[i];
            // Predictions carry no resource of their own: they are the entry's.
            const int owner = kind.letter == 'p' ? session.m_type : entryResource;
            if ((resource >= 0 && owner != resource) || !in_slot(session.slot(), slot))
                continue;
            ZBCalendarEntry* item =
                new ZBCalendarEntry(ZBId(id, DiaryEntry::get_sequence(kind.letter, i)), session.slot(), title);
            item->set_datatype(kind.type);
            item->set_group(owner);
            if (iszbwarn(calendar.add_entry(item)))
                return zbpass(ZBLOC);
        }
    return ZBErrC_ok;
}

} // namespace Tervalon
