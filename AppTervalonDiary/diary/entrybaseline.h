#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibObject/container/zbcalcpair.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/date/zbdateslot.h"

#include <string>
#include <vector>

namespace Tervalon {

// A frozen copy of an entry's planned duration and dates, against which its
// progress is graded: the budget (work done and left against the frozen
// hours) and the time (the predicted end against the frozen end).
class EntryBaseline : public EntryFacet {
public:
    enum E_AutoBaseline { E_None = 0, E_Hours = 1, E_HoursDate = 2, E_FollowHours = 3, E_FollowHoursDate = 4 };
    // Grades of both states; marginal progress is a budget state only.
    enum E_State { E_StateNone = 0, E_StateGood = 1, E_StateOverProgress = 2, E_StateMarginal = 3, E_StatePoor = 4 };

    EntryBaseline();
    EntryBaseline(const EntryBaseline& other) = default;
    EntryBaseline& operator=(const EntryBaseline& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    static std::string btype_to_string(int kind);
    // A digit is read as its number; an unknown name gives 0.
    static int string_to_btype(const std::string& text);
    // Whether text names a kind (by name or digit), for input checks.
    static bool is_btype(const std::string& text);

    const ZBCalcPair<ZBDuration>& get_duration() const { return m_duration; }
    const ZBDuration& get_orig_duration() const { return m_duration.orig; }
    const ZBDuration& get_calc_duration() const { return m_duration.calc; }
    void set_duration(const ZBDuration& duration) { m_duration.set_orig(duration); }
    const ZBCalcPair<ZBDateSlot>& get_start_end() const { return m_startEnd; }
    const ZBDateSlot& get_orig_startend() const { return m_startEnd.orig; }
    const ZBDateSlot& get_calc_startend() const { return m_startEnd.calc; }
    void set_start_end(const ZBDateSlot& slot) { m_startEnd.set_orig(slot); }
    void set_startend(const ZBDateSlot& slot) { m_startEnd.set_orig(slot); }
    bool get_progressive() const { return m_progressive; }
    void set_progressive(bool on) { m_progressive = on; }
    int get_auto_baseline() const { return m_autoEntryBaseline; }
    void set_auto_baseline(int kind) { m_autoEntryBaseline = kind; }
    int get_autobaseline() const { return m_autoEntryBaseline; }
    void set_autobaseline(int kind) { m_autoEntryBaseline = kind; }
    // Whether there is anything to grade against.
    bool is_set() const;

    // Grades the entry: completed is the work done so far, remaining what is
    // left, end the predicted end of the work (not valid when there is none);
    // duration and slot are the baseline worked out for the entry (a
    // parent's from its children), used where the user froze none.
    void update_calcs(const ZBDuration& completed, const ZBDuration& remaining, const ZBDate& end,
                      const ZBDuration& duration, const ZBDateSlot& slot);
    // Freezes the entry's duration and predicted slot as its automatic kind
    // asks; ZBErrC_okHandled when anything changed.
    int auto_save(const ZBDuration& duration, const ZBDateSlot& slot);

    int get_state() const { return m_budgetState; }
    int get_time_state() const { return m_timeState; }
    int get_combined_state() const { return m_budgetState > m_timeState ? m_budgetState : m_timeState; }
    const ZBDuration& get_under_budget() const { return m_underBudget; }
    const ZBDuration& get_progress_target() const { return m_progressTarget; }
    const ZBDuration& get_ahead_schedule() const { return m_aheadSchedule; }

    // The budget in words, the progress target, and the schedule in words.
    std::string get_text() const;
    std::string get_prog_text() const;
    std::string get_time_text() const;

private:
    ZBCalcPair<ZBDuration> m_duration;
    ZBCalcPair<ZBDateSlot> m_startEnd;
    bool m_progressive;
    int m_autoEntryBaseline;
    ZBDuration m_underBudget;
    ZBDuration m_progressTarget;
    ZBDuration m_aheadSchedule;
    // How far the work done runs ahead of a progressive target.
    ZBDuration m_overProgress;
    int m_budgetState;
    int m_timeState;
};

} // namespace Tervalon
