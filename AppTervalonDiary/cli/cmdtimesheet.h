#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

class Diary;
class Timesheet;

// tervalon timesheet: one person's hours per entry and day over a span (a
// week from this week's first day unless told), with totals, as text, HTML or
// CSV; or "set", which writes one day's time on an entry back as sessions.
class CmdTimesheet : public CliFileCommand {
public:
    std::string name() const override { return "timesheet"; }
    std::string usage() const override
    {
        return "timesheet FILE [--from DATE] [--days N] [--resource NAME] [--html|--csv] | "
               "timesheet FILE set ID DATE DURATION [--resource NAME]";
    }
    std::string summary() const override
    {
        return "Show the hours spent per entry and day with totals, or set the time spent on an entry on one day.";
    }
    bool writes() const override { return m_editing; }
    int run(CliContext& context) override;

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return -1; }

private:
    int edit(CliContext& context, Diary& diary, int user, const std::vector<std::string>& words);

    bool m_editing = false;
};

} // namespace Tervalon
