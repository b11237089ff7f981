#include "LibDiary/diary/cal/zbcalmgr.h"
#include "LibDiary/diary/cal/zbcaldata.h"
#include "LibDiary/diary/zbdiary.h"

namespace Tervalon {

ZBCalMgr::ZBCalMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "calorie") {}

ZBCalData& ZBCalMgr::data() const
{
    return get_diary().calC();
}

} // namespace Tervalon
