#include "LibDate/calendar/zbcalendarquery.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

struct ZBCalendarQuery::Impl {
    const ZBCalendar* m_calendar = nullptr;
    ZBDateSlot m_range;
    // The calendar's count when the results were made; -1: never.
    int m_updateCount = -1;
    std::vector<int> m_result;
    std::vector<std::unique_ptr<ZBCalendarQuery>> m_subQuery;
};

ZBCalendarQuery::ZBCalendarQuery(const ZBCalendar& calendar) : impl(new Impl)
{
    impl->m_calendar = &calendar;
}

ZBCalendarQuery::ZBCalendarQuery(const ZBCalendarQuery& other) : impl(new Impl)
{
    *this = other;
}

ZBCalendarQuery& ZBCalendarQuery::operator=(const ZBCalendarQuery& other)
{
    if (this == &other)
        return *this;
    impl->m_calendar = other.impl->m_calendar;
    impl->m_range = other.impl->m_range;
    impl->m_updateCount = other.impl->m_updateCount;
    impl->m_result = other.impl->m_result;
    impl->m_subQuery.clear();
    for (const auto& sub : other.impl->m_subQuery)
        impl->m_subQuery.emplace_back(new ZBCalendarQuery(*sub));
    return *this;
}

ZBCalendarQuery::~ZBCalendarQuery() = default;

void ZBCalendarQuery::set_range(const ZBDateSlot& range, bool withSubqueries)
{
    if (range == impl->m_range && withSubqueries == !impl->m_subQuery.empty())
        return;
    impl->m_range = range;
    remove_all();
    if (!withSubqueries || !range.m_start.is_ok() || !range.m_end.is_ok() || range.m_end < range.m_start)
        return;
    ZBDate day = ZBDateUtils::start_day(range.m_start);
    while (day < range.m_end) {
        const ZBDate last = ZBDateUtils::end_day(day);
        std::unique_ptr<ZBCalendarQuery> sub(new ZBCalendarQuery(*impl->m_calendar));
        sub->impl->m_range = ZBDateSlot(day, last);
        impl->m_subQuery.push_back(std::move(sub));
        // From the last second, so that a day of 23 or 25 hours still steps once.
        day = ZBDateUtils::start_day(last + ZBDuration(1));
    }
}

const ZBDateSlot& ZBCalendarQuery::get_range() const
{
    return impl->m_range;
}

int ZBCalendarQuery::do_query()
{
    ZBCalendar& calendar = const_cast<ZBCalendar&>(*impl->m_calendar);
    if (impl->m_updateCount == calendar.get_updatecount())
        return ZBErrC_ok;
    if (iszbwarn(calendar.sort()))
        return zbpass(ZBLOC);
    impl->m_result.clear();
    for (auto& sub : impl->m_subQuery)
        sub->impl->m_result.clear();
    for (int i = 0; i < calendar.get_nentries(); ++i) {
        const ZBCalendarEntry* entry = calendar.get_entry_no(i);
        if (!ZBDateSlot::intersects(entry->get_time(), impl->m_range))
            continue;
        impl->m_result.push_back(i);
        for (auto& sub : impl->m_subQuery)
            sub->push_entry(i, *entry);
    }
    impl->m_updateCount = calendar.get_updatecount();
    for (auto& sub : impl->m_subQuery)
        sub->impl->m_updateCount = impl->m_updateCount;
    return ZBErrC_ok;
}

void ZBCalendarQuery::push_entry(int index, const ZBCalendarEntry& entry)
{
    if (ZBDateSlot::intersects(entry.get_time(), impl->m_range))
        impl->m_result.push_back(index);
}

int ZBCalendarQuery::get_nresults() const
{
    return int(impl->m_result.size());
}

int ZBCalendarQuery::get_result_index(int index) const
{
    return index >= 0 && size_t(index) < impl->m_result.size() ? impl->m_result[size_t(index)] : -1;
}

const ZBCalendarEntry* ZBCalendarQuery::get_result_no(int index) const
{
    const int at = get_result_index(index);
    if (at < 0 || at >= impl->m_calendar->get_nentries())
        return nullptr;
    return impl->m_calendar->get_entry_no(at);
}

int ZBCalendarQuery::get_nsubqueries() const
{
    return int(impl->m_subQuery.size());
}

ZBCalendarQuery* ZBCalendarQuery::get_subquery_no(int index) const
{
    return index >= 0 && size_t(index) < impl->m_subQuery.size() ? impl->m_subQuery[size_t(index)].get() : nullptr;
}

void ZBCalendarQuery::sort_group()
{
    const ZBCalendar& calendar = *impl->m_calendar;
    std::stable_sort(impl->m_result.begin(), impl->m_result.end(), [&calendar](int a, int b) {
        return calendar.get_entry_no(a)->get_group() < calendar.get_entry_no(b)->get_group();
    });
}

void ZBCalendarQuery::sort_priority()
{
    const ZBCalendar& calendar = *impl->m_calendar;
    std::stable_sort(impl->m_result.begin(), impl->m_result.end(), [&calendar](int a, int b) {
        return calendar.get_entry_no(a)->get_priority() > calendar.get_entry_no(b)->get_priority();
    });
}

void ZBCalendarQuery::remove_all()
{
    impl->m_result.clear();
    impl->m_subQuery.clear();
    impl->m_updateCount = -1;
}

void ZBCalendarQuery::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBCalendarQuery", out, indent);
    dump.add("impl->m_range", impl->m_range.to_string());
    dump.add("impl->m_updateCount", impl->m_updateCount);
    dump.add("impl->m_result", impl->m_result.size());
    dump.add("impl->m_subQuery", impl->m_subQuery.size());
}

} // namespace Tervalon
