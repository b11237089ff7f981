#pragma once

#include "LibDiary/diary/zbdiarymgr.h"

namespace Tervalon {

class ZBPrayerData;
class ZBDEntry;

// The prayer module's manager. It takes its place in the fan-out now; the prayer lists and the daily selection fill it in.
class ZBPrayerMgr : public ZBDiaryMgr {
public:
    explicit ZBPrayerMgr(ZBDiary& diary);

    ZBPrayerData& data() const;
};

} // namespace Tervalon
