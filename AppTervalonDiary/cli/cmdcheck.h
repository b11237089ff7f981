#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon check FILE: reads the file without changing it and prints its
// application type and object count.
class CmdCheck : public CliFileCommand {
public:
    std::string name() const override { return "check"; }
    std::string usage() const override { return "check FILE"; }
    std::string summary() const override { return "Read a data file and print its application type and object count."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
};

} // namespace Tervalon
