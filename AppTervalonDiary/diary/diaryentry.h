#pragma once

#include "AppTervalonDiary/diary/entrybaseline.h"
#include "AppTervalonDiary/diary/entrycommand.h"
#include "AppTervalonDiary/diary/entrydepend.h"
#include "AppTervalonDiary/diary/entrydue.h"
#include "AppTervalonDiary/diary/entryplan.h"
#include "AppTervalonDiary/diary/entrypriority.h"
#include "AppTervalonDiary/diary/entryproperties.h"
#include "AppTervalonDiary/diary/entryrepeat.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/entrytime.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibDiary/diary/zbdentry.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class ZBCalendar;

// One node of the planner's tree: a task, appointment, journal note, person,
// address, place or plain object, made of its facets. The record fields
// (title, details, date slot, start-after, due, priority, progress, repeat
// rule, bookmark, preserve) are the dated record's; the planner reads them as
// pairs. The database owns the entry; the entry owns its facets. Children are
// found through the entry container that resolve_containers fills.
class DiaryEntry : public ZBDEntry {
public:
    enum E_SortOrder {
        E_SortApplication = 0,
        E_SortAlphabetical = 1,
        E_SortStartDate = 2,
        E_SortDisplayOrder = 3,
        E_SortDueDate = 4,
        E_SortPriority = 5,
        E_SortChildPriority = 6,
        E_SortNone = 7
    };
    static const char* const C_EntryTag; // container of child entries
    static const char* const C_TriggerStart;
    static const char* const C_TriggerStop;
    static const char* const C_TriggerComplete;
    static const char* const C_TriggerReopen;
    static const char* const C_CompactSeparator;
    static constexpr int C_SeqFactor = 100000;

    DiaryEntry();
    DiaryEntry(const DiaryEntry& other);
    ~DiaryEntry() override;
    DiaryEntry& operator=(const DiaryEntry& other);

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    // Data versions at which stored forms changed: up to the first the entry
    // kept its own title and details; before the second its date slot; before
    // the third its repeat rule as separate fields.
    static constexpr int C_LastTitleVersion = 9;
    static constexpr int C_FirstRecordSlotVersion = 11;
    static constexpr int C_FirstRecordRepeatVersion = 15;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Record fields, the pairs the record keeps. Summary, text, repeat rule,
    // bookmark and preserve come as the record has them.
    const ZBCalcPair<ZBDateSlot>& get_time() const { return m_time; }
    ZBCalcPair<ZBDateSlot>& edit_time() { return m_time; }
    const ZBCalcPair<ZBDate>& get_start() const { return m_start; }
    ZBCalcPair<ZBDate>& edit_start() { return m_start; }
    const ZBCalcPair<ZBDate>& get_due() const { return m_due; }
    ZBCalcPair<ZBDate>& edit_due() { return m_due; }
    const ZBCalcPair<double>& get_priority() const { return m_priority; }
    ZBCalcPair<double>& edit_priority() { return m_priority; }
    const ZBCalcPair<ZBProgress>& get_duration() const { return m_duration; }
    ZBCalcPair<ZBProgress>& edit_duration() { return m_duration; }
    // Where a calculated value came from; worked out by recalculate, not stored.
    int get_startafter_id() const { return m_startSource; }
    int get_due_id() const { return m_dueSource; }
    int get_priority_id() const { return m_prioritySource; }
    void set_startafter_id(int id) { m_startSource = id; }
    void set_due_id(int id) { m_dueSource = id; }
    void set_priority_id(int id) { m_prioritySource = id; }

    // Facets.
    const EntryProperties& get_props() const { return m_props; }
    EntryProperties& edit_props() { return m_props; }
    const EntryDue& get_due_facet() const;
    EntryDue& edit_due_facet();
    const EntryBaseline& get_baseline() const;
    EntryBaseline& edit_baseline();
    const EntryRepeat& get_erepeat() const;
    EntryRepeat& edit_erepeat();
    const EntryPriority& get_priority_facet() const { return m_priorityFacet; }
    EntryPriority& edit_priority_facet() { return m_priorityFacet; }
    const EntrySpent& get_spent() const;
    EntrySpent& edit_spent();
    const EntryTime& get_etime() const { return m_etime; }
    EntryTime& edit_etime() { return m_etime; }
    const EntryPlan& get_plan() const;
    EntryPlan& edit_plan();
    // Whether fixed plans cover the work left. Most entries are planned, or
    // not yet, without any fixed plan: the answer is kept here until the
    // entry needs a plan of its own.
    bool is_planned() const;
    const EntryDepend& get_depend() const;
    EntryDepend& edit_depend();
    const EntryCommand& get_command() const;
    EntryCommand& edit_command();
    // The latest moment work must begin to meet the due date: the planner's
    // when it set one in the plan, else the one the due pass worked out from
    // the due and the remaining work. Read it here, not from the plan.
    const ZBDate& get_muststart() const;
    // The due pass's own answer; it lives on the entry, so that a due does not
    // make a plan facet.
    void set_derived_muststart(const ZBDate& date) { m_mustStart = date; }
    // The progress over every instance of a series: the entry's own calculated
    // progress unless a repeat with an end makes it more.
    const ZBProgress& get_total_duration() const;

    // Types.
    // The letter as an int, as the record gives it; compare with 'T' and the like.
    int get_entrytype() const override { return m_entryType.orig; }
    char get_derived_entrytype() const { return m_entryType.calc; }
    void set_entrytype(char letter);
    void calc_derived_entrytype();
    bool has_depend() const;
    int get_capability() const override;
    static int type_priority(char letter);
    static int get_sequence(char letter, int index);
    static int get_type_seq(int sequence) { return sequence / C_SeqFactor; }
    static int get_index_seq(int sequence) { return sequence % C_SeqFactor; }

    // Tree.
    int get_nchildren() const { return m_children ? m_children->size() : 0; }
    DiaryEntry* get_child_no(int index) const { return get_children().get(index); }
    const ZBDBContainer<DiaryEntry>& get_children() const;
    DiaryEntry* get_parent_entry() const;
    Diary* get_diary() const;
    std::vector<int> get_child_ids(bool recursive) const;
    bool has_entrytype_child(char letter) const;
    bool has_repeating_child() const;
    int query_entries(const ZBDateSlot& slot, ZBPtrArray<DiaryEntry>& result, int order, int depth) const;

    // State.
    // The user's own completion decides, not the children's progress.
    bool is_complete() const override { return m_duration.orig.get_completion() >= 100.0; }
    bool is_active() const;
    // Whether anything the entry waits for is still active (or itself
    // blocked); works out those it needs first.
    void upgrade_active_depend(Diary& diary);
    int set_completion(double percent, bool quiet);
    int mark_complete(const ZBDate& date) override;
    // System values the planner keeps itself: the children of the entry
    // container, whether the entry is active, the resource and time type of
    // its properties (by name). The rest are the record's.
    std::string get_sysvalue(const std::string& tag) const override;
    using ZBDEntry::get_sysvalue;
    // The entry answers its type itself ("Task", "Event", ...); the rest is the record's.
    int set_sysvalue(const std::string& tag, const std::string& value) override;
    using ZBDEntry::set_sysvalue;
    // A date changed through a system value needs new predictions.
    void sysval_time_modified() override { clear_predicted(true); }
    void clear_predicted(bool force);
    int postpone(const std::string& startText, const std::string& endText, int sequence);
    int compact(Diary* diary, bool force);
    // Whether this entry's spec requires the container the child sits in.
    bool is_mandatory_child(const DiaryEntry& child) const;
    void save_baseline(bool withDates);
    // Moves the entry's use of a resource to another.
    void delete_resource(int id, int replacement);

    // The instance the entry stands for now, and moving to another one.
    ZBDateSlot get_instance_slot() const;
    void move_instance(const ZBDate& start, const ZBDate& end);

    // Orderings: true when a belongs behind b.
    static int compare_application(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_alphabetical(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_start_date(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_display_order(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_due_date(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_priority(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_child_priority(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_plan(const DiaryEntry& a, const DiaryEntry& b);
    static int compare_type(const DiaryEntry& a, const DiaryEntry& b);
    static int sort_entries(ZBPtrArray<DiaryEntry>& entries, int order);

    // The cheap pass over live data: types, values pushed down from the
    // parent, and the date slot. Phase -1 runs every step.
    int recalculate(int phase, Diary* diary, int cycle);
    // Dates, resource and time type from the parent; priority reset for the pass.
    int recalculate_push_down(Diary* diary);
    void update_first_plan();
    // Grades the entry against its baseline (a parent's from its children's)
    // and freezes an automatic one.
    void recalculate_baseline();
    // Own sessions plus the children's time.
    void recalculate_spent(bool need);
    // Whether this pass must do the per-entry work in full: a settled entry
    // skips it except once in ten cycles.
    void recalculate_recalculate(int cycle);
    bool get_need_recalculate() const { return m_needRecalculate; }
    // Takes the background pass's results from the same entry of copy, unless
    // this entry changed after stamp (then only its children are visited).
    void load_predicted(const Diary& copy, long stamp);
    const ZBDate& get_plan_start() const { return m_planStart; }
    void set_plan_start(const ZBDate& date) { m_planStart = date; }

    // ---- Fixed plans and clashes, through the tree.
    // The slots the entry occupies in range: its calculated slot, or each
    // repeat instance in range.
    void get_calendar_slots(const ZBDateSlot& range, std::vector<ZBDateSlot>& out) const;
    // Takes out of set the fixed plans of resource (negative: any) here and
    // below, with withSpent the spent sessions too, and the time of the
    // resource's appointments that keep a real time type.
    void remove_fixed(ZBDateSet& set, const ZBDateSlot& slot, int resource, bool withSpent) const;
    // Adds to calendar what of this entry and those below can clash for
    // resource in slot: fixed plans, and appointments that block their time.
    int check_clashing(ZBCalendar& calendar, const ZBDateSlot& slot, int resource) const;
    // ---- End of fixed plans.

protected:
    // A rule made for the entry takes the entry's capabilities.
    void prepare_repeat(ZBDateRepeat& rule) override;
    ZBDBContainerBase* make_own_container(const std::string& tag) override;

private:
    void attach_facets();
    // The due facet for a pass of recalculation. An entry without one runs the
    // pass on a shared one (its progress rule is then manual); keep_due_pass
    // makes that the entry's own only when the series total the pass worked
    // out (withTotal) differs from the entry's own progress.
    EntryDue& due_pass();
    void keep_due_pass(EntryDue& pass, bool withTotal);
    // Fields of older data versions, read into the present ones.
    int read_older_forms(std::istream* in, const std::string& prefix, int version);
    int read_older_repeat(std::istream* in, const std::string& prefix);
    int run_trigger(const std::string& trigger);
    void changed();
    int set_baseline_value(const std::string& tag, const std::string& value);

    // Sources of the calculated start-after, due and priority.
    int m_startSource;
    int m_dueSource;
    int m_prioritySource;

    // Facets and planner state, in stream order.
    ZBCalcPair<char> m_entryType;
    // Held here, in the byte after the type, so that it takes no room of its own.
    bool m_needRecalculate;
    bool m_notPlanned = false;
    long m_lastRecalculate = -1;
    EntryProperties m_props;
    // The facets that most entries leave at their defaults are made on the
    // first edit; until then get_ gives a shared default one. None of them
    // looks at its entry, so a shared one answers for every entry alike (the
    // repeat bridge does, and the entry asks it only once it is made).
    std::unique_ptr<EntryDue> m_dueFacet;
    std::unique_ptr<EntryBaseline> m_baseline;
    std::unique_ptr<EntryRepeat> m_erepeat;
    // A previous repeat rule, made only when one has to be kept: almost no
    // entry has one, and a rule is large.
    std::unique_ptr<ZBDateRepeat> m_oldRepeat;
    EntryPriority m_priorityFacet;
    std::unique_ptr<EntrySpent> m_spent;
    EntryTime m_etime;
    std::unique_ptr<EntryPlan> m_plan;
    std::unique_ptr<EntryDepend> m_depend;
    std::unique_ptr<EntryCommand> m_command;
    ZBDate m_planStart;
    ZBDate m_mustStart{ZBDate::E_Blank};

    // Made when the first child arrives: most entries are leaves.
    std::unique_ptr<ZBDBContainer<DiaryEntry>> m_children;
};

} // namespace Tervalon
