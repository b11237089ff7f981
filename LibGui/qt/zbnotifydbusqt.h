#pragma once

#include "LibGui/qt/zbnotifydesktopqt.h"

namespace Tervalon {

// Pop-ups through the freedesktop notification service on the session bus.
// Without a session bus, or with nobody serving notifications on it, it says
// it is not available and sends nothing. Calls never wait for an answer.
class ZBNotifyDBusQt : public ZBNotifyDesktopQt {
public:
    explicit ZBNotifyDBusQt(const QString& appName);
    bool is_available() override;
    void notify(const QString& title, const QString& message, const QString& icon) override;

private:
    QString m_appName;
};

} // namespace Tervalon
