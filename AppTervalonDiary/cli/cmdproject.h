#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon project: per resource, when the work of each top-level entry is
// predicted to end and how much it holds. Nothing is saved.
class CmdProject : public CliFileCommand {
public:
    std::string name() const override { return "project"; }
    std::string usage() const override { return "project FILE [--now DATE] [--html]"; }
    std::string summary() const override { return "Recalculate the diary and show, per resource, when each project is predicted to end."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
