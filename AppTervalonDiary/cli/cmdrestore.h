#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

// tervalon restore: puts a snapshot (bk0, bk1, ..., last-good, before-restore,
// or a path) in place of the data file. The state before the restore is kept
// as before-restore. A data file that no longer reads is set aside as ".bak".
class CmdRestore : public CliCommand {
public:
    std::string name() const override { return "restore"; }
    std::string usage() const override { return "restore FILE SNAPSHOT"; }
    std::string summary() const override
    {
        return "Restore a snapshot of FILE, named as snapshots lists it (bk0, bk1, ..., last-good, before-restore) "
               "or by its path. The present state is kept first as before-restore.";
    }
    bool writes() const override { return true; }
    int run(CliContext& context) override;

    // The path of a snapshot of file from its name in the list; empty when unknown.
    static std::string snapshot_path(const std::string& file, const std::string& snapshot);
};

} // namespace Tervalon
