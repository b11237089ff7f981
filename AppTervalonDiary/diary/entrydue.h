#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbprogress.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;

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

    // The owning entry's pairs. An orig setter that changes the value asks
    // for new predictions; setting orig also sets calc.
    const ZBDate& get_startafter_orig() const;
    void set_startafter_orig(const ZBDate& date);
    const ZBDate& get_startafter_calc() const;
    void set_startafter_calc(const ZBDate& date);
    int get_startafter_id() const;
    const ZBDate& get_due_orig() const;
    void set_due_orig(const ZBDate& date);
    const ZBDate& get_due_calc() const;
    void set_due_calc(const ZBDate& date);
    int get_due_id() const;
    ZBDuration get_duration_orig() const;
    void set_duration_orig(const ZBDuration& duration);
    ZBDuration get_duration_calc() const;
    ZBDuration get_remaining_orig() const;
    ZBDuration get_remaining_calc() const;
    double get_completion_orig() const;
    // A percentage outside 0 to 100 is refused with a message.
    int set_completion_orig(double percent);

    // Sets start-after and due from a slot: 0 start only, 1 due only, 2 both,
    // 3 neither, 4 and 5 the slot moved forward or back by its own length.
    void set_start_end(const ZBDateSlot& slot, int kind);

    // Start-after only ever moves later and due only earlier; with push the
    // change goes on along the dependencies. Both return the resulting date.
    ZBDate upgrade_start_after(const ZBDate& date, bool push, Diary* diary, int source);
    ZBDate upgrade_due(const ZBDate& date, bool push, Diary* diary, int source);
    // The entry's own dates, narrowed by its parent's.
    int recalculate_push_down(const DiaryEntry* parent, Diary* diary);
    // A leaf's dates along its dependencies: start-after forward, due back.
    void push_dependencies(Diary* diary);
    // A parent's dates from its children, and the latest moment to start.
    void recalculate_start_after();
    void recalculate_due();
    void recalculate_duration(bool need);
    int recalculate_autocompletion(bool need);
    // Time spent on the entry since from (blank: all), the running session up to now.
    ZBDuration get_total_spent(const ZBDate& from) const { return total_spent(*get_entry(), from); }
    // The same for an entry that may have no due facet of its own.
    static ZBDuration total_spent(const DiaryEntry& entry, const ZBDate& from);

private:
    ZBDate upgrade_start_after(const ZBDate& date, bool push, Diary* diary, int source, int depth);
    ZBDate upgrade_due(const ZBDate& date, bool push, Diary* diary, int source, int depth);
    // How far a dependant moves past this entry's start-after (or before its due).
    ZBDuration push_length() const;
    void store_completion(double percent);
    // How many instances of a repeat lie before the current one, and in all.
    bool count_instances(int& past, int& total) const;

    int m_autoProgress;
    ZBProgress m_totalDuration;
};

} // namespace Tervalon
