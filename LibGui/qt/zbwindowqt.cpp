#include "LibGui/qt/zbwindowqt.h"
#include "LibGui/qt/zbdialogqt.h"
#include "LibGui/qt/zbmainwindowqt.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QWidget>

#include <ostream>
#include <sstream>

namespace Tervalon {

namespace {

// Writes a system value only when it differs, so an unchanged window never rewrites the user's file.
int store_value(const std::string& key, const std::string& value)
{
    if (!has_zbparam())
        return ZBErrC_ok;
    ZBParam& param = zbparam();
    if (param.is_system_value_set(key) && param.get_system_value(key) == value)
        return ZBErrC_ok;
    if (param.get_user_config().empty())
        return ZBErrC_ok;
    int result = param.set_system_value(key, value);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int read_int(const std::string& key)
{
    if (!has_zbparam() || !zbparam().is_system_value_set(key))
        return -1;
    const std::string text = zbparam().get_system_value(key);
    char* end = nullptr;
    long value = std::strtol(text.c_str(), &end, 10);
    return end && end != text.c_str() ? int(value) : -1;
}

std::string read_text(const std::string& key)
{
    return has_zbparam() ? zbparam().get_system_value(key) : std::string();
}

int store_widths(QWidget* widget, QHeaderView* header)
{
    std::vector<int> widths;
    for (int i = 0; i < header->count(); ++i)
        widths.push_back(header->sectionSize(i));
    return store_value(ZBWindowQt::state_key(widget, "columns"), ZBWindowQt::widths_to_text(widths));
}

int restore_widths(QWidget* widget, QHeaderView* header, int lastColumn)
{
    const std::string key = ZBWindowQt::state_key(widget, "columns");
    std::vector<int> widths = ZBWindowQt::text_to_widths(read_text(key));
    // A saved list from a version with more columns sets only the columns there are.
    for (int i = 0; i < int(widths.size()) && i < header->count(); ++i)
        if (widths[size_t(i)] > 0)
            header->resizeSection(i, widths[size_t(i)]);
    (void)lastColumn;
    return widths.empty() ? ZBErrC_okCancel : ZBErrC_ok;
}

} // namespace

ZBWindowQt::ZBWindowQt(QWidget* self) : m_self(self), m_updateTimer(new QTimer(self))
{
    m_updateTimer->setSingleShot(true);
    m_updateTimer->setInterval(C_DelayedUpdateMs);
    QObject::connect(m_updateTimer, &QTimer::timeout, m_self, [this]() {
        int result = update_display();
        if (iszbwarn(result))
            zbhandle_error(result, 2);
    });
}

ZBWindowQt::~ZBWindowQt() = default;

void ZBWindowQt::dump(std::ostream& out, int indent) const
{
    ZBWindow::dump(out, indent);
    out << std::string(indent, ' ') << "object " << (m_self ? m_self->objectName().toStdString() : std::string())
        << " pending " << is_update_pending() << "\n";
}

bool ZBWindowQt::update_data_needed()
{
    return true;
}

int ZBWindowQt::request_update_data(bool force)
{
    if (!update_data_needed() && !force)
        return ZBErrC_ok;
    int result = update_data();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return result;
}

int ZBWindowQt::request_update_display(bool force)
{
    if (update_data_needed())
        return request_update_data(true);
    if (!force)
        return ZBErrC_ok;
    int result = update_display();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return result;
}

int ZBWindowQt::request_update_controls(bool force)
{
    if (update_data_needed())
        return request_update_data(true);
    if (!force)
        return ZBErrC_ok;
    int result = update_controls();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return result;
}

int ZBWindowQt::update_data()
{
    return ZBErrC_ok;
}

int ZBWindowQt::update_display()
{
    return ZBErrC_ok;
}

int ZBWindowQt::update_controls()
{
    return ZBErrC_ok;
}

void ZBWindowQt::delayed_update_display()
{
    m_updateTimer->start();
}

bool ZBWindowQt::is_update_pending() const
{
    return m_updateTimer->isActive();
}

bool ZBWindowQt::action_visible(QAction* action)
{
    return action && action->isVisible();
}

ZBWindowQt* ZBWindowQt::parent_window(QWidget* widget)
{
    for (; widget; widget = widget->parentWidget())
        if (ZBWindowQt* window = dynamic_cast<ZBWindowQt*>(widget))
            return window;
    return nullptr;
}

ZBDialogQt* ZBWindowQt::parent_dialog(QWidget* widget)
{
    for (; widget; widget = widget->parentWidget())
        if (ZBDialogQt* dialog = dynamic_cast<ZBDialogQt*>(widget))
            return dialog;
    return nullptr;
}

ZBMainWindowQt* ZBWindowQt::parent_main_window(QWidget* widget)
{
    for (; widget; widget = widget->parentWidget())
        if (ZBMainWindowQt* window = dynamic_cast<ZBMainWindowQt*>(widget))
            return window;
    return nullptr;
}

std::string ZBWindowQt::state_key(QWidget* widget, const std::string& what)
{
    QWidget* top = widget->window();
    std::string key = top->objectName().toStdString();
    if (top != widget)
        key += "." + widget->objectName().toStdString();
    return key + "." + what;
}

int ZBWindowQt::store_geometry(QWidget* window)
{
    const bool max = window->isMaximized() || window->isFullScreen();
    int result = store_value(state_key(window, "max"), max ? "1" : "0");
    if (max || iszbwarn(result))
        return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
    const QRect frame = window->frameGeometry();
    const std::pair<const char*, int> values[] = {{"x", window->pos().x()},
                                                  {"y", window->pos().y()},
                                                  {"width", frame.width()},
                                                  {"height", frame.height()}};
    for (const auto& value : values) {
        result = store_value(state_key(window, value.first), std::to_string(value.second));
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int ZBWindowQt::restore_geometry(QWidget* window)
{
    QScreen* screen = QGuiApplication::primaryScreen();
    return restore_geometry(window, screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768));
}

int ZBWindowQt::restore_geometry(QWidget* window, const QRect& screen)
{
    int x = read_int(state_key(window, "x"));
    int y = read_int(state_key(window, "y"));
    int width = read_int(state_key(window, "width"));
    int height = read_int(state_key(window, "height"));
    if (read_int(state_key(window, "max")) == 1) {
        window->setWindowState(window->windowState() | Qt::WindowMaximized);
        return ZBErrC_ok;
    }
    if (width < 0 || height < 0)
        return ZBErrC_okCancel;
    // A window saved on a larger or another monitor comes back whole on this one.
    width = std::min(width, screen.width());
    height = std::min(height, screen.height());
    if (x < screen.left() || x + width > screen.left() + screen.width())
        x = screen.left();
    if (y < screen.top() || y + height > screen.top() + screen.height())
        y = screen.top();
    window->resize(std::max(width, window->minimumWidth()), std::max(height, window->minimumHeight()));
    window->move(x, y);
    return ZBErrC_ok;
}

int ZBWindowQt::store_tab(QTabWidget* tabs)
{
    QWidget* page = tabs->currentWidget();
    if (!page)
        return ZBErrC_ok;
    int result = store_value(state_key(tabs, "selectedTab"), page->objectName().toStdString());
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int ZBWindowQt::restore_tab(QTabWidget* tabs)
{
    const QString name = QString::fromStdString(read_text(state_key(tabs, "selectedTab")));
    if (name.isEmpty())
        return ZBErrC_okCancel;
    for (int i = 0; i < tabs->count(); ++i) {
        if (tabs->widget(i)->objectName() == name) {
            tabs->setCurrentIndex(i);
            return ZBErrC_ok;
        }
    }
    return ZBErrC_okCancel;
}

int ZBWindowQt::store_columns(QTreeWidget* tree)
{
    int result = store_widths(tree, tree->header());
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int ZBWindowQt::restore_columns(QTreeWidget* tree)
{
    int result = restore_widths(tree, tree->header(), tree->columnCount() - 1);
    if (tree->columnCount() > 0)
        tree->resizeColumnToContents(tree->columnCount() - 1);
    return result;
}

int ZBWindowQt::store_columns(QTableWidget* table)
{
    int result = store_widths(table, table->horizontalHeader());
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int ZBWindowQt::restore_columns(QTableWidget* table)
{
    int result = restore_widths(table, table->horizontalHeader(), table->columnCount() - 1);
    if (table->columnCount() > 0)
        table->resizeColumnToContents(table->columnCount() - 1);
    return result;
}

int ZBWindowQt::store_splitter(QSplitter* splitter)
{
    std::string text;
    for (int size : splitter->sizes())
        text += (text.empty() ? "" : ",") + std::to_string(size);
    int result = store_value(state_key(splitter, "splitter"), text);
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int ZBWindowQt::restore_splitter(QSplitter* splitter)
{
    std::vector<int> sizes = text_to_widths(read_text(state_key(splitter, "splitter")));
    if (sizes.empty() || int(sizes.size()) != splitter->count())
        return ZBErrC_okCancel;
    splitter->setSizes(QList<int>(sizes.begin(), sizes.end()));
    return ZBErrC_ok;
}

std::string ZBWindowQt::widths_to_text(const std::vector<int>& widths)
{
    std::string text;
    for (int width : widths)
        text += std::to_string(width) + ",";
    return text;
}

std::vector<int> ZBWindowQt::text_to_widths(const std::string& text)
{
    std::vector<int> widths;
    std::istringstream in(text);
    std::string item;
    while (std::getline(in, item, ',')) {
        char* end = nullptr;
        long value = std::strtol(item.c_str(), &end, 10);
        if (!item.empty() && end && *end == '\0')
            widths.push_back(int(value));
        else if (!item.empty())
            widths.push_back(-1);
    }
    return widths;
}

void ZBWindowQt::load_combo(QComboBox* combo, const std::vector<std::pair<int, std::string>>& rows, int selected)
{
    const bool blocked = combo->blockSignals(true);
    combo->clear();
    for (const auto& row : rows) {
        combo->addItem(QString::fromStdString(row.second), row.first);
        if (row.first == selected)
            combo->setCurrentIndex(combo->count() - 1);
    }
    combo->blockSignals(blocked);
}

void ZBWindowQt::set_action_enabled(QAction* action, bool enabled, const QString& text)
{
    action->setEnabled(enabled);
    action->setToolTip(text);
    action->setStatusTip(text);
}

QString ZBWindowQt::strip_unavailable(const QString& tip)
{
    int at = tip.indexOf(C_Unavail);
    return at < 0 ? tip : tip.left(at);
}

void ZBWindowQt::disable_control(QAction* action, const QString& reason)
{
    const QString suffix = C_Unavail + reason;
    action->setToolTip(strip_unavailable(action->toolTip()) + suffix);
    action->setStatusTip(strip_unavailable(action->statusTip()) + suffix);
    action->setEnabled(false);
}

void ZBWindowQt::enable_control(QAction* action)
{
    action->setToolTip(strip_unavailable(action->toolTip()));
    action->setStatusTip(strip_unavailable(action->statusTip()));
    action->setEnabled(true);
}

void ZBWindowQt::on_error(int code)
{
    if (code < 0)
        QCoreApplication::exit(code);
}

void ZBWindowQt::force_layout(QWidget* widget)
{
    const QSize max = widget->maximumSize();
    widget->setMaximumSize(widget->size());
    widget->setMaximumSize(max);
}

void ZBWindowQt::set_background_colour(QWidget* widget, const QString& colour)
{
    set_widget_theme(widget, QString("background-color: %1;").arg(colour));
}

void ZBWindowQt::set_background_image(QWidget* widget, const QString& image)
{
    set_widget_theme(widget, QString("background-image: url(%1);").arg(image));
}

void ZBWindowQt::set_widget_theme(QWidget* widget, const QString& styleSheet)
{
    widget->setStyleSheet(styleSheet);
}

} // namespace Tervalon
