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
    m_predicted.clear();
    m_planned.clear();
    m_isPlanned = true;
    m_predictedTrans = false;
    m_totalPlan = ZBDuration();
    m_clash.clear();
    m_mustStart = ZBDate::C_Blank;
    m_predDue = ZBDate::C_Blank;
    m_predDueId = -1;
    m_problemDate.clear();
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
    if (!entry || m_predicted.empty() || !entry->get_due().calc.is_ok())
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

// ---- Smallest form until the allocator's own arrives; replace whole.
void EntryPlan::load_predicted(const EntryPlan* other)
{
    m_predictedTrans = true;
    if (!other) {
        m_totalPlan = ZBDuration();
        return;
    }
    m_predicted = other->m_predicted;
    m_totalPlan = other->m_totalPlan;
    m_clash = other->m_clash;
    m_mustStart = other->m_mustStart;
    m_predDue = other->m_predDue;
    m_predDueId = other->m_predDueId;
    m_problemDate = other->m_problemDate;
}
// ---- end of the smallest form.

void EntryPlan::clear_predicted()
{
    m_predicted.clear();
    m_predictedTrans = false;
    m_clash.clear();
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

} // namespace Tervalon
