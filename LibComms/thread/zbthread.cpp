#include "LibComms/thread/zbthread.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

int ZBThread::ZBErrC_ThreadStart = ZBError::allocate_code("ZBErrC_ThreadStart", "Could not start the thread.");

class ZBThread::Runner : public QThread {
public:
    explicit Runner(ZBThread& owner) : m_owner(owner) {}
    void run() override
    {
        try {
            m_owner.func();
            m_owner.m_status = ZBErrC_ok;
        } catch (const ZBErrDetails& details) {
            m_owner.m_status = details.get_value();
        }
    }

private:
    ZBThread& m_owner;
};

ZBThread::ZBThread() : m_stop(false), m_status(ZBErrC_ok), m_signalled(false) {}

ZBThread::~ZBThread()
{
    if (is_running()) {
        try {
            zbassert_failed("the thread was stopped by its owner's destructor", ZBLOC);
        } catch (const ZBErrDetails&) {
            // A destructor must not throw; the record is on the stack.
        }
    }
    stop();
}

int ZBThread::start(int priority)
{
    if (is_running())
        return ZBErrC_ok;
    m_stop = false;
    m_runner.reset(new Runner(*this));
    m_runner->start(priority > 0 ? QThread::HighPriority : (priority < 0 ? QThread::LowPriority : QThread::NormalPriority));
    if (!m_runner->isRunning() && !m_runner->isFinished())
        return zberror(ZBErrC_ThreadStart, ZBLOC, "Could not start the thread.");
    return ZBErrC_ok;
}

void ZBThread::stop()
{
    if (!m_runner)
        return;
    m_stop = true;
    signal();
    m_runner->wait();
    m_runner.reset();
}

bool ZBThread::is_running() const
{
    return m_runner && m_runner->isRunning();
}

void ZBThread::signal()
{
    QMutexLocker lock(&m_mutex);
    m_signalled = true;
    m_cond.wakeAll();
}

bool ZBThread::wait_signal(unsigned long milliseconds)
{
    QMutexLocker lock(&m_mutex);
    if (!m_signalled)
        m_cond.wait(&m_mutex, milliseconds);
    bool was = m_signalled;
    m_signalled = false;
    return was;
}

} // namespace Tervalon
