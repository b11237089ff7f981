#include "LibComms/thread/zbthread.h"
#include "LibCore/error/zberror.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QThread>

#include <atomic>

using namespace Tervalon;

namespace {

class Threads : public Tervalon::Test::QuietErrors {};

// Waits until told to stop, counting its wake-ups; stops itself when destroyed.
class Waiter : public ZBThread {
public:
    ~Waiter() override { stop(); }
    void func() override
    {
        while (!stopping())
            if (wait_signal(1000))
                ++m_wakes;
    }
    std::atomic<int> m_wakes{0};
};

// Ends its run with an error record thrown, as a failing load would.
class Thrower : public ZBThread {
public:
    ~Thrower() override { stop(); }
    void func() override
    {
        ZBErrDetails details(ZBErrC_FileRead, ZBErrSev_Error);
        throw details;
    }
};

// Forgets to stop in its own destructor.
class Careless : public ZBThread {
public:
    void func() override
    {
        m_started = true;
        while (!stopping())
            wait_signal(1000);
    }
    std::atomic<bool> m_started{false};
};

} // namespace

TEST_F(Threads, AnErrorThrownInTheThreadBecomesItsStatus)
{
    Thrower thread;
    ASSERT_EQ(ZBErrC_ok, thread.start());
    thread.stop();
    EXPECT_EQ(ZBErrDetails::compute_combination(ZBErrC_FileRead, ZBErrSev_Error), thread.get_status());
    EXPECT_TRUE(iszberr(thread.get_status()));
    // The main thread's error stack is not the thread's to fill.
    EXPECT_EQ(nullptr, get_zberror().top());
}

TEST_F(Threads, StopEndsAWaitingBodyAndTheThreadCanRunAgain)
{
    Waiter thread;
    ASSERT_EQ(ZBErrC_ok, thread.start());
    EXPECT_TRUE(thread.is_running());
    thread.stop();
    EXPECT_FALSE(thread.is_running());
    EXPECT_EQ(ZBErrC_ok, thread.get_status());
    ASSERT_EQ(ZBErrC_ok, thread.start());
    EXPECT_TRUE(thread.is_running());
}

TEST_F(Threads, AThreadLeftRunningByItsOwnerIsReported)
{
    {
        Careless thread;
        ASSERT_EQ(ZBErrC_ok, thread.start());
        // Only a body already running can outlive its class's destructor at all.
        while (!thread.m_started)
            QThread::yieldCurrentThread();
    }
    ASSERT_NE(nullptr, get_zberror().top());
    EXPECT_EQ(ZBErrC_Assert, get_zberror().top()->get_code());
    EXPECT_NE(std::string::npos, get_zberror().top()->get_message().find("Assertion Failed"));
}
