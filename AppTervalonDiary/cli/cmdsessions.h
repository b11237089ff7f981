#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"
#include "LibDate/date/zbdate.h"

namespace Tervalon {

class Diary;
class DiaryEntry;
class CliOptions;

// tervalon sessions FILE ID: the sessions of work recorded on an entry, the
// running one marked, and the time spent on it and below it. Nothing is saved.
// Also what the session commands share: the clock option, the resource by
// name, and an entry named in a line.
class CmdSessions : public CliFileCommand {
public:
    std::string name() const override { return "sessions"; }
    std::string usage() const override { return "sessions FILE ID [--now DATE]"; }
    std::string summary() const override
    {
        return "List the sessions of work recorded on an entry, the running one marked, and the time spent.";
    }
    bool writes() const override { return false; }

    // Fixes the clock at the "--now" option for the life of the guard.
    class Clock {
    public:
        Clock() = default;
        ~Clock();
        Clock(const Clock&) = delete;
        Clock& operator=(const Clock&) = delete;
        // Reads the option; a date that cannot be read is reported.
        int set(const CliOptions& options);

    private:
        bool m_fixed = false;
    };
    // The resource named by "--resource" (through the error stack when there
    // is no such one); without the option, fallback.
    static int resource_option(const Diary& diary, const CliOptions& options, int fallback, int& out);
    static std::string entry_name(const DiaryEntry& entry);
    static std::string resource_name(const Diary& diary, int id);
    static std::string date_text(const ZBDate& date);
    // Whether sessions may be kept on the entry (tasks and appointments).
    static int check_session_type(const DiaryEntry& entry);

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return 3; }
};

} // namespace Tervalon
