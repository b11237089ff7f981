#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon sequence: a repeating entry becomes COUNT entries, itself the
// first; --dates gives each its instance's dates, --chain makes each depend
// on the one before.
class CmdSequence : public CliFileCommand {
public:
    std::string name() const override { return "sequence"; }
    std::string usage() const override { return "sequence FILE ID COUNT [--dates] [--chain]"; }
    std::string summary() const override
    {
        return "Turn a repeating entry into COUNT entries: --dates gives each its instance's dates, --chain makes "
               "each depend on the one before; prints their ids.";
    }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 2; }
    int max_args() const override { return 4; }
};

} // namespace Tervalon
