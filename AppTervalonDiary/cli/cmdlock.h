#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon lock / unlock FILE [ID] [--from DATE] [--to DATE] [--now DATE]:
// turns the planner's predicted sessions into fixed plans, or drops fixed
// plans again, for one task or the whole diary, within a range of dates or
// for all time. The diary is recalculated first so that the predictions are
// current. Nothing to do, an unknown id or a range back to front is refused
// and the file is left as it was.
class CmdLock : public CliFileCommand {
public:
    explicit CmdLock(bool lock) : m_lock(lock) {}
    std::string name() const override { return m_lock ? "lock" : "unlock"; }
    std::string usage() const override { return name() + " FILE [ID] [--from DATE] [--to DATE] [--now DATE]"; }
    std::string summary() const override
    {
        return m_lock ? "Fix the predicted sessions of task ID (or of every task) in the range as planned time."
                      : "Remove the fixed plans of task ID (or of every task) in the range.";
    }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return 7; }

private:
    bool m_lock;
};

} // namespace Tervalon
