#pragma once

#include "LibDiary/diary/zbnotifyitem.h"
#include "LibGui/qt/zbdialogqt.h"

#include <QPointer>

#include <vector>

class QLabel;
class QPushButton;

namespace Tervalon {

// The alert dialog: the findings the user asked to be alerted to, highest
// priority first, one at a time. It appears beside the window without taking
// the keyboard from it, and hides itself when nothing is left. Owned by the
// ZBNotifyListQt that fills it.
class ZBNotifyDialogQt : public ZBDialogQt {
    Q_OBJECT
public:
    explicit ZBNotifyDialogQt(QWidget* parent = nullptr);
    ~ZBNotifyDialogQt() override;

    // An item already shown (same message, same object) is not added twice.
    void add(const ZBNotifyItem& item);
    void remove(const ZBNotifyItem& item);
    void clear_items();
    // Shows the first item, or hides when there is none.
    void update_state();
    // The window it sits beside when first shown.
    void set_mainwindow(QWidget* window) { m_mainWindow = window; }

    int get_nitems() const { return int(m_items.size()); }
    // The item on show, or null.
    const ZBNotifyItem* get_current() const { return m_items.empty() ? nullptr : &m_items.front(); }

signals:
    void selected(int id);
    void context_menu(int id, const QPoint& position);

protected:
    bool event(QEvent* event) override;

private:
    void go_pressed();
    void close_pressed();
    void close_all_pressed();
    void options_pressed();
    void place_beside_window();

    std::vector<ZBNotifyItem> m_items;
    QLabel* m_message;
    QLabel* m_count;
    QPushButton* m_go;
    QPushButton* m_close;
    QPushButton* m_closeAll;
    QPushButton* m_options;
    QPointer<QWidget> m_mainWindow;
    // The window that was active when the dialog appeared: activation that
    // the window system gives the dialog unasked goes back to it.
    QPointer<QWidget> m_giveBack;
    bool m_placed = false;
};

} // namespace Tervalon
