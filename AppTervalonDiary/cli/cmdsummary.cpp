#include "AppTervalonDiary/cli/cmdsummary.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/cli/cmdshow.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "LibDate/date/zbdateutils.h"
#include "LibMarkup/markup/zbmarkuppage.h"

namespace Tervalon {

int CmdSummary::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CmdShow::PageOptions page;
    std::string error;
    if (!CmdShow::parse_page(args, {"now", "resource"}, true, page, error))
        return usage_error(context, *this, error);
    if (!page.options.positional().empty())
        return usage_error(context, *this, "unexpected " + page.options.positional().front());
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, page.options.get("now"), diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    int resource = -1;
    int status = CmdShow::read_resource(*diary, page.options, resource);
    ZBMarkupPage summary;
    if (!iszbwarn(status)) {
        DiaryDisplay display(*diary);
        ZBDSummaryPage builder;
        status = builder.get_due_today(*diary, display, resource, summary);
    }
    ZBDateUtils::clear_fixed_now();
    if (iszbwarn(status))
        return report_failure(context, zberrorvalue());
    return CmdShow::render_page(context, summary, page.html);
}

} // namespace Tervalon
