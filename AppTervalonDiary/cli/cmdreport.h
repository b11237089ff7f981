#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon report: the time spent per entry ("spent") or what is planned,
// predicted or due ("plan") over a span of days, as text or HTML. Reads only.
class CmdReport : public CliFileCommand {
public:
    std::string name() const override { return "report"; }
    std::string usage() const override
    {
        return "report FILE spent|plan [--from DATE] [--to DATE] [--resource NAME] [--html]";
    }
    std::string summary() const override
    {
        return "Report the time spent per entry, or the work planned, predicted and due, over a span of days "
               "(this week unless told).";
    }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
