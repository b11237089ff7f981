#include "AppTervalonDiary/cli/cmdreport.h"

#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/planreport.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/spentreport.h"
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

ZBDate add_days(const ZBDate& date, int days)
{
    ZBDateDetails day(date, zblocale().get_timezone());
    day.m_dayMonth += days;
    day.recalculate();
    return day.get_date(day.get_timezone());
}

} // namespace

int CmdReport::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& given)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    std::vector<std::string> args = given;
    auto flag = std::find(args.begin(), args.end(), "--html");
    const bool html = flag != args.end();
    if (html)
        args.erase(flag);
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"from", "to", "resource"}, error))
        return usage_error(context, *this, error);
    if (options.positional().size() != 1)
        return usage_error(context, *this, "give one report: spent or plan");
    const std::string kind = options.positional().front();
    if (kind != "spent" && kind != "plan")
        return usage_error(context, *this, "unknown report " + kind + "; give spent or plan");

    int resource = -1;
    if (options.has("resource")) {
        const Resource* found = diary->get_resource_by_name(options.get("resource"));
        if (!found) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.", options.get("resource").c_str());
            return report_failure(context, zberrorvalue());
        }
        resource = found->get_id();
    }
    // A week from the start of this week, unless told; the last day counts whole.
    ZBDateDetails today(ZBDateUtils::now(), zblocale().get_timezone());
    ZBDate from = add_days(CliDiary::day_start(ZBDateUtils::now()),
                           -(((today.m_dayWeek - zblocale().get_first_day()) % 7 + 7) % 7));
    if (options.has("from") && iszbwarn(CliDiary::read_date(options.get("from"), from)))
        return report_failure(context, zberrorvalue());
    from = CliDiary::day_start(from);
    ZBDate last = add_days(from, 6);
    if (options.has("to") && iszbwarn(CliDiary::read_date(options.get("to"), last)))
        return report_failure(context, zberrorvalue());
    const ZBDate end = CliDiary::day_start(add_days(CliDiary::day_start(last), 1));
    if (end <= from) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The report ends (%s) before it starts (%s).",
                   last.to_string("%d-%b-%Y").c_str(), from.to_string("%d-%b-%Y").c_str());
        return report_failure(context, zberrorvalue());
    }
    const ZBDateSlot slot(from, end);

    ZBMarkupPage page;
    if (kind == "spent") {
        SpentReport report(*diary);
        if (iszbwarn(report.generate_report(slot, resource)))
            return report_failure(context, zberrorvalue());
        report.to_markup(page);
    } else {
        // The predictions are the planner's: a full pass makes them current.
        if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->full_recalculate()))
            return report_failure(context, zberrorvalue());
        PlanReport report(*diary);
        if (iszbwarn(report.generate_report(slot, resource, page)))
            return report_failure(context, zberrorvalue());
    }
    const int value = html ? ZBHtmlRenderer().render(page, context.out) : ZBMarkupRenderer().render(page, context.out);
    if (iszberr(value))
        return report_failure(context, value);
    context.out.flush();
    return 0;
}

} // namespace Tervalon
