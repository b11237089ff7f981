#include "LibDiary/diary/zbdiarymgr.h"
#include "LibDiary/diary/zbdiary.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

ZBDiaryMgr::ZBDiaryMgr(ZBDiary& diary, const std::string& name) : m_diary(diary), m_name(name) {}

int ZBDiaryMgr::recalculate(ZBDatabase::E_RecalcLevel)
{
    return ZBErrC_ok;
}

int ZBDiaryMgr::update_feature(int)
{
    return ZBErrC_ok;
}

bool ZBDiaryMgr::has_user_data() const
{
    return false;
}

int ZBDiaryMgr::remap_id(int, int)
{
    return ZBErrC_ok;
}

int ZBDiaryMgr::pull_db_data(const ZBDiary&)
{
    return ZBErrC_ok;
}

int ZBDiaryMgr::initialise()
{
    return ZBErrC_ok;
}

int ZBDiaryMgr::generate_notify(std::vector<ZBNotifyItem>&)
{
    return ZBErrC_ok;
}

void ZBDiaryMgr::set_defaults(bool) {}

void ZBDiaryMgr::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDiaryMgr", out, indent);
    dump.add_entry("m_name", m_name);
    dump.write();
}

} // namespace Tervalon
