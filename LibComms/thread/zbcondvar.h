#pragma once

#include "LibComms/thread/zbmutex.h"

#include <QWaitCondition>

namespace Tervalon {

// A wake-up call between threads: a QWaitCondition with its own mutex and a
// latch, so that a signal sent while nobody waits is not lost but ends the
// next wait at once. One wait consumes one or more signals. A copy is a new,
// independent condition, neither signalled nor shared.
class ZBCondVar {
public:
    ZBCondVar() = default;
    ZBCondVar(const ZBCondVar&) {}
    ZBCondVar& operator=(const ZBCondVar&) { return *this; }

    // Waits for a signal at most the given time (below 0: for ever); true when
    // signalled, false on time-out.
    bool wait_signal(int milliseconds);
    // Wakes every waiter, or the next one to wait.
    void send_signal();

private:
    ZBMutex m_mutex;
    QWaitCondition m_cond;
    bool m_signalled = false;
};

} // namespace Tervalon
