#include "AppTervalonDiary/cli/cmdstop.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>

namespace Tervalon {

int CmdStop::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"now"}, error) || !options.positional().empty())
        return usage_error(context, *this, error.empty() ? "wrong number of arguments" : error);
    CmdSessions::Clock clock;
    Diary* diary = nullptr;
    if (iszbwarn(clock.set(options)) || iszbwarn(CliDiary::get_diary(db, diary))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    const DiaryEntry* entry = diary->get_session_entry();
    if (!entry)
        return report_failure(context, zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no current active session."));
    const ZBDate since = entry->get_spent().get_current_session().m_start;
    const ZBDate now = ZBDateUtils::now();
    diary->stop_session();
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    context.out << "Stopped the session on " << CmdSessions::entry_name(*entry) << " after "
                << (since < now ? now - since : ZBDuration()).to_string() << "; "
                << entry->get_spent().get_time_spent().to_string() << " spent in all." << std::endl;
    return 0;
}

} // namespace Tervalon
