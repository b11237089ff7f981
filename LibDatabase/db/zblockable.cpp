#include "LibDatabase/db/zblockable.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

int ZBLockable::ZBErrC_ObjectLocked = ZBError::allocate_code("ZBErrC_ObjectLocked", "The specified record is locked elsewhere.");
int ZBLockable::ZBErrC_ObjectNotLocked =
    ZBError::allocate_code("ZBErrC_ObjectNotLocked", "Attempting to edit a record that is not locked.");

int ZBLockable::lock(int id)
{
    {
        ZBMutexLocker guard(m_mutex);
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
        ZBMutexLocker guard(m_mutex);
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
    ZBMutexLocker guard(m_mutex);
    return m_state == E_Locked;
}

int ZBLockable::get_lock_id() const
{
    ZBMutexLocker guard(m_mutex);
    return m_id;
}

} // namespace Tervalon
