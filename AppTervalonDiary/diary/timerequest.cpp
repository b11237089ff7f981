#include "AppTervalonDiary/diary/timerequest.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/timerequestset.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>

namespace Tervalon {

namespace {
// A date that bounds anything: blank, invalid and the zero date do not.
bool valid(const ZBDate& date)
{
    return date.is_ok() && !date.is_zero();
}

const ZBDate& later(const ZBDate& a, const ZBDate& b)
{
    return a < b ? b : a;
}

const ZBDate& earlier(const ZBDate& a, const ZBDate& b)
{
    return b < a ? b : a;
}

int compare_dates(const ZBDate& a, const ZBDate& b)
{
    return a < b ? -1 : (b < a ? 1 : 0);
}

const ZBDate g_blank(ZBDate::E_Blank);
const ZBDuration g_second(1);
} // namespace

TimeRequest::TimeRequest(int id)
    : m_id(id), m_entryType('T'), m_entryId(-1), m_repeating(false), m_index(0), m_startAfter(ZBDate::E_Blank),
      m_startSource(-1), m_due(ZBDate::E_Blank), m_dueSource(-1), m_priority(0.0), m_resource(-1),
      m_mandatory(true), m_isAllocated(false), m_plannedStart(ZBDate::E_Blank), m_mustStart(ZBDate::E_Blank),
      m_set(nullptr)
{
}

void TimeRequest::dump(std::ostream& out, int indent) const
{
    ZBDump dump("TimeRequest", out, indent);
    dump.add("m_id", m_id);
    dump.add("m_entryId", m_entryId);
    dump.add("m_index", m_index);
    dump.add("m_startAfter", m_startAfter.to_iso());
    dump.add("m_due", m_due.to_iso());
    dump.add("m_duration", m_duration.get_as_seconds());
    dump.add("remaining", m_remaining.get_as_seconds());
    dump.add("m_priority", m_priority);
    dump.add("m_resource", m_resource);
    dump.add("m_timeType", m_timeType);
    dump.add("m_isAllocated", m_isAllocated);
    dump.add("m_plannedStart", m_plannedStart.to_iso());
    dump.add("m_mustStart", m_mustStart.to_iso());
}

int TimeRequest::initialise(const Diary& diary, const DiaryEntry& entry, int index, const ZBDateSlot& slot,
                            bool mandatory)
{
    m_entryType = entry.get_derived_entrytype() == 'A' ? 'A' : 'T';
    m_entryId = entry.get_id();
    m_repeating = entry.get_repeat().is_repeating();
    m_index = index;
    m_startAfter = slot.m_start;
    if (m_startAfter.is_ok())
        m_startAfter.set_timezone(ZBDate::C_DefaultTime);
    m_due = slot.m_end;
    if (m_due.is_ok())
        m_due.set_timezone(ZBDate::C_DefaultTime);
    // The first instance carries the dates the tree and the dependencies gave
    // the entry; later ones are the entry's own.
    m_startSource = index == 0 && entry.get_startafter_id() >= 0 ? entry.get_startafter_id() : m_entryId;
    m_dueSource = index == 0 && entry.get_due_id() >= 0 ? entry.get_due_id() : m_entryId;
    const ZBProgress& progress = entry.get_duration().orig;
    if (m_entryType == 'A' && slot.m_start.is_ok() && slot.m_end.is_ok() && slot.m_start < slot.m_end) {
        m_duration = slot.get_duration();
    } else {
        m_duration = progress.get_remaining();
        if (index > 0 || !(ZBDuration() < m_duration))
            m_duration = progress.get_duration();
    }
    if (m_duration.is_negative())
        m_duration = ZBDuration();
    m_priority = entry.get_priority_facet().get_nondue_priority();
    m_resource = entry.get_props().get_resource_calc();
    m_timeType = diary.get_timetype_name_by_id(entry.get_props().get_timetype_calc());
    m_mandatory = mandatory;
    // Time the user fixed for this window is already booked.
    const ZBDateSet& planned = entry.get_plan().get_planned();
    for (int i = 0; i < planned.size() && ZBDuration() < m_duration; ++i) {
        const ZBDateSetEntry* plan = planned[i];
        if (valid(m_startAfter) && plan->m_end < m_startAfter)
            continue;
        if (valid(m_due) && m_due < plan->m_start)
            continue;
        m_duration -= plan->m_end - plan->m_start;
        if (m_duration.is_negative())
            m_duration = ZBDuration();
    }
    m_allocated.clear();
    m_remaining = m_duration;
    update();
    return ZBErrC_ok;
}

void TimeRequest::update()
{
    m_remaining = m_duration - m_allocated.duration();
    if (m_remaining.is_negative())
        m_remaining = ZBDuration();
    m_isAllocated = m_remaining < g_second || m_duration.is_zero();
}

ZBDuration TimeRequest::allocate(ZBDateSet& set, const ZBDate& from, const ZBDate& to)
{
    ZBDuration got;
    if (!(ZBDuration() < m_remaining))
        return got;
    const bool hasFrom = valid(from);
    const bool hasTo = valid(to);
    if (!hasFrom || !hasTo) {
        // Only an end: latest first back from it.
        got = set.allocate(m_allocated, m_remaining, hasFrom ? from : g_blank, hasTo ? to : g_blank,
                           !hasFrom && hasTo);
    } else {
        got = set.allocate(m_allocated, m_remaining, from, to, true);
        if (ZBDuration() < got)
            update();
        // What does not fit before the end runs on past it.
        if (ZBDuration() < m_remaining)
            got += set.allocate(m_allocated, m_remaining, from, g_blank, false);
    }
    if (ZBDuration() < got)
        update();
    return got;
}

void TimeRequest::return_time(ZBDateSet& set, const ZBDateSlot& keep)
{
    if (m_allocated.empty())
        return;
    if (keep.m_start.is_ok() && keep.m_end.is_ok() && keep.m_start < keep.m_end)
        m_allocated.subtract(keep, -1);
    set.add_return(m_allocated);
    update();
}

void TimeRequest::cull_mandatory(const ZBDateSet& set)
{
    if (m_mandatory)
        return;
    bool hasTime = false;
    if (valid(m_startAfter) && valid(m_due))
        hasTime = has_time(set, ZBDateSlot(m_startAfter, m_due));
    else if (valid(m_due))
        hasTime = !set.empty() && set.start() < m_due;
    else if (valid(m_startAfter))
        hasTime = !set.empty() && has_time(set, ZBDateSlot(m_startAfter, set.end()));
    else
        hasTime = !set.empty();
    if (!hasTime)
        m_duration = ZBDuration();
}

void TimeRequest::set_isallocated(bool flag)
{
    m_isAllocated = flag;
    if (!flag) {
        m_allocated.clear();
        m_remaining = m_duration;
    }
}

ZBDateSlot TimeRequest::get_due_range(const ZBDateSlot& slot) const
{
    ZBDate from = slot.m_start;
    if (valid(m_startAfter) && (!valid(from) || from < m_startAfter))
        from = m_startAfter;
    ZBDate to = m_due;
    if (!valid(to))
        to = m_set ? m_set->m_currentTime.end() : g_blank;
    return ZBDateSlot(from, to);
}

bool TimeRequest::is_overdue() const
{
    return valid(m_due) && !m_allocated.empty() && m_due < m_allocated.end();
}

void TimeRequest::record_planned_start(const ZBDate& date, bool earlier, bool later)
{
    if (!is_task() || !valid(m_due) || !(ZBDuration() < m_duration)) {
        m_plannedStart = g_blank;
        return;
    }
    if (!(m_duration - m_allocated.duration() < g_second)) {
        // Not all of it fits: work should have begun as early as can be seen.
        m_plannedStart = date;
        return;
    }
    const ZBDate first = m_allocated.start();
    if (!valid(m_plannedStart))
        m_plannedStart = first;
    else if (earlier) {
        if (first < m_plannedStart)
            m_plannedStart = first;
    } else if (later) {
        if (m_plannedStart < first && !is_overdue())
            m_plannedStart = first;
    } else {
        m_plannedStart = first;
    }
}

void TimeRequest::record_pretime(const ZBDate& end, const ZBDateSet& set, const ZBDate& today)
{
    m_preTime = ZBDuration();
    if (!is_overdue() || m_index != 0)
        return;
    m_preTime = m_allocated.query_range(ZBDateSlot(m_due, end), -1);
    if (valid(m_startAfter) && !(m_startAfter < today) && today < m_startAfter)
        m_preTime -= set.query_range(ZBDateSlot(today, m_startAfter), -1);
    if (m_preTime.is_negative())
        m_preTime = ZBDuration();
}

bool TimeRequest::can_move_back(const ZBDateSet& set) const
{
    if (m_allocated.empty())
        return false;
    const ZBDateSetEntry* first = m_allocated[0];
    if (valid(m_mustStart) && !(first->m_start < m_mustStart))
        return false;
    if (valid(m_due))
        return first->m_end < m_due && has_time(set, ZBDateSlot(first->m_end, m_due));
    return !set.empty() && has_time(set, ZBDateSlot(first->m_end, set.end()));
}

bool TimeRequest::can_move_forward(const ZBDateSet& set) const
{
    if (m_allocated.empty())
        return false;
    const ZBDate begin = m_allocated.start();
    if (valid(m_startAfter))
        return m_startAfter < begin && has_time(set, ZBDateSlot(m_startAfter, begin));
    return !set.empty() && set.start() < begin && has_time(set, ZBDateSlot(set.start(), begin));
}

bool TimeRequest::swap(TimeRequest& other, const ZBDateSlot& window)
{
    if (&other == this || m_allocated.empty() || other.m_allocated.empty())
        return false;
    if (m_allocated.start() < other.m_allocated.end())
        return false;
    const ZBDate from = valid(m_startAfter) ? later(window.m_start, m_startAfter) : window.m_start;
    const ZBDate to = valid(other.m_due) ? earlier(window.m_end, other.m_due) : window.m_end;
    if (!valid(from) || !valid(to) || !(from < to))
        return false;
    const ZBDateSlot range(from, to);
    if (!has_allocated_in_range(range) || !other.has_allocated_in_range(range))
        return false;
    const ZBDateSet mine = m_allocated;
    const ZBDateSet theirs = other.m_allocated;
    const ZBDuration mineIn = amount_allocated_in_range(range);
    const ZBDuration theirsIn = other.amount_allocated_in_range(range);
    // Both hand in what they hold in the range; this takes its share from the
    // front of it and other the rest, so each keeps its amount.
    ZBDateSet pool;
    for (TimeRequest* side : {this, &other}) {
        ZBDateSet part;
        side->m_allocated.query_range(range, part);
        side->m_allocated.subtract(range, -1);
        pool.add(part);
    }
    pool.allocate(m_allocated, mineIn, g_blank, g_blank, false);
    pool.allocate(other.m_allocated, theirsIn, g_blank, g_blank, false);
    if (!pool.empty())
        other.m_allocated.add_return(pool);
    update();
    other.update();
    // Neither may now run before something it waits for.
    bool broken = false;
    if (m_set) {
        for (int id : m_depend) {
            const TimeRequest* before = m_set->find(id);
            broken = broken || (before && !before->m_allocated.empty() && m_allocated.start() < before->m_allocated.end());
        }
        for (int id : other.m_rdepend) {
            const TimeRequest* after = m_set->find(id);
            broken = broken
                  || (after && !after->m_allocated.empty() && after->m_allocated.start() < other.m_allocated.end());
        }
    } else {
        broken = std::find(m_depend.begin(), m_depend.end(), other.m_id) != m_depend.end();
    }
    if (broken) {
        m_allocated = mine;
        other.m_allocated = theirs;
        update();
        other.update();
        return false;
    }
    return true;
}

bool TimeRequest::has_allocated_in_range(const ZBDateSlot& slot) const
{
    return has_time(m_allocated, slot);
}

ZBDuration TimeRequest::amount_allocated_in_range(const ZBDateSlot& slot) const
{
    return m_allocated.query_range(slot, -1);
}

int TimeRequest::compare_end(const TimeRequest& a, const TimeRequest& b)
{
    const int c = compare_dates(a.m_due, b.m_due);
    return c ? c : compare_dates(a.m_startAfter, b.m_startAfter);
}

int TimeRequest::compare_start(const TimeRequest& a, const TimeRequest& b)
{
    const int c = compare_dates(a.m_startAfter, b.m_startAfter);
    return c ? c : compare_dates(a.m_due, b.m_due);
}

int TimeRequest::compare_ideal(const TimeRequest& a, const TimeRequest& b)
{
    const int c = compare_dates(a.m_plannedStart, b.m_plannedStart);
    return c ? c : compare_dates(a.m_due, b.m_due);
}

int TimeRequest::compare_priority(const TimeRequest& a, const TimeRequest& b)
{
    return a.m_priority < b.m_priority ? -1 : (b.m_priority < a.m_priority ? 1 : 0);
}

int TimeRequest::compare_allocated(const TimeRequest& a, const TimeRequest& b)
{
    return compare_dates(a.m_allocated.start(), b.m_allocated.start());
}

void TimeRequest::add_depend(int id)
{
    if (std::find(m_depend.begin(), m_depend.end(), id) == m_depend.end())
        m_depend.push_back(id);
}

void TimeRequest::add_rdepend(int id)
{
    if (std::find(m_rdepend.begin(), m_rdepend.end(), id) == m_rdepend.end())
        m_rdepend.push_back(id);
}

bool TimeRequest::has_time(const ZBDateSet& set, const ZBDateSlot& slot)
{
    if (set.empty() || !valid(slot.m_start) || !slot.m_end.is_ok() || !(slot.m_start < slot.m_end))
        return false;
    for (int i = set.safe_find(slot.m_start); i < set.size(); ++i) {
        const ZBDateSetEntry* entry = set[i];
        if (!(entry->m_start < slot.m_end))
            break;
        if (slot.m_start < entry->m_end && entry->m_start < entry->m_end)
            return true;
    }
    return false;
}

bool TimeRequest::offers_more_than(const ZBDateSet& set, const ZBDateSlot& slot, const ZBDuration& amount)
{
    if (set.empty() || !valid(slot.m_start) || !slot.m_end.is_ok() || !(slot.m_start < slot.m_end))
        return false;
    ZBDuration sum;
    ZBDate cursor = slot.m_start;
    for (int i = set.safe_find(slot.m_start); i < set.size(); ++i) {
        const ZBDateSetEntry* entry = set[i];
        if (!(entry->m_start < slot.m_end))
            break;
        const ZBDate from = later(later(entry->m_start, slot.m_start), cursor);
        const ZBDate to = earlier(entry->m_end, slot.m_end);
        if (from < to) {
            sum += to - from;
            cursor = to;
            if (amount < sum)
                return true;
        }
    }
    return false;
}

} // namespace Tervalon
