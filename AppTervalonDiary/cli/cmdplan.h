#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon plan FILE [--now DATE] [--json]: recalculates the whole diary in
// the foreground and prints every entry's derived dates, progress, priority
// and alerts in display order. Nothing is saved.
class CmdPlan : public CliFileCommand {
public:
    std::string name() const override { return "plan"; }
    std::string usage() const override { return "plan FILE [--now DATE] [--json]"; }
    std::string summary() const override
    {
        return "Recalculate the diary and print each entry's dates, progress, priority and alerts.";
    }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return 3; }
};

} // namespace Tervalon
