#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <string>

namespace Tervalon {

class Diary;

// What the summary knows of one time type: how much of it a resource still
// has free, and how much of the day's work is booked to it.
class TimeTypeInfo {
public:
    TimeTypeInfo(const Diary& diary, int timeType, const std::string& name);

    int get_timetype() const { return m_timeType; }
    const std::string& get_name() const { return m_name; }
    const ZBDuration& get_available() const { return m_available; }
    const ZBDuration& get_allocated() const { return m_allocated; }
    void add_allocated(const ZBDuration& duration) { m_allocated += duration; }
    // Totals the resource's free time of this type in slot (negative
    // resource: the diary's first), keeps it and returns it.
    ZBDuration available(const ZBDateSlot& slot, int resource);

private:
    const Diary* m_diary;
    int m_timeType;
    std::string m_name;
    ZBDuration m_available;
    ZBDuration m_allocated;
};

} // namespace Tervalon
