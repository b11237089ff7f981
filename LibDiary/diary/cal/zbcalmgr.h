#pragma once

#include "LibDiary/diary/zbdiarymgr.h"

namespace Tervalon {

class ZBCalData;
class ZBDEntry;

// The calorie module's manager. It takes its place in the fan-out now; foods, records and targets fill it in.
class ZBCalMgr : public ZBDiaryMgr {
public:
    explicit ZBCalMgr(ZBDiary& diary);

    ZBCalData& data() const;
};

} // namespace Tervalon
