#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon add: makes one entry; dates and durations are read as people type them.
class CmdAdd : public CliFileCommand {
public:
    std::string name() const override { return "add"; }
    std::string usage() const override { return "add FILE --type T|A|J|P|D|L|O --title TEXT [--parent ID] [--due TEXT] [--start TEXT] [--duration TEXT] [--priority N] [--repeat RULE]"; }
    std::string summary() const override { return "Add an entry and print its id."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
