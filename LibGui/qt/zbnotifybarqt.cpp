#include "LibGui/qt/zbnotifybarqt.h"
#include "LibGui/qt/zbtreewidgetqt.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Tervalon {

ZBNotifyBarQt::ZBNotifyBarQt(QWidget* parent) : QWidget(parent)
{
    setObjectName("notifyBar");
    m_tree = new ZBTreeWidgetQt;
    m_tree->setObjectName("notifyList");
    m_tree->setColumnCount(1);
    m_tree->setHeaderHidden(true);
    m_tree->setRootIsDecorated(false);
    m_tree->setUniformRowHeights(true);
    m_tree->setSelectionMode(QAbstractItemView::SingleSelection);
    m_tree->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_tree->header()->setStretchLastSection(true);
    m_tree->setToolTip("Notifications: click a row to go to it, right click to dismiss or snooze it.");

    m_expand = new QToolButton;
    m_expand->setObjectName("expandButton");
    m_expand->setAutoRaise(true);
    m_expand->setIconSize(QSize(16, 16));
    connect(m_expand, &QToolButton::clicked, this, [this]() { set_expanded(!m_expanded); });

    QVBoxLayout* side = new QVBoxLayout;
    side->setContentsMargins(0, 0, 0, 0);
    side->addWidget(m_expand);
    side->addStretch(1);
    QHBoxLayout* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(m_tree, 1);
    layout->addLayout(side);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    set_expanded(false);
}

ZBNotifyBarQt::~ZBNotifyBarQt() = default;

void ZBNotifyBarQt::set_expanded(bool expanded)
{
    m_expanded = expanded;
    m_expand->setIcon(QIcon(expanded ? ":/LibGui/images/32/Collapse.svg" : ":/LibGui/images/32/Grow.svg"));
    m_expand->setToolTip(expanded ? "Show one notification" : "Show all the notifications");
    update_display();
}

void ZBNotifyBarQt::update_display()
{
    // The window's height limits the bar, so its resizes resize the bar.
    QWidget* top = window();
    if (top != this && top != m_watched) {
        if (m_watched)
            m_watched->removeEventFilter(this);
        m_watched = top;
        m_watched->installEventFilter(this);
    }
    const int rows = m_tree->topLevelItemCount();
    if (rows == 0) {
        hide();
        return;
    }
    // The delegate's own row height: the tree's estimate is a few pixels
    // more, and a collapsed bar would show a sliver of the second row.
    const int rowHeight = m_tree->sizeHintForRow(0) > 0 ? m_tree->sizeHintForRow(0) : m_tree->item_height();
    const int frame = 2 * m_tree->frameWidth();
    const int oneRow = rowHeight + frame;
    int height = oneRow;
    if (m_expanded && rows > 1) {
        const int all = rows * rowHeight + frame;
        const int limit = top != this ? top->height() / 2 : all;
        height = std::max(oneRow, std::min(all, limit));
    }
    m_expand->setEnabled(rows > 1);
    // Collapsed, the button says how much is hidden behind the one row.
    const bool hidden = !m_expanded && rows > 1;
    m_expand->setText(hidden ? QString("%1 more").arg(rows - 1) : QString());
    m_expand->setToolButtonStyle(hidden ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
    m_tree->setVerticalScrollBarPolicy(m_expanded ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    m_tree->setFixedHeight(height);
    setFixedHeight(height);
    if (!m_expanded)
        m_tree->scrollToTop();
    show();
}

bool ZBNotifyBarQt::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_watched && event->type() == QEvent::Resize && m_expanded)
        update_display();
    return QWidget::eventFilter(watched, event);
}

} // namespace Tervalon
