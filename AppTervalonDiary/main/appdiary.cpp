#include "AppTervalonDiary/main/appdiary.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "AppTervalonDiary/main/appscreenshots.h"
#include "AppTervalonDiary/main/desktopurlopener.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibCore/param/zbparamcmdline.h"

#include <QCoreApplication>
#include <QDir>

#include <iostream>
#include <memory>

namespace Tervalon {

AppDiary::AppDiary(ZBQtApp& qtApp, int argc, char** argv)
    : ZBApplicationQt(qtApp, argc, argv, AppDiaryInfo::C_Application, AppDiaryInfo::C_Title, AppDiaryInfo::C_Extension,
                      AppDiaryInfo::C_Release, AppDiaryInfo::C_Tag, AppDiaryInfo::C_Date, AppDiaryInfo::C_Description,
                      AppDiaryInfo::C_Company, AppDiaryInfo::C_Domain, "Copyright (c) Tervalon", "The Tervalon developers",
                      ":/images/logo.png", "", "", "")
{
    m_diaryDB = diary_argument();
    setup_url_handler(AppDiaryInfo::C_UrlScheme);
}

AppDiary::~AppDiary() = default;

int AppDiary::early_options(int argc, char** argv)
{
    std::unique_ptr<ZBApplication> info = AppDiaryInfo::make_application(argc, argv);
    // Mistakes in the options are told once, by the parameter store, with the usage.
    get_zberror().set_stream(nullptr, ZBErrSev_All);
    int result = ZBErrC_ok;
    {
        ZBParam* param = new ZBParam(argc, argv, AppDiaryInfo::C_Application, AppDiaryInfo::C_Release,
                                     AppDiaryInfo::C_Description, AppDiaryInfo::C_Company, "The Tervalon developers",
                                     AppDiaryInfo::C_Date, info->get_release_tag(), AppDiaryInfo::C_Tag);
        set_zbparam(param);
        declare_options(param->get_commandline());
        param->add_config_file(param->default_user_config());
        get_zberror().clear_all();
        result = param->parse(std::cout);
    }
    int status = zbparam().get_exit_status();
    get_zberror().clear_all();
    if (status < 0 && iszbwarn(result))
        status = 1;
    return status;
}

std::string AppDiary::diary_argument()
{
    // The parser knows which options take a value ("--editor emacs") and stops
    // at -extra-args, so the file is the word it gave to the "file" value.
    return has_zbparam() ? zbparam().get_value("file") : std::string();
}

void AppDiary::declare_options(ZBParamCmdLine& cmdLine)
{
    cmdLine.add_value("file", "The diary file to open; it is made if it does not exist.");
    cmdLine.add_option_group("Window options")
        ->add_option("screenshots",
                     "Show each window in turn on the file (read only) or on a sample diary, save a picture of "
                     "each as DIR/<name>.png, and end.",
                     true);
}

std::string AppDiary::screenshots_argument()
{
    return has_zbparam() ? zbparam().get_value("screenshots") : std::string();
}

int AppDiary::parameters(ZBParam&, ZBParamCmdLine* cmdLine, ZBParamFile*)
{
    if (cmdLine)
        declare_options(*cmdLine);
    return ZBErrC_ok;
}

int AppDiary::run_screenshots(const std::string& folder)
{
    std::string file = m_diaryDB.empty() ? std::string()
                                         : QDir::current().absoluteFilePath(QString::fromStdString(m_diaryDB)).toStdString();
    AppScreenshots tour(folder, file);
    int result = tour.run();
    if (iszbwarn(result)) {
        // No dialog: the tour runs unattended, so the terminal gets the message and the run fails.
        get_zberror().print_and_clear(std::cerr, "tervalon-diary: ");
        QCoreApplication::exit(1);
        return ZBErrC_ok;
    }
    std::cout << "Saved " << tour.get_nsaved() << " pictures in " << folder << std::endl;
    return ZBErrC_okShutdown;
}

int AppDiary::run()
{
    const std::string screenshots = screenshots_argument();
    if (!screenshots.empty())
        return run_screenshots(screenshots);
    DesktopUrlOpener::install();
    check_file_url(m_diaryDB);
    load_recent();
    // A file named on the command line is made when missing; a remembered one
    // that has gone is asked about; with neither, the first-run dialog asks.
    std::string file = m_diaryDB.empty() ? get_first_file() : m_diaryDB;
    if (!file.empty())
        file = QDir::current().absoluteFilePath(QString::fromStdString(file)).toStdString();
    ZBDBManagerQt* window = new ZBDBManagerQt(AppDiaryInfo::make_database());
    window->setAttribute(Qt::WA_DeleteOnClose);
    int result = window->start(file, m_diaryDB.empty() ? ZBDBManagerQt::E_LoadPlain : ZBDBManagerQt::E_CreateIfMissing,
                               60000, 300000, 15000);
    if (iszbwarn(result)) {
        delete window;
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
