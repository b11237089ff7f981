#pragma once

#include "AppTervalonDiary/diary/diarycommand.h"
#include "AppTervalonDiary/diary/entryfacet.h"

#include <string>
#include <vector>

namespace Tervalon {

// The commands a user attached to an entry, and which of them have run.
class EntryCommand : public EntryFacet {
public:
    EntryCommand();
    EntryCommand(const EntryCommand& other) = default;
    EntryCommand& operator=(const EntryCommand& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    static const char C_CommandSeparator = ';';

    const std::string& get_command() const { return m_command; }
    void set_command(const std::string& command) { m_command = command; }
    const std::string& get_exec_command() const { return m_exec; }
    void set_exec_command(const std::string& exec) { m_exec = exec; }
    // The list one command a line, as the user edits it.
    std::string get_expanded_command() const;
    void set_expanded_command(const std::string& text);
    // Share of the commands that have run, 0.0 to 1.0; 1.0 with none.
    double get_completed() const;
    void reset_executed();

    // Parses the list into commands: environment lines ("@NAME=VALUE") give
    // values to $<NAME> in the lines after them, the entry's variables are
    // put in, empty lines are dropped, and each command is tagged with its
    // position among the commands. An unknown tag is a user warning, and the
    // list is then left empty.
    int update_commands();
    // Checks a list as a user typed it, without keeping anything.
    static int validate(const std::string& command);
    const std::vector<DiaryCommand>& get_commands() const { return m_commands; }
    // The command of tag, null when there is none.
    const DiaryCommand* find_command(const std::string& tag) const;
    bool is_executed(const std::string& tag) const;
    // Commands that have not run, stop marks left out.
    int count_remaining() const;
    bool has_auto_end() const;
    void mark_command(const std::string& tag);
    void clear_command(const std::string& tag);
    const std::string& get_executed_commands() const { return m_executedCommands; }

private:
    static int parse_list(const std::string& command, const EntryCommand* owner, std::vector<DiaryCommand>& out);
    void mark_executed();

    std::string m_command;
    std::string m_exec;
    std::vector<DiaryCommand> m_commands;
    // The titles of the commands that have run, one a line, for display.
    std::string m_executedCommands;
};

} // namespace Tervalon
