#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon planning: the days ahead per time type: what is planned, due,
// scheduled and suggested each day against the time available. Nothing is saved.
class CmdPlanning : public CliFileCommand {
public:
    std::string name() const override { return "planning"; }
    std::string usage() const override { return "planning FILE [--now DATE] [--days N] [--resource NAME] [--html]"; }
    std::string summary() const override { return "Recalculate the diary and show the planning page by time type and day."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
