#include "AppTervalonDiary/cli/cmdshow.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "LibDate/date/zbdateutils.h"
#include "LibMarkup/html/zbhtmlrenderer.h"
#include "LibMarkup/markup/zbmarkuppage.h"

#include <ostream>

namespace Tervalon {

bool CmdShow::parse_page(const std::vector<std::string>& args, const std::set<std::string>& known, bool allowText,
                         PageOptions& out, std::string& error)
{
    std::vector<std::string> rest;
    bool text = false;
    for (const std::string& word : args) {
        if (word == "--html")
            out.html = true;
        else if (word == "--text" && allowText)
            text = true;
        else if (word == "--debug" && known.count("debug"))
            out.debug = true;
        else
            rest.push_back(word);
    }
    if (out.html && text) {
        error = "choose one of --html and --text";
        return false;
    }
    return out.options.parse(rest, known, error);
}

int CmdShow::render_page(CliContext& context, const ZBMarkupPage& page, bool html)
{
    if (html) {
        ZBHtmlRenderer renderer;
        context.out << renderer.to_string(page);
    } else {
        ZBMarkupRenderer renderer;
        context.out << renderer.to_string(page);
    }
    context.out.flush();
    return 0;
}

int CmdShow::read_resource(const Diary& diary, const CliOptions& options, int& out)
{
    out = -1;
    if (!options.has("resource"))
        return ZBErrC_ok;
    const Resource* resource = diary.get_resource_by_name(options.get("resource"));
    if (!resource)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.",
                          options.get("resource").c_str());
    out = resource->get_id();
    return ZBErrC_ok;
}

int CmdShow::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    PageOptions page;
    std::string error;
    if (!parse_page(args, {"now", "debug"}, true, page, error))
        return usage_error(context, *this, error);
    if (page.options.positional().size() != 1)
        return usage_error(context, *this, "show needs one entry id");
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, page.options.get("now"), diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_entry(*diary, page.options.positional().front(), entry))) {
        ZBDateUtils::clear_fixed_now();
        return report_failure(context, zberrorvalue());
    }
    DiaryDisplay display(*diary);
    ZBMarkupPage details;
    const int flags = DiaryDisplay::C_DumpAll | (page.debug ? DiaryDisplay::C_DumpDebug : 0);
    const int status = display.dump_markup(*entry, details, flags);
    ZBDateUtils::clear_fixed_now();
    if (iszbwarn(status))
        return report_failure(context, status);
    return render_page(context, details, page.html);
}

} // namespace Tervalon
