#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/dateset/zbdateset.h"
#include "LibDate/date/zbdateslot.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBCalendar;

// When the work of an entry is done: the fixed plans the user made (stored)
// and the sessions the planner predicted (calculated).
class EntryPlan : public EntryFacet {
public:
    EntryPlan();
    EntryPlan(const EntryPlan& other) = default;
    EntryPlan& operator=(const EntryPlan& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const ZBDateSet& get_planned() const { return m_planned; }
    bool get_is_planned() const { return m_isPlanned; }
    void set_is_planned(bool planned) { m_isPlanned = planned; }
    const std::vector<std::string>& get_clash() const { return m_clash; }
    std::vector<std::string>& edit_clash() { return m_clash; }

    // ---- What the planner predicted (calculated, never stored).
    const ZBDateSet& get_predicted() const { return m_predicted; }
    ZBDateSet& edit_predicted() { return m_predicted; }
    // Forgets the predictions; with all, the clashes as well.
    void clear_predicted(bool all = true);
    // Predictions were delivered since the last clear.
    bool is_transferred() const { return m_predictedTrans; }
    // Fixed plans and predicted sessions together.
    const ZBDuration& get_total_plan() const { return m_totalPlan; }
    // When work would ideally begin so that everything meets its due.
    const ZBDate& get_plannedstart() const { return m_plannedStart; }
    // The latest moment work must begin to meet the due date, as the planner
    // found it; blank until it delivers. DiaryEntry::get_muststart() falls
    // back to the quick estimate of the entry phases.
    const ZBDate& get_muststart() const { return m_mustStart; }
    void set_muststart(const ZBDate& date) { m_mustStart = date; }
    // Work placed after the due that an earlier start could have avoided.
    const ZBDuration& get_pretime() const { return m_preTime; }
    // The start-after and due the planner worked to, and the entries they came from.
    const ZBDate& get_predstart() const { return m_predStart; }
    int get_predstart_id() const { return m_predStartId; }
    const ZBDate& get_preddue() const { return m_predDue; }
    int get_preddue_id() const { return m_predDueId; }
    void set_preddue(const ZBDate& date, int id)
    {
        m_predDue = date;
        m_predDueId = id;
    }
    // Instance due dates with sessions past them; shown as early warnings.
    const std::vector<ZBDate>& get_problem_dates() const { return m_problemDate; }
    std::vector<ZBDate>& edit_problem_dates() { return m_problemDate; }
    // Takes the predictions of the same entry in a finished copy; null: the
    // copy has no such entry, so only the delivery is recorded.
    void load_predicted(const EntryPlan* other);
    // Adds one request's result. Earliest planned and must start are kept;
    // start and due are kept from the latest request that names a source
    // (source -1: a later instance, whose dates are its own).
    void add_predicted(const ZBDate& plannedStart, const ZBDate& mustStart, const ZBDateSet& allocated,
                       const ZBDate& start, int startSource, const ZBDate& due, int dueSource,
                       const ZBDuration& preTime);

    // ---- Fixed plans: sessions the user booked (or locked from the
    // planner's predictions). Each session's type is the resource it books.
    // The data types of the calendar entries detailed_query adds.
    static constexpr int C_CalendarPlanned = 1;
    static constexpr int C_CalendarPredicted = 2;

    // Whether a session counts for a slot: it meets it, or the slot has no
    // length (or no dates), which stands for all time.
    static bool in_slot(const ZBDateSlot& session, const ZBDateSlot& slot);
    // Fixed plans cover what is left of the work.
    bool is_planned() const { return m_isPlanned; }
    // This entry, or any entry below it, has fixed plans.
    bool has_plans() const;
    static bool has_plans(const DiaryEntry& entry);
    // Marks the entry changed and asks for new predictions; the caller edits
    // the set it gets.
    ZBDateSet& edit_planned();
    // Planned time of resource (negative: any) in slot; a slot that is not
    // valid or has no length counts every plan.
    ZBDuration get_planned_time(const ZBDateSlot& slot, int resource) const;
    // What a day view should still offer of the work on date.
    ZBDuration get_unplanned_time(const ZBDate& date) const;
    ZBDuration get_total_planned() const { return m_planned.duration(); }
    // Moves predicted session number sequence ('r' sequence) to the fixed plans.
    int lock_plan(int sequence);
    // Moves every predicted session that meets slot (all of them for a slot
    // of no length) to the fixed plans, here and in every entry below;
    // count, when given, grows by the sessions moved.
    int lock_plans(const ZBDateSlot& slot, int* count = nullptr);
    // Erases the fixed plans that meet slot (all for a slot of no length),
    // here and below; count as for lock_plans.
    int clear_plans(const ZBDateSlot& slot, int* count = nullptr);
    // Drops fixed plans that end at or before date; a blank date drops them all.
    void remove_plans(const ZBDate& date);
    // When the plans of resource up to the due date hold more than the work
    // left, drops whole sessions from the front while they fit in the surplus.
    void rationalise_plans(int resource);
    // The first fixed plan's start and end; blank without plans.
    ZBDate first_planned() const;
    ZBDate end_first_planned() const;
    const std::vector<std::string>& get_clashing() const { return m_clash; }
    void add_clashing(const std::string& title);
    void clear_clashing() { m_clash.clear(); }
    void recalculate_isplanned(bool need);
    static bool calc_isplanned(const DiaryEntry& entry);
    void recalculate_overruns();
    static bool calc_overrun(const DiaryEntry& entry);
    // The work could end after its due date.
    bool could_overrun() const { return m_likelyOverdue; }
    void set_could_overrun(bool overrun) { m_likelyOverdue = overrun; }
    // A fixed plan has begun and no session of the entry is running.
    bool should_start() const;
    // The entry could overrun with its due date, or a date it could not
    // fit, inside slot.
    bool range_overrun(const ZBDateSlot& slot) const;
    // Takes the fixed plans of resource (negative: any) out of set.
    void remove_fixed(ZBDateSet& set, int resource) const;
    // Adds the fixed plans and predicted sessions of resource (negative:
    // any) that meet slot to calendar, with ids (entry, 'p' or 'r' sequence).
    int detailed_query(const ZBDateSlot& slot, ZBCalendar& calendar, int resource) const;
    // ---- End of fixed plans.

private:
    ZBDateSet m_predicted;
    ZBDateSet m_planned;
    bool m_isPlanned;
    bool m_predictedTrans;
    ZBDuration m_totalPlan;
    std::vector<std::string> m_clash;
    // What the planner predicted.
    ZBDate m_mustStart{ZBDate::E_Blank};
    ZBDate m_plannedStart{ZBDate::E_Blank};
    ZBDate m_predStart{ZBDate::E_Blank};
    int m_predStartId = -1;
    ZBDate m_predDue{ZBDate::E_Blank};
    int m_predDueId = -1;
    ZBDuration m_preTime;
    std::vector<ZBDate> m_problemDate;
    // Fixed plans.
    bool m_likelyOverdue = false;
};

} // namespace Tervalon
