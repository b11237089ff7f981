#include "AppTervalonDiary/diary/entrycommand.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/error/zberror.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryCommand", &EntryCommand::create_zbobject);
}

EntryCommand::EntryCommand()
{
    EntryCommand::register_zbobject();
    EntryCommand::set_defaults(true);
}

void EntryCommand::register_zbobject()
{
    register_objectname("EntryCommand", &EntryCommand::create_zbobject);
}

int EntryCommand::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryCommand>(out, from, "EntryCommand");
}

void EntryCommand::set_defaults(bool)
{
    m_command.clear();
    m_exec.clear();
    m_commands.clear();
    m_executedCommands.clear();
}

void EntryCommand::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryCommand", out, indent);
    dump.add_entry("m_command", m_command);
    dump.add_entry("m_exec", m_exec);
}

int EntryCommand::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    owner.serialise_string(in, out, prefix, "cd", m_command, true);
    owner.serialise_string(in, out, prefix, "ex", m_exec, true);
    return ZBErrC_ok;
}

std::string EntryCommand::get_expanded_command() const
{
    std::string text = m_command;
    for (char& c : text)
        if (c == C_CommandSeparator)
            c = '\n';
    return text;
}

void EntryCommand::set_expanded_command(const std::string& text)
{
    m_command = text;
    for (char& c : m_command)
        if (c == '\n')
            c = C_CommandSeparator;
}

namespace {
std::string trimmed(const std::string& text)
{
    const size_t from = text.find_first_not_of(" \t\r\n");
    if (from == std::string::npos)
        return std::string();
    const size_t to = text.find_last_not_of(" \t\r\n");
    return text.substr(from, to - from + 1);
}

std::vector<std::string> split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    size_t from = 0;
    while (from <= text.size()) {
        size_t to = text.find(separator, from);
        if (to == std::string::npos)
            to = text.size();
        parts.push_back(text.substr(from, to - from));
        from = to + 1;
    }
    return parts;
}

void replace_all(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}
} // namespace

int EntryCommand::parse_list(const std::string& command, const EntryCommand* owner, std::vector<DiaryCommand>& out)
{
    out.clear();
    std::vector<std::pair<std::string, std::string>> environment;
    std::vector<DiaryCommand> commands;
    int index = 0;
    for (const std::string& token : split(command, C_CommandSeparator)) {
        std::string line = trimmed(token);
        if (line.empty())
            continue;
        if (line[0] == DiaryCommand::C_EnvironmentMarker) {
            const size_t equals = line.find('=');
            const std::string name = trimmed(line.substr(1, equals == std::string::npos ? std::string::npos : equals - 1));
            if (!name.empty())
                environment.emplace_back(name, equals == std::string::npos ? std::string() : trimmed(line.substr(equals + 1)));
            continue;
        }
        for (const auto& value : environment)
            replace_all(line, "$<" + value.first + ">", value.second);
        DiaryEntry* entry = owner ? owner->get_entry() : nullptr;
        if (entry && line.find("$") != std::string::npos) {
            if (iszberr(entry->apply_vars(line, false, nullptr)))
                return zbpass(ZBLOC);
            line = trimmed(line);
            if (line.empty())
                continue;
        }
        DiaryCommand parsed;
        std::string message;
        if (!parsed.parse(line, message))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s", message.c_str());
        if (!parsed.m_stop)
            parsed.m_tag = std::to_string(index++);
        commands.push_back(parsed);
    }
    out.swap(commands);
    return ZBErrC_ok;
}

int EntryCommand::update_commands()
{
    const int result = parse_list(m_command, this, m_commands);
    mark_executed();
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int EntryCommand::validate(const std::string& command)
{
    std::vector<DiaryCommand> commands;
    return iszbwarn(parse_list(command, nullptr, commands)) ? zbpass(ZBLOC) : ZBErrC_ok;
}

void EntryCommand::mark_executed()
{
    m_executedCommands.clear();
    for (DiaryCommand& command : m_commands) {
        command.m_executed = !command.m_stop && is_executed(command.m_tag);
        if (command.m_executed)
            m_executedCommands += command.m_title + "\n";
    }
}

const DiaryCommand* EntryCommand::find_command(const std::string& tag) const
{
    for (const DiaryCommand& command : m_commands)
        if (!command.m_stop && command.m_tag == tag)
            return &command;
    return nullptr;
}

bool EntryCommand::is_executed(const std::string& tag) const
{
    return !tag.empty() && ("," + m_exec + ",").find("," + tag + ",") != std::string::npos;
}

int EntryCommand::count_remaining() const
{
    int count = 0;
    for (const DiaryCommand& command : m_commands)
        if (!command.m_stop && !command.m_executed)
            ++count;
    return count;
}

bool EntryCommand::has_auto_end() const
{
    for (const DiaryCommand& command : m_commands)
        if (!command.m_stop && command.m_autoEnd)
            return true;
    return false;
}

void EntryCommand::mark_command(const std::string& tag)
{
    if (tag.empty() || is_executed(tag))
        return;
    m_exec += (m_exec.empty() ? "" : ",") + tag;
    mark_executed();
}

void EntryCommand::clear_command(const std::string& tag)
{
    std::string kept;
    for (const std::string& item : split(m_exec, ','))
        if (!item.empty() && item != tag)
            kept += (kept.empty() ? "" : ",") + item;
    m_exec = kept;
    mark_executed();
}

void EntryCommand::reset_executed()
{
    m_exec.clear();
    mark_executed();
}

double EntryCommand::get_completed() const
{
    // Counted from the text itself, so that a list not yet parsed (or a
    // shared default facet) answers the same.
    int total = 0;
    int done = 0;
    for (const std::string& token : split(m_command, C_CommandSeparator)) {
        const std::string line = trimmed(token);
        if (line.empty() || line[0] == DiaryCommand::C_EnvironmentMarker)
            continue;
        const size_t equals = line.find('=');
        if (equals != std::string::npos && trimmed(line.substr(equals + 1)) == DiaryCommand::C_StopTag
            && line.find(':') > equals)
            continue;
        if (is_executed(std::to_string(total)))
            ++done;
        ++total;
    }
    return total ? double(done) / total : 1.0;
}

} // namespace Tervalon
