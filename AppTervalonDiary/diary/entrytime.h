#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/date/zbdateslot.h"

#include <string>
#include <vector>

namespace Tervalon {

// The view of an entry's date slot: as entered (orig_date), as worked out
// (calc_date), and which entry set the calculated end. The slot is kept by
// the entry; only old files wrote it here.
class EntryTime : public EntryFacet {
public:
    EntryTime();
    EntryTime(const EntryTime& other) = default;
    EntryTime& operator=(const EntryTime& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const ZBDateSlot& get_orig_date() const;
    const ZBDateSlot& get_calc_date() const;
    void set_orig_date(const ZBDateSlot& slot);
    void set_calc_date(const ZBDateSlot& slot);
    int get_end_id() const { return m_endId; }
    void set_end_id(int id) { m_endId = id; }
    // Makes calc_date from orig_date and what the children, sessions and
    // predictions say.
    void recalculate_date();
    // Pushes the calculated end of a task later, and on to what depends on it
    // and to the parent.
    void upgrade_date(const ZBDate& date, bool force, int source);

private:
    // Moves this task's end to date when it is later (or forced); true when it moved.
    bool push_end(const ZBDate& date, bool force, int source);

    int m_endId;
};

} // namespace Tervalon
