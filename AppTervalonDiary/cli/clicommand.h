#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The streams and arguments one run of a command works with.
struct CliContext {
    std::vector<std::string> args; // after the command name
    std::ostream& out;
    std::ostream& err;
};

// One subcommand of the command-line program: its name, usage and summary,
// whether it changes the file, and run(). Commands that work on a data file
// take it as their first argument. run() returns the process exit status:
// 0 success, 1 a user error, 2 an internal failure.
class CliCommand {
public:
    virtual ~CliCommand() = default;
    virtual std::string name() const = 0;
    virtual std::string usage() const = 0;
    virtual std::string summary() const = 0;
    virtual bool writes() const = 0;
    virtual int run(CliContext& context) = 0;

    // Prints the message of the current error as one line on err, clears it, and
    // gives the exit status for it.
    static int report_failure(CliContext& context, int value);
    static int usage_error(CliContext& context, const CliCommand& command, const std::string& message);
};

} // namespace Tervalon
