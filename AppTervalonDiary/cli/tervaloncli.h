#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// The command-line program: finds the subcommand named by the first argument
// and runs it. It knows nothing of any command's details; commands register here.
class TervalonCli {
public:
    // The help text fits a terminal of this many columns.
    static constexpr int C_HelpWidth = 80;

    TervalonCli();
    ~TervalonCli();

    void add_command(std::unique_ptr<CliCommand> command);
    // Runs one command line (argv[0] is the program) and gives the exit status.
    int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err);

    void print_usage(std::ostream& out) const;
    // A command by its name, or null; and all of them in order.
    CliCommand* find_command(const std::string& name) const { return find(name); }
    std::vector<CliCommand*> commands() const;
    static void print_version(std::ostream& out);

private:
    CliCommand* find(const std::string& name) const;
    std::vector<std::unique_ptr<CliCommand>> m_command;
};

} // namespace Tervalon
