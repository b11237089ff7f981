#include "LibGui/qt/zbbuttonboxqt.h"

#include <QHBoxLayout>
#include <QToolButton>

namespace Tervalon {

ZBButtonBoxQt::ZBButtonBoxQt(QWidget* parent) : QWidget(parent), m_layout(new QHBoxLayout(this))
{
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(2);
    m_layout->addStretch(1);
}

ZBButtonBoxQt::~ZBButtonBoxQt() = default;

QToolButton* ZBButtonBoxQt::add_button(const QIcon& icon, const QString& toolTip, const QString& objectName)
{
    QToolButton* button = new QToolButton(this);
    button->setIcon(icon);
    button->setIconSize(QSize(20, 20));
    button->setToolTip(toolTip);
    button->setStatusTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setObjectName(objectName);
    button->setAutoRaise(true);
    m_layout->insertWidget(m_layout->count() - 1, button);
    return button;
}

QToolButton* ZBButtonBoxQt::get_button(const QString& objectName) const
{
    return findChild<QToolButton*>(objectName);
}

} // namespace Tervalon
