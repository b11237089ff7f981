#include "AppTervalonDiary/cli/cmdalerts.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "LibGui/base/zbnotifylist.h"

#include <cstdio>
#include <ostream>

namespace Tervalon {

int CmdAlerts::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    std::string now;
    bool json = false;
    std::string error;
    if (!CliPlan::parse(args, false, now, json, error))
        return usage_error(context, *this, error);
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, now, diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    ZBNotifyList list;
    CliPlan::collect(*diary, list);
    ZBDateUtils::clear_fixed_now();
    std::string text;
    for (const ZBNotifyItem& item : list.get_sorted_items()) {
        char head[64];
        std::snprintf(head, sizeof head, "%3d %10.6f %5d  ", item.get_scheme(), item.get_priority(),
                      item.get_object_id());
        text += head + item.get_text() + "\n";
    }
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
