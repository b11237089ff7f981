#include "AppTervalonDiary/cli/cmdplanning.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/cli/cmdshow.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "LibDate/date/zbdateutils.h"
#include "LibMarkup/markup/zbmarkuppage.h"

namespace Tervalon {

int CmdPlanning::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CmdShow::PageOptions page;
    std::string error;
    if (!CmdShow::parse_page(args, {"now", "days", "resource"}, false, page, error))
        return usage_error(context, *this, error);
    if (!page.options.positional().empty())
        return usage_error(context, *this, "unexpected " + page.options.positional().front());
    double days = -1;
    if (page.options.has("days") &&
        (iszbwarn(CliDiary::read_number(page.options.get("days"), days)) || days < 1 || days > 366)) {
        if (!iszbwarn(zberrorvalue()))
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The number of days must be from 1 to 366.");
        return report_failure(context, zberrorvalue());
    }
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, page.options.get("now"), diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    if (days < 0)
        days = diary->get_settings().get_plandays() > 0 ? diary->get_settings().get_plandays() : 7;
    int resource = -1;
    int status = CmdShow::read_resource(*diary, page.options, resource);
    ZBMarkupPage planning;
    if (!iszbwarn(status)) {
        DiaryDisplay display(*diary);
        ZBDSummaryPage builder;
        status = builder.get_planning(*diary, display, resource, ZBDateUtils::now(), int(days), planning);
    }
    ZBDateUtils::clear_fixed_now();
    if (iszbwarn(status))
        return report_failure(context, zberrorvalue());
    return CmdShow::render_page(context, planning, page.html);
}

} // namespace Tervalon
