#include "AppTervalonDiary/cli/cmdrewrite.h"
#include "LibDatabase/db/zbdatabase.h"

#include <ostream>

namespace Tervalon {

int CmdRewrite::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    context.out << "Rewrote " << db.get_filename() << " (" << db.get_nobjects() << " objects)" << std::endl;
    return 0;
}

} // namespace Tervalon
