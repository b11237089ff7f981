#pragma once

#include <QString>

#include <string>
#include <utility>
#include <vector>

class QAction;
class QMenu;
class QToolBar;

namespace Tervalon {

class ZBActionMgr;
class ZBActionParam;

// The table from the logic side's action names to a window's QActions. It
// asks the action manager whether each action can run, greys out what
// cannot and says why in the tips; context menus and bars get only what can
// run now.
class ZBActionMapperQt {
public:
    static const char* const C_Unavail; // " - Unavailable: "

    ZBActionMapperQt();
    virtual ~ZBActionMapperQt();

    void initialise(ZBActionMgr& manager);
    ZBActionMgr* get_manager() const { return m_manager; }
    void add_action(const std::string& name, QAction* action);
    // The action's name, or empty when it is not in the table.
    std::string get_tag(QAction* action) const;
    QAction* get_action(const std::string& name) const;
    int get_nactions() const { return int(m_action.size()); }

    bool is_available(QAction* action, int id, const ZBActionParam& param, std::string& reason) const;
    bool is_available(QAction* action, int id, const ZBActionParam& param) const;
    // Enables the action with clean tips, or disables it with the reason
    // appended to them; a reason already there is replaced, never repeated.
    void enable_action(QAction* action, int id, const ZBActionParam& param, bool force = false,
                       const std::string& reason = std::string()) const;
    // Runs the action's command through the manager.
    int run(QAction* action, int id, const ZBActionParam& param) const;

    void add_toolbar(QToolBar& bar, QAction* action, int id, const ZBActionParam& param) const;
    void add_menu(QMenu& menu, QAction* action, int id, const ZBActionParam& param) const;
    void add_menu(QMenu& menu, QAction* action) const;

private:
    ZBActionMgr* m_manager = nullptr;
    std::vector<std::pair<std::string, QAction*>> m_action;
};

} // namespace Tervalon
