#include "AppTervalonDiary/diary/recalculatemgr.h"

namespace Tervalon {

void RecalculateMgr::initialise()
{
    m_pending = true;
    m_immediate = false;
}

void RecalculateMgr::force_recalculate(bool, bool immediate)
{
    m_pending = true;
    m_immediate = m_immediate || immediate;
}

} // namespace Tervalon
