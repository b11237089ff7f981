#include "AppTervalonDiary/diary/timetypeinfo.h"
#include "AppTervalonDiary/diary/diary.h"

namespace Tervalon {

TimeTypeInfo::TimeTypeInfo(const Diary& diary, int timeType, const std::string& name)
    : m_diary(&diary), m_timeType(timeType), m_name(name)
{
}

ZBDuration TimeTypeInfo::available(const ZBDateSlot& slot, int resource)
{
    m_available = ZBDuration();
    const Resource* owner = resource >= 0 ? m_diary->get_resource_by_id(resource) : nullptr;
    if (!owner && m_diary->get_nresources() > 0)
        owner = m_diary->get_resource_by_index(0);
    if (!owner || !slot.is_ok())
        return m_available;
    // The free time is kept per time type under the type's name.
    const ZBDateSetGroup& group = owner->get_avail_time();
    for (int i = 0; i < group.get_ndatesets(); ++i)
        if (group.get_dateset_name_by_index(i) == m_name)
            m_available += group.get_dateset_by_index(i)->query_range(slot, -1);
    return m_available;
}

} // namespace Tervalon
