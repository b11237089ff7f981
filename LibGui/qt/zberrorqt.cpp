#include "LibGui/qt/zberrorqt.h"
#include "LibCore/error/zberror.h"

#include <QApplication>
#include <QGuiApplication>
#include <QWidget>

#include <sstream>

namespace Tervalon {

namespace {

bool g_waiting = false;

void show_error(const ZBErrDetails& details, int severity)
{
    ZBErrorQt::start(details, severity);
}

} // namespace

ZBErrorQt::ZBErrorQt(const ZBErrDetails& details, int severity, QWidget* parent) : QMessageBox(parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName("ZBErrorQt");
    setWindowTitle(title_for(severity));
    setIcon(severity >= ZBErrSev_Error ? QMessageBox::Critical : QMessageBox::Warning);
    setText(QString::fromStdString(details.get_message()));
    std::ostringstream more;
    more << details;
    setDetailedText(QString::fromStdString(more.str()));
    setStandardButtons(QMessageBox::Ok);
    setWindowModality(Qt::NonModal);
}

QString ZBErrorQt::title_for(int severity)
{
    if (severity >= ZBErrSev_Fatal)
        return "Fatal Error";
    if (severity == ZBErrSev_Error)
        return "Error";
    return "Warning";
}

ZBErrorQt* ZBErrorQt::start(const ZBErrDetails& details, int severity)
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return nullptr;
    if (g_waiting) {
        if (!has_real_display())
            return nullptr;
        ZBErrorQt dialog(details, severity, nullptr);
        dialog.setAttribute(Qt::WA_DeleteOnClose, false);
        dialog.setWindowModality(Qt::ApplicationModal);
        dialog.exec();
        return nullptr;
    }
    ZBErrorQt* dialog = new ZBErrorQt(details, severity, QApplication::activeWindow());
    dialog->show();
    return dialog;
}

void ZBErrorQt::set_waiting(bool waiting)
{
    g_waiting = waiting;
}

bool ZBErrorQt::has_real_display()
{
    const QString platform = QGuiApplication::platformName();
    return platform != "offscreen" && platform != "minimal";
}

std::string ZBErrorQt::active_window_name()
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return std::string();
    QWidget* window = QApplication::activeWindow();
    return window ? window->objectName().toStdString() : std::string();
}

void ZBErrorQt::install()
{
    ZBError::set_errorui_fn(show_error);
    ZBError::set_active_window_fn(active_window_name);
    get_zberror().set_errorui(true);
}

} // namespace Tervalon
