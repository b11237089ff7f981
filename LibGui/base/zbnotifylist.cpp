#include "LibGui/base/zbnotifylist.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibDatabase/db/zbdbchecker.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cstdlib>

namespace Tervalon {

const char* const ZBNotifyList::C_UseSystemTray = "UseSystemTray";

ZBNotifyList::ZBNotifyList() = default;

ZBNotifyList::~ZBNotifyList() = default;

void ZBNotifyList::initialise()
{
    // The data check's findings are many and rarely urgent: a row each, no alert.
    if (!get_scheme_id(C_NotifySystem))
        add_scheme(new ZBNotifyScheme(C_NotifySystem, "Data check", ZBNotifyScheme::E_List, std::string(), true,
                                      {100, 88, 88}));
    if (!get_scheme_id(C_NotifyNotes))
        add_scheme(new ZBNotifyScheme(C_NotifyNotes, "Notes", ZBNotifyScheme::E_List, std::string(), true,
                                      {100, 98, 80}));
    read_settings();
}

void ZBNotifyList::read_settings()
{
    for (const std::unique_ptr<ZBNotifyScheme>& scheme : m_scheme) {
        const std::string key = scheme->scheme_name();
        if (zbparam().is_system_value_set(key))
            scheme->set_response(zbparam().get_system_value(key, int(scheme->get_response())));
    }
    if (zbparam().is_system_value_set(C_UseSystemTray))
        m_useTray = zbparam().get_system_value(C_UseSystemTray, 1) != 0;
}

int ZBNotifyList::write_settings() const
{
    for (const std::unique_ptr<ZBNotifyScheme>& scheme : m_scheme) {
        const int result = zbparam().set_system_value(scheme->scheme_name(), scheme->get_response());
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    const int result = zbparam().set_system_value(C_UseSystemTray, m_useTray ? 1 : 0);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBNotifyList::add_scheme(ZBNotifyScheme* scheme)
{
    std::unique_ptr<ZBNotifyScheme> owned(scheme);
    owned->set_capabilities(m_canPrompt, m_canPopup, m_canBadge);
    const std::string key = owned->scheme_name();
    if (zbparam().is_system_value_set(key))
        owned->set_response(zbparam().get_system_value(key, int(owned->get_response())));
    for (std::unique_ptr<ZBNotifyScheme>& known : m_scheme)
        if (known->get_id() == owned->get_id()) {
            known = std::move(owned);
            return;
        }
    m_scheme.push_back(std::move(owned));
}

const ZBNotifyScheme* ZBNotifyList::get_scheme_no(int n) const
{
    return n >= 0 && n < get_nschemes() ? m_scheme[size_t(n)].get() : nullptr;
}

ZBNotifyScheme* ZBNotifyList::edit_scheme_no(int n)
{
    return n >= 0 && n < get_nschemes() ? m_scheme[size_t(n)].get() : nullptr;
}

const ZBNotifyScheme* ZBNotifyList::get_scheme_id(int id) const
{
    for (const std::unique_ptr<ZBNotifyScheme>& scheme : m_scheme)
        if (scheme->get_id() == id)
            return scheme.get();
    return nullptr;
}

void ZBNotifyList::set_capabilities(bool prompt, bool popup, bool badge)
{
    m_canPrompt = prompt;
    m_canPopup = popup;
    m_canBadge = badge;
    for (std::unique_ptr<ZBNotifyScheme>& scheme : m_scheme)
        scheme->set_capabilities(prompt, popup, badge);
}

int ZBNotifyList::get_response(const ZBNotifyItem& item) const
{
    const ZBNotifyScheme* scheme = get_scheme_id(item.get_scheme());
    return scheme ? scheme->get_response() : int(ZBNotifyScheme::E_Badge);
}

void ZBNotifyList::reset()
{
    m_previous.clear();
    m_removed.clear();
    m_hasScheduled = false;
    m_scheduled = ZBNotifyItem();
    m_previous = m_notification;
    m_removed = m_notification;
    m_notification.clear();
    m_new.clear();
}

void ZBNotifyList::add(const ZBNotifyItem& item)
{
    expire_snoozes();
    for (const Snooze& snooze : m_snooze)
        if (snooze.message == item.get_text() && snooze.id == item.get_object_id())
            return;
    const ZBDate& date = item.get_date();
    if (date.is_ok() && ZBDateUtils::now() < date) {
        // Only a scheme that can interrupt or count needs a reminder set for later.
        if ((!m_hasScheduled || date < m_scheduled.get_date()) && shows_badge(item)) {
            m_scheduled = item;
            m_hasScheduled = true;
        }
        return;
    }
    const bool seen = std::any_of(m_previous.begin(), m_previous.end(),
                                  [&](const ZBNotifyItem& other) { return same(item, other); });
    if (seen)
        m_removed.erase(std::remove_if(m_removed.begin(), m_removed.end(),
                                       [&](const ZBNotifyItem& other) { return same(item, other); }),
                        m_removed.end());
    else
        m_new.push_back(item);
    m_notification.push_back(item);
}

void ZBNotifyList::add_check_items(const ZBDBChecker& checker)
{
    const int count = std::min(checker.get_nitems(), int(C_MaxCheckItems));
    for (int i = 0; i < count; ++i) {
        const ZBDBCheckItem* check = checker.get_item_by_index(i);
        if (check)
            add(ZBNotifyItem(C_NotifySystem, C_CheckPriority, check->get_short_message(), check->get_id(),
                             ZBDate(ZBDate::E_Blank)));
    }
}

void ZBNotifyList::update()
{
    expire_snoozes();
}

void ZBNotifyList::expire_snoozes()
{
    const ZBDate now = ZBDateUtils::now();
    for (size_t i = m_snooze.size(); i-- > 0;)
        if (m_snooze[i].until <= now)
            m_snooze.erase(m_snooze.begin() + long(i));
}

void ZBNotifyList::snooze(const std::string& message, int id, const ZBDate& until)
{
    m_snooze.push_back({message, id, until});
    for (size_t i = m_notification.size(); i-- > 0;) {
        const ZBNotifyItem& item = m_notification[i];
        if (item.get_text() == message && item.get_object_id() == id) {
            m_removed.push_back(item);
            m_notification.erase(m_notification.begin() + long(i));
        }
    }
    // An item snoozed before its first showing is no news any more.
    m_new.erase(std::remove_if(m_new.begin(), m_new.end(),
                               [&](const ZBNotifyItem& item) {
                                   return item.get_text() == message && item.get_object_id() == id;
                               }),
                m_new.end());
}

void ZBNotifyList::dismiss_today(const ZBNotifyItem& item)
{
    // Two seconds past the day's last second is safely inside tomorrow.
    const ZBDate midnight = ZBDateUtils::start_day(ZBDateUtils::end_day(ZBDateUtils::now()) + ZBDuration(2));
    snooze(item.get_text(), item.get_object_id(), midnight);
}

void ZBNotifyList::snooze_hour(const ZBNotifyItem& item)
{
    snooze(item.get_text(), item.get_object_id(), ZBDateUtils::now() + ZBDuration(3600));
}

std::vector<ZBNotifyItem> ZBNotifyList::get_sorted_items() const
{
    std::vector<ZBNotifyItem> items = m_notification;
    std::stable_sort(items.begin(), items.end(),
                     [](const ZBNotifyItem& a, const ZBNotifyItem& b) { return a.get_priority() > b.get_priority(); });
    return items;
}

std::vector<ZBNotifyItem> ZBNotifyList::get_list_items() const
{
    std::vector<ZBNotifyItem> items;
    for (const ZBNotifyItem& item : m_notification)
        if (shows_list(item))
            items.push_back(item);
    std::stable_sort(items.begin(), items.end(), [](const ZBNotifyItem& a, const ZBNotifyItem& b) {
        if (a.get_scheme() != b.get_scheme())
            return a.get_scheme() > b.get_scheme();
        return a.get_priority() > b.get_priority();
    });
    return items;
}

std::vector<ZBNotifyItem> ZBNotifyList::pop_new()
{
    std::vector<ZBNotifyItem> items;
    items.swap(m_new);
    return items;
}

std::vector<ZBNotifyItem> ZBNotifyList::pop_removed()
{
    std::vector<ZBNotifyItem> items;
    items.swap(m_removed);
    return items;
}

int ZBNotifyList::get_notify_state(std::string& text) const
{
    text.clear();
    if (m_notification.empty())
        return -1;
    int state = -1;
    for (const ZBNotifyItem& item : m_notification)
        state = std::max(state, item.get_scheme());
    text = m_notification.front().get_text();
    if (m_notification.size() > 1)
        text += "\nAnd " + std::to_string(m_notification.size() - 1) + " more warnings.";
    return state;
}

int ZBNotifyList::get_badge_count() const
{
    return int(std::count_if(m_notification.begin(), m_notification.end(),
                             [this](const ZBNotifyItem& item) { return shows_badge(item); }));
}

bool ZBNotifyList::systray_available() const
{
    if (!m_trayIcon.empty())
        return true;
    return std::any_of(m_scheme.begin(), m_scheme.end(),
                       [](const std::unique_ptr<ZBNotifyScheme>& scheme) { return !scheme->get_icon().empty(); });
}

void ZBNotifyList::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBNotifyList", out, indent);
    dump.add("m_notification.size", m_notification.size());
    dump.add("m_previous.size", m_previous.size());
    dump.add("m_new.size", m_new.size());
    dump.add("m_removed.size", m_removed.size());
    dump.add("m_hasScheduled", m_hasScheduled);
    dump.add("m_snooze.size", m_snooze.size());
    dump.add("m_scheme.size", m_scheme.size());
    dump.add_entry("m_trayIcon", m_trayIcon);
    dump.add("m_useTray", m_useTray);
    dump.write();
    for (const std::unique_ptr<ZBNotifyScheme>& scheme : m_scheme)
        scheme->dump(out, indent + 1);
}

} // namespace Tervalon
