#pragma once

#include <iosfwd>
#include <map>
#include <vector>

namespace Tervalon {

class ZBDateDetails;

// Which calendar days are working days, and for which time types. A day is
// known once its calendar was expanded; a known day with no time types is a
// day off. Keys are year * 1000 + day of year.
class WorkDayList {
public:
    // Time type -1 only marks the day as known.
    void add_entry(const ZBDateDetails& details, int timeTypeId);
    // With time type -1, whether the day offers any time at all.
    bool is_workday(const ZBDateDetails& details, int timeTypeId) const;
    bool is_known(const ZBDateDetails& details) const;
    // The known days that offer nothing of the time type (-1: nothing at all).
    std::vector<int> get_nonworking_days(int timeTypeId) const;
    int get_nworking_days(int timeTypeId) const;
    static int date_index(const ZBDateDetails& details);
    void clear() { m_entry.clear(); }
    int size() const { return int(m_entry.size()); }
    void dump(std::ostream& out, int indent) const;

private:
    std::map<int, std::vector<int>> m_entry;
};

} // namespace Tervalon
