#include "LibComms/thread/zbcondvar.h"

#include <QDeadlineTimer>

namespace Tervalon {

bool ZBCondVar::wait_signal(int milliseconds)
{
    m_mutex.lock();
    // A spurious wake-up must not end the wait early, so the deadline is fixed first.
    QDeadlineTimer deadline = milliseconds < 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                                                : QDeadlineTimer(milliseconds, Qt::PreciseTimer);
    while (!m_signalled && !deadline.hasExpired()) {
        ZB_HINT_RELEASE(&m_mutex);
        m_cond.wait(m_mutex.get_qmutex(), deadline);
        ZB_HINT_ACQUIRE(&m_mutex);
    }
    bool signalled = m_signalled;
    m_signalled = false;
    m_mutex.unlock();
    return signalled;
}

void ZBCondVar::send_signal()
{
    m_mutex.lock();
    m_signalled = true;
    m_cond.wakeAll();
    m_mutex.unlock();
}

} // namespace Tervalon
