#pragma once

#include "LibCore/ptrarray/zbptrarray.h"
#include "LibDate/calendar/zbcalendarentry.h"
#include "LibDate/calendar/zbcalendarreporter.h"
#include "LibObject/object/zbidlist.h"
#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// The common list the day, week and month views read: entries from every
// source, and the sources (reporters) that fill it. The calendar owns both.
// The update count rises at every change, so a query can tell whether what
// it found is still current; the list is sorted only when someone asks.
// A copy takes the entries, not the reporters, which belong to one owner.
class ZBCalendar : public ZBObject {
public:
    ZBCalendar();
    ZBCalendar(const ZBCalendar& other);
    ZBCalendar& operator=(const ZBCalendar& other);
    ~ZBCalendar() override;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Takes over entry (or reporter); null is refused.
    int add_entry(ZBCalendarEntry* entry);
    int add_reporter(ZBCalendarReporter* reporter);
    void remove_all();
    void remove_reporters();
    int get_nentries() const { return m_entry.size(); }
    // Out of bounds is reported and gives null.
    ZBCalendarEntry* get_entry_no(int index) const { return m_entry.at(index); }
    int get_nreporters() const { return m_reporter.size(); }
    ZBCalendarReporter* get_reporter_by_index(int index) const { return m_reporter.at(index); }
    // Asks every reporter for its entries in slot, after emptying the list.
    int generate_reports(const ZBDateSlot& slot);

    int get_updatecount() const { return m_updateCount; }
    // Orders the entries by start; an order that changes counts as a change.
    int sort();
    bool is_sorted() const { return m_sorted; }
    // Highlights the entries whose id is in ids (sequence and group compared
    // only where both are set) and clears the rest.
    void mark_entries(const ZBIdList& ids);

private:
    void changed() { ++m_updateCount; }

    ZBPtrArray<ZBCalendarEntry> m_entry;
    ZBPtrArray<ZBCalendarReporter> m_reporter;
    int m_updateCount;
    bool m_sorted;
};

} // namespace Tervalon
