#include "AppTervalonDiary/cli/cmdcheck.h"
#include "LibDatabase/db/zbdatabase.h"

#include <ostream>

namespace Tervalon {

int CmdCheck::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    int deleted = 0;
    for (int i = 0; i < db.get_nobjects(); ++i)
        deleted += db.get_object_by_index(i)->is_deleted();
    context.out << "Application type: " << db.get_app_type() << "\n"
                << "Objects: " << db.get_nobjects() - deleted << "\n";
    if (deleted)
        context.out << "Deleted objects kept: " << deleted << "\n";
    context.out.flush();
    return 0;
}

} // namespace Tervalon
