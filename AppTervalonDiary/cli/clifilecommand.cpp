#include "AppTervalonDiary/cli/clifilecommand.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibDatabase/db/zbdatabase.h"

namespace Tervalon {

int CliFileCommand::run(CliContext& context)
{
    if (context.args.empty())
        return usage_error(context, *this, "no file given");
    m_file = context.args.front();
    std::vector<std::string> args(context.args.begin() + 1, context.args.end());
    if (int(args.size()) < min_args() || (max_args() >= 0 && int(args.size()) > max_args()))
        return usage_error(context, *this, "wrong number of arguments");
    std::unique_ptr<ZBDatabase> db(AppDiaryInfo::make_database());
    int result = writes() ? db->load(m_file, false) : db->read(m_file);
    if (iszbwarn(result))
        return report_failure(context, result);
    int status = run_on(context, *db, args);
    if (status == 0 && save_after()) {
        result = db->save(true, true, false);
        if (iszbwarn(result))
            status = report_failure(context, result);
    }
    db->unload();
    return status;
}

} // namespace Tervalon
