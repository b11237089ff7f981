#pragma once

#include "LibDiary/diary/zbnotifyitem.h"
#include "LibGui/base/zbnotifyscheme.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDBChecker;

// The findings of one round of checks and what changed since the last round:
// which items are new (to alert once), which were resolved, and the next item
// scheduled for later; with the schemes that say how each kind is shown, and
// the snoozes the user asked for. It holds the logic only; a window shows it.
// Each database window owns one.
class ZBNotifyList {
public:
    // The schemes of the database's own findings: the data check and notes.
    static constexpr int C_NotifySystem = 1000;
    static constexpr int C_NotifyNotes = 1001;
    // More check findings than this are not news item by item.
    static constexpr int C_MaxCheckItems = 100;
    static constexpr double C_CheckPriority = 300.0;
    // The parameter store's key of the tray flag.
    static const char* const C_UseSystemTray;

    ZBNotifyList();
    virtual ~ZBNotifyList();
    ZBNotifyList(const ZBNotifyList&) = delete;
    ZBNotifyList& operator=(const ZBNotifyList&) = delete;

    // Adds the schemes of the database's own findings (once) and reads the settings.
    void initialise();
    // Reads each scheme's choice and the tray flag from the parameter store.
    void read_settings();
    int write_settings() const;

    // Takes ownership; a scheme of an id already known replaces it. Its
    // stored choice, if any, is applied at once.
    void add_scheme(ZBNotifyScheme* scheme);
    int get_nschemes() const { return int(m_scheme.size()); }
    const ZBNotifyScheme* get_scheme_no(int n) const;
    ZBNotifyScheme* edit_scheme_no(int n);
    // The scheme of the id, or null.
    const ZBNotifyScheme* get_scheme_id(int id) const;
    // What the platform can do, for every scheme present and to come.
    void set_capabilities(bool prompt, bool popup, bool badge);

    // Starts a round: the current items become the previous ones, and all of
    // them count as resolved until the round adds them again.
    void reset();
    void add(const ZBNotifyItem& item);
    // The first C_MaxCheckItems findings of the data check, under the system scheme.
    void add_check_items(const ZBDBChecker& checker);
    // Ends the snoozes whose time has passed; a window's list also shows the round.
    virtual void update();
    void expire_snoozes();
    // Hides an item (by message and object) until the given time.
    void snooze(const std::string& message, int id, const ZBDate& until);
    // Hides it until midnight, or for an hour.
    void dismiss_today(const ZBNotifyItem& item);
    void snooze_hour(const ZBNotifyItem& item);

    const std::vector<ZBNotifyItem>& get_items() const { return m_notification; }
    // The items of this round, highest priority first (in the order added on a tie).
    std::vector<ZBNotifyItem> get_sorted_items() const;
    // The items the list shows, highest scheme first, then by priority.
    std::vector<ZBNotifyItem> get_list_items() const;
    std::vector<ZBNotifyItem> pop_new();
    std::vector<ZBNotifyItem> pop_removed();
    const ZBNotifyItem* get_scheduled() const { return m_hasScheduled ? &m_scheduled : nullptr; }
    // The highest scheme among the current items, -1 with none; text gets
    // the first message and how many more there are.
    int get_notify_state(std::string& text) const;
    // The current items whose scheme counts on the badge.
    int get_badge_count() const;

    // The choice that governs the item: its scheme's, or a plain list row
    // for a scheme nobody registered.
    int get_response(const ZBNotifyItem& item) const;
    bool shows_prompt(const ZBNotifyItem& item) const { return get_response(item) == ZBNotifyScheme::E_Prompt; }
    bool shows_popup(const ZBNotifyItem& item) const { return get_response(item) == ZBNotifyScheme::E_Popup; }
    bool shows_badge(const ZBNotifyItem& item) const { return get_response(item) >= ZBNotifyScheme::E_Badge; }
    bool shows_list(const ZBNotifyItem& item) const { return get_response(item) >= ZBNotifyScheme::E_List; }

    // A tray is worth offering when there is an icon to put in it.
    bool systray_available() const;
    const std::string& get_trayicon() const { return m_trayIcon; }
    void set_trayicon(const std::string& path) { m_trayIcon = path; }
    bool get_usetray() const { return m_useTray; }
    void set_usetray(bool on) { m_useTray = on; }

    // Whether the entries add reminders for later with their dates.
    bool offline_notifications() const { return m_offline; }
    void set_offline_notifications(bool on) { m_offline = on; }

    // a's priority is not above b's: the dialog's order, highest first.
    static bool compare_priority(const ZBNotifyItem& a, const ZBNotifyItem& b)
    {
        return !(a.get_priority() > b.get_priority());
    }
    static bool compare_scheme(const ZBNotifyItem& a, const ZBNotifyItem& b)
    {
        return a.get_scheme() >= b.get_scheme();
    }
    static bool same(const ZBNotifyItem& a, const ZBNotifyItem& b)
    {
        return a.get_text() == b.get_text() && a.get_object_id() == b.get_object_id();
    }

    void dump(std::ostream& out, int indent) const;

private:
    struct Snooze {
        std::string message;
        int id;
        ZBDate until;
    };

    std::vector<ZBNotifyItem> m_notification;
    std::vector<ZBNotifyItem> m_previous;
    std::vector<ZBNotifyItem> m_new;
    std::vector<ZBNotifyItem> m_removed;
    ZBNotifyItem m_scheduled;
    bool m_hasScheduled = false;
    std::vector<Snooze> m_snooze;
    std::vector<std::unique_ptr<ZBNotifyScheme>> m_scheme;
    std::string m_trayIcon;
    bool m_useTray = true;
    bool m_offline = false;
    bool m_canPrompt = true;
    bool m_canPopup = true;
    bool m_canBadge = true;
};

} // namespace Tervalon
