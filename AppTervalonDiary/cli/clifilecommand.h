#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

#include <memory>

namespace Tervalon {

class ZBDatabase;

// A command on one data file, named by its first argument. Opening reads the
// whole file; a command that writes holds the file's lock, recovers what a
// crashed session left (unless given --discard-partial), makes its change as
// one named undo step in the partial file, and saves through the database's
// full save, so the file on disk is either the old one or the new one.
class CliFileCommand : public CliCommand {
public:
    int run(CliContext& context) override;
    // The command on a database already open (a shell session): the argument
    // check, run_on, and, for a command that writes, the close of its step.
    int run_open(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args);
    // The name of the command's undo step, for changes it did not close itself.
    virtual std::string undo_name() const;

protected:
    // The work on the open database; the file argument is already taken off.
    virtual int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) = 0;
    // Argument count after the file, for the usage check: at least, at most (-1 for any).
    virtual int min_args() const { return 0; }
    virtual int max_args() const { return 0; }
    // Saves after run_on when the command writes and the run succeeded.
    virtual bool save_after() const { return writes(); }

    const std::string& file() const { return m_file; }

private:
    std::string m_file;
};

} // namespace Tervalon
