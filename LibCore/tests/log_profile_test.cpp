#include "LibCore/error/zberror.h"
#include "LibCore/log/zbdebug.h"
#include "LibCore/log/zbdebugscope.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/log/zblog.h"
#include "LibCore/time/zbmoment.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

using namespace Tervalon;

namespace {

long long g_clock = 0;
long long test_clock()
{
    return g_clock;
}

class LogAndProfile : public ::testing::Test {
protected:
    void SetUp() override
    {
        set_zberror(new ZBError());
        get_zberror().set_stream(nullptr, ZBErrSev_All);
        ZBMoment::set_fixed_now(ZBMoment(1700000000000000LL));
        g_clock = 0;
        ZBDebug::set_clock(test_clock);
    }
    void TearDown() override
    {
        ZBMoment::clear_fixed_now();
        ZBDebug::set_clock(nullptr);
        ZBDebug::delete_instance();
        set_zberror(new ZBError());
    }
};

int count_lines(const std::string& text)
{
    int n = 0;
    for (char c : text)
        n += c == '\n';
    return n;
}

} // namespace

TEST_F(LogAndProfile, NamedLogLivesInTheCacheDirectoryUnderItsName)
{
    ZBLog log;
    std::string path = log.get_log_path(ZBLog::C_CloudLog);
    EXPECT_EQ(path, Tervalon::Test::scratch_dir() + "/cache/Tervalon/TervalonDiaryTest/logs/cloud.log");
    // A name cannot lead out of the log directory.
    EXPECT_EQ(zb_dirname(log.get_log_path("../../etc/passwd")), zb_dirname(path));
}

TEST_F(LogAndProfile, LinesCarryTheTimeAndStayOneEntryPerLine)
{
    ZBLog log;
    log.set_base_dir(Tervalon::Test::make_temp_dir("namedlog"));
    EXPECT_EQ(log.log("sync", "pushed 3 files"), ZBErrC_ok);
    log.log("sync", "two\nlines");
    EXPECT_EQ(log.read("sync"), "14/Nov/2023 22:13:20: pushed 3 files\n14/Nov/2023 22:13:20: two\n    lines\n");
    EXPECT_EQ(log.read("never-written"), "");
}

TEST_F(LogAndProfile, RotationKeepsTheNewestLinesAfterHalfAnHour)
{
    ZBLog log;
    log.set_base_dir(Tervalon::Test::make_temp_dir("rotate"));
    for (int i = 0; i < ZBLog::C_KeepLines + 500; ++i)
        log.log("busy", "line " + std::to_string(i));
    EXPECT_EQ(count_lines(log.read("busy")), ZBLog::C_KeepLines + 500);
    ZBMoment::set_fixed_now(ZBMoment(1700000000000000LL + 1800LL * 1000000));
    log.log("busy", "after rotation");
    std::string text = log.read("busy");
    EXPECT_EQ(count_lines(text), ZBLog::C_KeepLines + 1);
    EXPECT_EQ(text.find(": line 499\n"), std::string::npos);
    EXPECT_NE(text.find(": line 500\n"), std::string::npos);
}

TEST_F(LogAndProfile, UnwritableLogWarnsTheUserOnce)
{
    ZBLog log;
    std::string dir = Tervalon::Test::make_temp_dir("blocked");
    Tervalon::Test::write_file(dir + "/logs", "a file where the directory should be");
    log.set_base_dir(dir);
    int value = log.log("x", "lost");
    EXPECT_EQ(ZBErrDetails::compute_severity(value), 1);
    EXPECT_NE(get_zberror().top()->get_message().find("Could not open the log file "), std::string::npos);
    EXPECT_FALSE(iszbwarn(log.log("x", "lost again")));
    EXPECT_EQ(get_zberror().get_nerrors(), 1);
}

TEST_F(LogAndProfile, ProfileSplitsOwnAndTotalTimeAndCountsRecursionOnce)
{
    ZBDebug& debug = zbdebug();
    {
        ZBDebugScope outer("recalculate");
        g_clock += 100;
        {
            ZBDebugScope inner("allocate");
            g_clock += 300;
            {
                ZBDebugScope again("allocate");
                g_clock += 50;
            }
        }
        g_clock += 10;
    }
    const ZBProfileEntry* recalc = debug.get_entry("recalculate");
    const ZBProfileEntry* alloc = debug.get_entry("allocate");
    ASSERT_TRUE(recalc && alloc);
    EXPECT_EQ(recalc->m_calls, 1);
    EXPECT_EQ(recalc->m_total, 460);
    EXPECT_EQ(recalc->m_own, 110);
    EXPECT_EQ(alloc->m_calls, 2);
    EXPECT_EQ(alloc->m_total, 350);
    EXPECT_EQ(alloc->m_own, 350);
    EXPECT_EQ(alloc->m_callers.at("recalculate"), 1);
    EXPECT_EQ(alloc->m_callers.at("allocate"), 1);
    EXPECT_EQ(recalc->m_callees.at("allocate"), 1);
    EXPECT_EQ(debug.get_depth(), 0);
}

TEST_F(LogAndProfile, ProfileTableAndTracing)
{
    ZBDebug& debug = zbdebug();
    std::ostringstream trace;
    debug.set_trace_stream(&trace);
    debug.set_tracing(true);
    debug.enter_function("save", false, true);
    g_clock += 2500000;
    debug.leave_function();
    debug.enter_function("helper", true, false);
    debug.leave_function();
    EXPECT_EQ(trace.str(), "---- save (2)\n");
    EXPECT_EQ(debug.get_entry("helper"), nullptr);
    std::string path = Tervalon::Test::make_temp_dir("perf") + "/TervalonDiary_performance.log";
    EXPECT_EQ(debug.display_profile(path), ZBErrC_ok);
    std::string text = Tervalon::Test::read_file(path);
    EXPECT_NE(text.find("| Function                                          |   N |     Own |   Total |\n"), std::string::npos);
    EXPECT_NE(text.find("| save                                              |   1 | 2.50000 | 2.50000 |\n"), std::string::npos);
}

TEST_F(LogAndProfile, OtherThreadsKeepTheirOwnChain)
{
    ZBDebug& debug = zbdebug();
    debug.enter_function("main work", false, true);
    std::thread worker([&debug] {
        debug.enter_function("background", false, true);
        debug.leave_function();
    });
    worker.join();
    EXPECT_EQ(debug.get_depth(), 1);
    debug.leave_function();
    EXPECT_EQ(debug.get_entry("background"), nullptr);
    EXPECT_NE(debug.get_entry("main work"), nullptr);
    std::ostringstream out;
    debug.write_profile(out);
    EXPECT_NE(out.str().find("background"), std::string::npos);
}
