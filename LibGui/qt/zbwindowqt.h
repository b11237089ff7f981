#pragma once

#include "LibGui/base/zbwindow.h"

#include <QRect>
#include <QString>

#include <string>
#include <utility>
#include <vector>

class QAction;
class QComboBox;
class QSplitter;
class QTabWidget;
class QTableWidget;
class QTimer;
class QTreeWidget;
class QWidget;

namespace Tervalon {

class ZBDialogQt;
class ZBMainWindowQt;

// The base of every window: three update hooks that keep fetching the data,
// painting it and enabling the controls apart; a timer that folds many
// repaint requests into one; and the window state kept in the parameter
// store under keys made from object names. It is mixed into a QWidget class,
// which it is given at construction.
class ZBWindowQt : public ZBWindow {
public:
    static constexpr int C_DelayedUpdateMs = 100;

    explicit ZBWindowQt(QWidget* self);
    ~ZBWindowQt() override;

    void dump(std::ostream& out, int indent) const override;

    // Requests: whether new data is needed decides between the full data
    // path and a plain repaint (or controls pass), which runs only when forced.
    virtual bool update_data_needed();
    virtual int request_update_data(bool force);
    virtual int request_update_display(bool force);
    virtual int request_update_controls(bool force);
    // The hooks a window overrides; the base does nothing.
    virtual int update_data();
    virtual int update_display();
    virtual int update_controls();
    // Asks for update_display() 100 ms from now; more requests meanwhile start
    // the wait again, so a burst of changes paints once.
    virtual void delayed_update_display();
    virtual bool action_visible(QAction* action);
    bool is_update_pending() const;

    QWidget* get_self() const { return m_self; }

    // The owners of a widget, walking up its parents (the widget itself included).
    static ZBWindowQt* parent_window(QWidget* widget);
    static ZBDialogQt* parent_dialog(QWidget* widget);
    static ZBMainWindowQt* parent_main_window(QWidget* widget);

    // Saved window state. A value is written only when it has changed; with
    // no parameter store nothing is kept and nothing fails.
    static std::string state_key(QWidget* widget, const std::string& what);
    static int store_geometry(QWidget* window);
    static int restore_geometry(QWidget* window);
    // The same within the given screen area: a window from a larger or
    // another screen is brought back inside it.
    static int restore_geometry(QWidget* window, const QRect& screen);
    static int store_tab(QTabWidget* tabs);
    // ZBErrC_okCancel, leaving the tab as it is, when the saved page is gone.
    static int restore_tab(QTabWidget* tabs);
    static int store_columns(QTreeWidget* tree);
    static int restore_columns(QTreeWidget* tree);
    static int store_columns(QTableWidget* table);
    static int restore_columns(QTableWidget* table);
    static int store_splitter(QSplitter* splitter);
    static int restore_splitter(QSplitter* splitter);
    // "120,80,200," for widths 120, 80 and 200; reading skips what is not a number.
    static std::string widths_to_text(const std::vector<int>& widths);
    static std::vector<int> text_to_widths(const std::string& text);

    // Fills a combo box with (id, text) rows, signals blocked, and selects the row of that id.
    static void load_combo(QComboBox* combo, const std::vector<std::pair<int, std::string>>& rows, int selected);
    static void set_action_enabled(QAction* action, bool enabled, const QString& text);
    // Appends " - Unavailable: " and the reason to the tips, once, or takes it away.
    static void disable_control(QAction* action, const QString& reason);
    static void enable_control(QAction* action);
    static QString strip_unavailable(const QString& tip);
    // A negative code ends the application with that code.
    static void on_error(int code);
    static void force_layout(QWidget* widget);
    static void set_background_colour(QWidget* widget, const QString& colour);
    static void set_background_image(QWidget* widget, const QString& image);
    static void set_widget_theme(QWidget* widget, const QString& styleSheet);

private:
    QWidget* m_self;
    QTimer* m_updateTimer;
};

} // namespace Tervalon
