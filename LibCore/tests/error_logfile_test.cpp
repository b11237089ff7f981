#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandlerlogfile.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

int count_lines(const std::string& text)
{
    int n = 0;
    for (char c : text)
        n += c == '\n';
    return n;
}

class ErrorLogfile : public ::testing::Test {
protected:
    void SetUp() override
    {
        set_zberror(new ZBError());
        get_zberror().set_stream(nullptr, ZBErrSev_All);
        get_zberror().set_deftime(1700000000000000LL);
        dir = Tervalon::Test::make_temp_dir("errlog");
        path = dir + "/TervalonDiary_error.log";
    }
    void TearDown() override { set_zberror(new ZBError()); }
    std::string dir;
    std::string path;
};

} // namespace

TEST_F(ErrorLogfile, RecordFormatHasCodeNameTimeAndLabelledParts)
{
    get_zberror().add_handler(new ZBErrHandlerLogfile(path, true, false, false, true));
    zberror(ZBErrC_FileOpen, "a.cpp:1", "Could not open %s", "x.zbd");
    zbpass("b.cpp:2");
    std::ostringstream expected;
    expected << "==================\n"
             << " ZBError Code " << ZBErrC_FileOpen << "(ZBErrC_FileOpen) at 14/Nov/2023 22:13:20.000000\n"
             << "Could not open x.zbd\n"
             << "  Location: a.cpp:1\n";
    // The record is written as reported; later locations are not in the log.
    EXPECT_EQ(Tervalon::Test::read_file(path), expected.str());
}

TEST_F(ErrorLogfile, LogLinesAndUserWarnings)
{
    get_zberror().add_handler(new ZBErrHandlerLogfile(path, true, false, false, true));
    zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "shown to the user, not logged");
    zblog("c.cpp:3", "saved %d objects", 12);
    EXPECT_EQ(Tervalon::Test::read_file(path), "==================\nLog: 14/Nov/2023 22:13:20.000000 c.cpp:3 saved 12 objects\n");
}

TEST_F(ErrorLogfile, StaysAtTheCapPlusTheNewRecord)
{
    std::string old;
    for (int i = 0; i < 250; ++i)
        old += "old line " + std::to_string(i) + "\n";
    Tervalon::Test::write_file(path, old);
    get_zberror().add_handler(new ZBErrHandlerLogfile(path, true, false, false, true));
    zberror(ZBErrC_Error, "d.cpp:4", "newest");
    std::string text = Tervalon::Test::read_file(path);
    EXPECT_EQ(count_lines(text), 100 + 4);
    EXPECT_EQ(text.find("old line 149\n"), std::string::npos);
    EXPECT_EQ(text.rfind("old line 150\n", 0), 0u);
    EXPECT_NE(text.find("newest\n  Location: d.cpp:4\n"), std::string::npos);
    // Many reports later the file is still bounded.
    for (int i = 0; i < 200; ++i)
        zberror(ZBErrC_Error, "d.cpp:5", "again");
    EXPECT_LE(count_lines(Tervalon::Test::read_file(path)), 100 + 4);
}

TEST_F(ErrorLogfile, UnwritableLogDoesNotStopReporting)
{
    const std::string blocked = dir + "/file-not-dir";
    Tervalon::Test::write_file(blocked, "x");
    ZBErrHandlerLogfile* handler = new ZBErrHandlerLogfile(blocked + "/error.log", true, false, false, true);
    get_zberror().add_handler(handler);
    int value = zberror(ZBErrC_Error, ZBLOC, "still reported");
    EXPECT_TRUE(iszberr(value));
    EXPECT_FALSE(handler->is_writable());
    EXPECT_EQ(get_zberror().get_nerrors(), 1);
}

TEST_F(ErrorLogfile, ForeignBytesAreWrittenAsUtf8)
{
    get_zberror().add_handler(new ZBErrHandlerLogfile(path, true, false, false, true));
    zberror(ZBErrC_Error, ZBLOC, "caf\xE9");
    EXPECT_NE(Tervalon::Test::read_file(path).find("caf\xC3\xA9\n"), std::string::npos);
}
