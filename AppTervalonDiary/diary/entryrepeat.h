#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBDatabase;
class ZBDBObject;

// The bridge between an entry's repeat rule and the entry: which instances
// the rule gives now, the instance the entry stands for and the one it moves
// on to, and how one instance (or a run of them) breaks out into entries of
// their own. Nothing of it is stored; the rule lives with the entry. The
// generated instances are a cache of the entry's copy they were made on, so
// the planner's private copy and the live entry never share them.
//
// An instance is held in the planner's form: a task's runs from the earliest
// it may start to its due date, an appointment's is its time. A task's rule
// gives its due dates; the start of each later instance keeps the entry's
// distance before its due, or is the due of the instance before it when the
// entry has no start-after.
class EntryRepeat : public EntryFacet {
public:
    // The most instances one call generates when the caller gives no bound.
    static constexpr int C_MaxInstances = 10000;

    EntryRepeat();
    EntryRepeat(const EntryRepeat& other) = default;
    EntryRepeat& operator=(const EntryRepeat& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // The instances within range, at most limit of them, the entry's current
    // one first. With all, the instances before the current one (back to the
    // range's start, nearest first) are kept too. An entry that does not
    // repeat gets one instance: its own dates, a blank side taken from range.
    // A second call with the same arguments reuses what the first made until
    // the entry changes (invalidate).
    int generate_slots(bool all, const ZBDateSlot& range, int limit);
    const std::vector<ZBDateSlot>& get_slots() const { return m_slots; }
    const std::vector<ZBDateSlot>& get_past_slots() const { return m_pastSlots; }
    bool has_slots() const { return m_generated; }
    // True when some generated instance ends within slot.
    bool slot_match(const ZBDateSlot& slot) const;
    // Between the ends of the first two generated instances; 0 with fewer.
    ZBDuration separation() const;

    // The instance the entry stands for: the calculated slot of its dates.
    ZBDateSlot get_current_repeat() const;
    // Records the instance the entry moves on to; the dates go on the entry.
    void set_next_repeat(const ZBDate& start, const ZBDate& end);
    // Throws away the generated instances and the recorded current one.
    void invalidate();
    void clear_slots();
    bool is_valid() const { return m_valid; }

    // The cheap pass's first phase: a series that has not begun stands on
    // its first instance, one past its end completes itself, and one that is
    // still running is never left complete.
    int update();

    // The last instance before the entry was closed (completed): the date the
    // entry was last done, for the details page. Blank when there is none.
    ZBDateSlot previous_slot(bool completed) const;

    // Splits the instance of entry's series at date (or, with a blank date,
    // the instance numbered sequence, 0 being the current one) off into an
    // entry of its own, placed beside the series. out gets the new entry's id.
    static int create_instance(ZBDatabase* db, ZBDBObject* object, const ZBDate& date, int sequence, int* out);
    // Expands entry's series into count entries: the entry itself is the
    // first, the others are copies beside it. With setDates each copy takes
    // the dates of its instance; with chain each depends on the one before.
    static int create_sequence(ZBDatabase* db, ZBDBObject* object, int count, bool setDates, bool chain,
                               std::vector<int>* out);

private:
    // The rule's own date of an instance: a task's due, otherwise its start.
    static ZBDate key_date(const DiaryEntry& entry, const ZBDateSlot& slot);
    // Puts an instance's dates on an entry (a copy or the series itself).
    static void apply_instance(DiaryEntry& target, const ZBDateSlot& slot, bool withStart);
    // The instances create_instance and create_sequence work from.
    static int regenerate(DiaryEntry& entry, const ZBDate& date);

    ZBDateSlot m_current;
    bool m_valid;
    // Generated instances and what they were generated for.
    std::vector<ZBDateSlot> m_slots;
    std::vector<ZBDateSlot> m_pastSlots;
    bool m_generated;
    bool m_generatedAll;
    ZBDateSlot m_generatedRange;
    int m_generatedLimit;
};

} // namespace Tervalon
