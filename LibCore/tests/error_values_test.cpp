#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandler.h"

#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

// Each test starts with a fresh, quiet error state.
class ErrorValues : public Tervalon::Test::QuietErrors {};

} // namespace

TEST_F(ErrorValues, PackingRoundTripsAndOutOfRangeValuesAreSeverityZero)
{
    int value = ZBErrDetails::compute_combination(ZBErrC_FileOpen, 3);
    EXPECT_EQ(ZBErrDetails::compute_severity(value), 3);
    EXPECT_EQ(ZBErrDetails::compute_code(value), ZBErrC_FileOpen);
    EXPECT_EQ(ZBErrDetails::compute_severity(499999), 4);
    EXPECT_EQ(ZBErrDetails::compute_severity(500000), 0);
    EXPECT_EQ(ZBErrDetails::compute_code(500000), -1);
    EXPECT_FALSE(iszbwarn(500000));
}

TEST_F(ErrorValues, BareCodesAreNotFailuresOnlyReportedValuesAre)
{
    EXPECT_FALSE(iszberr(ZBErrC_FileOpen));
    EXPECT_FALSE(iszbwarn(ZBErrC_FileOpen));
    int err = zberror(ZBErrC_FileOpen, ZBLOC, "Could not open %s", "x");
    EXPECT_TRUE(iszberr(err));
    EXPECT_EQ(ZBErrDetails::compute_code(err), ZBErrC_FileOpen);
    int warn = zbwarning(ZBErrC_FileOpen, ZBLOC, "w");
    EXPECT_TRUE(iszbwarn(warn));
    EXPECT_FALSE(iszberr(warn));
    int user = zbwarnuser(ZBErrC_FileOpen, ZBLOC, "u");
    EXPECT_EQ(ZBErrDetails::compute_severity(user), 1);
    EXPECT_EQ(get_zberror().top()->get_message(), "u");
}

TEST_F(ErrorValues, NegativeValueAsksTheCurrentError)
{
    EXPECT_FALSE(iszbwarn(-1));
    EXPECT_FALSE(iszberr(-1));
    EXPECT_EQ(zberrorvalue(), 0);
    zberror(ZBErrC_InvalidValue, ZBLOC, "bad");
    EXPECT_TRUE(iszberr(-1));
    EXPECT_EQ(zberrorvalue(), ZBErrDetails::compute_combination(ZBErrC_InvalidValue, 3));
}

TEST_F(ErrorValues, CoreTableKeepsItsOrderAndTexts)
{
    EXPECT_EQ(ZBErrC_ok, 0);
    EXPECT_EQ(ZBErrC_okEndOfFile, 1);
    EXPECT_EQ(ZBErrC_okHandled, 18);
    EXPECT_EQ(ZBErrC_Error, 19);
    EXPECT_EQ(ZBErrC_EnvVar, 58);
    EXPECT_EQ(ZBError::get_code(ZBErrC_okCancel).m_description, "The used pressed the Cancel button.");
    EXPECT_EQ(ZBError::get_code(ZBErrC_FileNotExist).m_description, "The requested files does not exist.");
    EXPECT_EQ(ZBError::get_code(ZBErrC_EnvVar).m_name, "ZBErrC_EnvVar");
    EXPECT_EQ(ZBError::get_code(99999).m_name, "MissingCode");
    EXPECT_EQ(ZBError::get_code(-5).m_description, "Missing error code.");
}

TEST_F(ErrorValues, AllocatingByNameIsStableAndAppends)
{
    int before = ZBError::get_ncodes();
    int a = ZBError::allocate_code("ZBTestThing::ZBErrC_Odd", "An odd thing happened.");
    EXPECT_EQ(a, before);
    EXPECT_EQ(ZBError::allocate_code("ZBTestThing::ZBErrC_Odd", "again"), a);
    EXPECT_EQ(ZBError::get_code(a).m_description, "An odd thing happened.");
}

TEST_F(ErrorValues, PassingUpAppendsLocationsAndKeepsTheValue)
{
    int value = zberror(ZBErrC_FileRead, "inner.cpp:10", "deep");
    EXPECT_EQ(zbpass("middle.cpp:20"), value);
    EXPECT_EQ(zbpass("outer.cpp:30"), value);
    EXPECT_EQ(get_zberror().top()->get_location(), "inner.cpp:10\nmiddle.cpp:20\nouter.cpp:30");
    EXPECT_EQ(zbuserinfo_set("Please check %s", "the disk"), value);
    EXPECT_EQ(get_zberror().top()->get_message(), "Please check the disk");
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "deep");
}

TEST_F(ErrorValues, LogReportsNeverTouchTheStack)
{
    EXPECT_EQ(zblog(ZBErrC_ok, ZBLOC, "note %d", 1), 0);
    EXPECT_EQ(zblog(ZBLOC, "plain note"), 0);
    EXPECT_EQ(get_zberror().get_nerrors(), 0);
}

TEST_F(ErrorValues, AssertionReportsTheConditionAsWritten)
{
    const char* source = nullptr;
    int value = ZBASSERT(source != nullptr);
    EXPECT_TRUE(iszberr(value));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "Assertion Failed: ( source != nullptr )");
    EXPECT_EQ(ZBASSERT(1 + 1 == 2), 0);
}

TEST_F(ErrorValues, ThrowActionCarriesTheRecordAcrossLevels)
{
    get_zberror().set_action(ZBError::E_ActionThrow, ZBErrSev_Error);
    try {
        zberror(ZBErrC_InvalidState, "here.cpp:1", "thrown");
        FAIL() << "no exception";
    } catch (const ZBErrDetails& details) {
        EXPECT_EQ(details.get_code(), ZBErrC_InvalidState);
        EXPECT_EQ(details.get_details(ZBErrAsp_System), "thrown");
    }
    // Warnings keep returning.
    EXPECT_TRUE(iszbwarn(zbwarning(ZBErrC_InvalidState, ZBLOC, "not thrown")));
}

TEST_F(ErrorValues, HandlingAtTheTopClearsTheStackAndGivesTheSeverity)
{
    EXPECT_EQ(zbhandle_error(ZBErrC_okCancel, 2), 0);
    int value = zbwarning(ZBErrC_FileWrite, ZBLOC, "w");
    zberror(ZBErrC_FileWrite, ZBLOC, "e");
    EXPECT_EQ(zbhandle_error(value, 2), 2);
    EXPECT_EQ(get_zberror().get_nerrors(), 0);
    // Nothing left: nothing to stop for.
    EXPECT_EQ(zbhandle_error(value, 2), 0);
}

TEST_F(ErrorValues, ExitStatusIsNonZeroFromErrorsUp)
{
    EXPECT_EQ(zb_exit_status(ZBErrC_ok), 0);
    EXPECT_EQ(zb_exit_status(ZBErrDetails::compute_combination(ZBErrC_FileOpen, 2)), 0);
    EXPECT_EQ(zb_exit_status(ZBErrDetails::compute_combination(ZBErrC_FileOpen, 3)), 1);
    EXPECT_EQ(zb_exit_status(ZBErrDetails::compute_combination(ZBErrC_FileOpen, 4)), 2);
    EXPECT_EQ(zb_exit_status(ZBErrDetails::compute_combination(ZBErrC_Assert, 3)), 2);
}

TEST_F(ErrorValues, ReportTimeIsTheFixedTimeOrNow)
{
    get_zberror().set_deftime(1700000000000000LL);
    zberror(ZBErrC_Error, ZBLOC, "timed");
    EXPECT_EQ(get_zberror().top()->get_time(), 1700000000000000LL);
    EXPECT_EQ(get_zberror().top()->get_time_text(), "14/Nov/2023 22:13:20.000000");
    get_zberror().set_deftime(0);
    zberror(ZBErrC_Error, ZBLOC, "now");
    EXPECT_GT(get_zberror().top()->get_time(), 1700000000000000LL);
}

TEST_F(ErrorValues, LocationsAreShownFromTheRepositoryRoot)
{
    struct Row {
        const char* path;
        const char* shown;
    };
    const Row rows[] = {
        {"/src/tervalon/LibDatabase/db/zbdatabase.cpp", "LibDatabase/db/zbdatabase.cpp"},
        {"../../LibDatabase/db/zbdatabase.cpp", "LibDatabase/db/zbdatabase.cpp"},
        {"./LibCore/error/zberror.cpp", "LibCore/error/zberror.cpp"},
        {"../../../src/tervalon/LibCore/log/zblog.cpp", "LibCore/log/zblog.cpp"},
        {"../../tervalon/LibCore/log/zblog.cpp", "LibCore/log/zblog.cpp"},
        {"LibDate/date/zbdate.cpp", "LibDate/date/zbdate.cpp"},
        {"/usr/include/c++/12/vector", "/usr/include/c++/12/vector"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(row.shown, zb_source_relative(row.path, "/src/tervalon")) << row.path;
    // This very build, whatever its folder and compiler cache.
    EXPECT_EQ(0u, ZBLOC.find("LibCore/tests/error_values_test.cpp:"));
}

TEST_F(ErrorValues, RecordsPrintForATerminalOneLineEachOldestFirst)
{
    zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Invalid line A in x.cfg:1");
    zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Invalid line B\nC in x.cfg:2");
    std::ostringstream out;
    EXPECT_EQ(2, get_zberror().print_and_clear(out, "tervalon: "));
    EXPECT_EQ("tervalon: Invalid line A in x.cfg:1\ntervalon: Invalid line B C in x.cfg:2\n", out.str());
    EXPECT_EQ(nullptr, get_zberror().top());
}
