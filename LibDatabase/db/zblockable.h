#pragma once

#include "LibComms/thread/zbmutex.h"

namespace Tervalon {

// The edit lock of a record. The recalculation thread locks objects too, so the
// state sits behind a mutex; the mutexes are a small shared pool chosen by the
// lock's address, because every record (and every part of one) is lockable and
// a mutex each would cost more than most records hold. A copy starts free: a lock belongs to
// one object and one holder, never to a backup or clone of it.
class ZBLockable {
public:
    ZBLockable() = default;
    ZBLockable(const ZBLockable&) {}
    ZBLockable& operator=(const ZBLockable&) { return *this; }
    ~ZBLockable() = default;

    // Takes the lock for holder id; a held lock is refused and left as it was.
    int lock(int id);
    int unlock();
    bool is_locked() const;
    // The holder's id, -1 when free.
    int get_lock_id() const;

    static int ZBErrC_ObjectLocked;
    static int ZBErrC_ObjectNotLocked;

private:
    enum { E_Locked = 0, E_Free = 1 };
    int m_id = -1;
    int m_state = E_Free;
};

} // namespace Tervalon
