#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/dateset/zbdateset.h"
#include "LibDate/dateset/zbdatesetentry.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBCalendar;

// What was really done on an entry: its finished sessions (each under the
// resource that worked it), the running one, and when it was last completed.
// The running session is merged into the finished ones at every update, so
// whatever is saved holds its time up to that moment; its start and resource
// are stored too, so that it goes on running when the file is opened again.
class EntrySpent : public EntryFacet {
public:
    static int ZBErrC_SessionBackwards;
    static int ZBErrC_SessionOverlap;

    EntrySpent();
    EntrySpent(const EntrySpent& other) = default;
    EntrySpent& operator=(const EntrySpent& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // The finished sessions (the running one included up to its last update).
    const ZBDateSet& get_session() const { return m_session; }
    ZBDateSet& edit_session() { return m_session; }
    const ZBDateSet& get_sessions() const { return m_session; }
    ZBDateSet& edit_sessions() { return m_session; }

    // Records work already done. A slot that ends before it starts, or that
    // overlaps a session of the same resource, is refused with a message and
    // changes nothing; one that only touches another joins it.
    int add_session(const ZBDateSlot& slot, int resource);
    int add_session(const ZBDate& date, const ZBDuration& duration, int resource);

    // The running session: its slot (start to the last update) and resource;
    // the resource is -1 when none runs.
    bool has_running_session() const { return m_currentSession.m_type >= 0; }
    const ZBDateSetEntry& get_current_session() const { return m_currentSession; }
    // Stops any session of this entry, then starts one for resource now.
    void start_session(int resource);
    // Begins a running session at a given moment (a session that was begun
    // elsewhere, or one read back); no trigger runs.
    void start_session(const ZBDate& start, int resource);
    // Forgets the running session; its time up to the last update stays.
    void drop_running_session() { m_currentSession = ZBDateSetEntry(ZBDateSlot(), -1); }
    // Brings the running session's end to now and merges it into the finished ones.
    void update_session();
    // Ends the running session now: its time is kept, plans of the resource
    // beyond what is left of the work are dropped, and "stop" runs. Nothing
    // happens when none runs.
    void stop_session();
    // The same, ending at date (a completion recorded for another moment).
    void stop_session(const ZBDate& date);

    // Own sessions plus the children's; a leaf note without sessions counts its own length.
    void recalculate_spent(bool need);
    const ZBDuration& get_time_spent() const { return m_timeSpent; }
    void set_time_spent(const ZBDuration& spent) { m_timeSpent = spent; }
    // The time of the sessions of resource (negative: any) within slot; the
    // running session counts up to now.
    ZBDuration get_spent(const ZBDateSlot& slot, int resource) const;

    const ZBDate& get_closed() const { return m_closed; }
    void set_closed(const ZBDate& date) { m_closed = date; }

    // Takes the sessions of resource (negative: any) out of set.
    void remove_fixed(ZBDateSet& set, int resource) const;
    // Adds the sessions of resource (negative: any) that meet slot to calendar.
    int detailed_query(const ZBDateSlot& slot, ZBCalendar& calendar, int resource) const;

private:
    ZBDateSet m_session;
    ZBDateSetEntry m_currentSession;
    ZBDuration m_timeSpent;
    ZBDate m_closed;
};

} // namespace Tervalon
