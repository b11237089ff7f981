#include "LibGui/qt/zbnotifysettingsqt.h"
#include "LibCore/error/zberror.h"
#include "LibGui/base/zbnotifylist.h"
#include "LibGui/qt/zbformitemqt.h"

namespace Tervalon {

ZBNotifySettingsQt::ZBNotifySettingsQt(ZBNotifyList& list, bool trayAvailable, QWidget* parent)
    : ZBSettingsFormQt(parent), m_list(list)
{
    setObjectName("notifySettings");
    for (int i = 0; i < m_list.get_nschemes(); ++i) {
        const ZBNotifyScheme* scheme = m_list.get_scheme_no(i);
        ZBFormItemQt* item = new ZBFormItemQt;
        item->set_choice_type(scheme->scheme_name(), QString::fromStdString(scheme->get_name()),
                              scheme->get_responses(), scheme->get_response());
        item->set_tooltip("How notifications of this kind reach you.");
        add_item(item);
    }
    if (trayAvailable && m_list.systray_available()) {
        m_tray = new ZBFormItemQt;
        m_tray->set_bool_type("systemTrayCheck", "Show system tray icon", m_list.get_usetray());
        m_tray->set_tooltip("Shows an icon in the system tray while there are notifications.");
        add_item(m_tray);
    }
}

ZBNotifySettingsQt::~ZBNotifySettingsQt() = default;

ZBFormItemQt* ZBNotifySettingsQt::get_scheme_item(int n) const
{
    return n >= 0 && n < m_list.get_nschemes() ? get_item_no(n) : nullptr;
}

int ZBNotifySettingsQt::read_form()
{
    for (int i = 0; i < m_list.get_nschemes(); ++i)
        if (ZBFormItemQt* item = get_scheme_item(i))
            m_list.edit_scheme_no(i)->set_response(item->get_choice_id());
    if (m_tray)
        m_list.set_usetray(m_tray->get_bool());
    const int result = m_list.write_settings();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

} // namespace Tervalon
