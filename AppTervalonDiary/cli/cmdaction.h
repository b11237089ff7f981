#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon action FILE NAME [ID[:SEQ]...] [--param NAME=VALUE ...] [--now DATE]:
// runs any diary action by name, as the window's menus do, on the entries
// given (a sequence such as p0 picks a plan, s1 a spent session, r2 a
// predicted one). A refused action prints its reason and changes nothing.
class CmdAction : public CliFileCommand {
public:
    std::string name() const override { return "action"; }
    std::string usage() const override
    {
        return "action FILE NAME [ID[:SEQ]...] [--param NAME=VALUE ...] [--now DATE]";
    }
    std::string summary() const override { return "Run a diary action by name, as the window does."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
