#include "LibComms/thread/zbcondvar.h"
#include "LibComms/thread/zbmutex.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibComms/thread/zbthread.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QThread>

#include <atomic>

using namespace Tervalon;

namespace {

class Locks : public Tervalon::Test::QuietErrors {};

// Holds a mutex on another thread until told to let go.
class Holder : public ZBThread {
public:
    explicit Holder(ZBMutex& mutex) : m_mutex(mutex) {}
    ~Holder() override { stop_thread(); }
    int func() override
    {
        ZBMutexLocker guard(m_mutex);
        m_holding = true;
        while (!is_stopping())
            wait_signal(1000);
        return ZBErrC_ok;
    }
    ZBMutex& m_mutex;
    std::atomic<bool> m_holding{false};
};

// Counts under a mutex many times, to show that the lock keeps increments whole.
class Adder : public ZBThread {
public:
    Adder(ZBMutex& mutex, long& total) : m_mutex(mutex), m_total(total) {}
    ~Adder() override { stop_thread(); }
    int func() override
    {
        for (int i = 0; i < 20000; ++i) {
            ZBMutexLocker guard(m_mutex);
            ++m_total;
        }
        return ZBErrC_ok;
    }
    ZBMutex& m_mutex;
    long& m_total;
};

// Waits once on a condition and records whether it was signalled.
class Sleeper : public ZBThread {
public:
    explicit Sleeper(ZBCondVar& cond) : m_cond(cond) {}
    ~Sleeper() override { stop_thread(); }
    int func() override
    {
        m_waiting = true;
        m_woken = m_cond.wait_signal(-1);
        return ZBErrC_ok;
    }
    ZBCondVar& m_cond;
    std::atomic<bool> m_waiting{false};
    std::atomic<bool> m_woken{false};
};

void wait_for(const std::atomic<bool>& flag)
{
    while (!flag)
        QThread::yieldCurrentThread();
}

} // namespace

TEST_F(Locks, ALockerWithATimeoutOnABusyMutexGivesUpUnlocked)
{
    ZBMutex mutex;
    Holder holder(mutex);
    ASSERT_EQ(ZBErrC_ok, holder.start_thread());
    wait_for(holder.m_holding);
    QElapsedTimer clock;
    clock.start();
    {
        ZBMutexLocker locker(mutex, 100);
        EXPECT_FALSE(locker.is_locked());
    }
    EXPECT_GE(clock.elapsed(), 90);
    EXPECT_FALSE(mutex.try_lock(0));
    holder.stop_thread();
    // Released by the holder's scope: free again.
    ZBMutexLocker locker(mutex, 100);
    EXPECT_TRUE(locker.is_locked());
}

TEST_F(Locks, ALockerReleasesOnScopeEndAndOnSetMutex)
{
    ZBMutex first;
    ZBMutex second;
    {
        ZBMutexLocker locker(first);
        EXPECT_TRUE(locker.is_locked());
        EXPECT_FALSE(first.try_lock(0));
        locker.set_mutex(second);
        // The first is let go when the locker moves on.
        EXPECT_TRUE(first.try_lock(0));
        first.unlock();
        EXPECT_FALSE(second.try_lock(0));
    }
    EXPECT_TRUE(second.try_lock(0));
    second.unlock();
    ZBMutexLocker empty;
    EXPECT_FALSE(empty.is_locked());
}

TEST_F(Locks, ACopiedMutexIsANewFreeOne)
{
    ZBMutex original;
    original.lock();
    ZBMutex copy(original);
    EXPECT_TRUE(copy.try_lock(0));
    ZBMutex assigned;
    assigned = original;
    EXPECT_TRUE(assigned.try_lock(0));
    copy.unlock();
    assigned.unlock();
    original.unlock();
}

TEST_F(Locks, TheMutexKeepsConcurrentIncrementsWhole)
{
    ZBMutex mutex;
    long total = 0;
    Adder a(mutex, total);
    Adder b(mutex, total);
    ASSERT_EQ(ZBErrC_ok, a.start_thread());
    ASSERT_EQ(ZBErrC_ok, b.start_thread());
    a.wait_thread();
    b.wait_thread();
    EXPECT_EQ(40000, total);
}

TEST_F(Locks, ASignalSentBeforeTheWaitIsNotLost)
{
    ZBCondVar cond;
    cond.send_signal();
    EXPECT_TRUE(cond.wait_signal(0));
    // One wait takes it: the next one times out.
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(cond.wait_signal(50));
    EXPECT_GE(clock.elapsed(), 45);
}

TEST_F(Locks, ASignalWakesAThreadWaitingWithoutLimit)
{
    ZBCondVar cond;
    Sleeper sleeper(cond);
    ASSERT_EQ(ZBErrC_ok, sleeper.start_thread());
    wait_for(sleeper.m_waiting);
    cond.send_signal();
    sleeper.wait_thread();
    EXPECT_TRUE(sleeper.m_woken);
}

TEST_F(Locks, ACopiedConditionIsNotSignalled)
{
    ZBCondVar cond;
    cond.send_signal();
    ZBCondVar copy(cond);
    EXPECT_FALSE(copy.wait_signal(0));
    EXPECT_TRUE(cond.wait_signal(0));
}
