#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/dateset/zbdateset.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;
class TimeRequestSet;

// One demand for work time: a task, or one instance of a repeating task or
// appointment, with the window it must fit in and the sessions the planner
// gave it. Made and owned by the TimeAllocator for one pass; the set it
// belongs to is not owned.
class TimeRequest {
public:
    explicit TimeRequest(int id);

    void dump(std::ostream& out, int indent) const;

    // Fills the request from the entry's instance number index, whose window
    // is slot. Fixed plans in the window reduce what is still needed.
    int initialise(const Diary& diary, const DiaryEntry& entry, int index, const ZBDateSlot& slot, bool mandatory);
    // Remaining time and the allocated flag after a change of m_allocated.
    void update();

    // Takes the remaining time out of set: latest first in from..to when both
    // are given (running on past to when that is not enough), otherwise from
    // the one that is given. Gives the time obtained.
    ZBDuration allocate(ZBDateSet& set, const ZBDate& from, const ZBDate& to);
    // Gives back everything held to set, except the part in keep, which is
    // lost (time in the past cannot be handed out again).
    void return_time(ZBDateSet& set, const ZBDateSlot& keep);
    // An optional instance with no time in its window needs none.
    void cull_mandatory(const ZBDateSet& set);
    void set_isallocated(bool flag);
    // The window the request should be worked in, as seen from slot's start.
    ZBDateSlot get_due_range(const ZBDateSlot& slot) const;
    bool is_overdue() const;
    void record_planned_start(const ZBDate& date, bool earlier, bool later);
    void record_pretime(const ZBDate& end, const ZBDateSet& set, const ZBDate& today);
    bool can_move_back(const ZBDateSet& set) const;
    bool can_move_forward(const ZBDateSet& set) const;
    // Moves this request in front of other within window, each keeping its
    // amount of time there. other's sessions must end no later than this
    // one's begin. Gives true when the two changed places.
    bool swap(TimeRequest& other, const ZBDateSlot& window);
    bool has_allocated_in_range(const ZBDateSlot& slot) const;
    ZBDuration amount_allocated_in_range(const ZBDateSlot& slot) const;

    // Orderings for the sort of the allocator's lists: <0, 0 or >0.
    static int compare_end(const TimeRequest& a, const TimeRequest& b);
    static int compare_start(const TimeRequest& a, const TimeRequest& b);
    static int compare_ideal(const TimeRequest& a, const TimeRequest& b);
    static int compare_priority(const TimeRequest& a, const TimeRequest& b);
    static int compare_allocated(const TimeRequest& a, const TimeRequest& b);

    void add_depend(int id);
    void add_rdepend(int id);
    bool is_task() const { return m_entryType == 'T'; }
    const ZBDuration& get_remaining() const { return m_remaining; }
    TimeRequestSet* get_set() const { return m_set; }
    void set_set(TimeRequestSet* set) { m_set = set; }

    // Positive overlap of set with slot: touching is not time.
    static bool has_time(const ZBDateSet& set, const ZBDateSlot& slot);
    // Whether set holds more than amount within slot; stops counting early.
    static bool offers_more_than(const ZBDateSet& set, const ZBDateSlot& slot, const ZBDuration& amount);

    int m_id;
    char m_entryType;
    int m_entryId;
    bool m_repeating;
    int m_index;
    ZBDate m_startAfter;
    int m_startSource;
    ZBDate m_due;
    int m_dueSource;
    ZBDuration m_duration;
    double m_priority;
    std::vector<int> m_depend;
    std::vector<int> m_rdepend;
    int m_resource;
    std::string m_timeType;
    bool m_mandatory;
    ZBDateSet m_allocated;
    bool m_isAllocated;
    ZBDate m_plannedStart;
    ZBDate m_mustStart;
    ZBDuration m_preTime;

private:
    ZBDuration m_remaining;
    TimeRequestSet* m_set;
};

} // namespace Tervalon
