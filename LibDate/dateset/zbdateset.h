#pragma once

#include "LibCore/ptrarray/zbptrarray.h"
#include "LibDate/dateset/zbdatesetblocks.h"
#include "LibDate/dateset/zbdatesetentry.h"
#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// An ordered set of typed time spans: free work time, booked time, repeat
// instances. The planner draws time out of such sets for every task on every
// recalculation, so each operation finds its place by binary search and
// changes only the entries it touches.
//
// Entries are kept in order of start, end and type. Spans of one type never
// overlap or touch (they are merged); spans of different types may overlap, so
// ends need not ascend. Each entry carries the latest end of all entries up to
// it, which does ascend: every search halves on that, then looks only at the
// entries that can meet the moment asked about. After any public operation
// except bulk_add there is no empty or open-ended entry. The set owns its
// entries; it belongs to one thread at a time.
class ZBDateSet : public ZBObject {
public:
    ZBDateSet();
    ZBDateSet(const ZBDateSet& other);
    ~ZBDateSet() override;
    ZBDateSet& operator=(const ZBDateSet& other);
    bool operator==(const ZBDateSet& other) const;
    bool operator!=(const ZBDateSet& other) const { return !(*this == other); }

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Adding.
    int add(const ZBDateSlot& slot, int type);
    int add(const ZBDateSet& other);
    // Adds the other set's entries and empties it.
    int add_return(ZBDateSet& other);
    // Only queues: the set is out of order until finish_bulk_add.
    void bulk_add(const ZBDateSlot& slot, int type);
    // Queues an entry made by the caller; the set takes it over.
    void bulk_add(ZBDateSetEntry* entry);
    int finish_bulk_add();
    // Inserts at the place found from hint and merges with the neighbours
    // only; gives the index of the entry that holds the slot, -1 if nothing
    // was added.
    int safe_add(const ZBDateSlot& slot, int type, int hint = 0, bool useFind = true);

    // Taking away; type -1 takes from every type.
    int subtract(const ZBDateSlot& slot, int type);
    int subtract(const ZBDateSet& other);
    int erase(int index);
    void clear();

    int size() const { return m_entry.size(); }
    bool empty() const { return m_entry.empty(); }
    // Out of bounds is reported and gives null.
    const ZBDateSetEntry* operator[](int index) const;
    int bulk_size() const { return m_bulkSlot.size(); }

    // Queries. end() is the latest end of any entry, which with overlapping
    // types need not be the last entry's.
    ZBDate start() const;
    ZBDate end() const;
    ZBDuration duration() const;
    bool match(const ZBDate& date) const;
    bool has_range(const ZBDateSlot& slot, int type) const;
    ZBDuration query_range(const ZBDateSlot& slot, int type) const;
    // The parts of the set that lie in slot, with their types.
    int query_range(const ZBDateSlot& slot, ZBDateSet& outSet) const;
    // Time is counted once where entries of different types overlap.
    ZBDate time_after(const ZBDuration& duration) const;
    ZBDate time_after(const ZBDate& date, const ZBDuration& duration) const;
    ZBDate time_before(const ZBDate& date, const ZBDuration& duration) const;
    // Index of the first entry whose end is at or after date, from index
    // from on; size() when date is at or past the set's end. from is only a
    // hint: a search from 0 gives the same.
    int safe_find(const ZBDate& date, int from = 0, bool binary = true) const;
    // Index of the last entry whose start is at or before date, from index
    // from (-1: the last) back; -1 when date is at or before the set's start.
    int safe_rfind(const ZBDate& date, int from = -1, bool binary = true) const;

    // Moves up to duration of time into returnSet, from earliest forwards or
    // from latest backwards, each span keeping its type; gives what was moved.
    // Forwards the entries offering the earliest time give first, backwards
    // those offering the latest.
    ZBDuration allocate(ZBDateSet& returnSet, const ZBDuration& duration, const ZBDate& earliest,
                        const ZBDate& latest, bool backwards);

    bool get_keepduration() const { return m_keepDuration; }
    void set_keepduration(bool keep) { m_keepDuration = keep; }
    // Drops empty entries, sorts if asked, and merges neighbours of one type.
    int cleanup(bool sort);

private:
    ZBDateSetEntry* at(int index) const { return m_entry.at(index); }
    // First index from `from` on whose latest end so far is at or after date
    // (inclusive) or after it (not inclusive); size() when there is none.
    int first_reaching(const ZBDate& date, bool inclusive, int from) const;
    // First index whose entry starts at or after date.
    int first_starting_from(const ZBDate& date) const;
    int index_of(const ZBDateSetEntry& entry) const;
    // Brings the latest ends up to date from index from, after a change there.
    void relink(int from);
    // Where entry belongs; hint (or the place behind it) is tried first.
    int place(const ZBDateSetEntry& entry, int hint) const;
    // An entry of entry's type that overlaps or touches it, looking back from
    // index before and on from index after; -1 if none.
    int partner_of(const ZBDateSetEntry& entry, int before, int after) const;
    void relink_all();
    // Inserts in order and gives the index.
    int put(ZBDateSetEntry* entry, int hint);
    void drop(int index);
    // Moves an entry whose start or end changed to its place; gives the index.
    int settle(int index);
    // Merges every entry of its type that overlaps or touches the entry at
    // index into it; gives its index.
    int join_type(int index);
    // Takes from..to out of the entry at index, keeping what lies before and after it.
    void cut(int index, const ZBDate& from, const ZBDate& to);
    // Visits the entries that start before cap, latest end (capped at cap)
    // first, while visit(index, end) gives true.
    template <class Visit>
    void walk_back(const ZBDate& cap, Visit&& visit) const;

    ZBDateSetBlocks m_entry;
    ZBPtrArray<ZBDateSetEntry> m_bulkSlot;
    bool m_keepDuration;
};

} // namespace Tervalon
