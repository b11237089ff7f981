#include "AppTervalonDiary/cli/cmdset.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

namespace Tervalon {

int CmdSet::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry))
        || iszbwarn(CliDiary::set_field(*diary, *entry, args[1], args[2]))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->complete_operation("Edit Entry")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
