#include "AppTervalonDiary/cli/cmdaction.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryactionmgr.h"
#include "AppTervalonDiary/diary/diaryactionparam.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>

namespace Tervalon {

namespace {
// The clock fixed by --now runs again however the command ends.
struct ClockRelease {
    bool fixed = false;
    ~ClockRelease()
    {
        if (fixed)
            ZBDateUtils::clear_fixed_now();
    }
};

// Actions on plans read the predicted sessions, which a full pass makes.
bool needs_plan(const std::string& name)
{
    return name.compare(0, 4, "Lock") == 0 || name.compare(0, 6, "Unlock") == 0
        || name.compare(0, 8, "MovePlan") == 0;
}
} // namespace

int CmdAction::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    const std::string action = args[0];
    DiaryActionParam param;
    std::string now;
    for (size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--param" || arg == "--now") {
            if (i + 1 >= args.size())
                return usage_error(context, *this, arg + " needs a value");
            const std::string value = args[++i];
            if (arg == "--now") {
                now = value;
                continue;
            }
            const size_t equals = value.find('=');
            if (equals == std::string::npos || equals == 0)
                return usage_error(context, *this, "--param needs NAME=VALUE, not '" + value + "'");
            if (iszbwarn(param.set_param(value.substr(0, equals), value.substr(equals + 1))))
                return report_failure(context, zberrorvalue());
        } else if (arg.compare(0, 2, "--") == 0) {
            return usage_error(context, *this, "unknown option " + arg);
        } else {
            ZBId id;
            if (!DiaryActionParam::parse_id(arg, id))
                return usage_error(context, *this,
                                   "'" + arg + "' is not an entry id (ID, or ID:SEQ with a sequence such as p0 or s1)");
            param.m_selectedId.add(id);
        }
    }
    if (!DiaryActionMgr::is_action(action) && action != DiaryActionMgr::C_ActJournalView)
        return usage_error(context, *this, "there is no action called '" + action + "'");
    if (DiaryActionMgr::is_gui_action(action)) {
        context.err << "tervalon: The " << action << " action only moves the window and cannot run here." << std::endl;
        return 1;
    }

    ClockRelease release;
    Diary* diary = nullptr;
    if (needs_plan(action)) {
        if (iszbwarn(CliPlan::recalculate(db, now, diary)))
            return report_failure(context, zberrorvalue());
        release.fixed = !now.empty();
    } else {
        if (iszbwarn(CliDiary::get_diary(db, diary)))
            return report_failure(context, zberrorvalue());
        if (!now.empty()) {
            ZBDate date;
            if (iszbwarn(CliDiary::read_date(now, date)))
                return report_failure(context, zberrorvalue());
            ZBDateUtils::set_fixed_now(date);
            release.fixed = true;
        }
    }

    // Without a desktop a URL is handed on as a line of output, for the
    // caller to open.
    const bool ownOpener = !DiaryActionMgr::get_url_opener();
    if (ownOpener)
        DiaryActionMgr::set_url_opener([&context](const std::string& url) {
            context.out << "open " << url << std::endl;
            return true;
        });
    DiaryActionMgr manager(diary);
    std::string reason;
    int status = 0;
    if (!manager.is_available(action, param, reason)) {
        context.err << "tervalon: " << (reason.empty() ? "The " + action + " action cannot run now." : reason)
                    << std::endl;
        status = 1;
    } else if (iszbwarn(manager.run_action(action, param))) {
        status = report_failure(context, zberrorvalue());
    } else {
        for (const std::string& message : manager.get_messages())
            if (message.compare(0, 7, "Opened ") != 0)
                context.out << message << std::endl;
    }
    if (ownOpener)
        DiaryActionMgr::set_url_opener(nullptr);
    return status;
}

} // namespace Tervalon
