#include "AppTervalonDiary/cli/cmddump.h"
#include "LibDatabase/db/zbdatabase.h"

#include <ostream>

namespace Tervalon {

int CmdDump::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    db.dump(context.out, 0);
    for (int i = 0; i < db.get_nobjects(); ++i)
        db.get_object_by_index(i)->dump(context.out, 0);
    context.out.flush();
    return 0;
}

} // namespace Tervalon
