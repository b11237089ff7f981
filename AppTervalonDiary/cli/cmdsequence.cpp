#include "AppTervalonDiary/cli/cmdsequence.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <cstdlib>
#include <ostream>

namespace Tervalon {

int CmdSequence::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    bool dates = false;
    bool chain = false;
    std::vector<std::string> plain;
    for (const std::string& arg : args) {
        if (arg == "--dates")
            dates = true;
        else if (arg == "--chain")
            chain = true;
        else if (arg.compare(0, 2, "--") == 0)
            return usage_error(context, *this, "unknown option " + arg);
        else
            plain.push_back(arg);
    }
    if (plain.size() != 2)
        return usage_error(context, *this, "wrong number of arguments");
    char* end = nullptr;
    const long count = std::strtol(plain[1].c_str(), &end, 10);
    if (plain[1].empty() || !end || *end != 0)
        return usage_error(context, *this, "COUNT must be a whole number");
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, plain[0], entry)))
        return report_failure(context, zberrorvalue());
    // Out of an int's range reads as the largest, which the model refuses.
    const int n = count > EntryRepeat::C_MaxInstances ? EntryRepeat::C_MaxInstances + 1 : count < 0 ? -1 : int(count);
    std::vector<int> made;
    if (iszbwarn(EntryRepeat::create_sequence(diary, entry, n, dates, chain, &made))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->complete_operation("Create Sequence")))
        return report_failure(context, zberrorvalue());
    for (int id : made)
        context.out << id << std::endl;
    return 0;
}

} // namespace Tervalon
