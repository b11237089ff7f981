#pragma once

#include "LibDate/date/zbdateslot.h"

#include <memory>
#include <vector>

namespace Tervalon {

class ZBCalendar;
class ZBCalendarEntry;

// One view's window onto a calendar: the entries that meet its range, by
// index into the calendar's sorted list. A month view asks one query with a
// sub-query per day and reads each cell from its sub-query. A query looks
// again only when the calendar's update count has moved since it last did.
// The query does not own the calendar, which must outlive it.
class ZBCalendarQuery {
public:
    explicit ZBCalendarQuery(const ZBCalendar& calendar);
    ZBCalendarQuery(const ZBCalendarQuery& other);
    ZBCalendarQuery& operator=(const ZBCalendarQuery& other);
    virtual ~ZBCalendarQuery();

    // An equal range keeps what was found; another one starts afresh, with
    // one sub-query per day (00:00:00 to 23:59:59 in the range's zone) when
    // asked.
    void set_range(const ZBDateSlot& range, bool withSubqueries);
    const ZBDateSlot& get_range() const;
    int do_query();
    int get_nresults() const;
    // Out of range gives null.
    const ZBCalendarEntry* get_result_no(int index) const;
    int get_result_index(int index) const;
    int get_nsubqueries() const;
    ZBCalendarQuery* get_subquery_no(int index) const;
    // Reorders the results (not the calendar) by group, or by priority, the
    // highest first.
    void sort_group();
    void sort_priority();
    // Forgets results and sub-queries; the next do_query looks again.
    void remove_all();

    virtual void dump(std::ostream& out, int indent) const;

private:
    // Takes the entry at index of the calendar when it meets the range.
    void push_entry(int index, const ZBCalendarEntry& entry);

    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Tervalon
