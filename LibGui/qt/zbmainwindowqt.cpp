#include "LibGui/qt/zbmainwindowqt.h"
#include "LibCore/error/zberror.h"

#include <QCloseEvent>
#include <QStatusBar>
#include <QTimer>

namespace Tervalon {

ZBMainWindowQt::ZBMainWindowQt(QWidget* parent, Qt::WindowFlags flags) : QMainWindow(parent, flags), ZBWindowQt(this)
{
}

ZBMainWindowQt::~ZBMainWindowQt() = default;

int ZBMainWindowQt::show_dialog()
{
    if (!objectName().isEmpty())
        restore_geometry(this);
    int result = request_update_data(true);
    if (!iszbwarn(result))
        result = update_controls();
    if (iszbwarn(result))
        zbhandle_error(result, 2);
    show();
    return ZBErrC_ok;
}

void ZBMainWindowQt::raise_window(int ms)
{
    QTimer::singleShot(ms, ms >= 2000 ? Qt::CoarseTimer : Qt::PreciseTimer, this, [this]() { do_raise(); });
}

void ZBMainWindowQt::do_raise()
{
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

QStatusBar* ZBMainWindowQt::app_status()
{
    return statusBar();
}

void ZBMainWindowQt::closeEvent(QCloseEvent* event)
{
    if (!objectName().isEmpty())
        store_geometry(this);
    QMainWindow::closeEvent(event);
}

} // namespace Tervalon
