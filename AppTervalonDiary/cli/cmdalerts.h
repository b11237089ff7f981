#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon alerts FILE [--now DATE]: the notifications of one round of
// recalculation, highest priority first. Nothing is saved.
class CmdAlerts : public CliFileCommand {
public:
    std::string name() const override { return "alerts"; }
    std::string usage() const override { return "alerts FILE [--now DATE]"; }
    std::string summary() const override { return "Recalculate the diary and list its notifications, most urgent first."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return 2; }
};

} // namespace Tervalon
