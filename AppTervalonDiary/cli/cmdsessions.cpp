#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>

namespace Tervalon {

CmdSessions::Clock::~Clock()
{
    if (m_fixed)
        ZBDateUtils::clear_fixed_now();
}

int CmdSessions::Clock::set(const CliOptions& options)
{
    if (!options.has("now"))
        return ZBErrC_ok;
    ZBDate date;
    if (iszbwarn(CliDiary::read_date(options.get("now"), date)))
        return zbpass(ZBLOC);
    ZBDateUtils::set_fixed_now(date);
    m_fixed = true;
    return ZBErrC_ok;
}

int CmdSessions::resource_option(const Diary& diary, const CliOptions& options, int fallback, int& out)
{
    out = fallback;
    if (!options.has("resource"))
        return ZBErrC_ok;
    const Resource* resource = diary.get_resource_by_name(options.get("resource"));
    if (!resource)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource named '%s'.",
                          options.get("resource").c_str());
    out = resource->get_id();
    return ZBErrC_ok;
}

std::string CmdSessions::entry_name(const DiaryEntry& entry)
{
    return std::to_string(entry.get_id()) + " " + entry.get_summary();
}

std::string CmdSessions::resource_name(const Diary& diary, int id)
{
    const Resource* resource = diary.get_resource_by_id(id);
    return resource ? resource->get_username() : Resource::reserved_name(id);
}

std::string CmdSessions::date_text(const ZBDate& date)
{
    return date.is_ok() ? date.to_string("%Y-%m-%d %H:%M") : std::string("-");
}

int CmdSessions::check_session_type(const DiaryEntry& entry)
{
    const char type = entry.get_derived_entrytype();
    if (type != 'T' && type != 'A')
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Must be a task or appointment.");
    return ZBErrC_ok;
}

int CmdSessions::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"now"}, error) || options.positional().size() != 1)
        return usage_error(context, *this, error.empty() ? "wrong number of arguments" : error);
    Clock clock;
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(clock.set(options)) || iszbwarn(CliDiary::get_diary(db, diary))
        || iszbwarn(CliDiary::get_entry(*diary, options.positional()[0], entry))
        || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    const EntrySpent& spent = entry->get_spent();
    const ZBDateSet& sessions = spent.get_session();
    const ZBDateSetEntry& running = spent.get_current_session();
    std::string text;
    for (int i = 0; i < sessions.size(); ++i) {
        const ZBDateSetEntry& session = *sessions[i];
        text += date_text(session.m_start) + " - "
                + date_text(session.m_end) + "  " + session.get_duration().to_string() + "  "
                + resource_name(*diary, session.m_type);
        if (spent.has_running_session() && session.m_type == running.m_type && session.within(running.m_start)
            && session.within(running.m_end))
            text += "  (running since " + date_text(running.m_start) + ")";
        text += "\n";
    }
    if (sessions.empty())
        text += "No sessions.\n";
    text += "Spent: " + spent.get_spent(ZBDateSlot(), -1).to_string() + " on the entry, "
            + spent.get_time_spent().to_string() + " with the entries below it.\n";
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
