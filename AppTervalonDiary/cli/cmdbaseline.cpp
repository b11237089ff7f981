#include "AppTervalonDiary/cli/cmdbaseline.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/diary/diary.h"

#include <ostream>

namespace Tervalon {

int CmdBaseline::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    // --hours and --date stand alone; the options with a value go to the parser.
    int saves = 0;
    bool withDates = false;
    std::vector<std::string> rest;
    for (const std::string& arg : args) {
        if (arg == "--hours" || arg == "--date") {
            ++saves;
            withDates = arg == "--date";
        } else {
            rest.push_back(arg);
        }
    }
    CliOptions options;
    std::string error;
    if (!options.parse(rest, {"auto", "now"}, error))
        return usage_error(context, *this, error);
    if (options.positional().size() != 1)
        return usage_error(context, *this, "wrong number of arguments");
    if (saves + (options.has("auto") ? 1 : 0) > 1)
        return usage_error(context, *this, "give one of --hours, --date and --auto");
    if (options.has("auto") && !EntryBaseline::is_btype(options.get("auto")))
        return usage_error(context, *this,
                           "unknown kind '" + options.get("auto")
                               + "': None, Hours, HoursDate, FollowHours or FollowHoursDate (or 0 to 4)");
    CmdSessions::Clock clock;
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(clock.set(options)) || iszbwarn(CliDiary::get_diary(db, diary))
        || iszbwarn(CliDiary::get_entry(*diary, options.positional()[0], entry)))
        return report_failure(context, zberrorvalue());
    if ((saves || options.has("auto")) && entry->get_derived_entrytype() != 'T')
        return report_failure(context, zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Must be a task."));
    // The dates come from the plan: the whole pass runs before they are taken.
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->full_recalculate()))
        return report_failure(context, zberrorvalue());
    if (saves) {
        entry->save_baseline(withDates);
        entry->mark_changed(ZBLOC, true);
    } else if (options.has("auto")) {
        entry->edit_baseline().set_autobaseline(EntryBaseline::string_to_btype(options.get("auto")));
        entry->mark_changed(ZBLOC, true);
    }
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    const EntryBaseline& baseline = entry->get_baseline();
    const ZBDateSlot& slot = baseline.get_calc_startend();
    std::string text = "Baseline of " + CmdSessions::entry_name(*entry) + ": "
                       + baseline.get_calc_duration().to_string() + " from " + CmdSessions::date_text(slot.m_start)
                       + " to " + CmdSessions::date_text(slot.m_end) + " ("
                       + EntryBaseline::btype_to_string(baseline.get_autobaseline()) + ")\n";
    if (!baseline.get_text().empty())
        text += "Budget: " + baseline.get_text() + "\n";
    if (!baseline.get_time_text().empty())
        text += "Schedule: " + baseline.get_time_text() + "\n";
    if (baseline.get_progressive())
        text += baseline.get_prog_text() + "\n";
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
