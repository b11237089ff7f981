// Both programs keep every reported record in the error log, also one that a
// caller recovers from and clears.
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibCore/error/zberror.h"
#include "tests/support/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

void expect_cleared_record_logged(ZBApplication& app, const char* text)
{
    zbwarning(ZBErrC_FileRead, ZBLOC, "%s", text);
    get_zberror().clear_last_error();
    EXPECT_NE(std::string::npos, Tervalon::Test::read_file(app.get_error_log()).find(text)) << text;
}

} // namespace

TEST(ErrorLogSetup, ARecordTheCallerClearsStillReachesTheLog)
{
    std::unique_ptr<ZBApplication> app = AppDiaryInfo::make_application(0, nullptr);
    QFile::remove(QString::fromStdString(app->get_error_log()));

    app->setup_error();
    get_zberror().set_stream(nullptr, ZBErrSev_All);
    expect_cleared_record_logged(*app, "recovered in the desktop program");

    AppDiaryInfo::setup_cli_errors(*app);
    expect_cleared_record_logged(*app, "recovered in the command-line program");

    set_zberror(new ZBError());
}
