#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntrySpent", &EntrySpent::create_zbobject);

// Calendar items of spent sessions, beside the plans' planned and predicted.
constexpr int C_CalendarSpent = 3;

bool meets(const ZBDateSlot& session, const ZBDateSlot& slot)
{
    return !slot.is_ok() || ZBDateSlot::intersects(session, slot);
}
} // namespace

int EntrySpent::ZBErrC_SessionBackwards =
    ZBError::allocate_code("ZBErrC_SessionBackwards", "A session cannot end before it starts.");
int EntrySpent::ZBErrC_SessionOverlap =
    ZBError::allocate_code("ZBErrC_SessionOverlap", "The session overlaps another session of the same person.");

EntrySpent::EntrySpent()
{
    EntrySpent::register_zbobject();
    EntrySpent::set_defaults(true);
}

void EntrySpent::register_zbobject()
{
    register_objectname("EntrySpent", &EntrySpent::create_zbobject);
}

int EntrySpent::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntrySpent>(out, from, "EntrySpent");
}

void EntrySpent::set_defaults(bool)
{
    m_session.clear();
    m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1);
    m_timeSpent = ZBDuration();
    m_closed = ZBDate::C_Blank;
}

void EntrySpent::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntrySpent", out, indent);
    dump.add("m_session", m_session.size());
    dump.add("m_currentSession", m_currentSession.to_string());
    dump.add("m_currentSession.m_type", m_currentSession.m_type);
    dump.add("m_closed", m_closed);
    dump.add("m_timeSpent", m_timeSpent);
}

int EntrySpent::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszbwarn(serialise_set(owner, in, out, prefix, "se", m_session, version)))
        return zbpass(ZBLOC);
    owner.serialise_field<ZBDate>(in, out, prefix, "cl", m_closed, ZBDate::C_Blank);
    // The running session goes with the file, so that it runs on after a reload.
    ZBDate runStart = has_running_session() ? m_currentSession.m_start : ZBDate(ZBDate::E_Blank);
    int runResource = has_running_session() ? m_currentSession.m_type : -1;
    owner.serialise_field<ZBDate>(in, out, prefix, "cs", runStart, ZBDate::C_Blank);
    owner.serialise_field<int>(in, out, prefix, "cr", runResource, -1);
    if (in) {
        if (runResource >= 0 && runStart.is_ok()) {
            // The end is where the last update left it: the finished part
            // that runs on from the start.
            ZBDate end = runStart;
            for (int i = 0; i < m_session.size(); ++i)
                if (m_session[i]->m_type == runResource && m_session[i]->within(runStart) && end < m_session[i]->m_end)
                    end = m_session[i]->m_end;
            m_currentSession = ZBDateSetEntry(runStart, end, runResource);
        } else {
            m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1);
        }
    }
    return ZBErrC_ok;
}

int EntrySpent::add_session(const ZBDateSlot& slot, int resource)
{
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A session needs a valid start and end.");
    if (slot.m_end < slot.m_start)
        return zbwarnuser(ZBErrC_SessionBackwards, ZBLOC, "The session ends (%s) before it starts (%s).",
                          slot.m_end.to_string("%Y-%m-%d %H:%M").c_str(),
                          slot.m_start.to_string("%Y-%m-%d %H:%M").c_str());
    if (slot.m_end == slot.m_start)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A session must have some length.");
    for (int i = 0; i < m_session.size(); ++i) {
        const ZBDateSetEntry& other = *m_session[i];
        if (other.m_type == resource && ZBDateSlot::intersects(other, slot))
            return zbwarnuser(ZBErrC_SessionOverlap, ZBLOC, "The session overlaps the one from %s to %s.",
                              other.m_start.to_string("%Y-%m-%d %H:%M").c_str(),
                              other.m_end.to_string("%Y-%m-%d %H:%M").c_str());
    }
    if (iszbwarn(m_session.add(slot, resource)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int EntrySpent::add_session(const ZBDate& date, const ZBDuration& duration, int resource)
{
    if (duration.is_negative())
        return zbwarnuser(ZBErrC_SessionBackwards, ZBLOC, "A session cannot have a negative length (%s).",
                          duration.to_string().c_str());
    if (iszbwarn(add_session(ZBDateSlot(date, date + duration), resource)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void EntrySpent::start_session(int resource)
{
    stop_session();
    const ZBDate now = ZBDateUtils::now();
    m_currentSession = ZBDateSetEntry(now, now, resource);
    update_session();
    if (DiaryEntry* entry = get_entry()) {
        entry->run_trigger_script(DiaryEntry::C_TriggerStart);
        entry->mark_changed(ZBLOC, true);
    }
}

void EntrySpent::start_session(const ZBDate& start, int resource)
{
    m_currentSession = ZBDateSetEntry(start, start, resource);
}

void EntrySpent::update_session()
{
    if (!has_running_session())
        return;
    const ZBDate now = ZBDateUtils::now();
    // A clock that went back leaves the session as it was.
    if (m_currentSession.m_end < now)
        m_currentSession.m_end = now;
    if (m_currentSession.m_start < m_currentSession.m_end)
        m_session.add(m_currentSession.slot(), m_currentSession.m_type);
}

void EntrySpent::stop_session()
{
    stop_session(ZBDateUtils::now());
}

void EntrySpent::stop_session(const ZBDate& date)
{
    if (!has_running_session())
        return;
    update_session();
    // A stop recorded for a moment before the last update gives back the time after it.
    if (date.is_ok() && m_currentSession.m_start <= date && date < m_currentSession.m_end)
        m_session.subtract(ZBDateSlot(date, m_currentSession.m_end), m_currentSession.m_type);
    const int resource = m_currentSession.m_type;
    m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1);
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    entry->edit_plan().rationalise_plans(resource);
    entry->run_trigger_script(DiaryEntry::C_TriggerStop);
    entry->mark_changed(ZBLOC, true);
}

void EntrySpent::recalculate_spent(bool need)
{
    if (!need)
        return;
    ZBDuration total = m_session.duration();
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    for (const DiaryEntry* child : entry->get_children())
        total += child->get_spent().get_time_spent();
    if (m_session.empty() && entry->get_nchildren() == 0 && entry->get_derived_entrytype() == 'J') {
        const ZBDateSlot& own = entry->get_time().orig;
        if (own.m_start.is_ok() && own.m_end.is_ok() && own.m_start < own.m_end)
            total += own.get_duration();
    }
    m_timeSpent = total;
}

ZBDuration EntrySpent::get_spent(const ZBDateSlot& slot, int resource) const
{
    ZBDateSet sessions = m_session;
    if (has_running_session()) {
        const ZBDate now = ZBDateUtils::now();
        if (m_currentSession.m_start < now)
            sessions.add(ZBDateSlot(m_currentSession.m_start, now), m_currentSession.m_type);
    }
    ZBDuration total;
    for (int i = 0; i < sessions.size(); ++i) {
        const ZBDateSetEntry& session = *sessions[i];
        if (resource >= 0 && session.m_type != resource)
            continue;
        // Either end of slot may be open.
        ZBDate start = session.m_start;
        ZBDate end = session.m_end;
        if (slot.m_start.is_ok() && start < slot.m_start)
            start = slot.m_start;
        if (slot.m_end.is_ok() && slot.m_end < end)
            end = slot.m_end;
        if (start < end)
            total += end - start;
    }
    return total;
}

void EntrySpent::remove_fixed(ZBDateSet& set, int resource) const
{
    for (int i = 0; i < m_session.size(); ++i)
        if (resource < 0 || m_session[i]->m_type == resource)
            set.subtract(m_session[i]->slot(), -1);
}

int EntrySpent::detailed_query(const ZBDateSlot& slot, ZBCalendar& calendar, int resource) const
{
    const DiaryEntry* entry = get_entry();
    const int id = entry ? entry->get_id() : -1;
    const std::string title = entry ? entry->get_summary() : std::string();
    for (int i = 0; i < m_session.size(); ++i) {
        const ZBDateSetEntry& session = *m_session[i];
        if ((resource >= 0 && session.m_type != resource) || !meets(session.slot(), slot))
            continue;
        ZBCalendarEntry* item = new ZBCalendarEntry(ZBId(id, DiaryEntry::get_sequence('s', i)), session.slot(), title);
        item->set_datatype(C_CalendarSpent);
        item->set_group(session.m_type);
        if (iszbwarn(calendar.add_entry(item)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
