// Reports made on two threads at once: each thread sees its own records, the
// handlers see every record once, and the words of one report never reach
// the other thread's.
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandler.h"

#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace Tervalon;

namespace {

class ErrorThreads : public Tervalon::Test::QuietErrors {};

// Counts what it is asked to see, with no lock of its own, as a log file
// handler writes; leaves every record on the stack.
class CountingHandler : public ZBErrHandler {
public:
    CountingHandler() : ZBErrHandler(true, false, false, false) {}
    int handle(ZBErrDetails& details) override
    {
        ++m_seen;
        return details.get_value();
    }
    int m_seen = 0;
};

// Reports count warnings, each time checking that the newest record is its
// own; returns how many times it found another thread's words on top.
int report_and_check(const char* who, int count)
{
    const int held = get_zberror().get_nerrors();
    int wrong = 0;
    for (int i = 0; i < count; ++i) {
        const int value = i % 2 ? zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s %d", who, i)
                                : zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s %d", who, i);
        const ZBErrDetails* top = get_zberror().top();
        const std::string expected = std::string(who) + " " + std::to_string(i);
        if (!iszbwarn(value) || !top || top->get_message() != expected
            || top->get_details(ZBErrAsp_System) != expected)
            ++wrong;
        if (get_zberror().get_nerrors() != held + 1)
            ++wrong;
        get_zberror().clear_last_error();
    }
    return wrong;
}

} // namespace

TEST_F(ErrorThreads, EachThreadKeepsItsOwnRecords)
{
    CountingHandler* counter = new CountingHandler();
    get_zberror().add_handler(counter);

    zberror(ZBErrC_FileOpen, ZBLOC, "main thread's own");
    int backgroundWrong = -1;
    int backgroundLeft = -1;
    std::thread background([&] {
        // A thread starts with nothing on its stack, whatever the main one holds.
        backgroundLeft = get_zberror().get_nerrors();
        backgroundWrong = report_and_check("background", 2000);
        zbwarning(ZBErrC_InvalidValue, ZBLOC, "left behind");
    });
    const int mainWrong = report_and_check("main", 2000);
    background.join();

    EXPECT_EQ(backgroundLeft, 0);
    EXPECT_EQ(backgroundWrong, 0);
    EXPECT_EQ(mainWrong, 0);
    // The background thread's last warning stayed with it.
    ASSERT_EQ(get_zberror().get_nerrors(), 1);
    EXPECT_EQ(get_zberror().top()->get_message(), "main thread's own");
    EXPECT_EQ(counter->m_seen, 4002);
    get_zberror().remove_handler(counter);
    delete counter;
}

TEST_F(ErrorThreads, ANewErrorStateStartsEveryThreadEmpty)
{
    zbwarning(ZBErrC_InvalidValue, ZBLOC, "before");
    ASSERT_EQ(get_zberror().get_nerrors(), 1);
    set_zberror(new ZBError());
    get_zberror().set_stream(nullptr, ZBErrSev_All);
    EXPECT_EQ(get_zberror().get_nerrors(), 0);
    EXPECT_EQ(get_zberror().top(), nullptr);
}
