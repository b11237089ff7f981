#include "AppTervalonDiary/diary/timeallocator.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <algorithm>
#include <unordered_map>

namespace Tervalon {

namespace {
bool valid(const ZBDate& date)
{
    return date.is_ok() && !date.is_zero();
}

const ZBDate g_blank(ZBDate::E_Blank);

// The window of an entry that does not repeat: its own dates, a side it
// leaves open left open (a task with no due has no backward pass), and a task
// due before its start-after planned late and shown so, rather than given the
// user's dates the other way round.
ZBDateSlot own_window(const DiaryEntry& entry)
{
    if (entry.get_derived_entrytype() == 'A' && entry.get_time().calc.m_start.is_ok()
        && entry.get_time().calc.m_end.is_ok())
        return entry.get_time().calc;
    return ZBDateSlot(entry.get_start().calc, entry.get_due().calc);
}
} // namespace

TimeAllocator::TimeAllocator() : m_repeatLimit(C_RepeatLimit), m_start(ZBDate::E_Blank), m_now(ZBDate::E_Blank) {}

TimeAllocator::~TimeAllocator() = default;

TimeRequest* TimeAllocator::get_request(int id) const
{
    return id >= 0 && size_t(id) < m_byId.size() ? m_byId[size_t(id)] : nullptr;
}

const ZBDateSet& TimeAllocator::get_dateset(const TimeRequest& request) const
{
    return request.get_set() ? request.get_set()->m_currentTime : m_fallback;
}

int TimeAllocator::start(Diary& diary)
{
    m_request.clear();
    m_byId.clear();
    m_order.clear();
    m_sets.clear();
    m_range = diary.get_settings().get_lookahead_date(false);
    m_now = ZBDateUtils::now();
    // Work planned from now begins a minute and a half from now, on its minute.
    const std::int64_t minute = std::int64_t(60) * ZBDate::C_MicroSecs;
    const ZBDate soon = m_now + ZBDuration(90);
    std::int64_t micros = soon.to_micros();
    micros -= ((micros % minute) + minute) % minute;
    m_start.from_micros(micros, soon.get_timezone());
    // The repeat range and limit belong to this pass only.
    m_repeatRange = ZBDateSlot(m_now, m_range.m_end);
    m_repeatLimit = C_RepeatLimit;

    for (int i = 0; i < diary.get_nentries(); ++i)
        if (iszbwarn(create_requests(diary, *diary.get_entry_index(i), m_range.m_end)))
            return zbpass(ZBLOC);
    if (iszbwarn(diary.allocate_times(m_range.m_start, m_range.m_end)))
        return zbpass(ZBLOC);
    m_order = m_byId;
    TimeRequestSet::sort(m_order, &TimeRequest::compare_priority);
    if (iszbwarn(assign_dependencies(diary)))
        return zbpass(ZBLOC);

    for (int r = 0; r < diary.get_nresources(); ++r) {
        const Resource* resource = diary.get_resource_by_index(r);
        const ZBDateSetGroup& group = resource->get_avail_time();
        for (int t = 0; t < diary.get_ntimetypes(); ++t) {
            const std::string name = diary.get_timetype_by_index(t)->get_name();
            const ZBDateSet* available = nullptr;
            for (int g = 0; g < group.get_ndatesets() && !available; ++g)
                if (group.get_dateset_name_by_index(g) == name)
                    available = group.get_dateset_by_index(g);
            m_sets.emplace_back(
                new TimeRequestSet(resource->get_id(), name, m_order, m_start, m_range, available, &m_byId));
        }
    }
    return ZBErrC_ok;
}

int TimeAllocator::create_requests(Diary& diary, DiaryEntry& entry, const ZBDate& end)
{
    entry.clear_predicted(false);
    if (entry.get_nchildren() > 0) {
        for (DiaryEntry* child : entry.get_children())
            if (iszbwarn(create_requests(diary, *child, end)))
                return zbpass(ZBLOC);
        return ZBErrC_ok;
    }
    const char type = entry.get_derived_entrytype();
    if (!((type == 'T' && !entry.is_complete()) || type == 'A'))
        return ZBErrC_ok;
    // One request per instance the series gives within the lookahead, the
    // same instances the calendar and the summary show.
    const ZBDateRepeat& repeat = entry.get_repeat();
    const std::vector<ZBDateSlot>* instances = nullptr;
    if (repeat.is_repeating() && !repeat.is_manual()) {
        EntryRepeat& series = entry.edit_erepeat();
        if (iszbwarn(series.generate_slots(false, ZBDateSlot(m_repeatRange.m_start, end), m_repeatLimit)))
            return zbpass(ZBLOC);
        if (!series.get_slots().empty())
            instances = &series.get_slots();
    }
    ZBDateRepeat::E_WorkdayType work = ZBDateRepeat::E_WorkNone;
    int workId = -1;
    repeat.get_workday(work, workId);
    // A several-times-a-day habit kept to work days may simply not happen.
    const bool mandatory = !(repeat.is_repeating() && repeat.days_between() < 1 && work != ZBDateRepeat::E_WorkNone);
    const size_t count = instances ? instances->size() : 1;
    for (size_t i = 0; i < count; ++i) {
        ZBDateSlot slot = instances ? (*instances)[i] : own_window(entry);
        if (instances && i == 0 && type != 'A') {
            // The current instance keeps the sides the task leaves open: with
            // no due it has no backward pass.
            if (!valid(entry.get_start().calc))
                slot.m_start = g_blank;
            if (!valid(entry.get_due().calc))
                slot.m_end = g_blank;
        }
        const int id = int(m_request.size());
        m_request.emplace_back(new TimeRequest(id));
        TimeRequest* request = m_request.back().get();
        m_byId.push_back(request);
        if (iszbwarn(request->initialise(diary, entry, int(i), slot, mandatory)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int TimeAllocator::assign_dependencies(const Diary& diary)
{
    TimeRequestSet::sort(m_order, &TimeRequest::compare_end);
    // Each entry's requests, with their places in the list.
    std::unordered_map<int, std::vector<size_t>> byEntry;
    for (size_t i = 0; i < m_order.size(); ++i)
        byEntry[m_order[i]->m_entryId].push_back(i);
    for (size_t i = 0; i < m_order.size(); ++i) {
        TimeRequest* request = m_order[i];
        const DiaryEntry* nentry = diary.get_entry_id(request->m_entryId);
        if (iszbwarn(ZBASSERT(nentry != nullptr)))
            return zbpass(ZBLOC);
        for (int d : nentry->get_depend().get_full_depends()) {
            auto found = byEntry.find(d);
            if (found == byEntry.end() || d == request->m_entryId)
                continue;
            // Of the instances due before this one only the latest is linked:
            // the series is due in order, and two long series must not make
            // a link for every pair of instances.
            const std::vector<size_t>& places = found->second;
            const auto next = std::lower_bound(places.begin(), places.end(), i);
            const TimeRequest* lastEarlier = next == places.begin() ? nullptr : m_order[*(next - 1)];
            // A repeating predecessor is needed up to this one's due.
            if (next != places.end()) {
                TimeRequest* other = m_order[*next];
                if (!valid(other->m_startAfter) || !valid(request->m_due) || other->m_startAfter < request->m_due) {
                    request->add_depend(other->m_id);
                    other->add_rdepend(request->m_id);
                }
            }
            if (lastEarlier) {
                request->add_depend(lastEarlier->m_id);
                m_byId[size_t(lastEarlier->m_id)]->add_rdepend(request->m_id);
            }
        }
    }
    return ZBErrC_ok;
}

ZBDate TimeAllocator::must_start(const TimeRequest& request, const ZBDate& due) const
{
    const ZBDate date = get_dateset(request).time_before(due, request.m_duration);
    // Not enough free time before the due: it is late already, so the start
    // is where the bare length puts it, not the due itself.
    return date == due && ZBDuration() < request.m_duration ? due - request.m_duration : date;
}

std::vector<TimeRequest*> TimeAllocator::dependency_order() const
{
    const size_t n = m_byId.size();
    std::vector<int> waiting(n, 0);
    for (const TimeRequest* request : m_byId)
        waiting[size_t(request->m_id)] = int(request->m_depend.size());
    std::vector<TimeRequest*> order;
    order.reserve(n);
    for (TimeRequest* request : m_order)
        if (waiting[size_t(request->m_id)] == 0)
            order.push_back(request);
    for (size_t k = 0; k < order.size(); ++k)
        for (int id : order[k]->m_rdepend)
            if (--waiting[size_t(id)] == 0)
                order.push_back(m_byId[size_t(id)]);
    if (order.size() < n)
        for (TimeRequest* request : m_order)
            if (waiting[size_t(request->m_id)] > 0)
                order.push_back(request);
    return order;
}

void TimeAllocator::upgrade_times()
{
    for (TimeRequest* request : m_byId) {
        request->set_isallocated(false);
        if (!(ZBDuration() < request->m_duration) || !valid(request->m_due))
            continue;
        request->m_mustStart = request->is_task() ? must_start(*request, request->m_due) : request->m_startAfter;
    }
    // Successors before predecessors for dues, the reverse for starts: one
    // sweep each then reaches the fixed point, whatever the list order.
    const std::vector<TimeRequest*> order = dependency_order();
    for (auto it = order.rbegin(); it != order.rend(); ++it)
        upgrade_due(**it, (*it)->m_due, (*it)->m_entryId, true);
    for (TimeRequest* request : order)
        upgrade_start(*request, request->m_startAfter, request->m_entryId, true);
}

void TimeAllocator::upgrade_due(TimeRequest& request, const ZBDate& date, int source, bool push)
{
    if (request.is_task() && valid(date) && (!valid(request.m_due) || date < request.m_due)) {
        request.m_due = date;
        request.m_dueSource = source;
        if (ZBDuration() < request.m_duration)
            request.m_mustStart = must_start(request, date);
    }
    if (!push)
        return;
    const ZBDate& pass = request.is_task() ? request.m_mustStart : request.m_startAfter;
    for (int id : request.m_depend)
        if (TimeRequest* before = get_request(id))
            upgrade_due(*before, pass, request.m_entryId, false);
}

void TimeAllocator::upgrade_start(TimeRequest& request, const ZBDate& date, int source, bool push)
{
    ZBDate finish = request.m_due;
    if (request.is_task()) {
        const ZBDate working = !valid(date) || date < m_now ? m_now : date;
        if (valid(date) && (!valid(request.m_startAfter) || request.m_startAfter < date)) {
            request.m_startAfter = date;
            request.m_startSource = source;
        }
        finish = get_dateset(request).time_after(working, request.m_duration);
    }
    if (!push)
        return;
    for (int id : request.m_rdepend)
        if (TimeRequest* after = get_request(id))
            upgrade_start(*after, finish, request.m_entryId, false);
}

int TimeAllocator::allocate(Diary&)
{
    upgrade_times();
    if (stopping())
        return ZBErrC_okNotFinished;
    for (TimeRequest* request : m_byId)
        request->set_isallocated(false);
    for (auto& set : m_sets) {
        const int result = set->assign(m_stopping);
        if (iszbwarn(result))
            return zbpass(ZBLOC);
        if (result == ZBErrC_okNotFinished)
            return result;
    }
    return ZBErrC_ok;
}

int TimeAllocator::complete(Diary& diary)
{
    for (const auto& request : m_request) {
        for (int id : request->m_depend)
            if (!get_request(id))
                return zberror(ZBErrC_MapCorrupt, ZBLOC, "Corrupt map.");
        DiaryEntry* entry = diary.get_entry_id(request->m_entryId);
        if (!entry)
            continue;
        // The dates an entry shows are those of the instance it stands for:
        // later instances come without a source.
        const bool current = request->m_index == 0;
        entry->edit_plan().add_predicted(request->m_plannedStart, request->m_mustStart, request->m_allocated,
                                         request->m_startAfter, current ? request->m_startSource : -1,
                                         request->m_due, current ? request->m_dueSource : -1,
                                         request->m_preTime);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
