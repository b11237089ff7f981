// The command-line program: the diary's libraries without a window.
#include "AppTervalonDiary/cli/tervaloncli.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibDate/date/zblocaleqt.h"

#include <QCoreApplication>

#include <iostream>

int main(int argc, char** argv)
{
    QCoreApplication qapp(argc, argv);
    std::unique_ptr<Tervalon::ZBApplication> app = Tervalon::AppDiaryInfo::make_application(argc, argv);
    Tervalon::AppDiaryInfo::setup_cli_errors(*app);
    // The user's settings (such as the host name) are read; the options are the commands'.
    Tervalon::ZBParam* param = new Tervalon::ZBParam(argc, argv, app->get_application(), app->get_release(),
                                                   app->get_description(), app->get_company(), app->get_authors(),
                                                   app->get_date(), app->get_release_tag(), app->get_tag());
    Tervalon::set_zbparam(param);
    param->add_config_file(param->default_user_config());
    Tervalon::set_zblocale(new Tervalon::ZBLocaleQt());
    Tervalon::zblocale().read_config();
    // A damaged settings line is the user's to know of; the command goes on with the rest.
    Tervalon::get_zberror().print_and_clear(std::cerr, "tervalon: ");
    std::vector<std::string> args(argv, argv + argc);
    Tervalon::TervalonCli cli;
    return cli.run(args, std::cout, std::cerr);
}
