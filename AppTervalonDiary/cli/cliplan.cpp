#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "LibGui/base/zbnotifylist.h"

namespace Tervalon {

bool CliPlan::parse(const std::vector<std::string>& args, bool allowJson, std::string& now, bool& json,
                    std::string& error)
{
    json = false;
    now.clear();
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--json" && allowJson) {
            json = true;
        } else if (args[i] == "--now") {
            if (i + 1 >= args.size()) {
                error = "--now needs a date";
                return false;
            }
            now = args[++i];
        } else {
            error = "unexpected argument '" + args[i] + "'";
            return false;
        }
    }
    return true;
}

int CliPlan::recalculate(ZBDatabase& db, const std::string& now, Diary*& diary)
{
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return zbpass(ZBLOC);
    if (!now.empty()) {
        ZBDate date;
        if (iszbwarn(CliDiary::read_date(now, date)))
            return zbpass(ZBLOC);
        ZBDateUtils::set_fixed_now(date);
    }
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->full_recalculate())) {
        // A failed pass leaves the clock running again, as a finished one does.
        ZBDateUtils::clear_fixed_now();
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

void CliPlan::collect(const Diary& diary, ZBNotifyList& list)
{
    list.reset();
    for (const DiaryEntry* entry : diary.get_display_list())
        for (const ZBNotifyItem& item : entry->get_props().get_notifications())
            list.add(item);
}

} // namespace Tervalon
