#pragma once

#include "LibGui/qt/zbwindowqt.h"

#include <QIcon>
#include <QTreeWidget>

#include <map>
#include <set>
#include <string>
#include <vector>

class QToolButton;

namespace Tervalon {

class ZBButtonBoxQt;
class ZBTable;

// The tree of the system's views. A view refills it whole rather than
// updating rows: start_refill() notes the scroll position, sort, expanded
// rows and selection by id, and complete_refill() puts them back, with the
// signals blocked throughout so a refresh neither moves the list under the
// user nor looks like a new selection. Rows are found by their object id.
class ZBTreeWidgetQt : public QTreeWidget, public ZBWindowQt {
    Q_OBJECT
public:
    enum E_Mode { E_ModeSingle = 0, E_ModeMultiple = 1 };
    static constexpr int C_IdRole = Qt::UserRole + 1;

    explicit ZBTreeWidgetQt(QWidget* parent = nullptr);
    ~ZBTreeWidgetQt() override;

    void start_refill();
    // A row under parentId (-1 for the top); an unknown parent puts it at the top.
    QTreeWidgetItem* add(int id, const QStringList& texts, int parentId = -1, const QIcon& icon = QIcon());
    void complete_refill();
    bool is_refilling() const { return m_refilling; }

    QTreeWidgetItem* get_item(int id) const;
    int get_item_id(const QTreeWidgetItem* item) const;
    std::vector<QTreeWidgetItem*> get_all_items() const;
    std::vector<QTreeWidgetItem*> get_child_items(QTreeWidgetItem* item) const;
    void set_expanded(int id, bool expanded);
    // Ids of the selected rows, in display order.
    std::vector<int> get_selected_ids() const;
    void select_id(int id);
    void clear_selection();
    // True once per change of the selected ids since the last call.
    bool did_selection_change();

    // Multiple selection: the mode column shows each row's pick.
    void set_mode(E_Mode mode);
    E_Mode get_mode() const { return m_mode; }
    int get_mode_column() const { return m_modeColumn; }
    void set_mode_column(int column) { m_modeColumn = column; }
    // Ticks rather than dots in the mode column.
    void set_mode_image(bool checks) { m_checkImages = checks; update_mode_images(); }
    void set_select_arrow(bool on);
    // Adds the buttons that start, end and fill a multiple selection.
    void multiselect_buttons(ZBButtonBoxQt* box);

    int item_height() const;
    int item_width() const;
    int contents_height() const;
    int store_columns();
    int restore_columns();
    void resize_columns();

    // The rows as a table: headers, then each row in display order, children indented.
    void to_table(ZBTable& table) const;
    // Asks where to write, proposing "untitled.csv" in the documents folder.
    void export_csv();
    int confirm_export_csv(const std::string& file);

signals:
    void idSelected(int id);
    void idActivated(int id);
    void displaySelected();
    void contextId(int id, const QPoint& position);

private:
    void selection_changed();
    void update_mode_images();
    void update_select_all_button();

    bool m_refilling = false;
    bool m_blocked = false;
    int m_hScroll = 0;
    int m_vScroll = 0;
    bool m_sorting = false;
    int m_sortColumn = 0;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    std::set<int> m_expanded;
    std::vector<int> m_selected;
    int m_current = -1;
    std::map<int, QTreeWidgetItem*> m_byId;
    std::vector<int> m_lastSelection;
    E_Mode m_mode = E_ModeSingle;
    int m_modeColumn = 0;
    bool m_checkImages = false;
    QToolButton* m_multiButton = nullptr;
    QToolButton* m_cancelButton = nullptr;
    QToolButton* m_allButton = nullptr;
};

} // namespace Tervalon
