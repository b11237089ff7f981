#include "AppTervalonDiary/cli/cmdtimetype.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <ostream>

namespace Tervalon {

int CmdTimeType::run(CliContext& context)
{
    m_editing = context.args.size() > 1 && context.args[1] != "list";
    return CliFileCommand::run(context);
}

int CmdTimeType::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    if (args[0] == "list" && args.size() == 1) {
        for (int i = 0; i < diary->get_ntimetypes(); ++i) {
            const TimeType* type = diary->get_timetype_by_index(i);
            context.out << type->get_id() << "  " << type->get_name() << "\n";
        }
        context.out.flush();
        return 0;
    }
    if (args.size() != 2 || (args[0] != "add" && args[0] != "rm"))
        return usage_error(context, *this, "expected list, add NAME or rm NAME");
    const std::string& typeName = args[1];
    if (args[0] == "add") {
        // Reserved names stand for the planner's own meanings.
        if (typeName.empty() || typeName[0] == '<' || diary->get_timetype_by_name(typeName)) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is already a time type called %s.", typeName.c_str());
            return report_failure(context, zberrorvalue());
        }
        TimeType* type = nullptr;
        if (iszbwarn(diary->add_timetype(typeName, &type)) || iszbwarn(diary->complete_operation("Create Time Type")))
            return report_failure(context, zberrorvalue());
        context.out << type->get_id() << std::endl;
        return 0;
    }
    const TimeType* type = diary->get_timetype_by_name(typeName);
    if (!type) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no time type called %s.", typeName.c_str());
        return report_failure(context, zberrorvalue());
    }
    if (iszbwarn(diary->delete_timetype(type->get_id())))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
