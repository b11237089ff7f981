#pragma once

#include "LibDate/date/zbdate.h"
#include "LibObject/object/zbidlist.h"

#include <QWidget>

namespace Tervalon {

class DiaryPageContext;

// The common face of every page in the main window's tabs. The window calls
// fill_page when the page is current and the data, the day range or the user
// changed, and set_selected whenever the shared selection moves. A page tells
// the window what the user picked through its two signals and never changes
// the diary itself: every change goes through the window's actions.
class DiaryPageQt : public QWidget {
    Q_OBJECT
public:
    explicit DiaryPageQt(QWidget* parent = nullptr);
    ~DiaryPageQt() override;

    // Refill from the diary; returns a result int (a warning leaves the page
    // showing what it had, with the message handled by the window).
    virtual int fill_page(const DiaryPageContext& context) = 0;
    // Mark the window's selection without refilling.
    virtual void set_selected(const ZBIdList& ids);

signals:
    // The user selected entries in this page, first id first; `date` is the
    // day or time picked with them when the page knows one, else a zero date.
    void idsSelected(const Tervalon::ZBIdList& ids, const Tervalon::ZBDate& date);
    // Double click or Return on an entry: the window opens its editor.
    void idActivated(int id);
};

} // namespace Tervalon
