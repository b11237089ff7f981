#include "LibDatabase/db/zbobjectspecchild.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBObjectSpecChild", &ZBObjectSpecChild::create_zbobject);
}

ZBObjectSpecChild::ZBObjectSpecChild()
    : m_specId(-1), m_defaultSpecId(-1), m_array(false), m_addCreate(false), m_mandatory(true), m_lineNo(-1)
{
    ZBObjectSpecChild::register_zbobject();
}

bool ZBObjectSpecChild::operator==(const ZBObjectSpecChild& other) const
{
    return m_memberTag == other.m_memberTag && m_specName == other.m_specName && m_specId == other.m_specId
        && m_defaultSpecId == other.m_defaultSpecId && m_defaultSpecName == other.m_defaultSpecName
        && m_array == other.m_array && m_addCreate == other.m_addCreate && m_mandatory == other.m_mandatory
        && m_lineNo == other.m_lineNo && ZBObject::operator==(other);
}

void ZBObjectSpecChild::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBObjectSpecChild", out, indent);
    dump.add_entry("m_memberTag", m_memberTag);
    dump.add_entry("m_specName", m_specName);
    dump.add("m_specId", m_specId);
    dump.add("m_defaultSpecId", m_defaultSpecId);
    dump.add_entry("m_defaultSpecName", m_defaultSpecName);
    dump.add("m_array", m_array);
    dump.add("m_addCreate", m_addCreate);
    dump.add("m_mandatory", m_mandatory);
    dump.add("m_lineNo", m_lineNo);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBObjectSpecChild::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "M", m_memberTag, true);
    serialise_string(in, out, prefix, "SN", m_specName, true);
    serialise_field<int>(in, out, prefix, "SI", m_specId, -1);
    serialise_field<int>(in, out, prefix, "DI", m_defaultSpecId, -1);
    serialise_string(in, out, prefix, "DN", m_defaultSpecName, true);
    serialise_field<bool>(in, out, prefix, "A", m_array, false);
    serialise_field<bool>(in, out, prefix, "AC", m_addCreate, false);
    serialise_field<bool>(in, out, prefix, "MD", m_mandatory, true);
    serialise_field<int>(in, out, prefix, "LN", m_lineNo, -1);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBObjectSpecChild::register_zbobject()
{
    register_objectname("ZBObjectSpecChild", &ZBObjectSpecChild::create_zbobject);
}

int ZBObjectSpecChild::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBObjectSpecChild>(out, from, "ZBObjectSpecChild");
}

void ZBObjectSpecChild::set_defaults(bool)
{
    *this = ZBObjectSpecChild();
}

} // namespace Tervalon
