#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandlerlogfile.h"

namespace Tervalon {

const char* const AppDiaryInfo::C_Application = "TervalonDiary";
const char* const AppDiaryInfo::C_Title = "Tervalon Diary";
const char* const AppDiaryInfo::C_Extension = ".zbd";
const char* const AppDiaryInfo::C_Release = "4.5.00";
const char* const AppDiaryInfo::C_Tag = "TervalonDiary-4-5-00-15";
const char* const AppDiaryInfo::C_Date = "02-Dec-2023";
const char* const AppDiaryInfo::C_Description = "A personal organiser that turns a to-do list into a plan.";
const char* const AppDiaryInfo::C_Company = "Tervalon";
const char* const AppDiaryInfo::C_Domain = "tervalon.org";
const char* const AppDiaryInfo::C_UrlScheme = "tervalondiary";

std::unique_ptr<ZBApplication> AppDiaryInfo::make_application(int argc, char** argv)
{
    return std::unique_ptr<ZBApplication>(new ZBApplication(
        argc, argv, C_Application, C_Title, C_Extension, C_Release, C_Tag, C_Date, C_Description, C_Company, C_Domain,
        "Copyright (c) Tervalon", "The Tervalon developers", ":/images/logo.png", "", "", ""));
}

void AppDiaryInfo::setup_cli_errors(ZBApplication& app)
{
    set_zberror(new ZBError(app.get_application(), app.get_release(), app.get_company()));
    ZBError& error = get_zberror();
    error.set_stream(nullptr, ZBErrSev_All);
    error.set_action(ZBError::E_ActionReturn, ZBErrSev_All);
    error.set_errorui(false);
    error.add_handler(new ZBErrHandlerLogfile(app.get_error_log(), true, false, false, true));
}

ZBDatabase* AppDiaryInfo::make_database()
{
    ZBDatabase* db = ZBDBFactory<Diary>::create_instance();
    db->set_expected_app_type(C_Application);
    return db;
}

} // namespace Tervalon
