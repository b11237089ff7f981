#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/date/zbdateslot.h"

#include <string>
#include <vector>

namespace Tervalon {

// The bridge between an entry's repeat rule and the entry: the instance it
// stands for now and the one it moves on to. Nothing of it is stored; the rule
// lives with the entry.
class EntryRepeat : public EntryFacet {
public:
    EntryRepeat();
    EntryRepeat(const EntryRepeat& other) = default;
    EntryRepeat& operator=(const EntryRepeat& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // The instance the entry stands for: the calculated slot of its dates.
    ZBDateSlot get_current_repeat() const;
    // Records the instance the entry moves on to; the dates go on the entry.
    void set_next_repeat(const ZBDate& start, const ZBDate& end);
    void invalidate() { m_valid = false; }
    bool is_valid() const { return m_valid; }

private:
    ZBDateSlot m_current;
    bool m_valid;
};

} // namespace Tervalon
