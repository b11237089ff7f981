#pragma once

#include "LibGui/qt/zbdialogqt.h"

class QDialogButtonBox;

namespace Tervalon {

class ZBWidgetQt;

// A dialog frame around one page, with Ok and Cancel: Ok checks and reads
// the page, Cancel tells it to drop its edits. The frame's object name is
// "container"; it takes the page over and deletes itself when closed.
class ZBWidgetContainerQt : public ZBDialogQt {
    Q_OBJECT
public:
    ZBWidgetContainerQt(const QString& title, ZBWidgetQt* widget, QWidget* parent = nullptr);
    ~ZBWidgetContainerQt() override;

    static ZBWidgetContainerQt* start(const QString& title, ZBWidgetQt* widget, QWidget* parent = nullptr);
    ZBWidgetQt* get_widget() const { return m_widget; }
    QDialogButtonBox* get_buttons() const { return m_buttons; }
    int update_display() override;

protected:
    void accept_from_keyboard() override;

private:
    void ok_pressed();
    void cancel_pressed();

    ZBWidgetQt* m_widget;
    QDialogButtonBox* m_buttons;
};

} // namespace Tervalon
