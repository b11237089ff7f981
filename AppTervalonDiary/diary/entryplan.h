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
    const std::vector<std::string>& get_clash() const { return m_clash; }

private:
    ZBDateSet m_predicted;
    ZBDateSet m_planned;
    bool m_isPlanned;
    bool m_predictedTrans;
    ZBDuration m_totalPlan;
    std::vector<std::string> m_clash;
};

} // namespace Tervalon
