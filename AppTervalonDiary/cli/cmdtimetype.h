#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon timetype: lists, adds and removes the kinds of work time. A time
// type still used by a calendar or an entry cannot be removed.
class CmdTimeType : public CliFileCommand {
public:
    std::string name() const override { return "timetype"; }
    std::string usage() const override { return "timetype FILE list | add NAME | rm NAME"; }
    std::string summary() const override { return "List, add or remove the time types (kinds of work time)."; }
    bool writes() const override { return m_editing; }
    int run(CliContext& context) override;

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 2; }

private:
    bool m_editing = false;
};

} // namespace Tervalon
