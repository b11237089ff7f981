#pragma once

#include "LibComms/thread/zbmutex.h"
#include "LibDate/date/zbdate.h"

namespace Tervalon {

class ZBDatabase;

// A rate-limited answer to "has the database changed since I last acted?", for
// views and calculations that should not redo their work on every call. It
// does not own the database. Marks may come from any thread, so the fields sit
// behind a mutex.
class ZBUpdateChecker {
public:
    enum E_Action { E_AnyUpdate = 0, E_StructureChange = 1, E_Manual = 2 };

    ZBUpdateChecker(ZBDatabase* db = nullptr, E_Action action = E_AnyUpdate, int timeout = 0);

    void set_database(ZBDatabase* db);
    void set_action(E_Action action);
    // Seconds after the last action at which action is due anyway; 0 or less for never.
    void set_timeout(int seconds);
    int get_timeout() const;

    // Asks for action on the next do_action, whatever the kind.
    void mark_action();
    bool action_required() const;
    // When action is required, records that it is being taken and returns true.
    bool do_action();
    long get_last_seen() const;

private:
    bool required_locked() const;

    ZBDatabase* m_db;
    E_Action m_action;
    long m_lastSeen;
    int m_timeout;
    ZBDate m_lastAction;
    mutable ZBMutex m_mutex;
};

} // namespace Tervalon
