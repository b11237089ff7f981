#include "LibDatabase/db/zblockable.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibCore/error/zberror.h"

#include <cstdint>

namespace Tervalon {

int ZBLockable::ZBErrC_ObjectLocked = ZBError::allocate_code("ZBErrC_ObjectLocked", "The specified record is locked elsewhere.");
int ZBLockable::ZBErrC_ObjectNotLocked =
    ZBError::allocate_code("ZBErrC_ObjectNotLocked", "Attempting to edit a record that is not locked.");

namespace {
// A lock's mutex is held only for a few instructions and never while another is
// taken, so sharing one among many locks costs nothing in waiting and cannot deadlock.
const unsigned C_MutexPool = 64;

ZBMutex& pool_mutex(const void* owner)
{
    static ZBMutex pool[C_MutexPool];
    const std::uintptr_t address = reinterpret_cast<std::uintptr_t>(owner);
    return pool[(address >> 4) % C_MutexPool];
}
} // namespace

int ZBLockable::lock(int id)
{
    {
        ZBMutexLocker guard(pool_mutex(this));
        if (m_state == E_Free) {
            m_state = E_Locked;
            m_id = id;
            return ZBErrC_ok;
        }
    }
    // Reported outside the mutex: the error system may call back into the owner.
    return zberror(ZBErrC_ObjectLocked, ZBLOC, "Could not lock for ID %d", id);
}

int ZBLockable::unlock()
{
    {
        ZBMutexLocker guard(pool_mutex(this));
        if (m_state != E_Free) {
            m_state = E_Free;
            m_id = -1;
            return ZBErrC_ok;
        }
    }
    return zberror(ZBErrC_ObjectNotLocked, ZBLOC, "Object already unlocked.");
}

bool ZBLockable::is_locked() const
{
    ZBMutexLocker guard(pool_mutex(this));
    return m_state == E_Locked;
}

int ZBLockable::get_lock_id() const
{
    ZBMutexLocker guard(pool_mutex(this));
    return m_id;
}

} // namespace Tervalon
