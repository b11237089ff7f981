#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdiary.h"
#include "LibDiary/diary/zbeventdata.h"
#include "LibDate/date/zbdateutils.h"

#include <algorithm>
#include <memory>

namespace Tervalon {

ZBEventMgr::ZBEventMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "event") {}

ZBEventData& ZBEventMgr::data() const
{
    return get_diary().eventC();
}

bool ZBEventMgr::has_user_data() const
{
    const ZBDiary& diary = get_diary();
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        const ZBDBObject* object = diary.get_object_by_index(i);
        if (!object->is_deleted() && dynamic_cast<const ZBDEvent*>(object))
            return true;
    }
    return false;
}

ZBDEvent* ZBEventMgr::get_event_id(int id) const
{
    return id < 0 ? nullptr : dynamic_cast<ZBDEvent*>(get_diary().get_object_by_id(id));
}

int ZBEventMgr::add_event(ZBDBObject* parent, ZBDEvent*& out)
{
    out = nullptr;
    auto event = std::make_unique<ZBDEvent>();
    if (iszbwarn(get_diary().add_object(event.get(), parent ? parent : &get_diary(), ZBDiary::C_EventTag,
                                        std::string(), -1, std::string())))
        return zbpass(ZBLOC);
    out = event.release();
    return ZBErrC_ok;
}

namespace {
// The slot an event occupies for the purpose of meeting another: an instant
// event (no end) occupies its start.
ZBDateSlot occupied(const ZBDateSlot& slot)
{
    return slot.m_end.is_ok() ? slot : ZBDateSlot(slot.m_start, slot.m_start);
}

bool meets(const ZBDateSlot& a, const ZBDateSlot& b)
{
    return !(a.m_end < b.m_start) && !(b.m_end < a.m_start);
}
} // namespace

std::vector<ZBDEvent*> ZBEventMgr::get_events(const ZBDateSlot& slot) const
{
    std::vector<ZBDEvent*> events;
    const ZBDiary& diary = get_diary();
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        ZBDEvent* event = dynamic_cast<ZBDEvent*>(diary.get_object_by_index(i));
        if (!event || event->is_deleted() || !event->get_time().m_start.is_ok())
            continue;
        bool hit = meets(occupied(event->get_time()), slot);
        if (!hit && event->is_repeating()) {
            std::vector<ZBDateSlot> instances;
            event->get_repeat().generate_slots(event->get_time(), slot, ZBDateRepeat::C_MaxSteps, event, instances);
            for (const ZBDateSlot& one : instances)
                hit = hit || meets(occupied(one), slot);
        }
        if (hit)
            events.push_back(event);
    }
    std::stable_sort(events.begin(), events.end(), &ZBDEvent::compare_date);
    return events;
}

// One item per event: for a repeating one, its latest instance in the range.
int ZBEventMgr::generate_notify(std::vector<ZBNotifyItem>& out)
{
    const ZBDate now = ZBDateUtils::now();
    const ZBDateSlot range(now - ZBDuration(C_NotifyLookBack), ZBDateUtils::end_day(now));
    for (ZBDEvent* event : get_events(range)) {
        ZBDateSlot instance = event->get_instance(range.m_end);
        if (!meets(occupied(instance), range) || event->is_acknowleged(instance))
            continue;
        if (instance.m_start > now)
            out.emplace_back(ZBDiary::C_NotifyEventToday, C_PriorityToday, "Event Today: " + event->get_summary(),
                             event->get_id(), instance.m_start);
        else
            out.emplace_back(ZBDiary::C_NotifyEventNow, C_PriorityNow, "Event Now: " + event->get_summary(),
                             event->get_id(), instance.m_start);
    }
    return ZBErrC_ok;
}

// The instances become events of their own beside the original; they carry
// no repeat, so that each can be moved or acknowledged alone.
int ZBEventMgr::generate_sequence(ZBDEntry& entry, int n, bool forward, bool)
{
    ZBDEvent* event = dynamic_cast<ZBDEvent*>(&entry);
    if (!event)
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to ZBDEvent failed.");
    if (!event->is_repeating() || n <= 0 || !forward)
        return ZBErrC_okNotHandled;
    const ZBDateSlot seed = event->get_time();
    std::vector<ZBDateSlot> instances;
    // The horizon is the rule's own end, or open; the count bounds it.
    const ZBDateSlot range(seed.m_start, event->get_repeat().get_range_end());
    if (iszbwarn(event->get_repeat().generate_slots(seed, range, n + 1, event, instances)))
        return zbpass(ZBLOC);
    ZBDiary& diary = get_diary();
    ZBDBObject* parent = diary.get_object_by_id(event->get_parent_id());
    int made = 0;
    for (const ZBDateSlot& slot : instances) {
        if (!(seed.m_start < slot.m_start))
            continue;
        if (made == n)
            break;
        auto instance = std::make_unique<ZBDEvent>();
        instance->clone_values(*event);
        instance->set_time(slot);
        instance->set_ack_time(ZBDate(ZBDate::E_Blank));
        instance->set_specid(event->get_specid());
        if (iszbwarn(diary.add_object(instance.get(), parent ? parent : &diary, event->get_obj_container_tag(),
                                      event->get_member_tag(), event->get_specid(), std::string())))
            return zbpass(ZBLOC);
        instance.release();
        ++made;
    }
    return made > 0 ? ZBErrC_ok : ZBErrC_okNotHandled;
}

} // namespace Tervalon
