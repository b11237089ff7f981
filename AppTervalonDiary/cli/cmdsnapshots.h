#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

// tervalon snapshots: lists the kept copies of a data file: the rotated
// backups and snapshots (newest first), the last verified copy, and the state
// kept before the last restore.
class CmdSnapshots : public CliCommand {
public:
    std::string name() const override { return "snapshots"; }
    std::string usage() const override { return "snapshots FILE"; }
    std::string summary() const override
    {
        return "List the snapshots and backups of FILE, newest first, with the name to give restore.";
    }
    bool writes() const override { return false; }
    int run(CliContext& context) override;
};

} // namespace Tervalon
