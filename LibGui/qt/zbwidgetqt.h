#pragma once

#include "LibGui/qt/zbwindowqt.h"

#include <QWidget>

namespace Tervalon {

class ZBWidgetContainerQt;

// A page or pane inside a window. Its update requests go to the window that
// holds it, so a page never repaints on its own behind the window's back.
class ZBWidgetQt : public QWidget, public ZBWindowQt {
    Q_OBJECT
public:
    explicit ZBWidgetQt(QWidget* parent = nullptr);
    ~ZBWidgetQt() override;

    QWidget* get_widget() { return this; }
    // The window holding this page, or null for a page on its own.
    ZBWindowQt* get_window() const;
    virtual int validate_display();
    virtual int read_display(bool final);
    virtual int cancel_display();

    bool is_container() const { return m_container != nullptr; }
    ZBWidgetContainerQt* get_container() const { return m_container; }
    void set_container(bool on, ZBWidgetContainerQt* container);

    int request_update_data(bool force) override;
    int request_update_display(bool force) override;
    int request_update_controls(bool force) override;
    void delayed_update_display() override;

private:
    ZBWidgetContainerQt* m_container = nullptr;
};

} // namespace Tervalon
