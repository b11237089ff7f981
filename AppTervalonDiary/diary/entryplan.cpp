#include "AppTervalonDiary/diary/entryplan.h"
#include "LibDate/date/zbdateutils.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

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
    clear_predicted(true);
    m_derivedMustStart = ZBDate::C_Blank;
}

bool EntryPlan::should_start() const
{
    const DiaryEntry* entry = get_entry();
    if (!entry || entry->is_complete() || entry->get_spent().has_running_session() || m_predicted.empty())
        return false;
    const ZBDate first = m_predicted.start();
    return first.is_ok() && first <= ZBDateUtils::now();
}

bool EntryPlan::could_overrun() const
{
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return false;
    // minimal until fixed plans land: the planner could not book all of an
    // open task (its resource has no time, or not enough).
    if (m_predictedTrans && entry->get_nchildren() == 0 && entry->get_derived_entrytype() == 'T'
        && !entry->is_complete() && m_totalPlan < entry->get_duration().orig.get_remaining())
        return true;
    // A repeating entry's later instances have their own dues.
    if (entry->get_repeat().is_repeating())
        return !m_problemDate.empty();
    if (m_predicted.empty() || !entry->get_due().calc.is_ok())
        return false;
    const ZBDate last = m_predicted.end();
    return last.is_ok() && entry->get_due().calc < last;
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

void EntryPlan::remove_plans(const ZBDate& date)
{
    if (date.is_blank()) {
        m_planned.clear();
        return;
    }
    if (!m_planned.empty() && m_planned.start() < date)
        m_planned.subtract(ZBDateSlot(m_planned.start(), date), -1);
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

const ZBDate& EntryPlan::get_muststart() const
{
    return m_predictedTrans && m_mustStart.is_ok() ? m_mustStart : m_derivedMustStart;
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
