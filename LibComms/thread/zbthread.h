#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <memory>

namespace Tervalon {

// A thread whose body is the virtual func(). The body waits on wait_signal()
// and ends when stopping() turns true; stop() asks it to and waits.
//
// A derived class stops the thread in its own destructor: by the time this
// base's destructor runs, the derived part that func() works on is gone. The
// base reports a thread still running then as an assertion failure (and
// still waits for it, which is the least harm it can do).
//
// The error stack belongs to the main thread: a ZBErrDetails that leaves
// func() is caught and its value kept as the thread's status, never thrown on.
class ZBThread {
public:
    ZBThread();
    virtual ~ZBThread();

    virtual void func() = 0;

    int start(int priority = 0);
    void stop();
    bool is_running() const;
    bool stopping() const { return m_stop.load(); }
    // Wakes the body if it waits.
    void signal();
    // Waits for signal() or the time-out; true when signalled.
    bool wait_signal(unsigned long milliseconds);
    // ZBErrC_ok, or the value of the ZBErrDetails that ended the last run of func().
    int get_status() const { return m_status.load(); }

    static int ZBErrC_ThreadStart;

private:
    class Runner;
    std::unique_ptr<Runner> m_runner;
    std::atomic<bool> m_stop;
    std::atomic<int> m_status;
    QMutex m_mutex;
    QWaitCondition m_cond;
    bool m_signalled;
};

} // namespace Tervalon
