#include "AppTervalonDiary/cli/cmdsession.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/diary/diary.h"

#include <ostream>

namespace Tervalon {

int CmdSession::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"from", "duration", "resource"}, error))
        return usage_error(context, *this, error);
    if (options.positional().size() != 1 || !options.has("from") || !options.has("duration"))
        return usage_error(context, *this, "an entry, --from and --duration are needed");
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    ZBDate from;
    ZBDuration duration;
    int resource = -1;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, options.positional()[0], entry))
        || iszbwarn(CliDiary::read_date(options.get("from"), from))
        || iszbwarn(CliDiary::read_duration(options.get("duration"), duration))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(CmdSessions::check_session_type(*entry)))
        return report_failure(context, zberrorvalue());
    int fallback = entry->get_props().get_resource_calc();
    if (!diary->get_resource_by_id(fallback))
        fallback = diary->get_default_resource_id();
    if (iszbwarn(CmdSessions::resource_option(*diary, options, fallback, resource))
        || iszbwarn(entry->edit_spent().add_session(from, duration, resource)))
        return report_failure(context, zberrorvalue());
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    context.out << "Recorded " << duration.to_string() << " on " << CmdSessions::entry_name(*entry) << " from "
                << CmdSessions::date_text(from) << " for " << CmdSessions::resource_name(*diary, resource) << "; "
                << entry->get_spent().get_time_spent().to_string() << " spent in all." << std::endl;
    return 0;
}

} // namespace Tervalon
