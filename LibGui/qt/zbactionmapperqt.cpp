#include "LibGui/qt/zbactionmapperqt.h"
#include "LibGui/base/zbactionmgr.h"
#include "LibGui/qt/zbwindowqt.h"
#include "LibCore/error/zberror.h"

#include <QAction>
#include <QMenu>
#include <QToolBar>

namespace Tervalon {

const char* const ZBActionMapperQt::C_Unavail = " - Unavailable: ";

ZBActionMapperQt::ZBActionMapperQt() = default;
ZBActionMapperQt::~ZBActionMapperQt() = default;

void ZBActionMapperQt::initialise(ZBActionMgr& manager)
{
    m_manager = &manager;
}

void ZBActionMapperQt::add_action(const std::string& name, QAction* action)
{
    m_action.emplace_back(name, action);
}

std::string ZBActionMapperQt::get_tag(QAction* action) const
{
    for (const auto& entry : m_action)
        if (entry.second == action)
            return entry.first;
    return std::string();
}

QAction* ZBActionMapperQt::get_action(const std::string& name) const
{
    for (const auto& entry : m_action)
        if (entry.first == name)
            return entry.second;
    return nullptr;
}

bool ZBActionMapperQt::is_available(QAction* action, int id, const ZBActionParam& param, std::string& reason) const
{
    if (!m_manager) {
        reason = "No action manager set.";
        return false;
    }
    const std::string name = get_tag(action);
    if (name.empty()) {
        reason = "Could not find the action.";
        return false;
    }
    reason.clear();
    return m_manager->is_available(name, ZBId(id, -1, -1), param, reason);
}

bool ZBActionMapperQt::is_available(QAction* action, int id, const ZBActionParam& param) const
{
    std::string reason;
    return is_available(action, id, param, reason);
}

void ZBActionMapperQt::enable_action(QAction* action, int id, const ZBActionParam& param, bool force,
                                     const std::string& reason) const
{
    const QString toolTip = ZBWindowQt::strip_unavailable(action->toolTip());
    const QString statusTip = ZBWindowQt::strip_unavailable(action->statusTip());
    std::string why = reason;
    if (!force && is_available(action, id, param, why)) {
        action->setToolTip(toolTip);
        action->setStatusTip(statusTip);
        action->setEnabled(true);
        return;
    }
    const QString suffix = C_Unavail + QString::fromStdString(why);
    action->setToolTip(toolTip + suffix);
    action->setStatusTip(statusTip + suffix);
    action->setEnabled(false);
}

int ZBActionMapperQt::run(QAction* action, int id, const ZBActionParam& param) const
{
    std::string reason;
    if (!is_available(action, id, param, reason))
        return zbwarnuser(ZBErrC_InvalidState, ZBLOC, "%s", reason.c_str());
    int result = m_manager->run_command(get_tag(action), ZBId(id, -1, -1), param);
    return iszbwarn(result) ? zbpass(ZBLOC) : result;
}

void ZBActionMapperQt::add_toolbar(QToolBar& bar, QAction* action, int id, const ZBActionParam& param) const
{
    if (is_available(action, id, param))
        bar.addAction(action);
}

void ZBActionMapperQt::add_menu(QMenu& menu, QAction* action, int id, const ZBActionParam& param) const
{
    if (is_available(action, id, param))
        menu.addAction(action);
}

void ZBActionMapperQt::add_menu(QMenu& menu, QAction* action) const
{
    if (action->isEnabled())
        menu.addAction(action);
}

} // namespace Tervalon
