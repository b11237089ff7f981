#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"

#include <string>
#include <vector>

namespace Tervalon {

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

    static constexpr double C_PriorityUrgent = 300.0;

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
