#pragma once

#include "LibComms/thread/zbcondvar.h"
#include "LibComms/thread/zbmutex.h"

#include <QThread>

#include <atomic>

namespace Tervalon {

class ZBObject;

// A thread whose body is the virtual func(), or a stored function called with
// a stored object. The body waits with wait_signal() and ends when
// is_stopping() turns true; stop_thread() asks it to and waits.
//
// A derived class stops the thread in its own destructor: by the time this
// base's destructor runs, the derived part that func() works on is gone. The
// base reports a thread still running then as an assertion failure (and
// still waits for it, which is the least harm it can do).
//
// The error stack belongs to the main thread: a ZBErrDetails that leaves
// func() is caught and its value kept as the thread's status, never thrown on.
class ZBThread : public QThread {
public:
    enum E_ThreadPriority {
        E_IdlePriority = QThread::IdlePriority,
        E_LowestPriority = QThread::LowestPriority,
        E_LowPriority = QThread::LowPriority,
        E_NormalPriority = QThread::NormalPriority,
        E_HighPriority = QThread::HighPriority,
        E_HighestPriority = QThread::HighestPriority,
        E_TimeCriticalPriority = QThread::TimeCriticalPriority,
        E_InheritPriority = QThread::InheritPriority
    };
    typedef int (*ThreadFunction)(ZBObject*);

    // How long stop_thread waits for a body that allowed forced cancellation
    // before it ends it the hard way.
    static constexpr int C_StopGraceMs = 5000;

    ZBThread();
    ZBThread(ZBObject* object, ThreadFunction function);
    ~ZBThread() override;
    ZBThread(const ZBThread&) = delete;
    ZBThread& operator=(const ZBThread&) = delete;

    // The body; the base calls the stored function, if any, with its object.
    virtual int func();

    int start_thread(E_ThreadPriority priority = E_NormalPriority);
    // Asks the body to stop, wakes it and waits for it to end.
    void stop_thread();
    // Waits, with no limit, for the body to end.
    void wait_thread();
    bool is_running() const { return isRunning(); }
    // ZBErrC_ok, or the result of the last run of func(), or the value of the
    // ZBErrDetails that ended it.
    int get_status() const { return m_status.load(); }
    void mark_stop() { m_stop = true; }
    bool is_stopping() const { return m_stop.load(); }
    // The calling thread's number, 0 for any thread that is not a ZBThread
    // (the main thread among them).
    static int thread_id();
    int get_thread_id() const { return m_threadId; }
    // Called by a body that holds nothing shared: stop_thread may then end it
    // by force once the grace time has passed.
    void allow_forced_cancellation();
    void set_stop_grace(int milliseconds) { m_stopGraceMs = milliseconds; }
    // Runs function(object) on a new thread, which the caller owns and deletes.
    static ZBThread* run_function(ZBObject* object, ThreadFunction function,
                                  E_ThreadPriority priority = E_NormalPriority);

    // Wakes the body if it waits, or ends its next wait at once.
    void signal_thread() { m_wake.send_signal(); }
    // Waits for signal_thread() or the time-out; true when signalled.
    bool wait_signal(int milliseconds) { return m_wake.wait_signal(milliseconds); }

    static int ZBErrC_ThreadStart;

protected:
    void run() override;

private:
    std::atomic<int> m_status;
    std::atomic<bool> m_stop;
    std::atomic<bool> m_cancellable;
    int m_stopGraceMs = C_StopGraceMs;
    // Start and stop come from the owner's thread, but a stop from a second
    // thread must not race a start.
    ZBMutex m_mutex;
    ZBCondVar m_wake;
    const int m_threadId;
    ZBObject* m_object;
    ThreadFunction m_function;
};

} // namespace Tervalon
