#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon instance: one instance of a repeating entry becomes an entry of
// its own; the series goes on without it.
class CmdInstance : public CliFileCommand {
public:
    std::string name() const override { return "instance"; }
    std::string usage() const override { return "instance FILE ID DATE"; }
    std::string summary() const override
    {
        return "Make the instance of a repeating entry on DATE an entry of its own; prints its id.";
    }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 2; }
    int max_args() const override { return 2; }
};

} // namespace Tervalon
