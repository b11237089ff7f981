#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

#include <memory>

namespace Tervalon {

class ZBDatabase;

// A command on one data file, named by its first argument. Opening reads the
// whole file; a command that writes saves through a temporary file, so the
// file on disk is either the old one or the new one, never half of each.
class CliFileCommand : public CliCommand {
public:
    int run(CliContext& context) override;

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
