#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

class Diary;
class ResourceCalendar;

// tervalon calendar: shows a resource's available time per time type and its
// working days, or edits a calendar: day types, the weekdays' day types and
// dated exceptions. Edits go to the diary's default calendar, or with
// --resource to that resource's own.
class CmdCalendar : public CliFileCommand {
public:
    std::string name() const override { return "calendar"; }
    std::string usage() const override
    {
        return "calendar FILE [--resource NAME] [--from DATE] [--days N] | "
               "calendar FILE daytype NAME [HH:MM-HH:MM=TIMETYPE ...] | calendar FILE weekday DAY DAYTYPE | "
               "calendar FILE except FROM TO DAYTYPE [--days Mon,Tue,...] [--comment TEXT] | "
               "calendar FILE unexcept FROM TO";
    }
    std::string summary() const override
    {
        return "Show the available time per time type and the working days; or edit day types, weekdays and "
               "exceptions (--resource NAME for a resource's own calendar).";
    }
    bool writes() const override { return m_editing; }
    int run(CliContext& context) override;

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 0; }
    int max_args() const override { return -1; }

private:
    int show(CliContext& context, Diary& diary, const std::vector<std::string>& args);
    int edit_daytype(CliContext& context, Diary& diary, ResourceCalendar& calendar, const std::vector<std::string>& words);
    int edit_weekday(CliContext& context, Diary& diary, ResourceCalendar& calendar, const std::vector<std::string>& words);
    int edit_except(CliContext& context, Diary& diary, ResourceCalendar& calendar, const std::vector<std::string>& words,
                    const std::string& days, const std::string& comment);
    int edit_unexcept(CliContext& context, Diary& diary, ResourceCalendar& calendar, const std::vector<std::string>& words);

    bool m_editing = false;
};

} // namespace Tervalon
