#pragma once

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
    void reset_executed() { m_exec.clear(); }

private:
    std::string m_command;
    std::string m_exec;
};

} // namespace Tervalon
