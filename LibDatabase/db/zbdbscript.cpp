#include "LibDatabase/db/zbdbscript.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBDBScript", &ZBDBScript::create_zbobject);
}

ZBDBScript::ZBDBScript()
{
    ZBDBScript::register_zbobject();
}

bool ZBDBScript::operator==(const ZBDBScript& other) const
{
    return m_name == other.m_name && m_trigger == other.m_trigger && m_script == other.m_script && m_shortcut == other.m_shortcut && ZBObject::operator==(other);
}

void ZBDBScript::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDBScript", out, indent);
    dump.add_entry("m_name", m_name);
    dump.add_entry("m_trigger", m_trigger);
    dump.add_entry("m_script", m_script);
    dump.add_entry("m_shortcut", m_shortcut);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBDBScript::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "N", m_name, true);
    serialise_string(in, out, prefix, "T", m_trigger, true);
    serialise_string(in, out, prefix, "S", m_script, true);
    serialise_string(in, out, prefix, "K", m_shortcut, true);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDBScript::register_zbobject()
{
    register_objectname("ZBDBScript", &ZBDBScript::create_zbobject);
}

int ZBDBScript::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDBScript>(out, from, "ZBDBScript");
}

} // namespace Tervalon
