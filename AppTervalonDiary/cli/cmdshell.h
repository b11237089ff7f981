#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class CliSession;
class TervalonCli;

// tervalon shell: keeps one data file open and runs the file commands on it,
// one line of standard input each, plus undo, redo, history, save, snapshot
// and quit. Each change goes to the partial file as its line completes, and
// "ok N" on standard output says so; the full save comes on save, quit and
// the end of the input. A failing line is reported with its number, changes
// nothing, and the session goes on.
class CmdShell : public CliCommand {
public:
    // The commands are found in cli; lines come from in (standard input by default).
    explicit CmdShell(const TervalonCli& cli, std::istream* in = nullptr);

    std::string name() const override { return "shell"; }
    std::string usage() const override { return "shell FILE [--discard-partial]"; }
    std::string summary() const override
    {
        return "Keep FILE open and read commands from standard input, one a line: the file commands without FILE "
               "(add, set, done, rm, depend, plan, tree, ...) and undo, redo, history, save, snapshot, quit.";
    }
    bool writes() const override { return true; }
    int run(CliContext& context) override;

    // A line split into words: blanks separate, quotes group, a backslash
    // takes the next character as it is. error is set for an open quote.
    static std::vector<std::string> split_line(const std::string& line, std::string& error);

private:
    // One line's work; 0 when it succeeded. quit is set by quit.
    int run_line(CliContext& context, CliSession& session, const std::vector<std::string>& words, bool& quit);

    const TervalonCli& m_cli;
    std::istream* m_in;
};

} // namespace Tervalon
