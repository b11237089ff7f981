#include "LibGui/qt/zbnotifydialogqt.h"
#include "LibCore/error/zberror.h"
#include "LibGui/base/zbnotifylist.h"

#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace Tervalon {

ZBNotifyDialogQt::ZBNotifyDialogQt(QWidget* parent)
    : ZBDialogQt(parent, Qt::Tool | Qt::WindowStaysOnTopHint)
{
    setObjectName("notifyDialog");
    setWindowTitle("Notifications");
    setModal(false);
    setAttribute(Qt::WA_ShowWithoutActivating);

    QLabel* icon = new QLabel;
    icon->setPixmap(QIcon(":/LibGui/images/32/Warning.svg").pixmap(32, 32));
    icon->setAlignment(Qt::AlignTop);
    m_message = new QLabel;
    m_message->setObjectName("notificationMessage");
    m_message->setWordWrap(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setMinimumWidth(420);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    QFont font = m_message->font();
    font.setPointSizeF(font.pointSizeF() * 1.15);
    m_message->setFont(font);
    m_count = new QLabel;
    m_count->setObjectName("notificationCount");

    m_go = new QPushButton("&Go");
    m_go->setObjectName("goButton");
    m_go->setToolTip("Views the entry that triggered the notification.");
    m_options = new QPushButton("&Options");
    m_options->setObjectName("optionsButton");
    m_options->setToolTip("Other options for this notification...");
    m_close = new QPushButton("&Close");
    m_close->setObjectName("closeButton");
    m_close->setToolTip("Closes this notification.");
    m_closeAll = new QPushButton("Close &All");
    m_closeAll->setObjectName("closeAllButton");
    m_closeAll->setToolTip("Closes every notification in this window.");

    QHBoxLayout* top = new QHBoxLayout;
    top->addWidget(icon);
    top->addWidget(m_message, 1);
    QHBoxLayout* buttons = new QHBoxLayout;
    buttons->addWidget(m_count);
    buttons->addStretch(1);
    for (QPushButton* button : {m_go, m_options, m_close, m_closeAll}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(buttons);

    connect(m_go, &QPushButton::clicked, this, &ZBNotifyDialogQt::go_pressed);
    connect(m_options, &QPushButton::clicked, this, &ZBNotifyDialogQt::options_pressed);
    connect(m_close, &QPushButton::clicked, this, &ZBNotifyDialogQt::close_pressed);
    connect(m_closeAll, &QPushButton::clicked, this, &ZBNotifyDialogQt::close_all_pressed);
}

ZBNotifyDialogQt::~ZBNotifyDialogQt() = default;

void ZBNotifyDialogQt::add(const ZBNotifyItem& item)
{
    for (const ZBNotifyItem& shown : m_items)
        if (ZBNotifyList::same(shown, item))
            return;
    // After every item of the same priority, so equal ones keep their order.
    auto at = std::upper_bound(m_items.begin(), m_items.end(), item,
                               [](const ZBNotifyItem& a, const ZBNotifyItem& b) {
                                   return a.get_priority() > b.get_priority();
                               });
    m_items.insert(at, item);
}

void ZBNotifyDialogQt::remove(const ZBNotifyItem& item)
{
    m_items.erase(std::remove_if(m_items.begin(), m_items.end(),
                                 [&](const ZBNotifyItem& shown) { return ZBNotifyList::same(shown, item); }),
                  m_items.end());
}

void ZBNotifyDialogQt::clear_items()
{
    m_items.clear();
}

void ZBNotifyDialogQt::update_state()
{
    if (m_items.empty()) {
        m_giveBack = nullptr;
        hide();
        return;
    }
    m_message->setText(QString::fromStdString(m_items.front().get_text()));
    m_count->setText(m_items.size() > 1 ? QString("1 of %1").arg(m_items.size()) : QString());
    m_closeAll->setVisible(m_items.size() > 1);
    if (isVisible())
        return;
    QWidget* active = QApplication::activeWindow();
    m_giveBack = active && active != this ? active : nullptr;
    if (!m_placed) {
        m_placed = true;
        if (!get_restore_geom() || restore_geometry(this) == ZBErrC_okCancel)
            place_beside_window();
    }
    show();
    // Window systems that ignore the request not to activate get a short
    // grace period in which activation goes straight back.
    if (m_giveBack)
        QTimer::singleShot(500, this, [this]() { m_giveBack = nullptr; });
}

bool ZBNotifyDialogQt::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate && m_giveBack) {
        QPointer<QWidget> back = m_giveBack;
        m_giveBack = nullptr;
        back->activateWindow();
    } else if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress) {
        m_giveBack = nullptr;
    }
    return ZBDialogQt::event(event);
}

void ZBNotifyDialogQt::place_beside_window()
{
    adjustSize();
    if (!m_mainWindow)
        return;
    // The top right corner of the window, inside it, where it hides little.
    const QRect frame = m_mainWindow->frameGeometry();
    move(frame.right() - width() - 24, frame.top() + 64);
}

void ZBNotifyDialogQt::go_pressed()
{
    if (!get_current())
        return;
    emit selected(get_current()->get_object_id());
}

void ZBNotifyDialogQt::close_pressed()
{
    if (!m_items.empty())
        m_items.erase(m_items.begin());
    update_state();
}

void ZBNotifyDialogQt::close_all_pressed()
{
    m_items.clear();
    update_state();
}

void ZBNotifyDialogQt::options_pressed()
{
    if (!get_current())
        return;
    emit context_menu(get_current()->get_object_id(), m_options->mapToGlobal(QPoint(0, m_options->height())));
}

} // namespace Tervalon
