#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon baseline FILE ID: freezes a task's hours (--hours), its hours and
// predicted dates (--date), or sets how it keeps them by itself (--auto
// KIND); with none of these it only shows the baseline and its grades.
class CmdBaseline : public CliFileCommand {
public:
    std::string name() const override { return "baseline"; }
    std::string usage() const override { return "baseline FILE ID [--hours | --date | --auto KIND] [--now DATE]"; }
    std::string summary() const override
    {
        return "Save a task's baseline hours (and dates), or set its automatic baseline (None, Hours, HoursDate, "
               "FollowHours, FollowHoursDate); then show how the task stands against it.";
    }
    bool writes() const override { return true; }
    std::string undo_name() const override { return "Save Baseline"; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 5; }
};

} // namespace Tervalon
