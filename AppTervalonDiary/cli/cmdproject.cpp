#include "AppTervalonDiary/cli/cmdproject.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/cli/cmdshow.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "LibDate/date/zbdateutils.h"
#include "LibMarkup/markup/zbmarkuppage.h"

namespace Tervalon {

int CmdProject::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CmdShow::PageOptions page;
    std::string error;
    if (!CmdShow::parse_page(args, {"now"}, false, page, error))
        return usage_error(context, *this, error);
    if (!page.options.positional().empty())
        return usage_error(context, *this, "unexpected " + page.options.positional().front());
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, page.options.get("now"), diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    DiaryDisplay display(*diary);
    ZBMarkupPage view;
    const int status = display.project_view(view);
    ZBDateUtils::clear_fixed_now();
    if (iszbwarn(status))
        return report_failure(context, status);
    return CmdShow::render_page(context, view, page.html);
}

} // namespace Tervalon
