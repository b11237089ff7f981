#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon stop FILE: ends the diary's running session and records its time.
class CmdStop : public CliFileCommand {
public:
    std::string name() const override { return "stop"; }
    std::string usage() const override { return "stop FILE [--now DATE]"; }
    std::string summary() const override { return "Stop the running session of work and record its time."; }
    bool writes() const override { return true; }
    std::string undo_name() const override { return "Stop Session"; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return 2; }
};

} // namespace Tervalon
