#pragma once

#include "AppTervalonDiary/diary/timerequest.h"
#include "LibDate/dateset/zbdateset.h"

#include <functional>
#include <string>
#include <vector>

namespace Tervalon {

// The tasks of one resource and one kind of time, and that time: where the
// planner books them, stage by stage. Made by the TimeAllocator for one pass;
// the requests belong to the allocator.
class TimeRequestSet {
public:
    // Takes from requests the tasks of this resource and time type, and the
    // free time (null: none) as the whole availability; the part before start
    // is the past.
    TimeRequestSet(int resource, const std::string& timeType, const std::vector<TimeRequest*>& requests,
                   const ZBDate& start, const ZBDateSlot& range, const ZBDateSet* available,
                   const std::vector<TimeRequest*>* byId);

    // Books every request of the set. stopping is asked between stages.
    int assign(const std::function<bool()>& stopping = std::function<bool()>());

    // Any request of the pass by id, for the dependency checks; null when none.
    const TimeRequest* find(int id) const;
    const std::vector<TimeRequest*>& get_requests() const { return m_requests; }

    // The stable sort of the system: elements that compare equal end up in
    // the reverse of their previous order.
    static void sort(std::vector<TimeRequest*>& list, int (*compare)(const TimeRequest&, const TimeRequest&));
    // The same, then reversed: highest first, equal ones keeping their order.
    static void sort_highest_first(std::vector<TimeRequest*>& list,
                                   int (*compare)(const TimeRequest&, const TimeRequest&));

    int m_resource;
    std::string m_timeType;
    ZBDateSet m_pastTime;
    ZBDateSet m_currentTime;
    ZBDate m_start;
    ZBDateSlot m_range;

private:
    void stage_backward(ZBDateSet& free);
    void stage_forward(ZBDateSet& free, const ZBDateSlot& past);
    void stage_rescue(ZBDateSet& free, const ZBDateSlot& past);
    void stage_compact(ZBDateSet& free, const ZBDateSlot& past);
    void stage_swap(ZBDateSet& fixed, int days, bool first);
    // The later of the request's start-after and the end of what it waits for.
    ZBDate earliest_start(const TimeRequest& request) const;
    std::vector<TimeRequest*> select(const std::function<bool(const TimeRequest&)>& keep) const;

    std::vector<TimeRequest*> m_requests;
    const std::vector<TimeRequest*>* m_byId;
    ZBDate m_endToday;
};

} // namespace Tervalon
