#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon dump FILE: prints every object of the file, as the diagnostics see it.
class CmdDump : public CliFileCommand {
public:
    std::string name() const override { return "dump"; }
    std::string usage() const override { return "dump FILE"; }
    std::string summary() const override { return "Print every object of a data file."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
};

} // namespace Tervalon
