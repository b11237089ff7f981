#include "AppTervalonDiary/main/desktopurlopener.h"
#include "AppTervalonDiary/diary/diaryactionmgr.h"

#include <QDesktopServices>
#include <QUrl>

namespace Tervalon {

void DesktopUrlOpener::install()
{
    DiaryActionMgr::set_url_opener([](const std::string& url) {
        return QDesktopServices::openUrl(QUrl(QString::fromStdString(url), QUrl::StrictMode));
    });
}

} // namespace Tervalon
