#pragma once

#include "LibDiary/diary/zbdiarymgr.h"
#include "LibDate/date/zbdateslot.h"

#include <vector>

namespace Tervalon {

class ZBEventData;
class ZBDEvent;
class ZBDEntry;

// Keeps the events of a diary: finding them by time, adding them, making the
// instances of a repeating one into events of their own, and the "today" and
// "now" notifications.
class ZBEventMgr : public ZBDiaryMgr {
public:
    // How far back an unacknowledged event still gives a notification.
    static constexpr int C_NotifyLookBack = 1209600;
    static constexpr int C_PriorityToday = 50;
    static constexpr int C_PriorityNow = 200;

    explicit ZBEventMgr(ZBDiary& diary);

    ZBEventData& data() const;

    bool has_user_data() const override;
    int generate_notify(std::vector<ZBNotifyItem>& out) override;

    ZBDEvent* get_event_id(int id) const;
    int add_event(ZBDBObject* parent, ZBDEvent*& out);
    // Every live event with an instance meeting the slot, by start.
    std::vector<ZBDEvent*> get_events(const ZBDateSlot& slot) const;
    int generate_sequence(ZBDEntry& event, int n, bool forward, bool keep);
};

} // namespace Tervalon
