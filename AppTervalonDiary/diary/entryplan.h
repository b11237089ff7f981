#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/dateset/zbdateset.h"

#include <string>
#include <vector>

namespace Tervalon {

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
    ZBDateSet& edit_planned() { return m_planned; }
    const ZBDateSet& get_predicted() const { return m_predicted; }
    ZBDateSet& edit_predicted() { return m_predicted; }
    void clear_predicted();
    // Drops fixed plans that end at or before date; a blank date drops them all.
    void remove_plans(const ZBDate& date);
    bool get_is_planned() const { return m_isPlanned; }
    void set_is_planned(bool planned) { m_isPlanned = planned; }
    const std::vector<std::string>& get_clash() const { return m_clash; }
    std::vector<std::string>& edit_clash() { return m_clash; }
    // The latest moment work must begin to meet the due date.
    const ZBDate& get_muststart() const { return m_mustStart; }
    void set_muststart(const ZBDate& date) { m_mustStart = date; }
    // The due date the planner derived, and the entry it came from.
    const ZBDate& get_preddue() const { return m_predDue; }
    int get_preddue_id() const { return m_predDueId; }
    void set_preddue(const ZBDate& date, int id)
    {
        m_predDue = date;
        m_predDueId = id;
    }
    // Dates the planner could not fit; shown as early warnings.
    const std::vector<ZBDate>& get_problem_dates() const { return m_problemDate; }
    std::vector<ZBDate>& edit_problem_dates() { return m_problemDate; }
    // ---- Smallest form until the allocator's own arrives; replace whole.
    // Takes what the planner worked out on a background copy; with none
    // (the entry is not in the copy), only marks the predictions as delivered.
    void load_predicted(const EntryPlan* other);
    bool is_predicted_delivered() const { return m_predictedTrans; }
    // ---- end of the smallest form.
    // The planned work begins now or has begun, and no session is running.
    bool should_start() const;
    // The planned work ends after the due date.
    bool could_overrun() const;

private:
    ZBDateSet m_predicted;
    ZBDateSet m_planned;
    bool m_isPlanned;
    bool m_predictedTrans;
    ZBDuration m_totalPlan;
    std::vector<std::string> m_clash;
    ZBDate m_mustStart{ZBDate::E_Blank};
    ZBDate m_predDue{ZBDate::E_Blank};
    int m_predDueId = -1;
    std::vector<ZBDate> m_problemDate;
};

} // namespace Tervalon
