#include "AppTervalonDiary/cli/clicommand.h"
#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

int CliCommand::report_failure(CliContext& context, int value)
{
    ZBError& error = get_zberror();
    const ZBErrDetails* top = error.top();
    std::string text;
    if (top) {
        const std::string& system = top->get_details(ZBErrAsp_System);
        const std::string& user = top->get_details(ZBErrAsp_User);
        bool hasUser = !user.empty() && user != error.get_default_message(ZBErrAsp_User);
        bool hasSystem = !system.empty() && system != error.get_default_message(ZBErrAsp_System);
        if (hasUser && hasSystem && user != system)
            text = user + " " + system;
        else
            text = hasUser ? user : system;
    } else {
        text = ZBError::get_code(ZBErrDetails::compute_code(value)).m_description;
    }
    context.err << "tervalon: " << text << std::endl;
    int severity = top ? top->get_severity() : ZBErrDetails::compute_severity(value);
    // Handled here: the error log gets the record, then it is done with.
    error.handle_error(false, true);
    error.clear_all();
    // Failures of the user's input (a file, a text) are user errors; only a
    // failure of the program itself is internal.
    return severity >= ZBErrSev_Fatal ? 2 : 1;
}

int CliCommand::usage_error(CliContext& context, const CliCommand& command, const std::string& message)
{
    context.err << "tervalon " << command.name() << ": " << message << "\n"
                << "Usage: tervalon " << command.usage() << std::endl;
    return 1;
}

} // namespace Tervalon
