#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/date/zbprogress.h"

#include <string>
#include <vector>

namespace Tervalon {

// How an entry's progress is kept. The start-after, due and progress pairs
// themselves belong to the entry; this facet adds the progress rule and the
// total over all repeat instances.
class EntryDue : public EntryFacet {
public:
    EntryDue();
    EntryDue(const EntryDue& other) = default;
    EntryDue& operator=(const EntryDue& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    enum E_AutoProgress { E_Manual = 0, E_MatchSpent = 1, E_MatchRange = 2 };
    static std::string autoprogress_to_string(int kind);

    int get_autoprogress() const { return m_autoProgress; }
    void set_autoprogress(int kind) { m_autoProgress = kind; }
    const ZBProgress& get_total_duration() const { return m_totalDuration; }
    ZBProgress& edit_total_duration() { return m_totalDuration; }

private:
    int m_autoProgress;
    ZBProgress m_totalDuration;
};

} // namespace Tervalon
