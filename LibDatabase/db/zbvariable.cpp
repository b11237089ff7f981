#include "LibDatabase/db/zbvariable.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBVariable", &ZBVariable::create_zbobject);
}

ZBVariable::ZBVariable() : m_isCached(false), m_isInitialised(false)
{
    ZBVariable::register_zbobject();
}

ZBVariable::ZBVariable(const std::string& tag, const std::string& value) : ZBVariable()
{
    m_tag = tag;
    m_value = value;
}

ZBVariable::ZBVariable(const ZBVariable& other)
    : ZBObject(other), m_tag(other.m_tag), m_value(other.m_value), m_isCached(other.m_isCached),
      m_isInitialised(other.m_isInitialised), m_scriptCache(other.m_scriptCache)
{
    ZBVariable::register_zbobject();
    set_spec(other.m_spec);
}

ZBVariable::~ZBVariable()
{
    if (m_spec)
        m_spec->unlink();
}

ZBVariable& ZBVariable::operator=(const ZBVariable& other)
{
    if (this == &other)
        return *this;
    ZBObject::operator=(other);
    m_tag = other.m_tag;
    m_value = other.m_value;
    m_isCached = other.m_isCached;
    m_isInitialised = other.m_isInitialised;
    m_scriptCache = other.m_scriptCache;
    set_spec(other.m_spec);
    return *this;
}

bool ZBVariable::operator==(const ZBVariable& other) const
{
    return m_tag == other.m_tag && m_value == other.m_value && ZBObject::operator==(other);
}

void ZBVariable::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBVariable", out, indent);
    dump.add_entry("m_tag", m_tag);
    dump.add_entry("m_value", m_value);
    dump.add_entry("m_spec", m_spec ? m_spec->get_spec() : std::string("(none)"));
    dump.add("m_isCached", m_isCached);
    dump.add("m_isInitialised", m_isInitialised);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

// Objects keep their variables in the "V" text lines; this form exists for
// tools that stream a variable by itself.
int ZBVariable::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "T", m_tag, true);
    serialise_string(in, out, prefix, "V", m_value, true);
    if (in)
        m_isInitialised = true;
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBVariable::register_zbobject()
{
    register_objectname("ZBVariable", &ZBVariable::create_zbobject);
}

int ZBVariable::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBVariable>(out, from, "ZBVariable");
}

void ZBVariable::set_defaults(bool)
{
    m_tag.clear();
    m_value.clear();
    set_spec(nullptr);
    m_isCached = false;
    m_isInitialised = false;
    m_scriptCache.clear();
}

void ZBVariable::set_spec(const std::shared_ptr<ZBVarSpec>& spec)
{
    if (spec == m_spec)
        return;
    if (spec)
        spec->link();
    if (m_spec)
        m_spec->unlink();
    m_spec = spec;
}

void ZBVariable::clone_spec()
{
    if (m_spec)
        m_value = m_spec->get_spec();
    m_isInitialised = false;
    clear_cache();
}

} // namespace Tervalon
