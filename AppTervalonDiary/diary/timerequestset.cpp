#include "AppTervalonDiary/diary/timerequestset.h"
#include "LibDate/date/zbdateutils.h"

#include <algorithm>

namespace Tervalon {

namespace {
bool valid(const ZBDate& date)
{
    return date.is_ok() && !date.is_zero();
}

const ZBDate g_blank(ZBDate::E_Blank);
constexpr int C_FirstSwapDays = 21;
constexpr int C_SecondSwapDays = 7;

bool needs_time(const TimeRequest& request)
{
    return ZBDuration() < request.m_duration;
}
} // namespace

TimeRequestSet::TimeRequestSet(int resource, const std::string& timeType, const std::vector<TimeRequest*>& requests,
                               const ZBDate& start, const ZBDateSlot& range, const ZBDateSet* available,
                               const std::vector<TimeRequest*>* byId)
    : m_resource(resource), m_timeType(timeType), m_start(start), m_range(range), m_byId(byId)
{
    if (available) {
        m_pastTime = *available;
        m_currentTime = *available;
        if (!m_currentTime.empty() && m_currentTime.start() < m_start)
            m_currentTime.subtract(ZBDateSlot(m_currentTime.start(), m_start), -1);
    }
    for (TimeRequest* request : requests)
        if (request->is_task() && request->m_resource == m_resource && request->m_timeType == m_timeType) {
            m_requests.push_back(request);
            request->set_set(this);
        }
    // Creation order, so that ties in every later sort fall the same way
    // whatever order the allocator's list was in.
    std::sort(m_requests.begin(), m_requests.end(),
              [](const TimeRequest* a, const TimeRequest* b) { return a->m_id < b->m_id; });
    m_endToday = ZBDateUtils::end_day(ZBDateUtils::now());
}

const TimeRequest* TimeRequestSet::find(int id) const
{
    if (!m_byId || id < 0 || size_t(id) >= m_byId->size())
        return nullptr;
    return (*m_byId)[size_t(id)];
}

void TimeRequestSet::sort(std::vector<TimeRequest*>& list, int (*compare)(const TimeRequest&, const TimeRequest&))
{
    std::reverse(list.begin(), list.end());
    std::stable_sort(list.begin(), list.end(),
                     [compare](const TimeRequest* a, const TimeRequest* b) { return compare(*a, *b) < 0; });
}

void TimeRequestSet::sort_highest_first(std::vector<TimeRequest*>& list,
                                        int (*compare)(const TimeRequest&, const TimeRequest&))
{
    sort(list, compare);
    std::reverse(list.begin(), list.end());
}

std::vector<TimeRequest*> TimeRequestSet::select(const std::function<bool(const TimeRequest&)>& keep) const
{
    std::vector<TimeRequest*> result;
    for (TimeRequest* request : m_requests)
        if (keep(*request))
            result.push_back(request);
    return result;
}

ZBDate TimeRequestSet::earliest_start(const TimeRequest& request) const
{
    ZBDate from = request.m_startAfter;
    for (int id : request.m_depend) {
        const TimeRequest* before = find(id);
        if (before && before->is_task() && !before->m_allocated.empty()) {
            const ZBDate end = before->m_allocated.end();
            if (!valid(from) || from < end)
                from = end;
        } else if (before && !before->is_task() && valid(before->m_due) && (!valid(from) || from < before->m_due)) {
            from = before->m_due;
        }
    }
    return from;
}

int TimeRequestSet::assign(const std::function<bool()>& stopping)
{
    auto stop = [&stopping]() { return stopping && stopping(); };
    const ZBDateSlot past(m_range.m_start, m_start);
    m_endToday = ZBDateUtils::end_day(ZBDateUtils::now());

    // Stage 0: optional instances without time need none.
    for (TimeRequest* request : m_requests) {
        request->cull_mandatory(m_currentTime);
        request->update();
    }
    if (stop())
        return ZBErrC_okNotFinished;

    // Stage 1: backwards from each due in all the time there was, to see when
    // work would ideally have begun.
    ZBDateSet free = m_pastTime;
    stage_backward(free);
    if (stop())
        return ZBErrC_okNotFinished;

    // Stage 2: forwards from now in the time that is left.
    free = m_currentTime;
    for (TimeRequest* request : m_requests)
        request->set_isallocated(false);
    stage_forward(free, past);
    if (stop())
        return ZBErrC_okNotFinished;

    stage_rescue(free, past);
    if (stop())
        return ZBErrC_okNotFinished;

    stage_compact(free, past);
    if (stop())
        return ZBErrC_okNotFinished;

    ZBDateSet fixed = m_currentTime;
    stage_swap(fixed, C_FirstSwapDays, true);
    if (stop())
        return ZBErrC_okNotFinished;
    fixed = m_currentTime;
    stage_swap(fixed, C_SecondSwapDays, false);
    if (stop())
        return ZBErrC_okNotFinished;

    // Stage 6: final notes.
    for (TimeRequest* request : m_requests)
        if (request->m_isAllocated && needs_time(*request)) {
            request->record_planned_start(m_range.m_start, false, true);
            request->record_pretime(m_range.m_end, fixed, m_endToday);
        }
    return ZBErrC_ok;
}

void TimeRequestSet::stage_backward(ZBDateSet& free)
{
    std::vector<TimeRequest*> list =
        select([](const TimeRequest& r) { return needs_time(r) && valid(r.m_due); });
    sort(list, &TimeRequest::compare_priority);
    auto place = [&](TimeRequest* request) {
        request->allocate(free, g_blank, request->m_due);
        request->record_planned_start(m_range.m_start, false, false);
    };
    for (TimeRequest* request : list)
        if (request->m_repeating)
            place(request);
    for (TimeRequest* request : list)
        if (!request->m_isAllocated && valid(request->m_startAfter) && m_endToday < request->m_startAfter)
            place(request);
    for (TimeRequest* request : list)
        if (!request->m_isAllocated)
            place(request);
}

void TimeRequestSet::stage_forward(ZBDateSet& free, const ZBDateSlot& past)
{
    const ZBDateSlot fromNow(m_start, g_blank);
    std::vector<TimeRequest*> ideal =
        select([](const TimeRequest& r) { return needs_time(r) && valid(r.m_plannedStart); });
    sort(ideal, &TimeRequest::compare_ideal);
    for (TimeRequest* request : ideal)
        if (request->m_repeating)
            request->allocate(free, earliest_start(*request), g_blank);

    std::vector<TimeRequest*> placed = select(
        [](const TimeRequest& r) { return needs_time(r) && valid(r.m_plannedStart) && r.m_isAllocated; });
    sort(placed, &TimeRequest::compare_priority);
    for (TimeRequest* request : placed) {
        ZBDateSlot range = request->get_due_range(fromNow);
        if (!request->m_allocated.empty() && range.m_start < request->m_allocated.end())
            range.m_start = request->m_allocated.end();
        if (TimeRequest::has_time(free, range)) {
            request->return_time(free, past);
            request->allocate(free, earliest_start(*request), request->m_due);
        }
    }

    std::vector<TimeRequest*> open = select(
        [](const TimeRequest& r) { return needs_time(r) && valid(r.m_plannedStart) && !r.m_isAllocated; });
    sort_highest_first(open, &TimeRequest::compare_priority);
    for (TimeRequest* request : open) {
        const ZBDate from = earliest_start(*request);
        ZBDateSlot range = request->get_due_range(fromNow);
        if (valid(from) && range.m_start < from)
            range.m_start = from;
        // Room to spare: as late as the due allows, leaving early time to
        // the urgent. Otherwise as early as possible.
        if (TimeRequest::offers_more_than(free, range, request->m_duration))
            request->allocate(free, range.m_start, request->m_due);
        else
            request->allocate(free, from, g_blank);
    }
}

void TimeRequestSet::stage_rescue(ZBDateSet& free, const ZBDateSlot& past)
{
    const ZBDateSlot fromNow(m_start, g_blank);
    std::vector<TimeRequest*> overdue;
    std::vector<TimeRequest*> others;
    for (TimeRequest* request : m_requests) {
        if (!needs_time(*request) || !valid(request->m_plannedStart))
            continue;
        (request->is_overdue() ? overdue : others).push_back(request);
    }
    sort_highest_first(overdue, &TimeRequest::compare_priority);
    sort_highest_first(others, &TimeRequest::compare_priority);
    for (TimeRequest* x : overdue) {
        if (others.empty() || !TimeRequest::has_time(free, ZBDateSlot(m_start, x->m_due)))
            continue;
        const ZBDateSlot range = x->get_due_range(fromNow);
        for (TimeRequest* y : others) {
            if (y->m_allocated.empty() || !(y->m_allocated.start() < range.m_end)
                || !(range.m_start < y->m_allocated.end()) || !y->has_allocated_in_range(range))
                continue;
            y->return_time(free, past);
            x->return_time(free, past);
            const ZBDate yFrom = earliest_start(*y);
            y->allocate(free, yFrom, x->m_startAfter);
            y->allocate(free, yFrom, y->m_due);
            x->allocate(free, earliest_start(*x), x->m_due);
            // y goes back as late as its own due allows, never before its start.
            y->return_time(free, past);
            if (valid(y->m_due))
                y->allocate(free, valid(yFrom) ? yFrom : m_start, y->m_due);
            else
                y->allocate(free, yFrom, g_blank);
            if (!x->is_overdue())
                break;
        }
    }
    for (TimeRequest* request : m_requests)
        if (request->m_isAllocated && needs_time(*request))
            request->record_planned_start(m_range.m_start, true, false);
}

void TimeRequestSet::stage_compact(ZBDateSet& free, const ZBDateSlot& past)
{
    const ZBDateSlot fromNow(m_start, g_blank);
    std::vector<TimeRequest*> all = m_requests;
    sort_highest_first(all, &TimeRequest::compare_priority);
    for (TimeRequest* request : all) {
        if (!needs_time(*request))
            continue;
        const ZBDate from = earliest_start(*request);
        if (request->m_isAllocated && !request->m_allocated.empty()) {
            const ZBDateSlot range = request->get_due_range(fromNow);
            ZBDate before = request->m_allocated.start();
            if (range.m_end.is_ok() && range.m_end < before)
                before = range.m_end;
            ZBDate begin = range.m_start;
            if (valid(from) && begin < from)
                begin = from;
            if (TimeRequest::has_time(free, ZBDateSlot(begin, before))) {
                request->return_time(free, past);
                request->allocate(free, from, g_blank);
            }
        } else if (!request->m_isAllocated) {
            request->allocate(free, from, g_blank);
        }
    }
}

void TimeRequestSet::stage_swap(ZBDateSet& fixed, int days, bool first)
{
    const ZBDate windowEnd = ZBDateUtils::end_day(m_start + ZBDuration(std::int64_t(days), 0, 0));
    const ZBDateSlot window(m_start, windowEnd);
    std::vector<TimeRequest*> list = select([&windowEnd](const TimeRequest& r) {
        return (!r.m_allocated.empty() && r.m_allocated.start() < windowEnd)
            || (valid(r.m_due) && !(windowEnd < r.m_due));
    });
    sort_highest_first(list, &TimeRequest::compare_priority);
    const int n = int(list.size());
    if (n < 2)
        return;
    // Only requests with sessions in the window can change places; the
    // others (due by then but booked later) still take their time out of
    // fixed. So the pairs looked at are bounded by what the window holds.
    std::vector<int> movable;
    for (int i = 0; i < n; ++i)
        if (!list[size_t(i)]->m_allocated.empty() && list[size_t(i)]->m_allocated.start() < windowEnd)
            movable.push_back(i);
    if (first) {
        for (int i = 0; i + 1 < n; ++i) {
            TimeRequest* a = list[size_t(i)];
            if (a->is_overdue() && !a->can_move_forward(fixed)) {
                fixed.subtract(a->m_allocated);
                continue;
            }
            if (a->m_allocated.empty() || !(a->m_allocated.start() < windowEnd))
                continue;
            for (auto it = movable.rbegin(); it != movable.rend(); ++it) {
                TimeRequest* b = list[size_t(*it)];
                if (*it == i || !(b->m_allocated.start() < a->m_due))
                    continue;
                if (b->can_move_back(fixed))
                    a->swap(*b, window);
            }
        }
        return;
    }
    for (int i = 0; i < n; ++i) {
        TimeRequest* a = list[size_t(i)];
        if (!a->can_move_forward(fixed)) {
            fixed.subtract(a->m_allocated);
            continue;
        }
        if (!(a->m_allocated.start() < windowEnd))
            continue;
        for (int j : movable) {
            if (j <= i)
                continue;
            TimeRequest* b = list[size_t(j)];
            if (b->m_priority < a->m_priority && b->can_move_back(fixed))
                a->swap(*b, window);
        }
    }
}

} // namespace Tervalon
