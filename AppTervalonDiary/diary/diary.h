#pragma once

#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/diaryimport.h"
#include "AppTervalonDiary/diary/journalcheck.h"
#include "AppTervalonDiary/diary/diarysettings.h"
#include "AppTervalonDiary/diary/recalculatemgr.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/resourcecalendar.h"
#include "AppTervalonDiary/diary/timetype.h"
#include "LibDiary/diary/zbdiary.h"

#include <map>
#include <string>
#include <vector>

namespace Tervalon {

// The planning database: the tree of entries, the resources and time types
// the planner books against, the default calendar and the file's settings,
// on top of the records database with its module blocks and managers.
// It owns every object through the database; the containers are views.
class Diary : public ZBDiary, public ZBDBFactory<Diary> {
public:
    enum E_Mode { E_ModeDiary = 0, E_ModeProject = 1, E_ModeNotes = 2 };
    static constexpr int C_FileVersion = 15;
    static constexpr int C_NotifyMayOverSpend = 200;
    static constexpr int C_NotifyShouldStart = 300;
    static constexpr int C_NotifyDelayed = 400;
    static constexpr int C_NotifyOverSpend = 500;
    static constexpr int C_NotifyUrgent = 600;
    static constexpr int C_NotifyReminder = 700;
    static constexpr int C_NotifyClash = 800;
    static constexpr int C_NotifyOverdue = 900;
    // The planning horizon a new file starts with.
    static constexpr const char* C_DefaultLookahead = "1 year";
    static int ZBErrC_CircularDependancy;
    static int ZBErrC_InUse;

    static E_Mode m_appMode;
    static bool is_project() { return m_appMode == E_ModeProject; }
    // The application type a file of the current mode carries.
    static std::string mode_app_type();

    Diary();
    ~Diary() override;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    int current_appfileversion() const override { return C_FileVersion; }
    int initialise(bool created) override;
    int recalculate(E_RecalcLevel level) override;
    void containers_resolved() override;
    void background_recalculate() override;
    int pull_complete() override;
    int create_object(ZBDBObject* parent, const std::string& tag, int specId, ZBDBObject** out) override;
    // The records' system values, and the automatic baseline as a choice of its kinds.
    int add_sysquants(ZBObjectSpec& spec) override;

    // Makes an entry of a type under parent (null: the top level).
    int create_entry(DiaryEntry* parent, char type, const std::string& title, DiaryEntry** out);

    // Entries.
    int get_nentries() const { return m_entries.size(); }
    DiaryEntry* get_entry_index(int index) const { return m_entries.get(index); }
    // Every entry that is not deleted, at any depth, each parent before its
    // children in application order. (get_entry_index is the top level only.)
    void get_all_entries(std::vector<DiaryEntry*>& out) const;
    DiaryEntry* get_entry_id(int id) const;
    int query_entries(const ZBDateSlot& slot, ZBPtrArray<DiaryEntry>& result, int order, int depth) const;
    // Entry titles of people, or resource names; nothing for any other name.
    std::vector<std::string> get_system_references(const std::string& name) const;

    // Resources.
    int get_nresources() const { return m_resources.size(); }
    Resource* get_resource_by_index(int index) const { return m_resources.get(index); }
    Resource* get_resource_by_id(int id) const { return m_resources.find_id(id); }
    Resource* get_resource_by_name(const std::string& name) const;
    int get_default_resource_id() const { return m_resources.size() ? m_resources.get(0)->get_id() : -1; }
    int add_resource(const std::string& name, Resource** out);
    // The title of an entry that has the resource as its own, empty when none.
    std::string resource_used(int id) const;
    int delete_resource(int id);

    // Time types.
    int get_ntimetypes() const { return m_timeTypes.size(); }
    TimeType* get_timetype_by_index(int index) const { return m_timeTypes.get(index); }
    TimeType* get_timetype_by_id(int id) const { return m_timeTypes.find_id(id); }
    TimeType* get_timetype_by_name(const std::string& name) const;
    std::string get_timetype_name_by_id(int id) const;
    int add_timetype(const std::string& name, TimeType** out);
    // The journal's check list, in the order it is asked.
    int get_njournalchecks() const { return m_journalChecks.size(); }
    JournalCheck* get_journalcheck_by_index(int index) const { return m_journalChecks.get(index); }
    int add_journalcheck(const std::string& name, JournalCheck** out);
    // Whether anything still needs the time type; what does goes to text.
    bool timetype_is_used(int id, std::string& text) const;
    int delete_timetype(int id);

    const ResourceCalendar& get_calendar() const { return m_calendar; }
    ResourceCalendar& edit_calendar() { return m_calendar; }
    const DiarySettings& get_settings() const { return m_settings; }
    DiarySettings& edit_settings() { return m_settings; }
    const RecalculateMgr& get_recalc_mgr() const { return m_recalcMgr; }
    RecalculateMgr& edit_recalc_mgr() { return m_recalcMgr; }
    // Asks for a full pass: avail rebuilds the free time, idle counts as the
    // change a pass waits for, foreground keeps it on this thread, immediate
    // skips the timers.
    void force_recalculate(bool avail, bool idle, bool foreground, bool immediate);
    int get_recalc_count() const { return m_recalcMgr.get_recalc_count(); }
    int get_recalc_state() const { return m_recalcMgr.get_state(); }
    // A background copy knows the live diary it was taken from, only to ask
    // whether that diary's thread is stopping.
    void set_recalculate_parent(const Diary* parent) { m_recalcParent = parent; }
    const Diary* get_recalculate_parent() const { return m_recalcParent; }
    // A long pass gives up when this turns true.
    bool is_recalc_stopping() const;
    int get_session_id() const { return m_sessionId; }
    void set_session_id(int id) { m_sessionId = id; }

    // ---- The running session: one per diary, on the entry m_sessionId names.
    // Stops the running session first (its time is kept), then starts one on
    // the entry for resource (negative: the entry's own). A missing entry
    // starts nothing.
    int start_session(int entryId, int resource);
    // Ends the running session now; nothing when none runs.
    void stop_session();
    // Brings the running session's time up to now.
    void update_session();
    // The running session (resource -1 when none) and its entry (null when none).
    ZBDateSetEntry get_current_session() const;
    DiaryEntry* get_session_entry() const;
    // ---- End of the running session.
    bool has_plans() const { return m_hasPlans; }

    // Resolves every entry's dependencies into the flat lists the planner
    // uses; circular links go to the checker and are not followed.
    int calculate_dependencies();
    // The findings about the entries, for "tervalon check" and the views.
    std::vector<const ZBDBCheckItem*> get_circular_dependencies() const;
    // A live entry by id; during calculate_dependencies from a table by id,
    // as the resolution looks entries up millions of times on long chains.
    DiaryEntry* lookup_entry(int id) const;

    // Work time. The free time of a resource is its calendar expanded over
    // the range, less its appointments' time (moved to an appointment's own
    // time type where it has one) and its tasks' fixed plans.
    int allocate_times(Resource& resource, const ZBDate& start, const ZBDate& end);
    // Every resource in a multi-user diary, otherwise the first one only.
    int allocate_times(const ZBDate& start, const ZBDate& end);
    bool is_multi_user() const;
    // Checks every day type of every calendar; the first fault goes to text.
    bool validate_calendars(std::string& text) const;
    // What an entry could use of slot: its resource's time of its time type
    // (or of every type, combined). margin lets it start that much earlier.
    int get_free_time(ZBDateSet& set, const ZBDateSlot& slot, int entryId, bool combined,
                      const ZBDuration& margin) const;
    // Days in slot that the resource would work by the weekday but has off.
    ZBDuration get_leave_days(const ZBDateSlot& slot, int resourceId) const;
    // The calendar's time in slot, before appointments and plans.
    ZBDuration get_avail_time(const ZBDateSlot& slot, int resourceId) const;
    // What the last allocate_times left free in slot.
    ZBDuration get_free_time(const ZBDateSlot& slot, int resourceId) const;

    // The cheap pass's entry phases, and the full pass without the planner.
    static constexpr int C_RecalculatePhases = 6;
    int recalculate_entries();
    int full_recalculate();
    // The planner's pass: every open task booked into free time, the
    // predictions written to the entries, then the clashes found.
    int calculate_time_allocation();
    // The tie-breakers of the priorities, before each pass.
    void calc_priority_order();
    void calc_display_order();
    // Every live entry in display order.
    std::vector<DiaryEntry*> get_display_list() const;

    // Repeating entries. A diary entry's series becomes n entries (with
    // setDates each takes its instance's dates, with chain each depends on
    // the one before); other records go to their managers.
    int generate_sequence(ZBDEntry& entry, int n, bool setDates, bool chain, bool notify) override;
    // Forgets every entry's generated instances, as after an import or merge.
    void reset_repeating();
    // The instances of a repeating entry to show in a calendar: those around
    // now, within one repeat period either side; none for fewer than two.
    int times_from_repeat(DiaryEntry& entry, std::vector<ZBDateSlot>& out);

    // True when date is valid and at or before the latest due of a late task
    // of the resource.
    bool is_delayed_range(int resource, const ZBDate& date) const;
    void set_delayed_range(int resource, const ZBDate& date);

    // ---- Fixed plans and clashes.
    // Marks on each entry the titles of what its fixed plans and blocking
    // appointments overlap, resource by resource, within the lookahead.
    int check_clashing();
    // Takes out of set every fixed plan (with withSpent every spent session)
    // of resource (negative: any), and the time of its appointments that
    // keep a real time type, repeats within slot included.
    void remove_fixed(ZBDateSet& set, const ZBDateSlot& slot, int resource, bool withSpent) const;
    // Lock (predicted to fixed) or clear fixed plans that meet slot, all of
    // them for a slot of no length, in every entry; count grows by the sessions.
    int lock_plans(const ZBDateSlot& slot, int* count = nullptr);
    int clear_plans(const ZBDateSlot& slot, int* count = nullptr);
    ZBDuration get_planned_time(const ZBDateSlot& slot, int resource) const;
    // Swaps fixed plan sequence ('p') of the entry with the nearest plan
    // before it (up) or after it in calendar (null: every fixed plan of the
    // diary). Each keeps its length: the later one moves to the earlier's
    // start and the earlier one ends where the later one ended.
    int move_plan(int entryId, int sequence, bool up, ZBCalendar* calendar);
    // ---- End of fixed plans.

private:
    void build_entry_table();
    void repair_orig_ids();
    void setup_default_calendar();
    // Finds the entry whose session runs, after a load or an undo.
    void find_running_session();
    const Resource* resource_or_first(int id) const;

    ZBDBContainer<DiaryEntry> m_entries;
    ZBDBContainer<Resource> m_resources;
    ZBDBContainer<TimeType> m_timeTypes;
    ZBDBContainer<JournalCheck> m_journalChecks;
    ResourceCalendar m_calendar;
    bool m_hasPlans;
    DiarySettings m_settings;
    int m_sessionId;
    RecalculateMgr m_recalcMgr;
    const Diary* m_recalcParent;
    // Counts the entry passes; each entry is refreshed in full once in ten.
    int m_recalcCycle;
    DiaryImport m_diaryImport;
    std::string m_userData;
    std::map<int, ZBDate> m_delayed;
    std::vector<DiaryEntry*> m_entryTable;
};

} // namespace Tervalon
