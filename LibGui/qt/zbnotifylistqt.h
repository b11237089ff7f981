#pragma once

#include "LibGui/base/zbnotifylist.h"
#include "LibGui/qt/zbnotifydesktopqt.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

#include <memory>
#include <vector>

class QMainWindow;
class QSystemTrayIcon;
class QTimer;
class QTreeWidgetItem;

namespace Tervalon {

class ZBNotifyBarQt;
class ZBNotifyDialogQt;
class ZBTreeWidgetQt;

// A window's notification list on the screen: the rows of the tree, the alert
// dialog, pop-ups through the desktop's notification service or the tray,
// and the tray icon itself. A window owns one and calls update() after each
// round; clicks come back as signals, so the window decides what "go to the
// item" means.
class ZBNotifyListQt : public QObject, public ZBNotifyList {
    Q_OBJECT
public:
    explicit ZBNotifyListQt(QObject* parent = nullptr);
    ~ZBNotifyListQt() override;

    // The tree (usually the bar's) and the window the dialog sits beside;
    // bar may be null. desktop replaces the session bus's notification
    // service (tests pass a recorder); null keeps the default.
    void initialise(ZBTreeWidgetQt* tree, QMainWindow* window, ZBNotifyBarQt* bar = nullptr,
                    std::unique_ptr<ZBNotifyDesktopQt> desktop = nullptr);
    void set_desktop(std::unique_ptr<ZBNotifyDesktopQt> desktop);

    // After a round: the rows, the new alerts and pop-ups, the badge and the tray.
    void update() override;
    void update_tree();
    void set_selected(const std::vector<int>& ids);
    int get_badge_count() const { return m_badgeCount; }
    // A pop-up: the desktop's service where one runs, else the tray.
    void report_system_tray(const ZBNotifyItem& item);
    void clear_system_tray();

    ZBNotifyDialogQt* get_dialog() const { return m_dialog; }
    QSystemTrayIcon* get_tray() const { return m_tray; }
    // The item of a row of the tree, or null.
    const ZBNotifyItem* get_row_item(const QTreeWidgetItem* row) const;

    // The actions on an item, as the menu offers them.
    void go_item(const ZBNotifyItem& item);
    void dismiss_item(const ZBNotifyItem& item);
    void snooze_item(const ZBNotifyItem& item);
    // The menu "Dismiss", "Snooze", "Go" for an item, at a global position.
    void show_menu(ZBNotifyItem item, const QPoint& position);

signals:
    void updated();
    void select_list(const std::vector<int>& ids);
    void activate_item(int id);
    void context_required(const QPoint& point, int id);
    void badge_changed(int count);

private:
    void row_activated(int row);
    void row_context(int row, const QPoint& position);
    void dialog_context(int id, const QPoint& position);
    void update_tray();
    void ensure_tray();

    QPointer<ZBTreeWidgetQt> m_tree;
    QPointer<QMainWindow> m_window;
    QPointer<ZBNotifyBarQt> m_bar;
    ZBNotifyDialogQt* m_dialog = nullptr;
    QSystemTrayIcon* m_tray = nullptr;
    QTimer* m_trayTimer = nullptr;
    std::unique_ptr<ZBNotifyDesktopQt> m_desktop;
    std::vector<ZBNotifyItem> m_rows;
    int m_badgeCount = 0;
    bool m_trayWanted = false;
};

} // namespace Tervalon
