#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon session FILE ID --from DATE --duration TEXT: records work done
// earlier on a task or an appointment. A session that would overlap one of
// the same resource is refused and nothing changes.
class CmdSession : public CliFileCommand {
public:
    std::string name() const override { return "session"; }
    std::string usage() const override { return "session FILE ID --from DATE --duration TEXT [--resource NAME]"; }
    std::string summary() const override
    {
        return "Record a past session of work on an entry: when it began and how long it lasted.";
    }
    bool writes() const override { return true; }
    std::string undo_name() const override { return "Add Session"; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 5; }
    int max_args() const override { return 7; }
};

} // namespace Tervalon
