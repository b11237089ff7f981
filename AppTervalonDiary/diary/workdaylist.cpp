#include "AppTervalonDiary/diary/workdaylist.h"
#include "LibDate/date/zbdatedetails.h"

#include <algorithm>
#include <ostream>
#include <string>

namespace Tervalon {

int WorkDayList::date_index(const ZBDateDetails& details)
{
    return details.m_year * 1000 + details.m_dayYear;
}

void WorkDayList::add_entry(const ZBDateDetails& details, int timeTypeId)
{
    std::vector<int>& types = m_entry[date_index(details)];
    if (timeTypeId >= 0 && std::find(types.begin(), types.end(), timeTypeId) == types.end())
        types.push_back(timeTypeId);
}

bool WorkDayList::is_known(const ZBDateDetails& details) const
{
    return m_entry.count(date_index(details)) > 0;
}

bool WorkDayList::is_workday(const ZBDateDetails& details, int timeTypeId) const
{
    auto at = m_entry.find(date_index(details));
    if (at == m_entry.end())
        return false;
    if (timeTypeId < 0)
        return !at->second.empty();
    return std::find(at->second.begin(), at->second.end(), timeTypeId) != at->second.end();
}

std::vector<int> WorkDayList::get_nonworking_days(int timeTypeId) const
{
    std::vector<int> days;
    for (const auto& day : m_entry) {
        const bool works = timeTypeId < 0 ? !day.second.empty()
                                          : std::find(day.second.begin(), day.second.end(), timeTypeId) != day.second.end();
        if (!works)
            days.push_back(day.first);
    }
    return days;
}

int WorkDayList::get_nworking_days(int timeTypeId) const
{
    return size() - int(get_nonworking_days(timeTypeId).size());
}

void WorkDayList::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent) * 2, ' ');
    for (const auto& day : m_entry) {
        out << pad << "m_entry[" << day.first << "] =";
        for (int type : day.second)
            out << ' ' << type;
        out << '\n';
    }
}

} // namespace Tervalon
