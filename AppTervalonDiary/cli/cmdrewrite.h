#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon rewrite FILE: reads the file and writes it back whole.
class CmdRewrite : public CliFileCommand {
public:
    std::string name() const override { return "rewrite"; }
    std::string usage() const override { return "rewrite FILE"; }
    std::string summary() const override { return "Read a data file and write it back whole."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
};

} // namespace Tervalon
