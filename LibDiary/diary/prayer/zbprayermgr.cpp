#include "LibDiary/diary/prayer/zbprayermgr.h"
#include "LibDiary/diary/prayer/zbprayerdata.h"
#include "LibDiary/diary/zbdiary.h"

namespace Tervalon {

ZBPrayerMgr::ZBPrayerMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "prayer") {}

ZBPrayerData& ZBPrayerMgr::data() const
{
    return get_diary().prayerC();
}

} // namespace Tervalon
