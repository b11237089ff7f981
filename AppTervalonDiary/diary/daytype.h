#pragma once

#include "AppTervalonDiary/diary/daytypeentry.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibDate/date/zbdate.h"
#include "LibObject/object/zbobject.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class ResourceCalendar;
class WorkDayList;
class ZBDateDetails;
class ZBDateSetGroup;

// A kind of day ("Standard Work Day", "Weekend"): the stretches of time it
// offers, each of one time type. A day type with references is a link: on
// each weekday it means the day type it refers to. Owned by its calendar.
class DayType : public ZBObject {
public:
    static const char* const C_StandardWorkDay; // "Standard Work Day"
    static const char* const C_Weekend;         // "Weekend"
    static const char* const C_OnLeave;         // "On Leave"
    static const char* const C_PublicHoliday;   // "Public Holiday"

    DayType();
    explicit DayType(const std::string& name);
    DayType(const DayType& other) = default;
    DayType& operator=(const DayType& other) = default;
    bool operator==(const DayType& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    int get_id() const { return m_id; }
    void set_id(int id) { m_id = id; }
    const std::string& get_name() const { return m_name; }
    void set_name(const std::string& name) { m_name = name; }

    int get_nentries() const { return m_entry.size(); }
    const DayTypeEntry* get_entry_by_index(int index) const { return m_entry.at(index); }
    DayTypeEntry* edit_entry_by_index(int index) { return m_entry.at(index); }
    // Takes the entry and keeps the entries in order of start.
    int add_entry(DayTypeEntry* entry);
    int delete_entry(int index);
    void clear_entries() { m_entry.clear(); }
    void sort();

    // The day type a link means on a weekday (0 Monday), -1 when none.
    int get_reference(int weekday) const;
    void set_reference(int weekday, int id);
    bool has_references() const { return !m_reference.empty(); }
    // Turns the day type into a link (each weekday first meaning the
    // calendar's standard day) or back into a day of its own.
    void enable_references(bool on, const ResourceCalendar& calendar);

    bool daytype_is_used(int id) const;
    // Seconds a day of this type offers of the time type.
    int total_for_timetype(int id) const;
    // False, with the reason in text, when two stretches overlap.
    bool validate(std::string& text);
    // Takes the other day type's stretches and references.
    void import(const DayType& other);

    // Adds one day of this type, starting at dayStart, to the group and the
    // work day list.
    void populate(const Diary* diary, const ZBDate& dayStart, const ZBDateDetails& details, int resourceId,
                  ZBDateSetGroup& group, WorkDayList& workDays) const;

    static int compare_name(const DayType& a, const DayType& b) { return b.m_name < a.m_name; }
    // The moment a clock time of the day shows (seconds from midnight), so
    // that 9:00 stays 9:00 on the days the clocks change.
    static ZBDate clock_time(const ZBDateDetails& day, int seconds);

private:
    int m_id;
    std::string m_name;
    ZBPtrArray<DayTypeEntry> m_entry;
    std::vector<int> m_reference;
};

} // namespace Tervalon
