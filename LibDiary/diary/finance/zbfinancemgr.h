#pragma once

#include "LibDiary/diary/zbdiarymgr.h"

namespace Tervalon {

class ZBFinanceData;
class ZBDEntry;

// The finance module's manager. It takes its place in the fan-out now; accounts, budgets and transactions fill it in.
class ZBFinanceMgr : public ZBDiaryMgr {
public:
    explicit ZBFinanceMgr(ZBDiary& diary);

    ZBFinanceData& data() const;

    // Makes the next instances of a repeating transaction; none yet, so okNotHandled.
    virtual int generate_sequence(ZBDEntry& entry, int n, bool forward, bool keep);
};

} // namespace Tervalon
