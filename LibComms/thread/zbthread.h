#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <memory>

namespace Tervalon {

// A thread whose body is the virtual func(). The body waits on wait_signal()
// and ends when stopping() turns true; stop() asks it to and waits.
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

    static int ZBErrC_ThreadStart;

private:
    class Runner;
    std::unique_ptr<Runner> m_runner;
    std::atomic<bool> m_stop;
    QMutex m_mutex;
    QWaitCondition m_cond;
    bool m_signalled;
};

} // namespace Tervalon
