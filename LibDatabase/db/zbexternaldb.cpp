#include "LibDatabase/db/zbexternaldb.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBExternalDB", &ZBExternalDB::create_zbobject);
}

ZBExternalDB::ZBExternalDB()
{
    ZBExternalDB::register_zbobject();
}

bool ZBExternalDB::operator==(const ZBExternalDB& other) const
{
    return m_name == other.m_name && ZBObject::operator==(other);
}

void ZBExternalDB::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBExternalDB", out, indent);
    dump.add_entry("m_name", m_name);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBExternalDB::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "N", m_name, true);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBExternalDB::register_zbobject()
{
    register_objectname("ZBExternalDB", &ZBExternalDB::create_zbobject);
}

int ZBExternalDB::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBExternalDB>(out, from, "ZBExternalDB");
}

} // namespace Tervalon
