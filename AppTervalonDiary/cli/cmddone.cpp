#include "AppTervalonDiary/cli/cmddone.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

namespace Tervalon {

int CmdDone::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    ZBDate date = ZBDateUtils::now();
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry))
        || (args.size() > 1 && iszbwarn(CliDiary::read_date(args[1], date))))
        return report_failure(context, zberrorvalue());
    if (iszbwarn(entry->mark_complete(date)) || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick))
        || iszbwarn(diary->complete_operation("Mark Complete")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
