// The command-line program: the diary's libraries without a window.
#include "AppTervalonDiary/cli/tervaloncli.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibCore/error/zberror.h"

#include <QCoreApplication>

#include <iostream>

int main(int argc, char** argv)
{
    QCoreApplication qapp(argc, argv);
    std::unique_ptr<Tervalon::ZBApplication> app = Tervalon::AppDiaryInfo::make_application(argc, argv);
    app->setup_error();
    app->setup_parameters();
    std::vector<std::string> args(argv, argv + argc);
    Tervalon::TervalonCli cli;
    return cli.run(args, std::cout, std::cerr);
}
