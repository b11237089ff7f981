#include "LibComms/thread/zbmutexlocker.h"

namespace Tervalon {

ZBMutexLocker::ZBMutexLocker(ZBMutex& mutex)
{
    set_mutex(mutex);
}

ZBMutexLocker::ZBMutexLocker(ZBMutex& mutex, int timeout)
{
    if (mutex.try_lock(timeout))
        m_mutex = &mutex;
}

ZBMutexLocker::~ZBMutexLocker()
{
    unlock();
}

void ZBMutexLocker::set_mutex(ZBMutex& mutex)
{
    unlock();
    mutex.lock();
    m_mutex = &mutex;
}

void ZBMutexLocker::unlock()
{
    if (m_mutex)
        m_mutex->unlock();
    m_mutex = nullptr;
}

} // namespace Tervalon
