#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon done: completes an entry, now or at a date.
class CmdDone : public CliFileCommand {
public:
    std::string name() const override { return "done"; }
    std::string usage() const override { return "done FILE ID [DATE]"; }
    std::string summary() const override { return "Mark an entry complete; a repeating entry moves to its next instance."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 2; }
};

} // namespace Tervalon
