#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandler.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using namespace Tervalon;

namespace {

// Records the order of calls into a shared journal; can consume.
class Recorder : public ZBErrHandler {
public:
    Recorder(const std::string& name, std::vector<std::string>& journal, bool immediate, bool intermediate, bool delayed,
             bool consume = false)
        : ZBErrHandler(immediate, intermediate, delayed, true), m_name(name), m_journal(journal), m_consume(consume)
    {
    }
    int handle(ZBErrDetails& details) override
    {
        m_journal.push_back(m_name + ":" + details.get_details(ZBErrAsp_System));
        return m_consume ? ZBErrC_okHandled : details.get_value();
    }
    void log(ZBErrDetails& details) override { m_journal.push_back(m_name + " log:" + details.get_details(ZBErrAsp_System)); }

private:
    std::string m_name;
    std::vector<std::string>& m_journal;
    bool m_consume;
};

class ErrorHandlers : public ::testing::Test {
protected:
    void SetUp() override
    {
        set_zberror(new ZBError());
        get_zberror().set_stream(nullptr, ZBErrSev_All);
    }
    void TearDown() override { set_zberror(new ZBError()); }
    std::vector<std::string> journal;
};

} // namespace

TEST_F(ErrorHandlers, LastAddedRunsFirstAndConsumingStopsTheRest)
{
    get_zberror().add_handler(new Recorder("first", journal, true, false, false));
    get_zberror().add_handler(new Recorder("second", journal, true, false, false, true));
    get_zberror().add_handler(new Recorder("third", journal, true, false, false));
    zberror(ZBErrC_Error, ZBLOC, "x");
    EXPECT_EQ(journal, (std::vector<std::string>{"third:x", "second:x"}));
    EXPECT_EQ(get_zberror().get_nerrors(), 0);
    EXPECT_EQ(zberrorvalue(), 0);
}

TEST_F(ErrorHandlers, DelayedHandlerSeesEachRecordOnceWhenHandled)
{
    get_zberror().add_handler(new Recorder("now", journal, true, false, false));
    get_zberror().add_handler(new Recorder("later", journal, false, false, true));
    int value = zberror(ZBErrC_Error, ZBLOC, "once");
    EXPECT_EQ(journal, (std::vector<std::string>{"now:once"}));
    zbhandle_error(value, 2);
    EXPECT_EQ(journal, (std::vector<std::string>{"now:once", "later:once"}));
}

TEST_F(ErrorHandlers, IntermediateHandlerIsCalledOnEveryPass)
{
    get_zberror().add_handler(new Recorder("mid", journal, false, true, false));
    int value = zbwarning(ZBErrC_Error, ZBLOC, "w");
    zbusererror_handle(false);
    zbhandle_error(value, 2);
    EXPECT_EQ(journal.size(), 3u);
}

TEST_F(ErrorHandlers, DisabledAndRemovedHandlersAreSkipped)
{
    Recorder* off = new Recorder("off", journal, true, true, true);
    off->set_enabled(false);
    get_zberror().add_handler(off);
    Recorder* gone = new Recorder("gone", journal, true, true, true);
    get_zberror().add_handler(gone);
    get_zberror().remove_handler(gone);
    zberror(ZBErrC_Error, ZBLOC, "x");
    EXPECT_TRUE(journal.empty());
    EXPECT_EQ(get_zberror().get_nhandlers(), 1);
}

TEST_F(ErrorHandlers, LogReportsReachEveryHandlerLog)
{
    get_zberror().add_handler(new Recorder("a", journal, true, false, false));
    get_zberror().add_handler(new Recorder("b", journal, false, false, true));
    zblog(ZBLOC, "noted");
    EXPECT_EQ(journal, (std::vector<std::string>{"b log:noted", "a log:noted"}));
}

TEST_F(ErrorHandlers, SeverityStreamGetsTheFormattedRecordUnlessConsumed)
{
    std::ostringstream out;
    get_zberror().set_stream(&out, ZBErrSev_Error);
    zbwarning(ZBErrC_FileRead, ZBLOC, "quiet");
    EXPECT_TRUE(out.str().empty());
    zberror(ZBErrC_FileRead, "f.cpp:3", "loud");
    EXPECT_NE(out.str().find("(ZBErrC_FileRead) at "), std::string::npos);
    EXPECT_NE(out.str().find("  Location: f.cpp:3"), std::string::npos);
}

TEST_F(ErrorHandlers, CommandLineSetupWritesOneLineOnceAtTheTop)
{
    std::ostringstream err;
    get_zberror().setup_cli(&err);
    int value = zberror(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s\nbecause it is locked", "/tmp/a b.zbd");
    value = zbpass(ZBLOC);
    EXPECT_TRUE(err.str().empty());
    EXPECT_EQ(zbhandle_error(value, 3), 3);
    EXPECT_EQ(err.str(), "Error: Could not open the file /tmp/a b.zbd; because it is locked\n");
    EXPECT_EQ(zb_exit_status(value), 1);
    // Logging stays off the terminal.
    zblog(ZBLOC, "chatter");
    EXPECT_EQ(err.str(), "Error: Could not open the file /tmp/a b.zbd; because it is locked\n");
}

TEST_F(ErrorHandlers, DefaultStreamHandlerWritesTheUsersText)
{
    std::ostringstream out;
    get_zberror().add_handler(new ZBErrHandlerStream(&out, true, false, false, true));
    zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The amount must be a number.");
    EXPECT_EQ(out.str(), "The amount must be a number.\n");
}

TEST_F(ErrorHandlers, DialogHookGetsTheRecordWithTheCallersFloor)
{
    static int shownSeverity = -1;
    static std::string shownText;
    ZBError::set_errorui_fn([](const ZBErrDetails& details, int severity) {
        shownSeverity = severity;
        shownText = details.get_details(ZBErrAsp_System);
    });
    get_zberror().set_errorui(true);
    int value = zbwarning(ZBErrC_FileRead, ZBLOC, "start failed");
    zbhandle_error(value, 3);
    EXPECT_EQ(shownSeverity, 3);
    EXPECT_EQ(shownText, "start failed");
    value = zberror(ZBErrC_FileRead, ZBLOC, "in a slot");
    zbhandle_error(value, 2);
    EXPECT_EQ(shownSeverity, 3);
    ZBError::set_errorui_fn(nullptr);
}
