#pragma once

#include "AppTervalonDiary/diary/timerequest.h"
#include "AppTervalonDiary/diary/timerequestset.h"
#include "LibDate/dateset/zbdateset.h"

#include <functional>
#include <memory>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;

// The planner of one full pass: turns every open task and every instance of
// a repeating entry into a TimeRequest, books the tasks into their
// resource's free time, and writes the sessions back to the entries' plans.
// Made, run (start, allocate, complete) and thrown away by
// Diary::calculate_time_allocation; owns its requests and sets.
class TimeAllocator {
public:
    // Repeats are expanded to at most this many instances per entry.
    static constexpr int C_RepeatLimit = 10000;

    TimeAllocator();
    ~TimeAllocator();
    TimeAllocator(const TimeAllocator&) = delete;
    TimeAllocator& operator=(const TimeAllocator&) = delete;

    int start(Diary& diary);
    int create_requests(Diary& diary, DiaryEntry& entry, const ZBDate& end);
    int assign_dependencies(const Diary& diary);
    int allocate(Diary& diary);
    // Due dates pulled back along dependencies and start-after dates pushed
    // forward, each to its fixed point.
    void upgrade_times();
    void upgrade_due(TimeRequest& request, const ZBDate& date, int source, bool push);
    void upgrade_start(TimeRequest& request, const ZBDate& date, int source, bool push);
    int complete(Diary& diary);
    // The time a request is measured against: its set's, or an empty one.
    const ZBDateSet& get_dateset(const TimeRequest& request) const;

    // Asked between stages; a pass that should stop returns early.
    void set_stopping(const std::function<bool()>& stopping) { m_stopping = stopping; }
    int get_nrequests() const { return int(m_request.size()); }
    TimeRequest* get_request(int id) const;
    int get_nsets() const { return int(m_sets.size()); }
    const TimeRequestSet* get_set(int index) const { return m_sets[size_t(index)].get(); }
    const ZBDateSlot& get_range() const { return m_range; }
    const ZBDate& get_start() const { return m_start; }

private:
    // Requests in an order where each comes after those it waits for; those
    // caught in a loop come last, in list order.
    std::vector<TimeRequest*> dependency_order() const;
    bool stopping() const { return m_stopping && m_stopping(); }
    // The latest start that meets due in the request's free time.
    ZBDate must_start(const TimeRequest& request, const ZBDate& due) const;

    std::vector<std::unique_ptr<TimeRequest>> m_request; // index is the id
    std::vector<TimeRequest*> m_byId;
    std::vector<TimeRequest*> m_order;
    std::vector<std::unique_ptr<TimeRequestSet>> m_sets;
    ZBDateSet m_fallback;
    ZBDateSlot m_range;
    ZBDateSlot m_repeatRange;
    int m_repeatLimit;
    ZBDate m_start;
    ZBDate m_now;
    std::function<bool()> m_stopping;
};

} // namespace Tervalon
