#pragma once

#include "LibComms/thread/zbracehints.h"

#include <QMutex>

namespace Tervalon {

// A thin layer on QMutex, so that model code names its locks in the system's
// own terms. A copy is a new, independent mutex: copying the object that holds
// one must never share or copy a lock state.
class ZBMutex {
public:
    ZBMutex() = default;
    ZBMutex(const ZBMutex&) {}
    ZBMutex& operator=(const ZBMutex&) { return *this; }

    void lock()
    {
        m_mutex.lock();
        ZB_HINT_ACQUIRE(this);
    }
    void unlock()
    {
        ZB_HINT_RELEASE(this);
        m_mutex.unlock();
    }
    // Waits at most the given time (below 0: for ever); true when taken.
    bool try_lock(int milliseconds)
    {
        if (!m_mutex.tryLock(milliseconds))
            return false;
        ZB_HINT_ACQUIRE(this);
        return true;
    }
    // For a condition variable that waits on this lock.
    QMutex* get_qmutex() { return &m_mutex; }

private:
    QMutex m_mutex;
};

} // namespace Tervalon
