#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon rm: deletes an entry and everything under it.
class CmdRm : public CliFileCommand {
public:
    std::string name() const override { return "rm"; }
    std::string usage() const override { return "rm FILE ID"; }
    std::string summary() const override { return "Delete an entry with its descendants."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 1; }
};

} // namespace Tervalon
