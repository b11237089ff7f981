#include "AppTervalonDiary/diary/journalcheck.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("JournalCheck", &JournalCheck::create_zbobject);
}

const char* const JournalCheck::C_JournalCheckTag = "JC";

JournalCheck::JournalCheck()
{
    JournalCheck::register_zbobject();
    JournalCheck::set_defaults(true);
}

void JournalCheck::register_zbobject()
{
    register_objectname("JournalCheck", &JournalCheck::create_zbobject);
}

int JournalCheck::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<JournalCheck>(out, from, "JournalCheck");
}

void JournalCheck::set_defaults(bool all)
{
    if (all)
        ZBDBObject::set_defaults(all);
    m_name.clear();
    m_enabled = true;
    m_prompt.clear();
    m_type = E_TypeTick;
}

void JournalCheck::set_type(int type)
{
    m_type = type == E_TypeNumber || type == E_TypeText ? E_Type(type) : E_TypeTick;
}

void JournalCheck::dump(std::ostream& out, int indent) const
{
    ZBDump dump("JournalCheck", out, indent);
    dump.add_entry("m_name", m_name);
    dump.add("m_enabled", m_enabled);
    dump.add_entry("m_prompt", m_prompt);
    dump.add("m_type", int(m_type));
}

int JournalCheck::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<std::string>(in, out, prefix, "n", m_name, std::string());
    serialise_field<bool>(in, out, prefix, "e", m_enabled, true);
    serialise_field<std::string>(in, out, prefix, "p", m_prompt, std::string());
    int type = int(m_type);
    serialise_field<int>(in, out, prefix, "t", type, int(E_TypeTick));
    if (in)
        set_type(type);
    return ZBDBObject::serialise(in, out, prefix, version);
}

} // namespace Tervalon
