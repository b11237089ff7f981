#include "LibDatabase/db/zbdbmanager.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/param/zbparam.h"

namespace Tervalon {

const char* const ZBDBManager::C_AutoSave = "AutoSave";
const char* const ZBDBManager::C_Backups = "Backups";
const char* const ZBDBManager::C_CompSeparator = ",.-;:/";

int ZBDBManager::do_autosave(bool verify)
{
    if (!m_db || !m_db->is_loaded() || !m_db->get_autosave() || !m_db->needs_save())
        return ZBErrC_okNotHandled;
    if (iszbwarn(m_db->save(true, false, verify)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDBManager::apply_settings()
{
    if (!m_db || !has_zbparam())
        return;
    m_db->set_autosave(zbparam().get_system_value(C_AutoSave, 1) != 0);
    m_db->set_backup_count(zbparam().get_system_value(C_Backups, m_db->get_backup_count()));
}

} // namespace Tervalon
