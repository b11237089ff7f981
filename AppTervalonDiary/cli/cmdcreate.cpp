#include "AppTervalonDiary/cli/cmdcreate.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibDatabase/db/zbdatabase.h"

#include <memory>
#include <ostream>

namespace Tervalon {

int CmdCreate::run(CliContext& context)
{
    if (context.args.size() != 1)
        return usage_error(context, *this, "expected exactly one file");
    std::unique_ptr<ZBDatabase> db(AppDiaryInfo::make_database());
    int result = db->create(context.args.front(), false);
    if (iszbwarn(result))
        return report_failure(context, result);
    context.out << "Created " << context.args.front() << std::endl;
    db->unload();
    return 0;
}

} // namespace Tervalon
