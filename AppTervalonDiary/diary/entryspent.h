#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDate/dateset/zbdateset.h"
#include "LibDate/dateset/zbdatesetentry.h"

#include <string>
#include <vector>

namespace Tervalon {

// What was really done on an entry: its finished sessions, the running one,
// and when it was last completed.
class EntrySpent : public EntryFacet {
public:
    EntrySpent();
    EntrySpent(const EntrySpent& other) = default;
    EntrySpent& operator=(const EntrySpent& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const ZBDateSet& get_sessions() const { return m_session; }
    ZBDateSet& edit_sessions() { return m_session; }
    int add_session(const ZBDateSlot& slot, int resource) { return m_session.add(slot, resource); }
    bool has_running_session() const { return m_currentSession.m_type >= 0; }
    const ZBDateSetEntry& get_current_session() const { return m_currentSession; }
    void start_session(const ZBDate& start, int resource) { m_currentSession = ZBDateSetEntry(start, start, resource); }
    // Ends the running session at date and keeps it among the finished ones.
    void stop_session(const ZBDate& date);
    const ZBDate& get_closed() const { return m_closed; }
    void set_closed(const ZBDate& date) { m_closed = date; }
    const ZBDuration& get_time_spent() const { return m_timeSpent; }
    void set_time_spent(const ZBDuration& spent) { m_timeSpent = spent; }

private:
    ZBDateSet m_session;
    ZBDateSetEntry m_currentSession;
    ZBDuration m_timeSpent;
    ZBDate m_closed;
};

} // namespace Tervalon
