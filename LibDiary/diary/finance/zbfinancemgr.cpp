#include "LibDiary/diary/finance/zbfinancemgr.h"
#include "LibDiary/diary/finance/zbfinancedata.h"
#include "LibDiary/diary/zbdiary.h"

namespace Tervalon {

ZBFinanceMgr::ZBFinanceMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "finance") {}

ZBFinanceData& ZBFinanceMgr::data() const
{
    return get_diary().finC();
}

int ZBFinanceMgr::generate_sequence(ZBDEntry&, int, bool, bool)
{
    return ZBErrC_okNotHandled;
}

} // namespace Tervalon
