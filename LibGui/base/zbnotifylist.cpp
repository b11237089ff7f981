#include "LibGui/base/zbnotifylist.h"
#include "LibDate/date/zbdateutils.h"

#include <algorithm>

namespace Tervalon {

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
    update();
    for (const Snooze& snooze : m_snooze)
        if (snooze.message == item.get_text() && snooze.id == item.get_object_id())
            return;
    const ZBDate& date = item.get_date();
    if (date.is_ok() && ZBDateUtils::now() < date) {
        if (!m_hasScheduled || date < m_scheduled.get_date()) {
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

void ZBNotifyList::update()
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
}

std::vector<ZBNotifyItem> ZBNotifyList::get_sorted_items() const
{
    std::vector<ZBNotifyItem> items = m_notification;
    std::stable_sort(items.begin(), items.end(),
                     [](const ZBNotifyItem& a, const ZBNotifyItem& b) { return a.get_priority() > b.get_priority(); });
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

} // namespace Tervalon
