#include "LibDatabase/db/zbupdatechecker.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibDate/date/zbdateutils.h"

namespace Tervalon {

ZBUpdateChecker::ZBUpdateChecker(ZBDatabase* db, E_Action action, int timeout)
    : m_db(db), m_action(action), m_lastSeen(-1), m_timeout(timeout), m_lastAction(ZBDate::E_Zero)
{
}

void ZBUpdateChecker::set_database(ZBDatabase* db)
{
    ZBMutexLocker guard(m_mutex);
    m_db = db;
}

void ZBUpdateChecker::set_action(E_Action action)
{
    ZBMutexLocker guard(m_mutex);
    m_action = action;
}

void ZBUpdateChecker::set_timeout(int seconds)
{
    ZBMutexLocker guard(m_mutex);
    m_timeout = seconds;
}

int ZBUpdateChecker::get_timeout() const
{
    ZBMutexLocker guard(m_mutex);
    return m_timeout;
}

// -2 is below any counter a database reports and negative, so every kind of
// checker sees it as a reason to act.
void ZBUpdateChecker::mark_action()
{
    ZBMutexLocker guard(m_mutex);
    m_lastSeen = -2;
}

bool ZBUpdateChecker::action_required() const
{
    ZBMutexLocker guard(m_mutex);
    return required_locked();
}

bool ZBUpdateChecker::required_locked() const
{
    if (!m_db)
        return false;
    if (m_timeout > 0 && ZBDateUtils::now() > m_lastAction + ZBDuration(0, m_timeout, 0))
        return true;
    switch (m_action) {
    case E_AnyUpdate:
        return m_db->get_last_db_update() > m_lastSeen;
    case E_StructureChange:
        return m_db->get_last_structure_change() > m_lastSeen;
    case E_Manual:
        return m_lastSeen < 0;
    }
    return false;
}

bool ZBUpdateChecker::do_action()
{
    ZBMutexLocker guard(m_mutex);
    if (!required_locked())
        return false;
    m_lastAction = ZBDateUtils::now();
    m_lastSeen = m_action == E_Manual ? 0 : ZBUpdateCounter::get_counter(false);
    return true;
}

long ZBUpdateChecker::get_last_seen() const
{
    ZBMutexLocker guard(m_mutex);
    return m_lastSeen;
}

} // namespace Tervalon
