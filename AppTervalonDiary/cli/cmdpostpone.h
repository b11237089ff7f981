#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon postpone: moves an entry's start (a task's start-after) by a date text.
class CmdPostpone : public CliFileCommand {
public:
    std::string name() const override { return "postpone"; }
    std::string usage() const override { return "postpone FILE ID TEXT"; }
    std::string summary() const override { return "Move an entry's start to a date text, such as +2 days."; }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 2; }
    int max_args() const override { return 2; }
};

} // namespace Tervalon
