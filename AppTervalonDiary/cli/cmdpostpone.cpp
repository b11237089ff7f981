#include "AppTervalonDiary/cli/cmdpostpone.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

namespace Tervalon {

int CmdPostpone::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry)))
        return report_failure(context, zberrorvalue());
    // A task's due moves with its start-after; an appointment keeps its length.
    const std::string endText = entry->get_entrytype() == 'T' ? args[1] : std::string();
    if (iszbwarn(entry->postpone(args[1], endText, 0)) || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick))
        || iszbwarn(diary->complete_operation("Postpone")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
