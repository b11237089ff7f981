#include "AppTervalonDiary/cli/tervaloncli.h"
#include "AppTervalonDiary/cli/cmdaction.h"
#include "AppTervalonDiary/cli/cmdadd.h"
#include "AppTervalonDiary/cli/cmdalerts.h"
#include "AppTervalonDiary/cli/cmdplan.h"
#include "AppTervalonDiary/cli/cmdcalendar.h"
#include "AppTervalonDiary/cli/cmdcheck.h"
#include "AppTervalonDiary/cli/cmddepend.h"
#include "AppTervalonDiary/cli/cmdimport.h"
#include "AppTervalonDiary/cli/cmdresource.h"
#include "AppTervalonDiary/cli/cmdtimetype.h"
#include "AppTervalonDiary/cli/cmddone.h"
#include "AppTervalonDiary/cli/cmdpostpone.h"
#include "AppTervalonDiary/cli/cmdinstance.h"
#include "AppTervalonDiary/cli/cmdsequence.h"
#include "AppTervalonDiary/cli/cmdrm.h"
#include "AppTervalonDiary/cli/cmdset.h"
#include "AppTervalonDiary/cli/cmdtree.h"
#include "AppTervalonDiary/cli/cmdcreate.h"
#include "AppTervalonDiary/cli/cmddate.h"
#include "AppTervalonDiary/cli/cmdduration.h"
#include "AppTervalonDiary/cli/cmdlock.h"
#include "AppTervalonDiary/cli/cmddump.h"
#include "AppTervalonDiary/cli/cmdrepeat.h"
#include "AppTervalonDiary/cli/cmdspec.h"
#include "AppTervalonDiary/cli/cmdrewrite.h"
#include "AppTervalonDiary/cli/cmdshell.h"
#include "AppTervalonDiary/cli/cmdsnapshots.h"
#include "AppTervalonDiary/cli/cmdrestore.h"
#include "AppTervalonDiary/cli/cmdstart.h"
#include "AppTervalonDiary/cli/cmdstop.h"
#include "AppTervalonDiary/cli/cmdsession.h"
#include "AppTervalonDiary/cli/cmdsessions.h"
#include "AppTervalonDiary/cli/cmdbaseline.h"
#include "AppTervalonDiary/cli/cmdtimesheet.h"
#include "AppTervalonDiary/cli/cmdreport.h"
#include "AppTervalonDiary/cli/cmdshow.h"
#include "AppTervalonDiary/cli/cmdsummary.h"
#include "AppTervalonDiary/cli/cmdplanning.h"
#include "AppTervalonDiary/cli/cmdproject.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibCore/textstr/zbtextstr.h"

#include <ostream>

namespace Tervalon {

TervalonCli::TervalonCli()
{
    add_command(std::unique_ptr<CliCommand>(new CmdCreate()));
    add_command(std::unique_ptr<CliCommand>(new CmdCheck()));
    add_command(std::unique_ptr<CliCommand>(new CmdRewrite()));
    add_command(std::unique_ptr<CliCommand>(new CmdDump()));
    add_command(std::unique_ptr<CliCommand>(new CmdDate()));
    add_command(std::unique_ptr<CliCommand>(new CmdDuration()));
    add_command(std::unique_ptr<CliCommand>(new CmdRepeat()));
    add_command(std::unique_ptr<CliCommand>(new CmdAdd()));
    add_command(std::unique_ptr<CliCommand>(new CmdTree()));
    add_command(std::unique_ptr<CliCommand>(new CmdDone()));
    add_command(std::unique_ptr<CliCommand>(new CmdPostpone()));
    add_command(std::unique_ptr<CliCommand>(new CmdInstance()));
    add_command(std::unique_ptr<CliCommand>(new CmdSequence()));
    add_command(std::unique_ptr<CliCommand>(new CmdSet()));
    add_command(std::unique_ptr<CliCommand>(new CmdRm()));
    add_command(std::unique_ptr<CliCommand>(new CmdSpec()));
    add_command(std::unique_ptr<CliCommand>(new CmdDepend(true)));
    add_command(std::unique_ptr<CliCommand>(new CmdDepend(false)));
    add_command(std::unique_ptr<CliCommand>(new CmdImport()));
    add_command(std::unique_ptr<CliCommand>(new CmdCalendar()));
    add_command(std::unique_ptr<CliCommand>(new CmdResource()));
    add_command(std::unique_ptr<CliCommand>(new CmdTimeType()));
    add_command(std::unique_ptr<CliCommand>(new CmdPlan()));
    add_command(std::unique_ptr<CliCommand>(new CmdAlerts()));
    add_command(std::unique_ptr<CliCommand>(new CmdLock(true)));
    add_command(std::unique_ptr<CliCommand>(new CmdLock(false)));
    add_command(std::unique_ptr<CliCommand>(new CmdShell(*this)));
    add_command(std::unique_ptr<CliCommand>(new CmdSnapshots()));
    add_command(std::unique_ptr<CliCommand>(new CmdRestore()));
    add_command(std::unique_ptr<CliCommand>(new CmdAction()));
    add_command(std::unique_ptr<CliCommand>(new CmdStart()));
    add_command(std::unique_ptr<CliCommand>(new CmdStop()));
    add_command(std::unique_ptr<CliCommand>(new CmdSession()));
    add_command(std::unique_ptr<CliCommand>(new CmdSessions()));
    add_command(std::unique_ptr<CliCommand>(new CmdBaseline()));
    add_command(std::unique_ptr<CliCommand>(new CmdTimesheet()));
    add_command(std::unique_ptr<CliCommand>(new CmdReport()));
    add_command(std::unique_ptr<CliCommand>(new CmdShow()));
    add_command(std::unique_ptr<CliCommand>(new CmdSummary()));
    add_command(std::unique_ptr<CliCommand>(new CmdPlanning()));
    add_command(std::unique_ptr<CliCommand>(new CmdProject()));
}

TervalonCli::~TervalonCli() = default;

void TervalonCli::add_command(std::unique_ptr<CliCommand> command)
{
    m_command.push_back(std::move(command));
}

std::vector<CliCommand*> TervalonCli::commands() const
{
    std::vector<CliCommand*> out;
    for (const auto& command : m_command)
        out.push_back(command.get());
    return out;
}

CliCommand* TervalonCli::find(const std::string& name) const
{
    for (const auto& command : m_command)
        if (command->name() == name)
            return command.get();
    return nullptr;
}

void TervalonCli::print_usage(std::ostream& out) const
{
    out << "Usage: tervalon COMMAND [FILE] [ARGS...]\n"
        << "       tervalon COMMAND --help\n"
        << "       tervalon --help | --version\n\n"
        << AppDiaryInfo::C_Title << " on the command line: keep a diary file without the window.\n\n"
        << "Commands:\n";
    // Usage lines differ too much in length for a column: each stands on its
    // own line, and its summary is wrapped under it.
    for (const auto& command : m_command) {
        out << "  " << command->usage() << "\n";
        std::string summary = zb_line_wrap(command->summary(), C_HelpWidth - 6);
        size_t start = 0;
        while (start <= summary.size()) {
            size_t end = summary.find('\n', start);
            if (end == std::string::npos)
                end = summary.size();
            if (end > start)
                out << "      " << summary.substr(start, end - start) << "\n";
            start = end + 1;
        }
    }
    out.flush();
}

void TervalonCli::print_version(std::ostream& out)
{
    if (has_zbparam()) {
        zbparam().display_version(out);
        return;
    }
    out << "tervalon (" << AppDiaryInfo::C_Title << ") " << AppDiaryInfo::C_Release << "\n"
        << "  Build Tag:  " << AppDiaryInfo::C_Tag << "\n"
        << "  Build Date: " << AppDiaryInfo::C_Date << std::endl;
}

int TervalonCli::run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.size() < 2) {
        print_usage(err);
        return 1;
    }
    const std::string& first = args[1];
    if (first == "--help" || first == "-h" || first == "help") {
        print_usage(out);
        return 0;
    }
    if (first == "--version" || first == "-v") {
        print_version(out);
        return 0;
    }
    CliCommand* command = find(first);
    if (!command) {
        err << "tervalon: unknown command '" << first << "'\n";
        print_usage(err);
        return 1;
    }
    CliContext context{std::vector<std::string>(args.begin() + 2, args.end()), out, err};
    for (const std::string& arg : context.args)
        if (arg == "--help" || arg == "-h") {
            out << "Usage: tervalon " << command->usage() << "\n" << zb_line_wrap(command->summary(), C_HelpWidth) << "\n";
            if (command->writes())
                out << "Changes the file in place; it is saved whole through a temporary file.\n";
            out.flush();
            return 0;
        }
    try {
        return command->run(context);
    } catch (const ZBErrDetails& details) {
        err << "tervalon: " << details.get_message() << std::endl;
        get_zberror().clear_all();
        return 2;
    }
}

} // namespace Tervalon
