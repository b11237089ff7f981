#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon set: changes one field of an entry.
class CmdSet : public CliFileCommand {
public:
    std::string name() const override { return "set"; }
    std::string usage() const override { return "set FILE ID FIELD VALUE"; }
    std::string summary() const override { return "Set a field of an entry: title, details, due, start, priority, completion, duration, repeat, type, commands."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 3; }
    int max_args() const override { return 3; }
};

} // namespace Tervalon
