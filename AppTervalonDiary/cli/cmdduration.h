#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

// tervalon duration TEXT...: reads each text as a duration ("1h30m", "1:30",
// "2d" in working days) and prints it in its own text form. No data file.
class CmdDuration : public CliCommand {
public:
    std::string name() const override { return "duration"; }
    std::string usage() const override { return "duration TEXT..."; }
    std::string summary() const override { return "Read durations (\"1h30m\", \"2d\") and print each as hours and minutes."; }
    bool writes() const override { return false; }
    int run(CliContext& context) override;
};

} // namespace Tervalon
