#pragma once

#include <QString>

namespace Tervalon {

// Where pop-ups go when the desktop has a notification service of its own:
// they show there even while the window is minimised. The list asks
// is_available() before each pop-up and falls back to the tray without one.
// Tests put a recorder in its place.
class ZBNotifyDesktopQt {
public:
    virtual ~ZBNotifyDesktopQt() = default;
    virtual bool is_available() = 0;
    // icon is a path or a theme icon name; empty for the program's own.
    virtual void notify(const QString& title, const QString& message, const QString& icon) = 0;
};

} // namespace Tervalon
