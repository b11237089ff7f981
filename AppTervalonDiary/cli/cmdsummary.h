#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon summary: the day's headline, meter and the lists of what to do
// today, next and later, for one resource or all. Nothing is saved.
class CmdSummary : public CliFileCommand {
public:
    std::string name() const override { return "summary"; }
    std::string usage() const override { return "summary FILE [--now DATE] [--resource NAME] [--html|--text]"; }
    std::string summary() const override { return "Recalculate the diary and show the day's summary: headline, meter and what to do when."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
