#include "AppTervalonDiary/cli/cmdcheck.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbdatabase.h"

#include <ostream>

namespace Tervalon {

int CmdCheck::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    int deleted = 0;
    for (int i = 0; i < db.get_nobjects(); ++i)
        deleted += db.get_object_by_index(i)->is_deleted();
    context.out << "Application type: " << db.get_app_type() << "\n"
                << "Objects: " << db.get_nobjects() - deleted << "\n";
    if (deleted)
        context.out << "Deleted objects kept: " << deleted << "\n";
    // A diary is also checked for what would stop the planner working as meant.
    if (Diary* diary = dynamic_cast<Diary*>(&db)) {
        std::string fault;
        if (!diary->validate_calendars(fault))
            context.out << "Calendar: " << fault << "\n";
        if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->calculate_dependencies()))
            return report_failure(context, zberrorvalue());
        const std::vector<const ZBDBCheckItem*> loops = diary->get_circular_dependencies();
        if (!loops.empty()) {
            context.out << "Circular dependencies: " << loops.size() << "\n";
            for (const ZBDBCheckItem* item : loops)
                context.out << "  " << item->get_id() << ": " << item->get_message() << "\n";
        }
    }
    context.out.flush();
    return 0;
}

} // namespace Tervalon
