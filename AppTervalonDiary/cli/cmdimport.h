#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon import FILE TASKS: brings in a task list exported as JSON, in one
// change; lines it cannot read are listed on stderr and the rest goes in.
class CmdImport : public CliFileCommand {
public:
    std::string name() const override { return "import"; }
    std::string usage() const override { return "import FILE TASKS.json"; }
    std::string summary() const override
    {
        return "Import a task list exported as JSON (one object per line, or an array).";
    }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 1; }
};

} // namespace Tervalon
