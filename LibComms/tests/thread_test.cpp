#include "LibComms/thread/zbthread.h"
#include "LibCore/error/zberror.h"
#include "LibCore/log/zbdebug.h"
#include "LibObject/object/zbobject.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QThread>

#include <atomic>
#include <memory>

using namespace Tervalon;

namespace {

class Threads : public Tervalon::Test::QuietErrors {};

// Waits until told to stop, counting its wake-ups; stops itself when destroyed.
class Waiter : public ZBThread {
public:
    ~Waiter() override { stop_thread(); }
    int func() override
    {
        m_seenId = thread_id();
        m_started = true;
        while (!is_stopping())
            if (wait_signal(1000))
                ++m_wakes;
        return m_result;
    }
    std::atomic<int> m_wakes{0};
    std::atomic<int> m_seenId{-1};
    std::atomic<bool> m_started{false};
    int m_result = ZBErrC_ok;
};

// Ends its run with an error record thrown, as a failing load would.
class Thrower : public ZBThread {
public:
    ~Thrower() override { stop_thread(); }
    int func() override
    {
        ZBErrDetails details(ZBErrC_FileRead, ZBErrSev_Error);
        throw details;
    }
};

// Forgets to stop in its own destructor.
class Careless : public ZBThread {
public:
    int func() override
    {
        m_started = true;
        while (!is_stopping())
            wait_signal(1000);
        return ZBErrC_ok;
    }
    std::atomic<bool> m_started{false};
};

// Never looks at the stop flag, but says it may be ended by force.
class Stubborn : public ZBThread {
public:
    ~Stubborn() override { stop_thread(); }
    int func() override
    {
        allow_forced_cancellation();
        m_started = true;
        for (;;)
            QThread::msleep(10);
    }
    std::atomic<bool> m_started{false};
};

void wait_started(const std::atomic<bool>& started)
{
    while (!started)
        QThread::yieldCurrentThread();
}

std::atomic<int> g_calls{0};
int count_call(ZBObject* object)
{
    ++g_calls;
    return object ? ZBErrC_ok : ZBErrDetails::compute_combination(ZBErrC_NullPointer, ZBErrSev_Warning);
}

} // namespace

TEST_F(Threads, AnErrorThrownInTheThreadBecomesItsStatus)
{
    Thrower thread;
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    thread.wait_thread();
    EXPECT_EQ(ZBErrDetails::compute_combination(ZBErrC_FileRead, ZBErrSev_Error), thread.get_status());
    EXPECT_TRUE(iszberr(thread.get_status()));
    // The main thread's error stack is not the thread's to fill.
    EXPECT_EQ(nullptr, get_zberror().top());
}

TEST_F(Threads, TheBodysResultBecomesTheStatusAndAStartClearsIt)
{
    Waiter thread;
    thread.m_result = ZBErrDetails::compute_combination(ZBErrC_FileRead, ZBErrSev_Warning);
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    thread.stop_thread();
    EXPECT_EQ(thread.m_result, thread.get_status());
    thread.m_result = ZBErrC_ok;
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    EXPECT_EQ(ZBErrC_ok, thread.get_status());
}

TEST_F(Threads, StopEndsAWaitingBodyAndTheThreadCanRunAgain)
{
    Waiter thread;
    ASSERT_EQ(ZBErrC_ok, thread.start_thread(ZBThread::E_LowPriority));
    EXPECT_TRUE(thread.is_running());
    thread.stop_thread();
    EXPECT_FALSE(thread.is_running());
    // The flag is the body's to see; once it has ended the thread is not stopping.
    EXPECT_FALSE(thread.is_stopping());
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    EXPECT_TRUE(thread.is_running());
    // Starting a running thread leaves it be.
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
}

TEST_F(Threads, MarkStopAndASignalEndTheBodyCooperatively)
{
    Waiter thread;
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    wait_started(thread.m_started);
    thread.signal_thread();
    thread.mark_stop();
    EXPECT_TRUE(thread.is_stopping());
    thread.signal_thread();
    thread.wait_thread();
    EXPECT_FALSE(thread.is_running());
    EXPECT_GE(thread.m_wakes.load(), 1);
}

TEST_F(Threads, EachThreadKnowsItsOwnNumberAndTheMainThreadIsZero)
{
    EXPECT_EQ(0, ZBThread::thread_id());
    EXPECT_EQ(0, ZBDebug::current_thread_id());
    Waiter first;
    Waiter second;
    EXPECT_NE(first.get_thread_id(), second.get_thread_id());
    EXPECT_GT(first.get_thread_id(), 0);
    ASSERT_EQ(ZBErrC_ok, first.start_thread());
    ASSERT_EQ(ZBErrC_ok, second.start_thread());
    wait_started(first.m_started);
    wait_started(second.m_started);
    EXPECT_EQ(first.get_thread_id(), first.m_seenId.load());
    EXPECT_EQ(second.get_thread_id(), second.m_seenId.load());
    EXPECT_EQ(0, ZBThread::thread_id());
}

TEST_F(Threads, AThreadLeftRunningByItsOwnerIsReported)
{
    {
        Careless thread;
        ASSERT_EQ(ZBErrC_ok, thread.start_thread());
        // Only a body already running can outlive its class's destructor at all.
        wait_started(thread.m_started);
    }
    ASSERT_NE(nullptr, get_zberror().top());
    EXPECT_EQ(ZBErrC_Assert, get_zberror().top()->get_code());
    EXPECT_NE(std::string::npos, get_zberror().top()->get_message().find("Assertion Failed"));
}

TEST_F(Threads, ABodyThatAllowsItIsEndedByForceWhenItIgnoresTheStop)
{
    Stubborn thread;
    thread.set_stop_grace(50);
    ASSERT_EQ(ZBErrC_ok, thread.start_thread());
    wait_started(thread.m_started);
    thread.stop_thread();
    EXPECT_FALSE(thread.is_running());
}

TEST_F(Threads, RunFunctionCallsTheFunctionWithItsObjectOnANewThread)
{
    ZBObject object;
    g_calls = 0;
    std::unique_ptr<ZBThread> thread(ZBThread::run_function(&object, &count_call));
    ASSERT_NE(nullptr, thread);
    thread->wait_thread();
    EXPECT_EQ(1, g_calls.load());
    EXPECT_EQ(ZBErrC_ok, thread->get_status());

    std::unique_ptr<ZBThread> failing(ZBThread::run_function(nullptr, &count_call, ZBThread::E_HighPriority));
    ASSERT_NE(nullptr, failing);
    failing->wait_thread();
    EXPECT_TRUE(iszbwarn(failing->get_status()));
    EXPECT_EQ(nullptr, get_zberror().top());
}
