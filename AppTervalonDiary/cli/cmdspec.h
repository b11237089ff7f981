#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon spec FILE: the specs of a data file with their variables.
// tervalon spec check SPECFILE: parses a spec text (one spec, or a ".zbo" file
// of several) without any data file, and reports each fault with its line.
class CmdSpec : public CliFileCommand {
public:
    std::string name() const override { return "spec"; }
    std::string usage() const override { return "spec FILE | spec check SPECFILE"; }
    std::string summary() const override { return "List the specs of a data file, or check a spec text file."; }
    bool writes() const override { return false; }
    int run(CliContext& context) override;

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;

private:
    int run_check(CliContext& context, const std::string& specFile);
};

} // namespace Tervalon
