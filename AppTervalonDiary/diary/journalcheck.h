#pragma once

#include "LibDatabase/db/zbdbobject.h"

#include <string>

namespace Tervalon {

// One item of the journal's check list: a question the user answers when
// writing the day's journal ("Exercised?", "Took the pills?"). The diary keeps
// its check list in order; an item can be switched off without losing it.
class JournalCheck : public ZBDBObject {
public:
    static const char* const C_JournalCheckTag; // "JC"

    // What an answer is: ticked or not, a number, or a line of text.
    enum E_Type { E_TypeTick = 0, E_TypeNumber = 1, E_TypeText = 2 };

    JournalCheck();
    JournalCheck(const JournalCheck& other) = default;
    JournalCheck& operator=(const JournalCheck& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    bool allow_children() const override { return false; }
    bool uses_spec() const override { return false; }
    std::string get_summary() const override { return m_name; }

    const std::string& get_name() const { return m_name; }
    void set_name(const std::string& name) { m_name = name; }
    bool is_enabled() const { return m_enabled; }
    void set_enabled(bool enabled) { m_enabled = enabled; }
    // The question as the journal asks it; the name when none is set.
    std::string get_prompt() const { return m_prompt.empty() ? m_name : m_prompt; }
    void set_prompt(const std::string& prompt) { m_prompt = prompt; }
    E_Type get_type() const { return m_type; }
    // Types from another release read as a tick, so the item stays usable.
    void set_type(int type);

private:
    std::string m_name;
    bool m_enabled = true;
    std::string m_prompt;
    E_Type m_type = E_TypeTick;
};

} // namespace Tervalon
