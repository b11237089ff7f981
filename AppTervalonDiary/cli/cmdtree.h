#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon tree: the entries as an indented tree, one per line.
class CmdTree : public CliFileCommand {
public:
    std::string name() const override { return "tree"; }
    std::string usage() const override { return "tree FILE"; }
    std::string summary() const override { return "Print the entries as an indented tree: id, type, title, due and completion."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return 0; }
};

} // namespace Tervalon
