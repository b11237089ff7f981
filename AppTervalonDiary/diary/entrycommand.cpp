#include "AppTervalonDiary/diary/entrycommand.h"
#include "AppTervalonDiary/diary/diaryentry.h"
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

double EntryCommand::get_completed() const
{
    int total = 0;
    int done = 0;
    size_t from = 0;
    while (from <= m_command.size()) {
        size_t to = m_command.find(C_CommandSeparator, from);
        if (to == std::string::npos)
            to = m_command.size();
        std::string command = m_command.substr(from, to - from);
        if (!command.empty()) {
            ++total;
            std::string tag = command.substr(0, command.find(' '));
            if (!tag.empty() && ("," + m_exec + ",").find("," + tag + ",") != std::string::npos)
                ++done;
        }
        from = to + 1;
    }
    return total ? double(done) / total : 1.0;
}

} // namespace Tervalon
