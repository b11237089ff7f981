#include "LibGui/qt/zbdialogqt.h"
#include "LibCore/error/zberror.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QTimer>

namespace Tervalon {

ZBDialogQt::ZBDialogQt(QWidget* parent, Qt::WindowFlags flags) : QDialog(parent, flags), ZBWindowQt(this) {}

ZBDialogQt::~ZBDialogQt() = default;

void ZBDialogQt::prepare()
{
    if (m_restoreGeom && !objectName().isEmpty())
        restore_geometry(this);
    int result = update_data();
    if (!iszbwarn(result))
        result = update_controls();
    if (iszbwarn(result))
        zbhandle_error(result, 2);
    handle_delete_close();
    setEnabled(true);
}

int ZBDialogQt::show_dialog()
{
    prepare();
    show();
    raise();
    activateWindow();
    return ZBErrC_ok;
}

int ZBDialogQt::exec_dialog()
{
    prepare();
    setModal(true);
    return exec() == QDialog::Accepted ? ZBErrC_okOK : ZBErrC_okCancel;
}

void ZBDialogQt::hide_dialog()
{
    if (m_restoreGeom && !objectName().isEmpty())
        store_geometry(this);
    hide();
}

void ZBDialogQt::close_dialog()
{
    close();
}

void ZBDialogQt::dialog_done(int code, bool)
{
    // Panes slide out where there is animation; separate desktop windows close at once.
    emit start_closing(this);
    done(code);
    emit closed_dialog(this);
}

int ZBDialogQt::validate_display()
{
    return ZBErrC_ok;
}

int ZBDialogQt::read_display(bool)
{
    return ZBErrC_ok;
}

int ZBDialogQt::update_data()
{
    return update_display();
}

void ZBDialogQt::raise_window(int ms)
{
    QTimer::singleShot(ms, ms >= 2000 ? Qt::CoarseTimer : Qt::PreciseTimer, this, [this]() { do_raise(); });
}

void ZBDialogQt::do_raise()
{
    show();
    raise();
    activateWindow();
}

void ZBDialogQt::set_delete_close(bool on)
{
    m_deleteClose = on;
    handle_delete_close();
}

void ZBDialogQt::handle_delete_close()
{
    if (m_deleteClose)
        setAttribute(Qt::WA_DeleteOnClose);
}

void ZBDialogQt::set_window_theme(const QString& styleSheet)
{
    set_widget_theme(this, styleSheet);
}

void ZBDialogQt::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && (event->modifiers() & Qt::ControlModifier)) {
        emit accept_dialog();
        accept_from_keyboard();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ZBDialogQt::accept_from_keyboard()
{
    int result = validate_display();
    if (!iszbwarn(result))
        result = read_display(true);
    if (iszbwarn(result)) {
        zbhandle_error(result, 2);
        return;
    }
    accept();
}

void ZBDialogQt::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    emit finish_opening();
    QTimer::singleShot(100, this, [this]() { emit finish_opening100(); });
}

void ZBDialogQt::hideEvent(QHideEvent* event)
{
    if (m_restoreGeom && !objectName().isEmpty())
        store_geometry(this);
    QDialog::hideEvent(event);
}

void ZBDialogQt::closeEvent(QCloseEvent* event)
{
    if (m_restoreGeom && !objectName().isEmpty())
        store_geometry(this);
    QDialog::closeEvent(event);
}

} // namespace Tervalon
