#pragma once

#include "LibGui/qt/zbwindowqt.h"

#include <QDialog>

namespace Tervalon {

// The base of every dialog: opens at its saved place and size, stores them
// when it hides or closes, accepts on Ctrl+Return, and runs the update hooks
// when shown. Created by its caller, owned by its Qt parent, and deleted on
// close when set_delete_close(true) was called.
class ZBDialogQt : public QDialog, public ZBWindowQt {
    Q_OBJECT
public:
    explicit ZBDialogQt(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~ZBDialogQt() override;

    // Restore the geometry (if wanted), fetch the data, set the controls, show.
    int show_dialog();
    // The same, run modally; only for a caller that truly must wait.
    int exec_dialog();
    void hide_dialog();
    void close_dialog();
    void dialog_done(int code, bool noAnimation = false);
    // Checks what the user entered; a warning keeps the dialog open.
    virtual int validate_display();
    // Takes what the user entered into the model (or only checks it, when not final).
    virtual int read_display(bool final);
    int update_data() override;
    void raise_window(int ms);
    void set_delete_close(bool on);
    void set_restore_geom(bool on) { m_restoreGeom = on; }
    bool get_restore_geom() const { return m_restoreGeom; }
    void set_window_theme(const QString& styleSheet);

signals:
    void start_closing(ZBDialogQt* dialog);
    void closed_dialog(ZBDialogQt* dialog);
    void accept_dialog();
    void finish_opening();
    void finish_opening100();
    void swipe_left();
    void swipe_right();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    // What Ctrl+Return does after accept_dialog() is sent: check, read and accept.
    virtual void accept_from_keyboard();
    void handle_delete_close();

private:
    void prepare();
    void do_raise();

    bool m_restoreGeom = true;
    bool m_deleteClose = false;
};

} // namespace Tervalon
