#include "AppTervalonDiary/cli/cmdadd.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <cstring>
#include <ostream>

namespace Tervalon {

int CmdAdd::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    std::string type;
    std::string title;
    std::string parentId;
    // Fields in the order they are applied: the start before the duration it measures from.
    const char* const order[] = {"start", "due", "duration", "priority", "repeat"};
    std::string values[5];
    bool given[5] = {false, false, false, false, false};
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& option = args[i];
        if (option.size() < 3 || option.compare(0, 2, "--") != 0 || i + 1 >= args.size())
            return usage_error(context, *this, "bad option " + option);
        const std::string key = option.substr(2);
        const std::string& value = args[++i];
        if (key == "type")
            type = value;
        else if (key == "title")
            title = value;
        else if (key == "parent")
            parentId = value;
        else {
            bool known = false;
            for (int k = 0; k < 5; ++k)
                if (key == order[k]) {
                    values[k] = value;
                    given[k] = known = true;
                }
            if (!known)
                return usage_error(context, *this, "unknown option " + option);
        }
    }
    if (type.size() != 1 || !std::strchr("TAJPDLO", type[0]))
        return usage_error(context, *this, "--type must be one of T A J P D L O");
    if (title.empty())
        return usage_error(context, *this, "--title is required");
    Diary* diary = nullptr;
    DiaryEntry* parent = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    if (!parentId.empty() && iszbwarn(CliDiary::get_entry(*diary, parentId, parent)))
        return report_failure(context, zberrorvalue());
    DiaryEntry* entry = nullptr;
    if (iszbwarn(diary->create_entry(parent, type[0], title, &entry)))
        return report_failure(context, zberrorvalue());
    for (int k = 0; k < 5; ++k)
        if (given[k] && iszbwarn(CliDiary::set_field(*diary, *entry, order[k], values[k])))
            return report_failure(context, zberrorvalue());
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->complete_operation("Add Entry")))
        return report_failure(context, zberrorvalue());
    context.out << entry->get_id() << std::endl;
    return 0;
}

} // namespace Tervalon
