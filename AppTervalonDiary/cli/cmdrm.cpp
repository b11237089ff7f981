#include "AppTervalonDiary/cli/cmdrm.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

namespace Tervalon {

int CmdRm::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry))
        || iszbwarn(diary->delete_object(entry->get_id(), "Delete Entry")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
