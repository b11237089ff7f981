#include "LibGui/qt/zbwidgetqt.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

ZBWidgetQt::ZBWidgetQt(QWidget* parent) : QWidget(parent), ZBWindowQt(this) {}

ZBWidgetQt::~ZBWidgetQt() = default;

ZBWindowQt* ZBWidgetQt::get_window() const
{
    return parentWidget() ? parent_window(parentWidget()) : nullptr;
}

int ZBWidgetQt::validate_display()
{
    return ZBErrC_ok;
}

int ZBWidgetQt::read_display(bool)
{
    return ZBErrC_ok;
}

int ZBWidgetQt::cancel_display()
{
    return ZBErrC_ok;
}

void ZBWidgetQt::set_container(bool on, ZBWidgetContainerQt* container)
{
    m_container = on ? container : nullptr;
}

int ZBWidgetQt::request_update_data(bool force)
{
    ZBWindowQt* window = get_window();
    return window ? window->request_update_data(force) : ZBWindowQt::request_update_data(force);
}

int ZBWidgetQt::request_update_display(bool force)
{
    ZBWindowQt* window = get_window();
    return window ? window->request_update_display(force) : ZBWindowQt::request_update_display(force);
}

int ZBWidgetQt::request_update_controls(bool force)
{
    ZBWindowQt* window = get_window();
    return window ? window->request_update_controls(force) : ZBWindowQt::request_update_controls(force);
}

void ZBWidgetQt::delayed_update_display()
{
    ZBWindowQt* window = get_window();
    if (window)
        window->delayed_update_display();
    else
        ZBWindowQt::delayed_update_display();
}

} // namespace Tervalon
