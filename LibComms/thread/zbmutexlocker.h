#pragma once

#include "LibComms/thread/zbmutex.h"

namespace Tervalon {

// Holds a ZBMutex for the life of a scope. With a time-out the lock may fail;
// is_locked() tells the caller whether it may go on.
class ZBMutexLocker {
public:
    ZBMutexLocker() = default;
    explicit ZBMutexLocker(ZBMutex& mutex);
    ZBMutexLocker(ZBMutex& mutex, int timeout);
    ~ZBMutexLocker();
    ZBMutexLocker(const ZBMutexLocker&) = delete;
    ZBMutexLocker& operator=(const ZBMutexLocker&) = delete;

    // Releases any mutex held and takes this one, waiting as long as it takes.
    void set_mutex(ZBMutex& mutex);
    bool is_locked() const { return m_mutex != nullptr; }
    void unlock();

private:
    ZBMutex* m_mutex = nullptr;
};

} // namespace Tervalon
