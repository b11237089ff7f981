#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

// tervalon create FILE: a new, empty data file. An existing file is never replaced.
class CmdCreate : public CliCommand {
public:
    std::string name() const override { return "create"; }
    std::string usage() const override { return "create FILE"; }
    std::string summary() const override { return "Create a new empty data file."; }
    bool writes() const override { return true; }
    int run(CliContext& context) override;
};

} // namespace Tervalon
