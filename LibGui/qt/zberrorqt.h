#pragma once

#include "LibCore/error/zberrdetails.h"

#include <QMessageBox>

#include <string>

namespace Tervalon {

// The dialog that shows an error at the top of a user action: the user's text,
// with the developer's text, location and extras under "Show Details". It
// does not wait: it is shown and the event loop goes on; it deletes itself
// when closed.
class ZBErrorQt : public QMessageBox {
public:
    ZBErrorQt(const ZBErrDetails& details, int severity, QWidget* parent);

    // Shows a dialog for the record; severity 1 and 2 are titled "Warning",
    // 3 "Error", 4 "Fatal Error".
    static ZBErrorQt* start(const ZBErrDetails& details, int severity);
    // While on, start() waits until the user closes the dialog: for a failure
    // before any window exists, whose message must be read before the program
    // ends. With no real display (offscreen or minimal platform) no dialog is
    // shown at all, as nobody could close it; the terminal has the message.
    static void set_waiting(bool waiting);
    static bool has_real_display();
    // Joins the error system: zbhandle_error shows this dialog, and reports
    // record the active window's name.
    static void install();

    static QString title_for(int severity);
    static std::string active_window_name();
};

} // namespace Tervalon
