#pragma once

#include "LibGui/qt/zbsettingsformqt.h"

namespace Tervalon {

class ZBNotifyList;
class ZBFormItemQt;

// The "Notifications" page of the settings: for each scheme of the list, how
// its findings reach the user (only the choices the platform can do), and
// whether the tray icon shows, offered only when there is a tray to show in.
// The list must outlive the page.
class ZBNotifySettingsQt : public ZBSettingsFormQt {
    Q_OBJECT
public:
    // trayAvailable: whether the desktop has a tray (QSystemTrayIcon says so).
    ZBNotifySettingsQt(ZBNotifyList& list, bool trayAvailable, QWidget* parent = nullptr);
    ~ZBNotifySettingsQt() override;

    // The combo of a scheme's choices, by the scheme's position in the list.
    ZBFormItemQt* get_scheme_item(int n) const;
    // Null when the tray is not offered.
    ZBFormItemQt* get_tray_item() const { return m_tray; }

    // Writes the choices into the list's schemes and the parameter store.
    int read_form() override;

private:
    ZBNotifyList& m_list;
    ZBFormItemQt* m_tray = nullptr;
};

} // namespace Tervalon
