#include "AppTervalonDiary/diary/entrybaseline.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryBaseline", &EntryBaseline::create_zbobject);
}

EntryBaseline::EntryBaseline()
{
    EntryBaseline::register_zbobject();
    EntryBaseline::set_defaults(true);
}

void EntryBaseline::register_zbobject()
{
    register_objectname("EntryBaseline", &EntryBaseline::create_zbobject);
}

int EntryBaseline::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryBaseline>(out, from, "EntryBaseline");
}

void EntryBaseline::set_defaults(bool)
{
    m_duration = ZBCalcPair<ZBDuration>();
    m_startEnd = ZBCalcPair<ZBDateSlot>();
    m_progressive = false;
    m_autoEntryBaseline = 0;
    m_underBudget = ZBDuration();
    m_progressTarget = ZBDuration();
    m_aheadSchedule = ZBDuration();
    m_overProgress = ZBDuration();
    m_budgetState = E_StateNone;
    m_timeState = E_StateNone;
}

void EntryBaseline::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryBaseline", out, indent);
    dump.add("m_duration", m_duration.orig);
    dump.add("m_startEnd", m_startEnd.orig);
    dump.add("m_progressive", m_progressive);
    dump.add("m_autoEntryBaseline", m_autoEntryBaseline);
    dump.add("m_duration.calc", m_duration.calc);
    dump.add("m_startEnd.calc", m_startEnd.calc);
    dump.add("m_underBudget", m_underBudget);
    dump.add("m_progressTarget", m_progressTarget);
    dump.add("m_aheadSchedule", m_aheadSchedule);
    dump.add("m_budgetState", m_budgetState);
    dump.add("m_timeState", m_timeState);
}

int EntryBaseline::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    m_duration.serialise(owner, in, out, prefix, "bd", ZBDuration());
    m_startEnd.serialise(owner, in, out, prefix, "st", ZBDateSlot());
    owner.serialise_field<bool>(in, out, prefix, "pg", m_progressive, false);
    owner.serialise_field<int>(in, out, prefix, "ab", m_autoEntryBaseline, 0);
    return ZBErrC_ok;
}

namespace {
const char* const g_btypes[] = {"None", "Hours", "HoursDate", "FollowHours", "FollowHoursDate"};
}

std::string EntryBaseline::btype_to_string(int kind)
{
    return kind >= 0 && kind < 5 ? g_btypes[kind] : g_btypes[0];
}

bool EntryBaseline::is_btype(const std::string& text)
{
    return string_to_btype(text) != 0 || text == "0" || text == g_btypes[0];
}

int EntryBaseline::string_to_btype(const std::string& text)
{
    if (text.size() == 1 && text[0] >= '0' && text[0] <= '4')
        return text[0] - '0';
    for (int i = 0; i < 5; ++i)
        if (text == g_btypes[i])
            return i;
    return 0;
}

namespace {
// A zero date marks dates that are to be taken again: it is not a date.
bool is_set_date(const ZBDate& date)
{
    return date.is_ok() && !date.is_zero();
}
} // namespace

bool EntryBaseline::is_set() const
{
    return !m_duration.calc.is_zero() || is_set_date(m_startEnd.calc.m_end);
}

void EntryBaseline::update_calcs(const ZBDuration& completed, const ZBDuration& remaining, const ZBDate& end,
                                 const ZBDuration& duration, const ZBDateSlot& slot)
{
    m_progressTarget = ZBDuration();
    m_aheadSchedule = ZBDuration();
    m_overProgress = ZBDuration();
    m_budgetState = E_StateNone;
    m_duration.calc = m_duration.orig.is_zero() ? duration : m_duration.orig;
    const bool origBlank = m_startEnd.orig.m_start.is_blank() && m_startEnd.orig.m_end.is_blank();
    m_startEnd.calc = origBlank ? slot : m_startEnd.orig;
    const ZBDuration& budget = m_duration.calc;
    const ZBDate& start = m_startEnd.calc.m_start;
    const ZBDate& finish = m_startEnd.calc.m_end;
    const ZBDate now = ZBDateUtils::now();

    const bool progressive = m_progressive && is_set_date(start) && is_set_date(finish) && budget > ZBDuration();
    ZBDuration target;
    if (progressive) {
        target = budget;
        if (now < start) {
            target = ZBDuration();
        } else if (now <= finish && start < finish) {
            // The work should grow with the days of the baseline.
            const double share = (now - start).get_as_days() / (finish - start).get_as_days();
            target = budget * share;
            if (target > budget)
                target = budget;
        }
        m_progressTarget = target;
    }

    m_underBudget = ZBDuration();
    if (!budget.is_zero()) {
        m_underBudget = budget - (completed + remaining);
        if (completed > budget)
            m_budgetState = E_StatePoor;
        else if (completed + remaining > budget)
            m_budgetState = E_StateMarginal;
        else if (progressive && completed > target) {
            m_budgetState = E_StateOverProgress;
            m_overProgress = completed - target;
        } else
            m_budgetState = E_StateGood;
    }

    m_timeState = E_StateNone;
    if (is_set_date(finish)) {
        if (!(now < finish)) {
            m_aheadSchedule = finish - (end.is_ok() ? end : now);
            // Work that is all done and ended in time stays good after the date.
            const bool doneInTime = remaining.is_zero() && end.is_ok() && !(finish < end) && !completed.is_zero();
            m_timeState = doneInTime ? E_StateGood : E_StatePoor;
        } else if (end.is_ok() && finish < end) {
            m_aheadSchedule = finish - end;
            m_timeState = E_StateMarginal;
        } else {
            m_timeState = E_StateGood;
            if (end.is_ok())
                m_aheadSchedule = finish - end;
        }
    }
}

int EntryBaseline::auto_save(const ZBDuration& duration, const ZBDateSlot& slot)
{
    bool changed = false;
    switch (m_autoEntryBaseline) {
    case E_Hours:
    case E_HoursDate:
        if (m_duration.orig.is_zero() && duration > ZBDuration()) {
            m_duration.set_orig(duration);
            changed = true;
        }
        break;
    case E_FollowHours:
        if (m_duration.orig != duration) {
            m_duration.set_orig(duration);
            changed = true;
        }
        break;
    case E_FollowHoursDate:
        if (m_duration.orig != duration) {
            m_duration.set_orig(duration);
            // New hours make the old dates meaningless: they are taken again.
            m_startEnd.set_orig(ZBDateSlot(ZBDate(ZBDate::E_Zero), ZBDate(ZBDate::E_Zero)));
            changed = true;
        }
        break;
    default:
        break;
    }
    if ((m_autoEntryBaseline == E_HoursDate || m_autoEntryBaseline == E_FollowHoursDate)
        && !is_set_date(m_startEnd.orig.m_start) && is_set_date(slot.m_start)) {
        m_startEnd.set_orig(slot);
        changed = true;
    }
    return changed ? ZBErrC_okHandled : ZBErrC_ok;
}

namespace {
std::string length_text(const ZBDuration& duration)
{
    return (duration.is_negative() ? -duration : duration).to_string();
}
} // namespace

std::string EntryBaseline::get_prog_text() const
{
    return "Progress Target " + length_text(m_progressTarget);
}

std::string EntryBaseline::get_time_text() const
{
    switch (m_timeState) {
    case E_StateNone:
        return std::string();
    case E_StateMarginal:
        return "Marginal. Predicted " + length_text(m_aheadSchedule) + " behind schedule.";
    case E_StatePoor:
        return "Poor. Predicted " + length_text(m_aheadSchedule) + " behind schedule.";
    default:
        if (m_aheadSchedule.is_zero())
            return "Good. On schedule.";
        return "Good. " + length_text(m_aheadSchedule) + " ahead of schedule.";
    }
}

std::string EntryBaseline::get_text() const
{
    switch (m_budgetState) {
    case E_StateGood:
        if (m_underBudget.is_zero() || m_underBudget.is_negative())
            return "On budget.";
        return length_text(m_underBudget) + " under budget.";
    case E_StateOverProgress:
        return "Over Progress. " + length_text(m_overProgress) + " over budget.";
    case E_StateMarginal:
        return "Marginal. " + length_text(m_underBudget) + " over budget.";
    case E_StatePoor:
        return "Poor. " + length_text(m_underBudget) + " over budget.";
    default:
        return std::string();
    }
}

} // namespace Tervalon
