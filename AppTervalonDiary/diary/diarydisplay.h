#pragma once

#include "AppTervalonDiary/diary/latereport.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBCalendar;
class ZBDateSet;
class ZBMarkupPage;
class ZBMarkupTable;

// Turns the calculated state of entries into markup pages and calendar
// items: the details page of an entry, list columns, icons, the calendar and
// the project view. It only reads; no entry is changed.
class DiaryDisplay {
public:
    // Images by type and state; names of pictures built into the program.
    static const char* const C_ObjectImage;
    static const char* const C_JournalImage;
    static const char* const C_PersonImage;
    static const char* const C_AddressImage;
    static const char* const C_PlaceImage;
    static const char* const C_TodoImage;
    static const char* const C_TodoImageDone;
    static const char* const C_TodoImagePend;
    static const char* const C_TodoImageOther;
    static const char* const C_TodoImageOtherDone;
    static const char* const C_TodoImageOtherPend;
    static const char* const C_AppointmentImage;
    static const char* const C_AppointmentImageDone;
    static const char* const C_AppointmentImageOther;
    static const char* const C_AppointmentImageOtherDone;
    static const char* const C_TimeSpentImage;
    static const char* const C_TimeAvailImage;
    static const char* const C_TimePlannedImage;
    static const char* const C_TimePredictedImage;
    static const char* const C_BaselineNoneImage;
    static const char* const C_BaselineGoodImage;
    static const char* const C_BaselineMargImage;
    static const char* const C_BaselinePoorImage;
    static const char* const C_BaselineProgImage;
    // Colours; the theme may choose others, these are the defaults.
    static const char* const C_ColourCut;
    static const char* const C_ColourHistory;
    static const char* const C_ColourRange;
    static const char* const C_ColourLate;
    static const char* const C_ColourUrgent;
    static const char* const C_ColourOverdue;
    static const char* const C_ColourAvailable;
    static const char* const C_ColourBorderline;
    static const char* const C_ColourNormal;
    // Link labels of the details page.
    static const char* const C_ShowDetails;
    static const char* const C_HideDetails;
    static const char* const C_ShowRelated;
    static const char* const C_HideRelated;
    static const char* const C_ShowAllLinks;
    static const char* const C_ShowFewerLinks;
    // Where a place's address is looked up; the address follows, encoded.
    static const char* const C_MapSearch;

    // What the details page shows beyond the fields.
    static constexpr int C_DumpRelated = 1;   // the related tasks
    static constexpr int C_DumpBreakdown = 2; // the time breakdown of a parent
    static constexpr int C_DumpDebug = 4;     // the raw priorities
    static constexpr int C_DumpAll = C_DumpRelated | C_DumpBreakdown;

    // Calendar groups of get_group_number; lower sorts first.
    enum E_Group {
        E_GroupAppointment = 1,
        E_GroupTaskActive = 5,
        E_GroupPlanned = 7,
        E_GroupPredicted = 8,
        E_GroupTaskWaiting = 10,
        E_GroupJournal = 15,
        E_GroupAppointmentDone = 20,
        E_GroupTaskDone = 30,
        E_GroupSpent = 35,
        E_GroupAddress = 100,
        E_GroupPerson = 101,
        E_GroupPlace = 102,
        E_GroupOther = 200
    };

    // One line of the time breakdown: a resource (or the overall total) and
    // the time its work takes in each kind.
    struct BreakdownRow {
        std::string m_name;
        ZBDuration m_completedTasks; // spent on tasks that are done
        ZBDuration m_pendingTasks;   // spent on tasks still open
        ZBDuration m_remain;         // still to do on open tasks
        ZBDuration m_completedAppointments;
        ZBDuration m_planned; // fixed plans and predicted sessions
    };

    explicit DiaryDisplay(const Diary& diary);

    const Diary& get_diary() const { return m_diary; }

    // ---- Icons, groups and list columns.
    // The picture of an entry in a list; resource is the one being looked at
    // (negative: any), sequence a session or later instance (0: the entry).
    std::string get_image(const DiaryEntry& entry, int resource, int sequence) const;
    // The calendar group of an entry, or of one of its sessions when type is
    // a session letter ('p', 'r', 's'); 0 for the entry itself.
    static int get_group_number(const DiaryEntry& entry, char type);
    static std::string get_display_group(int group);
    // The priority as a list shows it, one decimal.
    static std::string get_display_priority(const DiaryEntry& entry);
    // A duration as lists show it: hours and minutes.
    static std::string time_text(const ZBDuration& duration);
    static std::string date_text(const ZBDate& date);

    // ---- Calendar.
    // Adds the entries of ids (empty: every live entry) that meet slot, and
    // their plans, predictions and spent sessions, for resource (negative: any).
    int populate_calendar(ZBCalendar& calendar, const std::vector<int>& ids, const ZBDateSlot& slot,
                          int resource) const;

    // ---- Details page.
    int dump_markup(const DiaryEntry& entry, ZBMarkupPage& page, int flags) const;
    // Where a calculated value came from, in words: "This entry.", the
    // parent's title after "Parent: ", or another entry's title.
    std::string get_source_description(const DiaryEntry& entry, int sourceId) const;
    // Rows per resource, then the overall row; empty for an unknown id.
    std::vector<BreakdownRow> get_time_breakdown(int id) const;
    // The tasks that bear on when this one gets done, each with its tag:
    // itself, its children, those waiting for it, and the more urgent work of
    // the same resource that goes before it.
    std::vector<std::pair<int, std::string>> get_related(int id) const;
    std::string command_help_text(const DiaryEntry& entry) const;
    // The sessions of a set, one per line, within a slot (any when not valid).
    std::string display_dateset(const DiaryEntry& entry, const ZBDateSet& set, const ZBDateSlot& slot) const;

    // ---- Project view.
    // The top-level entries in application order, kept for extract.
    void update_sorted_tasks();
    const std::vector<const DiaryEntry*>& extract_sorted_tasks() const { return m_sorted; }
    // One table per resource: for each top-level entry, when its work for
    // that resource is predicted to end and how much it holds.
    int project_view(ZBMarkupPage& page);
    // Adds the work of entry and everything below it to rows, one row per
    // resource; ends count when after bound. Sorted by name at the end.
    void get_latereport(const DiaryEntry& entry, std::vector<LateReport>& rows, const ZBDate& bound) const;

private:
    void add_late(const DiaryEntry& entry, std::vector<LateReport>& rows, const ZBDate& bound) const;
    LateReport& late_row(std::vector<LateReport>& rows, int resource) const;
    std::string resource_name(int id) const;

    const Diary& m_diary;
    std::vector<const DiaryEntry*> m_sorted;
};

} // namespace Tervalon
