#pragma once

#include "AppTervalonDiary/diary/resourcecalendar.h"
#include "AppTervalonDiary/diary/workdaylist.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbdbuser.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/dateset/zbdatesetgroup.h"

#include <string>

namespace Tervalon {

class Diary;

// A person who does work, with the dates they work between and their own
// calendar. The diary owns its resources; the first one is the default.
class Resource : public ZBDBObject, public ZBDBUser {
public:
    static constexpr int C_UnknownResourceId = -1;
    static constexpr int C_ParentResourceId = -2;
    static constexpr int C_UnassignedResourceId = -3;
    static const char* const C_ResourceTag;

    Resource();
    Resource(const Resource& other) = default;
    Resource& operator=(const Resource& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    bool allow_children() const override { return false; }
    bool uses_spec() const override { return false; }
    std::string get_summary() const override { return get_username(); }

    // The name of a reserved id, empty for any other.
    static std::string reserved_name(int id);

    const ZBDate& get_startdate() const { return m_startDate; }
    void set_startdate(const ZBDate& date) { m_startDate = date; }
    const ZBDate& get_enddate() const { return m_endDate; }
    void set_enddate(const ZBDate& date) { m_endDate = date; }
    bool has_started(const ZBDate& date, const ZBDuration& margin) const;
    bool still_working(const ZBDate& date, const ZBDuration& margin) const;
    const ResourceCalendar& get_calendar() const { return m_calendar; }
    ResourceCalendar& edit_calendar() { return m_calendar; }
    static int compare_name(const Resource& a, const Resource& b) { return b.get_username() < a.get_username(); }

    // The free time per time type and the working days that the last
    // allocate_times worked out; not stored.
    const ZBDateSetGroup& get_avail_time() const { return m_availTime; }
    ZBDateSetGroup& edit_avail_time() { return m_availTime; }
    const WorkDayList& get_workday_list() const { return m_workDays; }
    // Expands the calendar between start and end, kept within the dates the
    // resource works between.
    int allocate_times(const ZBDate& start, const ZBDate& end, const ResourceCalendar* defaultCalendar,
                       const Diary* diary);

private:
    ZBDate m_startDate;
    ZBDate m_endDate;
    ResourceCalendar m_calendar;
    ZBDateSetGroup m_availTime;
    WorkDayList m_workDays;
};

} // namespace Tervalon
