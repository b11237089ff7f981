#include "AppTervalonDiary/diary/diarycommand.h"
#include "LibObject/object/zbdump.h"

#include <QUrl>

#include <cctype>
#include <ostream>

namespace Tervalon {

const char* const DiaryCommand::C_AutoStartTag = "AUTOSTART";
const char* const DiaryCommand::C_AutoEndTag = "AUTOEND";
const char* const DiaryCommand::C_MacroTag = "macro:";
const char* const DiaryCommand::C_ReminderTag = "reminder:";
const char* const DiaryCommand::C_StopTag = "0";

namespace {
std::string trimmed(const std::string& text)
{
    const size_t from = text.find_first_not_of(" \t\r\n");
    if (from == std::string::npos)
        return std::string();
    const size_t to = text.find_last_not_of(" \t\r\n");
    return text.substr(from, to - from + 1);
}

bool starts_with(const std::string& text, const char* lead)
{
    return text.compare(0, std::string(lead).size(), lead) == 0;
}

// Tag lists are words of capitals and commas; anything else before an "="
// (such as "https://host/?a") is part of the command.
bool is_tag_list(const std::string& text)
{
    if (text.empty())
        return true;
    for (char c : text)
        if (!std::isupper(static_cast<unsigned char>(c)) && c != DiaryCommand::C_TagSeparator && c != ' ')
            return false;
    return true;
}
} // namespace

bool DiaryCommand::parse(const std::string& line, std::string& message)
{
    *this = DiaryCommand();
    std::string text = trimmed(line);
    const size_t equals = text.find('=');
    if (equals != std::string::npos && is_tag_list(text.substr(0, equals))) {
        const std::string tags = text.substr(0, equals);
        size_t from = 0;
        while (from <= tags.size()) {
            size_t to = tags.find(C_TagSeparator, from);
            if (to == std::string::npos)
                to = tags.size();
            const std::string tag = trimmed(tags.substr(from, to - from));
            if (tag == C_AutoStartTag)
                m_autoStart = true;
            else if (tag == C_AutoEndTag)
                m_autoEnd = true;
            else if (!tag.empty()) {
                message = "Unknown command tag \"" + tag + "\".";
                return false;
            }
            from = to + 1;
        }
        text = trimmed(text.substr(equals + 1));
        if (text == C_StopTag) {
            m_stop = true;
            text.clear();
        }
    }
    if (text.empty() && !m_stop) {
        message = "A command line has tags but no command.";
        return false;
    }
    m_command = text;
    m_title = get_kind() == E_Url ? text : get_argument();
    return true;
}

DiaryCommand::E_Kind DiaryCommand::get_kind() const
{
    if (starts_with(m_command, C_MacroTag))
        return E_Macro;
    if (starts_with(m_command, C_ReminderTag))
        return E_Reminder;
    return E_Url;
}

std::string DiaryCommand::get_argument() const
{
    switch (get_kind()) {
    case E_Macro:
        return trimmed(m_command.substr(std::string(C_MacroTag).size()));
    case E_Reminder:
        return trimmed(m_command.substr(std::string(C_ReminderTag).size()));
    default:
        return m_command;
    }
}

bool DiaryCommand::is_valid_url(const std::string& text)
{
    if (text.empty() || text.find_first_of(" \t") != std::string::npos)
        return false;
    const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    if (!url.isValid() || url.scheme().size() < 2)
        return false;
    // A scheme alone ("http:") names nothing to open.
    return !url.path().isEmpty() || !url.host().isEmpty();
}

void DiaryCommand::dump(std::ostream& out, int indent) const
{
    ZBDump dump("DiaryCommand", out, indent);
    dump.add_entry("m_command", m_command);
    dump.add_entry("m_title", m_title);
    dump.add_entry("m_tag", m_tag);
    dump.add("m_executed", m_executed);
    dump.add("m_autoStart", m_autoStart);
    dump.add("m_autoEnd", m_autoEnd);
}

bool DiaryCommand::operator==(const DiaryCommand& other) const
{
    return m_command == other.m_command && m_title == other.m_title && m_tag == other.m_tag
        && m_executed == other.m_executed && m_autoStart == other.m_autoStart && m_autoEnd == other.m_autoEnd
        && m_stop == other.m_stop;
}

} // namespace Tervalon
