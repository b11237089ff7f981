#include "AppTervalonDiary/cli/cmdtimesheet.h"

#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/timesheet.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibMarkup/html/zbhtmlrenderer.h"
#include "LibMarkup/markup/zbmarkuppage.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {

// The first day of the week holding date, by the locale's first weekday.
ZBDate week_start(const ZBDate& date)
{
    ZBDateDetails day(date, zblocale().get_timezone());
    const int back = ((day.m_dayWeek - zblocale().get_first_day()) % 7 + 7) % 7;
    day.m_dayMonth -= back;
    day.recalculate();
    return CliDiary::day_start(day.get_date(day.get_timezone()));
}

// Takes the flags that carry no value out of the arguments.
bool take_flag(std::vector<std::string>& args, const std::string& flag)
{
    auto it = std::find(args.begin(), args.end(), flag);
    if (it == args.end())
        return false;
    args.erase(it);
    return true;
}

} // namespace

int CmdTimesheet::run(CliContext& context)
{
    m_editing = context.args.size() > 1 && context.args[1] == "set";
    return CliFileCommand::run(context);
}

int CmdTimesheet::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& given)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    std::vector<std::string> args = given;
    const bool html = take_flag(args, "--html");
    const bool csv = take_flag(args, "--csv");
    if (html && csv)
        return usage_error(context, *this, "give --html or --csv, not both");
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"from", "days", "resource"}, error))
        return usage_error(context, *this, error);

    int user = diary->get_default_resource_id();
    if (options.has("resource")) {
        const Resource* resource = diary->get_resource_by_name(options.get("resource"));
        if (!resource) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.", options.get("resource").c_str());
            return report_failure(context, zberrorvalue());
        }
        user = resource->get_id();
    }
    if (m_editing) {
        if (html || csv || options.has("from") || options.has("days"))
            return usage_error(context, *this, "set takes only --resource");
        std::vector<std::string> words(options.positional().begin() + 1, options.positional().end());
        return edit(context, *diary, user, words);
    }
    if (!options.positional().empty())
        return usage_error(context, *this, "unexpected " + options.positional().front());

    ZBDate from = week_start(ZBDateUtils::now());
    if (options.has("from") && iszbwarn(CliDiary::read_date(options.get("from"), from)))
        return report_failure(context, zberrorvalue());
    double days = 7;
    if (options.has("days") && (iszbwarn(CliDiary::read_number(options.get("days"), days)) || days < 1 || days > 366 ||
                                days != double(int(days)))) {
        if (!iszbwarn(zberrorvalue()))
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The number of days must be a whole number from 1 to 366.");
        return report_failure(context, zberrorvalue());
    }
    Timesheet sheet(*diary);
    if (iszbwarn(sheet.generate(from, int(days), user)))
        return report_failure(context, zberrorvalue());
    if (csv) {
        sheet.to_csv(context.out);
    } else {
        ZBMarkupPage page;
        sheet.to_markup(page);
        int value = ZBErrC_ok;
        if (html)
            value = ZBHtmlRenderer().render(page, context.out);
        else
            value = ZBMarkupRenderer().render(page, context.out);
        if (iszberr(value))
            return report_failure(context, value);
    }
    context.out.flush();
    return 0;
}

int CmdTimesheet::edit(CliContext& context, Diary& diary, int user, const std::vector<std::string>& words)
{
    if (words.size() != 3)
        return usage_error(context, *this, "set needs an entry id, a date and a duration");
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_entry(diary, words[0], entry)))
        return report_failure(context, zberrorvalue());
    ZBDate day;
    if (iszbwarn(CliDiary::read_date(words[1], day)))
        return report_failure(context, zberrorvalue());
    Timesheet sheet(diary);
    if (iszbwarn(sheet.generate(day, 1, user)))
        return report_failure(context, zberrorvalue());
    const int row = sheet.add_row(entry->get_id());
    int count = 0;
    if (iszbwarn(row) || iszbwarn(sheet.set_cell(row, 0, words[2])) || iszbwarn(sheet.write_back(&count)))
        return report_failure(context, zberrorvalue());
    const int after = sheet.find_row(entry->get_id());
    const ZBDuration spent = after >= 0 ? sheet.get_row(after)->get_time(0) : ZBDuration();
    context.out << entry->get_summary() << " on " << sheet.get_day_slot(0).m_start.to_string("%a %d-%b-%Y") << ": "
                << Timesheet::hours_text(spent) << std::endl;
    if (count > 0 && iszbwarn(diary.complete_operation("Edit Timesheet")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
