#include "AppTervalonDiary/cli/cmdduration.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "LibDate/date/zbduration.h"
#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

int CmdDuration::run(CliContext& context)
{
    if (context.args.empty())
        return usage_error(context, *this, "no duration text given");
    for (const std::string& text : context.args) {
        ZBDuration duration;
        int result = CliDiary::read_duration(text, duration);
        if (iszbwarn(result))
            return report_failure(context, result);
        context.out << duration.to_string(false) << "\n";
    }
    context.out.flush();
    return 0;
}

} // namespace Tervalon
