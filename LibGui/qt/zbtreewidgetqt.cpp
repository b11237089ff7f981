#include "LibGui/qt/zbtreewidgetqt.h"
#include "LibGui/base/zbtable.h"
#include "LibGui/qt/zbbuttonboxqt.h"
#include "LibGui/qt/zbiconqt.h"
#include "LibCore/error/zberror.h"

#include <QDir>
#include <QFileDialog>
#include <QHeaderView>
#include <QScrollBar>
#include <QStandardPaths>
#include <QToolButton>

#include <algorithm>

namespace Tervalon {

namespace {

void collect(QTreeWidgetItem* item, std::vector<QTreeWidgetItem*>& out)
{
    out.push_back(item);
    for (int i = 0; i < item->childCount(); ++i)
        collect(item->child(i), out);
}

} // namespace

ZBTreeWidgetQt::ZBTreeWidgetQt(QWidget* parent) : QTreeWidget(parent), ZBWindowQt(this)
{
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QTreeWidget::itemSelectionChanged, this, [this]() { selection_changed(); });
    connect(this, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        emit idActivated(get_item_id(item));
    });
    connect(this, &QWidget::customContextMenuRequested, this, [this](const QPoint& position) {
        emit contextId(get_item_id(itemAt(position)), viewport()->mapToGlobal(position));
    });
}

ZBTreeWidgetQt::~ZBTreeWidgetQt() = default;

void ZBTreeWidgetQt::start_refill()
{
    m_blocked = blockSignals(true);
    m_refilling = true;
    m_hScroll = horizontalScrollBar()->value();
    m_vScroll = verticalScrollBar()->value();
    m_sorting = isSortingEnabled();
    if (m_sorting) {
        m_sortColumn = header()->sortIndicatorSection();
        m_sortOrder = header()->sortIndicatorOrder();
        // Rows go in unsorted; one sort at the end is cheaper than one per row.
        setSortingEnabled(false);
    }
    m_expanded.clear();
    for (QTreeWidgetItem* item : get_all_items())
        if (item->isExpanded())
            m_expanded.insert(get_item_id(item));
    m_selected = get_selected_ids();
    m_current = currentItem() ? get_item_id(currentItem()) : -1;
    for (int i = 0; i + 1 < columnCount(); ++i)
        header()->setSectionResizeMode(i, QHeaderView::Interactive);
    if (columnCount() > 0)
        header()->setSectionResizeMode(columnCount() - 1, QHeaderView::Stretch);
    updateGeometry();
    clear();
    m_byId.clear();
}

QTreeWidgetItem* ZBTreeWidgetQt::add(int id, const QStringList& texts, int parentId, const QIcon& icon)
{
    QTreeWidgetItem* parent = parentId >= 0 ? get_item(parentId) : nullptr;
    QTreeWidgetItem* item = parent ? new QTreeWidgetItem(parent, texts) : new QTreeWidgetItem(this, texts);
    item->setData(0, C_IdRole, id);
    if (!icon.isNull()) {
        // Kept beside the row, so the picture comes back when a multiple selection ends.
        item->setData(0, Qt::UserRole + 2, icon);
        item->setIcon(0, icon);
    }
    m_byId[id] = item;
    return item;
}

void ZBTreeWidgetQt::complete_refill()
{
    if (m_sorting) {
        setSortingEnabled(true);
        sortByColumn(m_sortColumn, m_sortOrder);
    }
    for (int id : m_expanded)
        if (QTreeWidgetItem* item = get_item(id))
            item->setExpanded(true);
    for (int id : m_selected)
        if (QTreeWidgetItem* item = get_item(id))
            item->setSelected(true);
    if (QTreeWidgetItem* item = get_item(m_current))
        setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    update_mode_images();
    // The layout of the new rows must be known before the old scroll place fits.
    executeDelayedItemsLayout();
    horizontalScrollBar()->setValue(m_hScroll);
    verticalScrollBar()->setValue(m_vScroll);
    m_lastSelection = get_selected_ids();
    m_refilling = false;
    blockSignals(m_blocked);
}

QTreeWidgetItem* ZBTreeWidgetQt::get_item(int id) const
{
    auto found = m_byId.find(id);
    return found == m_byId.end() ? nullptr : found->second;
}

int ZBTreeWidgetQt::get_item_id(const QTreeWidgetItem* item) const
{
    if (!item)
        return -1;
    QVariant id = item->data(0, C_IdRole);
    return id.isValid() ? id.toInt() : -1;
}

std::vector<QTreeWidgetItem*> ZBTreeWidgetQt::get_all_items() const
{
    std::vector<QTreeWidgetItem*> items;
    for (int i = 0; i < topLevelItemCount(); ++i)
        collect(topLevelItem(i), items);
    return items;
}

std::vector<QTreeWidgetItem*> ZBTreeWidgetQt::get_child_items(QTreeWidgetItem* item) const
{
    std::vector<QTreeWidgetItem*> items;
    if (!item)
        return items;
    for (int i = 0; i < item->childCount(); ++i)
        items.push_back(item->child(i));
    return items;
}

void ZBTreeWidgetQt::set_expanded(int id, bool expanded)
{
    if (QTreeWidgetItem* item = get_item(id))
        item->setExpanded(expanded);
}

std::vector<int> ZBTreeWidgetQt::get_selected_ids() const
{
    std::vector<int> ids;
    for (QTreeWidgetItem* item : get_all_items())
        if (item->isSelected())
            ids.push_back(get_item_id(item));
    return ids;
}

void ZBTreeWidgetQt::select_id(int id)
{
    QTreeWidgetItem* item = get_item(id);
    if (!item)
        return;
    // One change for the view, not a clearing and then a pick.
    const bool blocked = blockSignals(true);
    if (m_mode == E_ModeSingle)
        clearSelection();
    item->setSelected(true);
    setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    blockSignals(blocked);
    scrollToItem(item);
    if (!blocked)
        selection_changed();
}

void ZBTreeWidgetQt::clear_selection()
{
    clearSelection();
}

bool ZBTreeWidgetQt::did_selection_change()
{
    std::vector<int> now = get_selected_ids();
    if (now == m_lastSelection)
        return false;
    m_lastSelection = now;
    return true;
}

void ZBTreeWidgetQt::selection_changed()
{
    if (m_refilling)
        return;
    update_mode_images();
    update_select_all_button();
    if (!did_selection_change())
        return;
    std::vector<int> ids = get_selected_ids();
    emit idSelected(ids.empty() ? -1 : ids.front());
    emit displaySelected();
}

void ZBTreeWidgetQt::set_mode(E_Mode mode)
{
    m_mode = mode;
    setSelectionMode(mode == E_ModeMultiple ? QAbstractItemView::MultiSelection : QAbstractItemView::ExtendedSelection);
    if (m_cancelButton)
        m_cancelButton->setVisible(mode == E_ModeMultiple);
    if (m_allButton)
        m_allButton->setVisible(mode == E_ModeMultiple);
    if (m_multiButton)
        m_multiButton->setVisible(mode == E_ModeSingle);
    if (mode == E_ModeSingle && selectedItems().size() > 1) {
        QTreeWidgetItem* keep = currentItem() && currentItem()->isSelected() ? currentItem() : selectedItems().front();
        select_id(get_item_id(keep));
    }
    update_mode_images();
    update_select_all_button();
    // The pick pictures widen the first column; its texts must stay whole.
    if (columnCount() > 1 && m_modeColumn >= 0 && m_modeColumn < columnCount() - 1)
        resizeColumnToContents(m_modeColumn);
}

void ZBTreeWidgetQt::update_mode_images()
{
    if (m_modeColumn < 0 || m_modeColumn >= columnCount())
        return;
    const bool on = m_mode == E_ModeMultiple;
    const QIcon yes = ZBIconQt::get(m_checkImages ? "CheckOn" : "SelectOn");
    const QIcon no = ZBIconQt::get(m_checkImages ? "CheckOff" : "SelectOff");
    const bool blocked = blockSignals(true);
    for (QTreeWidgetItem* item : get_all_items()) {
        if (on)
            item->setIcon(m_modeColumn, item->isSelected() ? yes : no);
        else
            item->setIcon(m_modeColumn, m_modeColumn == 0 ? item->data(0, Qt::UserRole + 2).value<QIcon>() : QIcon());
    }
    blockSignals(blocked);
}

void ZBTreeWidgetQt::update_select_all_button()
{
    if (!m_allButton)
        return;
    const int selected = int(get_selected_ids().size());
    const int all = int(get_all_items().size());
    const char* name = selected == 0 ? "SelectNone" : (selected == all ? "SelectAll" : "SelectMid");
    m_allButton->setIcon(ZBIconQt::get(name));
}

void ZBTreeWidgetQt::set_select_arrow(bool on)
{
    setRootIsDecorated(on);
}

void ZBTreeWidgetQt::multiselect_buttons(ZBButtonBoxQt* box)
{
    m_multiButton = box->add_button(ZBIconQt::get("MultiSelect"), "Select multiple entries to work on.",
                                    "multiSelectButton");
    m_cancelButton = box->add_button(ZBIconQt::get("SelectCancel"), "Cancel multiple selection.",
                                     "selectCancelButton");
    m_allButton = box->add_button(ZBIconQt::get("SelectNone"), "Select all/none entries.", "selectAllButton");
    connect(m_multiButton, &QToolButton::clicked, this, [this]() { set_mode(E_ModeMultiple); });
    connect(m_cancelButton, &QToolButton::clicked, this, [this]() { set_mode(E_ModeSingle); });
    connect(m_allButton, &QToolButton::clicked, this, [this]() {
        // All when not everything is picked yet, otherwise none.
        const bool all = get_selected_ids().size() == get_all_items().size();
        const bool blocked = blockSignals(true);
        // Rows inside closed branches count too, which the view's own select-all leaves out.
        for (QTreeWidgetItem* item : get_all_items())
            item->setSelected(!all);
        blockSignals(blocked);
        selection_changed();
    });
    set_mode(m_mode);
}

int ZBTreeWidgetQt::item_height() const
{
    if (topLevelItemCount() > 0)
        return std::max(visualItemRect(topLevelItem(0)).height(), fontMetrics().height() + 4);
    return fontMetrics().height() + 4;
}

int ZBTreeWidgetQt::item_width() const
{
    int width = 0;
    for (int i = 0; i < columnCount(); ++i)
        width += header()->sectionSize(i);
    return width;
}

int ZBTreeWidgetQt::contents_height() const
{
    int rows = 0;
    for (QTreeWidgetItem* item : get_all_items()) {
        bool shown = true;
        for (QTreeWidgetItem* up = item->parent(); up; up = up->parent())
            shown = shown && up->isExpanded();
        rows += shown && !item->isHidden() ? 1 : 0;
    }
    return rows * item_height() + (isHeaderHidden() ? 0 : header()->sizeHint().height()) + 2 * frameWidth();
}

int ZBTreeWidgetQt::store_columns()
{
    return ZBWindowQt::store_columns(static_cast<QTreeWidget*>(this));
}

int ZBTreeWidgetQt::restore_columns()
{
    return ZBWindowQt::restore_columns(static_cast<QTreeWidget*>(this));
}

void ZBTreeWidgetQt::resize_columns()
{
    for (int i = 0; i + 1 < columnCount(); ++i)
        resizeColumnToContents(i);
}

void ZBTreeWidgetQt::to_table(ZBTable& table) const
{
    std::vector<QTreeWidgetItem*> rows;
    // Display order: sorted, with children after their parent.
    for (int i = 0; i < topLevelItemCount(); ++i)
        collect(topLevelItem(i), rows);
    const int first = 0;
    table.clear();
    table.set_size(int(rows.size()), columnCount() - first);
    table.set_usecolumnheaders(true);
    for (int c = first; c < columnCount(); ++c)
        table.set_column_header(c - first, headerItem()->text(c).toStdString());
    for (size_t r = 0; r < rows.size(); ++r) {
        int depth = 0;
        for (QTreeWidgetItem* up = rows[r]->parent(); up; up = up->parent())
            ++depth;
        for (int c = first; c < columnCount(); ++c) {
            std::string text = rows[r]->text(c).toStdString();
            if (c == first && depth > 0)
                text = std::string(size_t(depth) * 2, ' ') + text;
            table.set_entry(int(r), c - first, text);
        }
    }
}

void ZBTreeWidgetQt::export_csv()
{
    QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (documents.isEmpty())
        documents = QDir::homePath();
    QFileDialog* dialog = new QFileDialog(this, "Export CSV File", QDir(documents).filePath("untitled.csv"),
                                          "CSV files (*.csv);;All files (*)");
    dialog->setObjectName("exportCsvDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix("csv");
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
        int result = confirm_export_csv(file.toStdString());
        if (iszbwarn(result))
            zbhandle_error(result, 2);
    });
    dialog->open();
}

int ZBTreeWidgetQt::confirm_export_csv(const std::string& file)
{
    ZBTable table;
    to_table(table);
    const int before = get_zberror().get_nerrors();
    int result = table.export_table(file);
    if (iszbwarn(result)) {
        // One message for the user, in place of the file layer's own.
        while (get_zberror().get_nerrors() > before)
            get_zberror().clear_last_error();
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", file.c_str());
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
