#include "LibGui/qt/zbnotifylistqt.h"
#include "LibGui/qt/zbnotifybarqt.h"
#include "LibGui/qt/zbnotifydbusqt.h"
#include "LibGui/qt/zbnotifydialogqt.h"
#include "LibGui/qt/zbtreewidgetqt.h"

#include <QApplication>
#include <QBrush>
#include <QColor>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <algorithm>

namespace Tervalon {

namespace {

// Pop-ups stay on screen this long when the tray shows them.
const int C_TrayMessageMs = 10000;
// The tray waits this long before it shows or hides, so a round that
// empties and refills the list does not make it flicker.
const int C_TrayDelayMs = 1000;

QColor percent_colour(const ZBNotifyColour& colour)
{
    return QColor(colour.red * 255 / 100, colour.green * 255 / 100, colour.blue * 255 / 100);
}

// Black on light rows, white on dark ones.
QColor contrast_colour(const QColor& background)
{
    const double luminance = 0.299 * background.red() + 0.587 * background.green() + 0.114 * background.blue();
    return luminance > 140 ? QColor(Qt::black) : QColor(Qt::white);
}

QString title_for(const ZBNotifyList& list, const ZBNotifyItem& item)
{
    const ZBNotifyScheme* scheme = list.get_scheme_id(item.get_scheme());
    return scheme ? QString::fromStdString(scheme->get_name()) : QApplication::applicationDisplayName();
}

} // namespace

ZBNotifyListQt::ZBNotifyListQt(QObject* parent) : QObject(parent)
{
    m_trayTimer = new QTimer(this);
    m_trayTimer->setSingleShot(true);
    connect(m_trayTimer, &QTimer::timeout, this, [this]() {
        if (!m_tray)
            return;
        m_tray->setVisible(m_trayWanted);
    });
}

ZBNotifyListQt::~ZBNotifyListQt()
{
    delete m_dialog;
}

void ZBNotifyListQt::initialise(ZBTreeWidgetQt* tree, QMainWindow* window, ZBNotifyBarQt* bar,
                                std::unique_ptr<ZBNotifyDesktopQt> desktop)
{
    m_tree = tree;
    m_window = window;
    m_bar = bar;
    set_desktop(desktop ? std::move(desktop)
                        : std::unique_ptr<ZBNotifyDesktopQt>(new ZBNotifyDBusQt(QApplication::applicationName())));
    if (!m_dialog) {
        // Not a child of the window: it must show while the window is minimised.
        m_dialog = new ZBNotifyDialogQt;
        connect(m_dialog, &ZBNotifyDialogQt::selected, this, [this](int id) {
            emit select_list({id});
            emit updated();
        });
        connect(m_dialog, &ZBNotifyDialogQt::context_menu, this, &ZBNotifyListQt::dialog_context);
    }
    m_dialog->set_mainwindow(window);
    if (m_tree) {
        m_tree->setAlternatingRowColors(false);
        m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(m_tree, &QTreeWidget::itemClicked, this,
                [this](QTreeWidgetItem* row) { row_activated(m_tree->get_item_id(row)); });
        connect(m_tree, &ZBTreeWidgetQt::idActivated, this, &ZBNotifyListQt::row_activated);
        connect(m_tree, &ZBTreeWidgetQt::contextId, this, &ZBNotifyListQt::row_context);
    }
    ZBNotifyList::initialise();
}

void ZBNotifyListQt::set_desktop(std::unique_ptr<ZBNotifyDesktopQt> desktop)
{
    m_desktop = std::move(desktop);
    // Every scheme can alert through the dialog; pop-ups need somewhere to go.
    const bool popup = (m_desktop && m_desktop->is_available()) || QSystemTrayIcon::isSystemTrayAvailable();
    set_capabilities(true, popup, true);
}

void ZBNotifyListQt::update()
{
    ZBNotifyList::update();
    update_tree();
    if (m_dialog) {
        for (const ZBNotifyItem& item : pop_new()) {
            if (shows_prompt(item))
                m_dialog->add(item);
            else if (shows_popup(item))
                report_system_tray(item);
        }
        for (const ZBNotifyItem& item : pop_removed())
            m_dialog->remove(item);
        m_dialog->update_state();
    }
    const int badge = ZBNotifyList::get_badge_count();
    if (badge != m_badgeCount) {
        m_badgeCount = badge;
        emit badge_changed(badge);
    }
    update_tray();
}

void ZBNotifyListQt::update_tree()
{
    m_rows = get_list_items();
    if (m_tree) {
        m_tree->start_refill();
        m_tree->clear();
        for (size_t i = 0; i < m_rows.size(); ++i) {
            const ZBNotifyItem& item = m_rows[i];
            QTreeWidgetItem* row = m_tree->add(int(i), {QString::fromStdString(item.get_text())});
            const ZBNotifyScheme* scheme = get_scheme_id(item.get_scheme());
            if (scheme && scheme->get_colour().is_set()) {
                const QColor background = percent_colour(scheme->get_colour());
                row->setBackground(0, background);
                row->setForeground(0, contrast_colour(background));
            }
        }
        m_tree->complete_refill();
        // Rows are for clicking: a row picked in an earlier round means nothing now.
        m_tree->clearSelection();
        m_tree->setCurrentItem(nullptr);
    }
    if (m_bar)
        m_bar->update_display();
}

void ZBNotifyListQt::set_selected(const std::vector<int>& ids)
{
    if (!m_tree)
        return;
    m_tree->clear_selection();
    for (size_t i = 0; i < m_rows.size(); ++i)
        if (std::find(ids.begin(), ids.end(), m_rows[i].get_object_id()) != ids.end())
            if (QTreeWidgetItem* row = m_tree->get_item(int(i)))
                row->setSelected(true);
}

const ZBNotifyItem* ZBNotifyListQt::get_row_item(const QTreeWidgetItem* row) const
{
    if (!m_tree || !row)
        return nullptr;
    const int index = m_tree->get_item_id(row);
    return index >= 0 && index < int(m_rows.size()) ? &m_rows[size_t(index)] : nullptr;
}

void ZBNotifyListQt::report_system_tray(const ZBNotifyItem& item)
{
    const QString title = title_for(*this, item);
    const QString text = QString::fromStdString(item.get_text());
    if (m_desktop && m_desktop->is_available()) {
        const ZBNotifyScheme* scheme = get_scheme_id(item.get_scheme());
        const std::string icon = scheme && !scheme->get_icon().empty() ? scheme->get_icon() : get_trayicon();
        m_desktop->notify(title, text, QString::fromStdString(icon));
        return;
    }
    ensure_tray();
    if (m_tray) {
        m_tray->show();
        m_tray->showMessage(title, text, QSystemTrayIcon::Warning, C_TrayMessageMs);
    }
}

void ZBNotifyListQt::clear_system_tray()
{
    m_trayWanted = false;
    if (m_tray)
        m_trayTimer->start(C_TrayDelayMs);
}

void ZBNotifyListQt::ensure_tray()
{
    if (m_tray || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(this);
    m_tray->setObjectName("notifyTray");
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason) {
        if (m_window) {
            m_window->showNormal();
            m_window->raise();
            m_window->activateWindow();
        }
    });
    connect(m_tray, &QSystemTrayIcon::messageClicked, this, [this]() {
        if (m_window) {
            m_window->showNormal();
            m_window->activateWindow();
        }
    });
}

void ZBNotifyListQt::update_tray()
{
    const std::vector<ZBNotifyItem>& items = get_items();
    if (items.empty()) {
        clear_system_tray();
        return;
    }
    if (!systray_available() || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    ensure_tray();
    // The icon of the most important kind of finding there is.
    const ZBNotifyItem* top = &items.front();
    for (const ZBNotifyItem& item : items)
        if (item.get_scheme() > top->get_scheme())
            top = &item;
    const ZBNotifyScheme* scheme = get_scheme_id(top->get_scheme());
    const std::string icon = scheme && !scheme->get_icon().empty() ? scheme->get_icon() : get_trayicon();
    if (!icon.empty())
        m_tray->setIcon(QIcon(QString::fromStdString(icon)));
    std::string text;
    get_notify_state(text);
    m_tray->setToolTip(QString::fromStdString(text));
    m_trayWanted = get_usetray();
    m_trayTimer->start(C_TrayDelayMs);
}

void ZBNotifyListQt::row_activated(int row)
{
    if (row < 0 || row >= int(m_rows.size()))
        return;
    emit activate_item(m_rows[size_t(row)].get_object_id());
}

void ZBNotifyListQt::row_context(int row, const QPoint& position)
{
    if (row < 0 || row >= int(m_rows.size()))
        return;
    const ZBNotifyItem item = m_rows[size_t(row)];
    emit context_required(position, item.get_object_id());
    show_menu(item, position);
}

void ZBNotifyListQt::dialog_context(int, const QPoint& position)
{
    if (m_dialog && m_dialog->get_current())
        show_menu(*m_dialog->get_current(), position);
}

void ZBNotifyListQt::show_menu(ZBNotifyItem item, const QPoint& position)
{
    QMenu menu;
    menu.setObjectName("notifyMenu");
    QAction* dismiss = menu.addAction("Dismiss");
    dismiss->setToolTip("Hides this notification until midnight.");
    QAction* snooze = menu.addAction("Snooze");
    snooze->setToolTip("Hides this notification for an hour.");
    QAction* go = menu.addAction("Go");
    go->setToolTip("Views the entry that triggered the notification.");
    menu.setToolTipsVisible(true);
    QAction* chosen = menu.exec(position);
    if (chosen == dismiss)
        dismiss_item(item);
    else if (chosen == snooze)
        snooze_item(item);
    else if (chosen == go)
        go_item(item);
}

void ZBNotifyListQt::go_item(const ZBNotifyItem& item)
{
    emit select_list({item.get_object_id()});
    emit updated();
}

void ZBNotifyListQt::dismiss_item(const ZBNotifyItem& item)
{
    const ZBNotifyItem copy = item; // item may live in a list that the snooze changes
    dismiss_today(copy);
    update();
    emit updated();
}

void ZBNotifyListQt::snooze_item(const ZBNotifyItem& item)
{
    const ZBNotifyItem copy = item;
    snooze_hour(copy);
    update();
    emit updated();
}

} // namespace Tervalon
