#include "LibGui/base/zbactionmgr.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

int ZBActionMgr::run_command(const std::string&, const ZBId&, const ZBActionParam&)
{
    return ZBErrC_okNotHandled;
}

bool ZBActionMgr::is_available(const std::string&, const ZBId&, const ZBActionParam&, std::string& reason)
{
    reason.clear();
    return true;
}

} // namespace Tervalon
