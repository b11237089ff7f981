#include "LibGui/qt/zbwidgetcontainerqt.h"
#include "LibGui/qt/zbwidgetqt.h"
#include "LibCore/error/zberror.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace Tervalon {

ZBWidgetContainerQt::ZBWidgetContainerQt(const QString& title, ZBWidgetQt* widget, QWidget* parent)
    : ZBDialogQt(parent), m_widget(widget), m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setObjectName("container");
    setWindowTitle(title);
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(widget, 1);
    layout->addWidget(m_buttons);
    widget->set_container(true, this);
    m_buttons->button(QDialogButtonBox::Ok)->setToolTip("Keep the changes and close.");
    m_buttons->button(QDialogButtonBox::Cancel)->setToolTip("Drop the changes and close.");
    connect(m_buttons, &QDialogButtonBox::accepted, this, [this]() { ok_pressed(); });
    connect(m_buttons, &QDialogButtonBox::rejected, this, [this]() { cancel_pressed(); });
}

ZBWidgetContainerQt::~ZBWidgetContainerQt() = default;

ZBWidgetContainerQt* ZBWidgetContainerQt::start(const QString& title, ZBWidgetQt* widget, QWidget* parent)
{
    ZBWidgetContainerQt* container = new ZBWidgetContainerQt(title, widget, parent);
    container->set_delete_close(true);
    container->show_dialog();
    return container;
}

int ZBWidgetContainerQt::update_display()
{
    int result = m_widget->update_display();
    return iszbwarn(result) ? zbpass(ZBLOC) : result;
}

void ZBWidgetContainerQt::accept_from_keyboard()
{
    ok_pressed();
}

void ZBWidgetContainerQt::ok_pressed()
{
    int result = m_widget->validate_display();
    if (!iszbwarn(result))
        result = m_widget->read_display(true);
    if (iszbwarn(result)) {
        zbhandle_error(result, 2);
        return;
    }
    dialog_done(QDialog::Accepted);
}

void ZBWidgetContainerQt::cancel_pressed()
{
    m_widget->cancel_display();
    dialog_done(QDialog::Rejected);
}

} // namespace Tervalon
