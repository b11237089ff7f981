#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;

// The calculated parts of an entry's priority and its place in the display
// order. The priority pair itself belongs to the entry; nothing here is stored.
class EntryPriority : public EntryFacet {
public:
    EntryPriority();
    EntryPriority(const EntryPriority& other) = default;
    EntryPriority& operator=(const EntryPriority& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Offsets for the entry's state, far apart so that state ranks first.
    static constexpr double C_PriorityNonTask = -300.0;
    static constexpr double C_PriorityComplete = -200.0;
    static constexpr double C_PriorityInactive = -100.0;
    static constexpr double C_PriorityDelayed = 100.0;
    static constexpr double C_PriorityShouldStart = 200.0;
    static constexpr double C_PriorityUrgent = 300.0;
    static constexpr double C_PriorityDue = 400.0;
    static constexpr double C_PriorityInactiveExtra = -5.0;
    // Each step back through a dependency chain is this much more urgent.
    static constexpr double C_DependStep = 1e-6;
    // In calc: the initial priority has not been worked out yet.
    static constexpr double C_PriorityUnset = -1e-12;

    double get_priority() const;
    void set_priority(double value);
    double get_calc_priority() const;
    int get_source_id() const;
    double get_non_due_priority() const { return m_nonDueEntryPriority; }
    int get_displayorder() const { return m_displayOrder; }
    double get_maxchildpriority() const { return m_maxChildPriority; }
    double get_priorityorder() const { return m_priorityOrder; }
    void reset_display_order() { m_displayOrder = 0; }
    // The highest user priority among self and active children.
    void reset_priority_order();
    void reset_initial_priority();
    // The user's value, or the parent's when higher; source says whose.
    double calc_base_priority(int& source) const;
    void calc_initial_priority(Diary* diary);
    double upgrade_priority(double value, Diary* diary, int source, bool push);
    void recalculate_priority(Diary* diary);
    // Numbers the entry and then its children in the tree's order.
    void push_display_order(int order, int& counter);
    // Children first, last to first; an active entry takes the counter.
    void push_priority_order(double& counter, double step);

    double get_nondue_priority() const { return m_nonDueEntryPriority; }
    void set_nondue_priority(double value) { m_nonDueEntryPriority = value; }
    double get_max_child_priority() const { return m_maxChildPriority; }
    void set_max_child_priority(double value) { m_maxChildPriority = value; }
    int get_display_order() const { return m_displayOrder; }
    void set_display_order(int order) { m_displayOrder = order; }
    double get_priority_order() const { return m_priorityOrder; }
    void set_priority_order(double value) { m_priorityOrder = value; }

private:
    double m_nonDueEntryPriority;
    double m_maxChildPriority;
    int m_displayOrder;
    double m_priorityOrder;
};

} // namespace Tervalon
