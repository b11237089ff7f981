#include "AppTervalonDiary/cli/cmdimport.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/taskimport.h"

#include <fstream>
#include <iterator>
#include <ostream>

namespace Tervalon {

int CmdImport::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    std::ifstream in(args[0], std::ios::binary);
    if (!in) {
        zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", args[0].c_str());
        return report_failure(context, zberrorvalue());
    }
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not read the file %s", args[0].c_str());
        return report_failure(context, zberrorvalue());
    }
    TaskImport import;
    // A refusal leaves the diary as it was read, and the file is not saved.
    if (iszbwarn(import.import(*diary, text)))
        return report_failure(context, zberrorvalue());
    for (const std::string& problem : import.get_problems())
        context.err << problem << std::endl;
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->complete_operation("Import Tasks")))
        return report_failure(context, zberrorvalue());
    context.out << import.get_summary() << std::endl;
    return 0;
}

} // namespace Tervalon
