#pragma once

#include "AppTervalonDiary/diary/daytype.h"
#include "AppTervalonDiary/diary/resourcecalentry.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibObject/object/zbobject.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class WorkDayList;
class ZBCalendar;
class ZBDate;
class ZBDateSet;
class ZBDateSetGroup;

// Which kind of day each day is, for one resource or for the whole diary:
// the day types, the day type of each weekday, and dated exceptions. Owned by
// its resource or by the diary. Expanding it over a range gives the free time
// per time type; what the resource's own calendar leaves open comes from the
// diary's default calendar.
class ResourceCalendar : public ZBObject {
public:
    static constexpr int C_DefaultStdDay = -1;
    // How many links a day type may go through before the search gives up.
    static constexpr int C_MaxReferences = 5;

    ResourceCalendar();
    ResourceCalendar(const ResourceCalendar& other) = default;
    ResourceCalendar& operator=(const ResourceCalendar& other) = default;
    bool operator==(const ResourceCalendar& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Day types, kept in order of name.
    int get_ndaytypes() const { return m_dayType.size(); }
    const DayType* get_daytype_by_index(int index) const { return m_dayType.at(index); }
    DayType* edit_daytype_by_index(int index) { return m_dayType.at(index); }
    const DayType* get_daytype_by_id(int id) const;
    DayType* edit_daytype_by_id(int id);
    const DayType* get_daytype_by_name(const std::string& name) const;
    DayType* edit_daytype_by_name(const std::string& name);
    // Takes the day type, gives it the next free id and keeps the order.
    int add_daytype(DayType* type);
    int delete_daytype(int index);
    void sort_daytypes();
    // Whether a weekday, an exception or a link names the day type.
    bool daytype_is_used(const DayType& type) const;
    // Whether a day type books time of that type; what does goes to text.
    bool timetype_is_used(int id, std::string& text) const;

    int get_standard_day(int weekday) const;
    void set_standard_day(int weekday, int id);

    // Exceptions, kept in order of start.
    int get_nentries() const { return m_entry.size(); }
    const ResourceCalEntry* get_entry_by_index(int index) const { return m_entry.at(index); }
    int add_entry(ResourceCalEntry* entry);
    int delete_entry(int index);
    void sort_entries();

    bool default_created() const { return m_defaultCreated; }
    void set_default_created(bool created) { m_defaultCreated = created; }
    // The day types a new calendar starts with, and the weekdays' types.
    void setup_defaults(bool isDefault, bool multiUser, int workTimeType);

    // The free time per time type between start and end, and the working
    // days, with defaultCalendar filling what this one leaves open.
    int allocate_times(const ZBDate& start, const ZBDate& end, int resourceId, ZBDateSetGroup& group,
                       WorkDayList& workDays, const ResourceCalendar* defaultCalendar, const Diary* diary) const;
    // The day type of one day: exceptions, then the standard day, each first
    // here and then in the default calendar, links followed. null when none.
    const DayType* find_daytype(const ZBDate& dayStart, const ZBDateSlot& test, int weekday,
                                const ResourceCalendar* defaultCalendar) const;

    // The set of a group with the name; made when asked and missing.
    static ZBDateSet* get_group_set(ZBDateSetGroup& group, const std::string& name, bool create);

private:
    std::vector<int> m_standardDay;
    ZBPtrArray<DayType> m_dayType;
    ZBPtrArray<ResourceCalEntry> m_entry;
    bool m_defaultCreated;
};

} // namespace Tervalon
