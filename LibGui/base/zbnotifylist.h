#pragma once

#include "LibDiary/diary/zbnotifyitem.h"

#include <string>
#include <vector>

namespace Tervalon {

// The findings of one round of checks and what changed since the last round:
// which items are new (to alert once), which were resolved, and the next item
// scheduled for later. It holds the logic only; a window shows it. Each
// database window owns one.
class ZBNotifyList {
public:
    // Starts a round: the current items become the previous ones, and all of
    // them count as resolved until the round adds them again.
    void reset();
    void add(const ZBNotifyItem& item);
    // Ends the snoozes whose time has passed.
    void update();
    // Hides an item (by message and object) until the given time.
    void snooze(const std::string& message, int id, const ZBDate& until);

    const std::vector<ZBNotifyItem>& get_items() const { return m_notification; }
    // The items of this round, highest priority first (in the order added on a tie).
    std::vector<ZBNotifyItem> get_sorted_items() const;
    std::vector<ZBNotifyItem> pop_new();
    std::vector<ZBNotifyItem> pop_removed();
    const ZBNotifyItem* get_scheduled() const { return m_hasScheduled ? &m_scheduled : nullptr; }
    // The highest scheme among the current items, -1 with none; text gets
    // the first message and how many more there are.
    int get_notify_state(std::string& text) const;

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

private:
    struct Snooze {
        std::string message;
        int id;
        ZBDate until;
    };
    static bool same(const ZBNotifyItem& a, const ZBNotifyItem& b)
    {
        return a.get_text() == b.get_text() && a.get_object_id() == b.get_object_id();
    }

    std::vector<ZBNotifyItem> m_notification;
    std::vector<ZBNotifyItem> m_previous;
    std::vector<ZBNotifyItem> m_new;
    std::vector<ZBNotifyItem> m_removed;
    ZBNotifyItem m_scheduled;
    bool m_hasScheduled = false;
    std::vector<Snooze> m_snooze;
    bool m_offline = false;
};

} // namespace Tervalon
