#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon resource: lists, adds, renames, dates and removes the people who
// do work. A resource still named by an entry cannot be removed.
class CmdResource : public CliFileCommand {
public:
    std::string name() const override { return "resource"; }
    std::string usage() const override
    {
        return "resource FILE list | add NAME [--start DATE] [--end DATE] | rm NAME | set NAME name|start|end VALUE";
    }
    std::string summary() const override { return "List, add, change or remove the resources (people who do work)."; }
    bool writes() const override { return m_editing; }
    int run(CliContext& context) override;

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return -1; }

private:
    bool m_editing = false;
};

} // namespace Tervalon
