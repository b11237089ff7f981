#include "AppTervalonDiary/main/appdiary.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"

#include <QDir>

namespace Tervalon {

AppDiary::AppDiary(ZBQtApp& qtApp, int argc, char** argv)
    : ZBApplicationQt(qtApp, argc, argv, AppDiaryInfo::C_Application, AppDiaryInfo::C_Title, AppDiaryInfo::C_Extension,
                      AppDiaryInfo::C_Release, AppDiaryInfo::C_Tag, AppDiaryInfo::C_Date, AppDiaryInfo::C_Description,
                      AppDiaryInfo::C_Company, AppDiaryInfo::C_Domain, "Copyright (c) Tervalon", "The Tervalon developers",
                      ":/images/logo.png", "", "", "")
{
    for (int i = 1; i < argc; ++i)
        if (argv[i][0] != '-') {
            m_diaryDB = argv[i];
            break;
        }
    setup_url_handler(AppDiaryInfo::C_UrlScheme);
}

AppDiary::~AppDiary() = default;

int AppDiary::run()
{
    check_file_url(m_diaryDB);
    load_recent();
    std::string file = m_diaryDB.empty() ? get_first_file() : m_diaryDB;
    if (file.empty()) {
        QDir().mkpath(QString::fromStdString(get_documents_dir()));
        file = get_documents_dir() + "/Diary" + AppDiaryInfo::C_Extension;
    }
    file = QDir::current().absoluteFilePath(QString::fromStdString(file)).toStdString();
    ZBDBManagerQt* window = new ZBDBManagerQt(AppDiaryInfo::make_database());
    window->setAttribute(Qt::WA_DeleteOnClose);
    int result = window->start(file, 60000, 300000, 15000);
    if (iszbwarn(result)) {
        delete window;
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
