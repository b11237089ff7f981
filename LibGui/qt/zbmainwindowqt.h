#pragma once

#include "LibGui/qt/zbwindowqt.h"

#include <QMainWindow>

class QStatusBar;

namespace Tervalon {

// The base of every main window: the update hooks and the window's saved
// place and size. The window itself decides what data it needs; the base
// paints nothing.
class ZBMainWindowQt : public QMainWindow, public ZBWindowQt {
    Q_OBJECT
public:
    explicit ZBMainWindowQt(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~ZBMainWindowQt() override;

    // Restore the geometry, fetch the data, set the controls, show.
    int show_dialog();
    void raise_window(int ms);
    // The status line of the window, where the application's status is shown.
    QStatusBar* app_status();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void do_raise();
};

} // namespace Tervalon
