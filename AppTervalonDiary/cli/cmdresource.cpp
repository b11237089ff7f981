#include "AppTervalonDiary/cli/cmdresource.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>

namespace Tervalon {

namespace {
std::string date_text(const ZBDate& date)
{
    return date.is_ok() ? date.to_string("%Y-%m-%d") : std::string("-");
}
} // namespace

int CmdResource::run(CliContext& context)
{
    m_editing = context.args.size() > 1 && context.args[1] != "list";
    return CliFileCommand::run(context);
}

int CmdResource::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"start", "end"}, error))
        return usage_error(context, *this, error);
    const std::vector<std::string>& words = options.positional();
    const std::string verb = words.empty() ? std::string() : words[0];
    if (verb == "list" && words.size() == 1) {
        const ZBDate now = ZBDateUtils::now();
        for (int i = 0; i < diary->get_nresources(); ++i) {
            const Resource* resource = diary->get_resource_by_index(i);
            context.out << resource->get_id() << "  " << resource->get_username() << "  from "
                        << date_text(resource->get_startdate()) << " to " << date_text(resource->get_enddate())
                        << (i == 0 ? "  (default)" : "")
                        << (resource->still_working(now, ZBDuration()) ? "" : "  (no longer working)") << "\n";
        }
        context.out.flush();
        return 0;
    }
    ZBDate start = ZBDate::C_Blank;
    ZBDate end = ZBDate::C_Blank;
    if ((options.has("start") && iszbwarn(CliDiary::read_date(options.get("start"), start))) ||
        (options.has("end") && iszbwarn(CliDiary::read_date(options.get("end"), end))))
        return report_failure(context, zberrorvalue());
    // A resource works whole days: from the start of the first to the end of the last.
    if (start.is_ok())
        start = CliDiary::day_start(start);
    if (end.is_ok())
        end = CliDiary::day_end(end);
    if (verb == "add" && words.size() == 2) {
        if (diary->get_resource_by_name(words[1])) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is already a resource called %s.", words[1].c_str());
            return report_failure(context, zberrorvalue());
        }
        if (start.is_ok() && end.is_ok() && end < start) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The resource stops working before it starts.");
            return report_failure(context, zberrorvalue());
        }
        Resource* resource = nullptr;
        if (iszbwarn(diary->add_resource(words[1], &resource)))
            return report_failure(context, zberrorvalue());
        resource->set_startdate(start);
        resource->set_enddate(end);
        // A new resource starts with its own calendar's defaults.
        if (iszbwarn(diary->initialise(false)) || iszbwarn(diary->complete_operation("Add Resource")))
            return report_failure(context, zberrorvalue());
        context.out << resource->get_id() << std::endl;
        return 0;
    }
    if ((verb != "rm" || words.size() != 2) && (verb != "set" || words.size() != 4))
        return usage_error(context, *this, "expected list, add NAME, rm NAME or set NAME FIELD VALUE");
    Resource* resource = diary->get_resource_by_name(words[1]);
    if (!resource) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.", words[1].c_str());
        return report_failure(context, zberrorvalue());
    }
    if (verb == "rm") {
        if (iszbwarn(diary->delete_resource(resource->get_id())))
            return report_failure(context, zberrorvalue());
        return 0;
    }
    const std::string& field = words[2];
    const std::string& value = words[3];
    if (field == "name") {
        if (value.empty() || diary->get_resource_by_name(value)) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is already a resource called %s.", value.c_str());
            return report_failure(context, zberrorvalue());
        }
        resource->set_username(value);
    } else if (field == "start" || field == "end") {
        ZBDate date = ZBDate::C_Blank;
        if (value != "-" && iszbwarn(CliDiary::read_date(value, date)))
            return report_failure(context, zberrorvalue());
        if (date.is_ok())
            date = field == "start" ? CliDiary::day_start(date) : CliDiary::day_end(date);
        if (field == "start")
            resource->set_startdate(date);
        else
            resource->set_enddate(date);
    } else {
        return usage_error(context, *this, "a resource's fields are name, start and end");
    }
    resource->mark_changed(ZBLOC, true);
    diary->force_recalculate(true, false, false, true);
    if (iszbwarn(diary->complete_operation("Edit Resource")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
