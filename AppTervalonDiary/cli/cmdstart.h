#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon start FILE ID: starts a session of work on a task or an
// appointment. A session running on another entry is stopped first and its
// time recorded; the new one is stored with the diary and runs until "stop".
class CmdStart : public CliFileCommand {
public:
    std::string name() const override { return "start"; }
    std::string usage() const override { return "start FILE ID [--resource NAME] [--now DATE]"; }
    std::string summary() const override
    {
        return "Start a session of work on an entry; a session running elsewhere is stopped and recorded first.";
    }
    bool writes() const override { return true; }
    std::string undo_name() const override { return "Start Session"; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 5; }
};

} // namespace Tervalon
