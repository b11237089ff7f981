#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// One command of an entry's list, parsed: what it runs, the tag that marks
// it as run, and when it runs by itself. Made by EntryCommand::update_commands.
class DiaryCommand {
public:
    static const char C_EnvironmentMarker = '@';
    static const char C_TagSeparator = ',';
    static const char C_CommandSeparator = ';';
    static const char* const C_AutoStartTag;
    static const char* const C_AutoEndTag;
    static const char* const C_MacroTag;
    static const char* const C_ReminderTag;
    // A tag with this value stops the commands after it running by themselves.
    static const char* const C_StopTag;

    enum E_Kind { E_Url = 0, E_Macro = 1, E_Reminder = 2 };

    DiaryCommand() = default;

    // Reads one line, "command", "tags=command" or "tags=0". AUTOSTART runs the
    // command when a session starts, AUTOEND when it stops (and the task
    // completes once every command has run). False with a message for
    // a tag it does not know or a command left empty.
    bool parse(const std::string& line, std::string& message);

    E_Kind get_kind() const;
    // The command without its "macro:" or "reminder:" lead.
    std::string get_argument() const;
    // True for a URL with a scheme and something after it.
    static bool is_valid_url(const std::string& text);

    void dump(std::ostream& out, int indent) const;
    bool operator==(const DiaryCommand& other) const;

    std::string m_command;
    std::string m_title;
    std::string m_tag;
    bool m_executed = false;
    bool m_autoStart = false;
    bool m_autoEnd = false;
    // "=0": not a command, the point where an automatic run stops.
    bool m_stop = false;
};

} // namespace Tervalon
