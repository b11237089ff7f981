#include "AppTervalonDiary/cli/cmdstart.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>

namespace Tervalon {

int CmdStart::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"resource", "now"}, error) || options.positional().size() != 1)
        return usage_error(context, *this, error.empty() ? "wrong number of arguments" : error);
    CmdSessions::Clock clock;
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    int resource = -1;
    if (iszbwarn(clock.set(options)) || iszbwarn(CliDiary::get_diary(db, diary))
        || iszbwarn(CliDiary::get_entry(*diary, options.positional()[0], entry))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(CmdSessions::check_session_type(*entry))
        || iszbwarn(CmdSessions::resource_option(*diary, options, -1, resource)))
        return report_failure(context, zberrorvalue());
    if (diary->get_session_entry() == entry)
        return report_failure(context, zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A session is already active."));
    if (entry->is_complete())
        return report_failure(context, zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The entry is complete."));
    std::string text;
    if (const DiaryEntry* previous = diary->get_session_entry()) {
        const ZBDate since = previous->get_spent().get_current_session().m_start;
        text += "Stopped the session on " + CmdSessions::entry_name(*previous) + " after "
                + (ZBDateUtils::now() - since).to_string() + ".\n";
    }
    if (iszbwarn(diary->start_session(entry->get_id(), resource))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    const ZBDateSetEntry& running = entry->get_spent().get_current_session();
    text += "Started a session on " + CmdSessions::entry_name(*entry) + " for "
            + CmdSessions::resource_name(*diary, running.m_type) + " at " + CmdSessions::date_text(running.m_start)
            + ".\n";
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
