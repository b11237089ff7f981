#include "AppTervalonDiary/cli/cmdinstance.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <ostream>

namespace Tervalon {

int CmdInstance::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    ZBDate date;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry))
        || iszbwarn(CliDiary::read_date(args[1], date)))
        return report_failure(context, zberrorvalue());
    if (!date.is_ok())
        return usage_error(context, *this, "DATE must be a date");
    int made = -1;
    if (iszbwarn(EntryRepeat::create_instance(diary, entry, date, -1, &made))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick))
        || iszbwarn(diary->complete_operation("Convert Repeat to Instance")))
        return report_failure(context, zberrorvalue());
    context.out << made << std::endl;
    return 0;
}

} // namespace Tervalon
