#include "LibGui/qt/zbformqt.h"
#include "LibGui/qt/zbformitemqt.h"
#include "LibCore/error/zberror.h"

#include <QGridLayout>
#include <QLabel>

#include <algorithm>

namespace Tervalon {

ZBFormQt::ZBFormQt(QWidget* parent) : QWidget(parent) {}

ZBFormQt::~ZBFormQt()
{
    // The widgets go with the form; the items must not outlive the signals they are connected to.
    m_lastEdit = nullptr;
}

void ZBFormQt::add_item(ZBFormItemQt* item, int index)
{
    connect(item, &ZBFormItemQt::value_changed, this, &ZBFormQt::value_changed);
    connect(item, &ZBFormItemQt::id_changed, this, &ZBFormQt::id_changed);
    connect(item, &ZBFormItemQt::edited, this, [this](ZBFormItemQt* edited) { m_lastEdit = edited; });
    if (m_fieldWidth > 0)
        item->set_field_size(m_fieldWidth, -1);
    if (index < 0 || index > int(m_item.size()))
        m_item.emplace_back(item);
    else
        m_item.emplace(m_item.begin() + index, item);
}

ZBFormItemQt* ZBFormQt::get_item_no(int n) const
{
    return n >= 0 && n < int(m_item.size()) ? m_item[size_t(n)].get() : nullptr;
}

int ZBFormQt::get_item_id(const std::string& tag) const
{
    for (size_t i = 0; i < m_item.size(); ++i)
        if (m_item[i]->get_tag() == tag)
            return int(i);
    return -1;
}

ZBFormItemQt* ZBFormQt::get_item_by_tag(const std::string& tag) const
{
    return get_item_no(get_item_id(tag));
}

void ZBFormQt::select_first_field()
{
    for (const auto& item : m_item) {
        QWidget* field = item->get_field();
        if (field && item->get_data_type() != ZBFormItemQt::E_Label) {
            field->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void ZBFormQt::remove_items()
{
    m_lastEdit = nullptr;
    for (auto& item : m_item) {
        delete item->get_label_widget();
        delete item->get_field();
    }
    m_item.clear();
}

void ZBFormQt::set_columns(int columns)
{
    m_columns = std::max(columns, 1);
}

int ZBFormQt::update_display()
{
    if (m_item.empty())
        return ZBErrC_ok;
    if (!m_layout) {
        m_layout = new QGridLayout(this);
        m_layout->setContentsMargins(0, 0, 0, 0);
        m_layout->setSpacing(3);
    }
    // Down the first column, then the next: rows per column rounded up.
    const int n = int(m_item.size());
    const int perColumn = (n + m_columns - 1) / m_columns;
    std::vector<int> labelWidth(size_t(m_columns), 0);
    for (int i = 0; i < n; ++i) {
        const int column = i / perColumn;
        m_item[size_t(i)]->update(m_layout, i % perColumn, column, this);
        labelWidth[size_t(column)] = std::max(labelWidth[size_t(column)], m_item[size_t(i)]->get_total_width());
    }
    for (int column = 0; column < m_columns; ++column) {
        // A little air between a label and its field; the grid's own spacing is kept tight for the rows.
        m_layout->setColumnMinimumWidth(column * 2, labelWidth[size_t(column)] + 6);
        m_layout->setColumnStretch(column * 2 + 1, 1);
    }
    m_layout->setRowStretch(perColumn, 1);
    // Tab goes row by row, as the form reads.
    QWidget* previous = nullptr;
    for (const auto& item : m_item) {
        QWidget* field = item->get_field();
        if (!field || item->get_data_type() == ZBFormItemQt::E_Label)
            continue;
        if (previous)
            setTabOrder(previous, field);
        previous = field;
    }
    return ZBErrC_ok;
}

bool ZBFormQt::validate(std::string& message) const
{
    for (const auto& item : m_item)
        if (!item->validate(message))
            return false;
    return true;
}

} // namespace Tervalon
