#include "LibComms/thread/zbthread.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibCore/error/zberror.h"
#include "LibCore/log/zbdebug.h"

namespace Tervalon {

int ZBThread::ZBErrC_ThreadStart = ZBError::allocate_code("ZBErrC_ThreadStart", "Could not start a new thread.");

namespace {

// Each thread object gets the next number; 0 is left for threads that are not ZBThreads.
std::atomic<int> g_nextThreadId{1};
thread_local int t_threadId = 0;

// The profiler keeps one chain per thread, told apart by these numbers.
const bool g_profilerKnowsThreads = [] {
    ZBDebug::set_thread_fn(&ZBThread::thread_id);
    return true;
}();

} // namespace

ZBThread::ZBThread() : ZBThread(nullptr, nullptr) {}

ZBThread::ZBThread(ZBObject* object, ThreadFunction function)
    : m_status(ZBErrC_ok), m_stop(false), m_cancellable(false), m_threadId(g_nextThreadId++), m_object(object),
      m_function(function)
{
    (void)g_profilerKnowsThreads;
}

ZBThread::~ZBThread()
{
    // A stored function lives as long as this base does; any other body was
    // the derived class's to stop.
    if (isRunning() && !m_function) {
        try {
            zbassert_failed("the thread was stopped by its owner's destructor", ZBLOC);
        } catch (const ZBErrDetails&) {
            // A destructor must not throw; the record is on the stack.
        }
    }
    stop_thread();
}

int ZBThread::func()
{
    return m_function ? m_function(m_object) : ZBErrC_ok;
}

void ZBThread::run()
{
    t_threadId = m_threadId;
    // Ending a body by force is safe only once it says so.
    setTerminationEnabled(m_cancellable.load());
    int status = ZBErrC_ok;
    try {
        status = func();
    } catch (const ZBErrDetails& details) {
        status = details.get_value();
    }
    m_status = status;
    m_stop = false;
    // What the body wrote is seen by whoever waits for it to end.
    ZB_HINT_RELEASE(this);
}

int ZBThread::start_thread(E_ThreadPriority priority)
{
    ZBMutexLocker guard(m_mutex);
    if (isRunning())
        return ZBErrC_ok;
    // A finished body may still be leaving run(); it must be gone before a new one starts.
    wait();
    ZB_HINT_ACQUIRE(this);
    m_stop = false;
    m_status = ZBErrC_ok;
    start(QThread::Priority(priority));
    if (!isRunning() && !isFinished())
        return zberror(ZBErrC_ThreadStart, ZBLOC, "Could not start a new thread.");
    return ZBErrC_ok;
}

void ZBThread::stop_thread()
{
    ZBMutexLocker guard(m_mutex);
    if (isRunning()) {
        mark_stop();
        signal_thread();
        if (m_cancellable && !wait(m_stopGraceMs)) {
            terminate();
        }
        wait();
        ZB_HINT_ACQUIRE(this);
    }
    m_stop = false;
}

void ZBThread::wait_thread()
{
    wait();
    ZB_HINT_ACQUIRE(this);
}

int ZBThread::thread_id()
{
    return t_threadId;
}

void ZBThread::allow_forced_cancellation()
{
    m_cancellable = true;
    if (QThread::currentThread() == this)
        setTerminationEnabled(true);
}

ZBThread* ZBThread::run_function(ZBObject* object, ThreadFunction function, E_ThreadPriority priority)
{
    ZBThread* thread = new ZBThread(object, function);
    if (iszbwarn(thread->start_thread(priority))) {
        delete thread;
        return nullptr;
    }
    return thread;
}

} // namespace Tervalon
