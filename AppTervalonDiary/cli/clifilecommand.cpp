#include "AppTervalonDiary/cli/clifilecommand.h"
#include "AppTervalonDiary/cli/clisession.h"
#include "LibDatabase/db/zbdatabase.h"

#include <cctype>

namespace Tervalon {

std::string CliFileCommand::undo_name() const
{
    std::string text = name();
    if (!text.empty())
        text[0] = char(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

int CliFileCommand::run_open(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    if (int(args.size()) < min_args() || (max_args() >= 0 && int(args.size()) > max_args()))
        return usage_error(context, *this, "wrong number of arguments");
    int status = run_on(context, db, args);
    // Whatever the command changed and did not close as a step of its own
    // is one step under the command's name.
    if (status == 0 && writes() && !db.is_read_only()) {
        int result = db.complete_operation(undo_name());
        if (iszbwarn(result))
            status = report_failure(context, result);
    }
    return status;
}

int CliFileCommand::run(CliContext& context)
{
    if (context.args.empty())
        return usage_error(context, *this, "no file given");
    m_file = context.args.front();
    std::vector<std::string> args(context.args.begin() + 1, context.args.end());
    const bool discard = CliSession::take_discard_option(args);
    if (int(args.size()) < min_args() || (max_args() >= 0 && int(args.size()) > max_args()))
        return usage_error(context, *this, "wrong number of arguments");
    CliSession session;
    int status = session.open(context, m_file, writes(), discard);
    if (status != 0)
        return status;
    status = run_open(context, session.db(), args);
    if (status == 0 && save_after())
        status = session.save(context);
    session.close();
    return status;
}

} // namespace Tervalon
